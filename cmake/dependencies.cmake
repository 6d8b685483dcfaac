# Libraries come from Debian packages of the build machine. A cross compiler must never see the machine's own include
# directory, so headers are linked into a directory of the build that holds nothing else; and what Debian has not for
# its target is built along, from the sources that scripts/packages unpacks.

find_package(Threads REQUIRED)

set(KRCOMMON_FOREIGN_INCLUDE ${PROJECT_BINARY_DIR}/foreign/include)
file(MAKE_DIRECTORY ${KRCOMMON_FOREIGN_INCLUDE})

function(krcommon_foreign_headers folder marker package)
    find_path(KRCOMMON_${folder}_ROOT ${folder}/${marker} PATHS /usr/include /usr/local/include
              NO_CMAKE_FIND_ROOT_PATH)
    if(NOT KRCOMMON_${folder}_ROOT)
        message(FATAL_ERROR "${folder}/${marker} not found: install ${package} (scripts/packages does)")
    endif()
    file(CREATE_LINK ${KRCOMMON_${folder}_ROOT}/${folder} ${KRCOMMON_FOREIGN_INCLUDE}/${folder} SYMBOLIC)
endfunction()

krcommon_foreign_headers(nlohmann json.hpp nlohmann-json3-dev)
add_library(krcommon_json INTERFACE)
target_include_directories(krcommon_json SYSTEM INTERFACE ${KRCOMMON_FOREIGN_INCLUDE})

# Makes the static library TARGET of the C and C++ sources in the folders FOLDERS of the Debian source package SOURCE. Of its
# headers only HEADERS are seen, in a folder that holds nothing else, because names such as common/error.h are ours too.
function(krcommon_foreign_library target)
    cmake_parse_arguments(arg "" "SOURCE;TERMS" "FOLDERS;HEADERS;DEFINITIONS" ${ARGN})
    execute_process(COMMAND ${PROJECT_SOURCE_DIR}/scripts/packages --sources OUTPUT_VARIABLE sources
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(include ${PROJECT_BINARY_DIR}/foreign/${target})
    file(MAKE_DIRECTORY ${include})
    foreach(header ${arg_HEADERS})
        if(NOT EXISTS ${sources}/${arg_SOURCE}/${header})
            message(FATAL_ERROR "${header} of ${arg_SOURCE} not found in ${sources}: run scripts/packages")
        endif()
        cmake_path(GET header FILENAME name)
        file(CREATE_LINK ${sources}/${arg_SOURCE}/${header} ${include}/${name} SYMBOLIC)
    endforeach()
    list(TRANSFORM arg_FOLDERS PREPEND ${sources}/${arg_SOURCE}/)
    list(TRANSFORM arg_FOLDERS APPEND /*.c OUTPUT_VARIABLE c_files)
    list(TRANSFORM arg_FOLDERS APPEND /*.cpp OUTPUT_VARIABLE cpp_files)
    file(GLOB files ${c_files} ${cpp_files})
    add_library(${target} STATIC ${files})
    target_compile_definitions(${target} PRIVATE ${arg_DEFINITIONS})
    target_compile_options(${target} PRIVATE -w)
    target_include_directories(${target} SYSTEM INTERFACE ${include})
    set_target_properties(${target} PROPERTIES C_VISIBILITY_PRESET hidden C_CLANG_TIDY "" CXX_CLANG_TIDY "" EXPORT_COMPILE_COMMANDS OFF)
    # Its license asks to be passed on with it.
    set_property(GLOBAL APPEND PROPERTY KRCOMMON_FOREIGN_LICENSES ${sources}/${arg_SOURCE}/${arg_TERMS} ${arg_SOURCE}.txt)
endfunction()

if(WIN32)
    enable_language(C)
    krcommon_foreign_library(krcommon_zstd SOURCE libzstd TERMS LICENSE FOLDERS lib/common lib/compress lib/decompress
                             HEADERS lib/zstd.h lib/zstd_errors.h
                             DEFINITIONS ZSTD_DISABLE_ASM ZSTD_LEGACY_SUPPORT=0 XXH_NAMESPACE=ZSTD_)
    krcommon_foreign_library(krcommon_pugixml SOURCE pugixml TERMS LICENSE.md FOLDERS src
                             HEADERS src/pugixml.hpp src/pugiconfig.hpp)
else()
    find_path(KRCOMMON_ZSTD_INCLUDE zstd.h)
    find_library(KRCOMMON_ZSTD_LIBRARY zstd)
    if(NOT KRCOMMON_ZSTD_INCLUDE OR NOT KRCOMMON_ZSTD_LIBRARY)
        message(FATAL_ERROR "zstd.h or its library not found: install libzstd-dev (scripts/packages does)")
    endif()
    add_library(krcommon_zstd INTERFACE)
    target_include_directories(krcommon_zstd SYSTEM INTERFACE ${KRCOMMON_ZSTD_INCLUDE})
    target_link_libraries(krcommon_zstd INTERFACE ${KRCOMMON_ZSTD_LIBRARY})
    find_path(KRCOMMON_PUGIXML_INCLUDE pugixml.hpp)
    find_library(KRCOMMON_PUGIXML_LIBRARY pugixml)
    if(NOT KRCOMMON_PUGIXML_INCLUDE OR NOT KRCOMMON_PUGIXML_LIBRARY)
        message(FATAL_ERROR "pugixml.hpp or its library not found: install libpugixml-dev (scripts/packages does)")
    endif()
    add_library(krcommon_pugixml INTERFACE)
    target_include_directories(krcommon_pugixml SYSTEM INTERFACE ${KRCOMMON_PUGIXML_INCLUDE})
    target_link_libraries(krcommon_pugixml INTERFACE ${KRCOMMON_PUGIXML_LIBRARY})
endif()
