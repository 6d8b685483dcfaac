# Compiler settings. What ours alone must pass stands in krcommon_own_code(); the rest holds for everything built here.

find_program(KRCOMMON_CCACHE ccache)
if(PROJECT_IS_TOP_LEVEL AND KRCOMMON_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    # Paths below the source tree count as relative, so that all clones of the project share what was compiled once.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        ${KRCOMMON_CCACHE})
    set(CMAKE_C_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

if(KRCOMMON_SANITIZE)
    add_compile_options(-fsanitize=${KRCOMMON_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KRCOMMON_SANITIZE})
endif()

if(WIN32)
    # Windows 10: its thread, clock and network interface calls are used without looking them up.
    add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00)
endif()

function(krcommon_own_code target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # This compiler reports overlaps in "text" + std::string that cannot happen.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(KRCOMMON_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Instrumented code defeats the analysis behind this warning; the plain builds keep it.
        target_compile_options(${target} PRIVATE -Wno-maybe-uninitialized)
    endif()
endfunction()

# The sources below a folder, without those of the other operating system.
function(krcommon_sources result folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.cpp)
    if(WIN32)
        list(FILTER sources EXCLUDE REGEX "/posix/")
    else()
        list(FILTER sources EXCLUDE REGEX "/win32/")
    endif()
    set(${result} ${sources} PARENT_SCOPE)
endfunction()
