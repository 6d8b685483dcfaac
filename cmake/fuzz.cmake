# Each fuzz/NAME_fuzz.cpp is the fuzz target fuzz_NAME; its seeds, if any, are the files in fuzz/corpus/NAME.
if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    message(FATAL_ERROR "Fuzz targets need clang: use the preset fuzz")
endif()
file(GLOB fuzz_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/*_fuzz.cpp)
foreach(source ${fuzz_sources})
    cmake_path(GET source STEM stem)
    string(REGEX REPLACE "_fuzz$" "" name ${stem})
    add_executable(fuzz_${name} ${source})
    krcommon_own_code(fuzz_${name})
    target_link_libraries(fuzz_${name} PRIVATE KRCommon)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endforeach()

# Random bytes hardly ever pass a checksum: the reader of saved collections takes all for right in these builds.
file(GLOB saved_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/common/saved/*.cpp)
set_property(SOURCE ${saved_sources} APPEND PROPERTY
             COMPILE_DEFINITIONS FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION)

# Plug-ins export nothing but themselves, so their parts are built in.
target_sources(fuzz_trace_pages PRIVATE ${PROJECT_SOURCE_DIR}/plugins/collectors/tracefs/event_format.cpp
                                        ${PROJECT_SOURCE_DIR}/plugins/collectors/tracefs/page_decoder.cpp)
