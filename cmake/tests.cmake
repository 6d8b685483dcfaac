# Each folder tests/NAME with *_test.cpp becomes the program test_NAME, and one test: one process for all its cases.

set(googletest_sources /usr/src/googletest)
if(NOT EXISTS ${googletest_sources}/CMakeLists.txt)
    message(FATAL_ERROR "GoogleTest's sources not found: install libgtest-dev (scripts/packages does)")
endif()
# From its sources, so that it has the same compiler and the same sanitizers as the tests.
set(INSTALL_GTEST OFF)
add_subdirectory(${googletest_sources} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
foreach(library gtest gtest_main gmock gmock_main)
    set_target_properties(${library} PROPERTIES CXX_CLANG_TIDY "" EXPORT_COMPILE_COMMANDS OFF)
endforeach()

set(test_root "")
if(CMAKE_CROSSCOMPILING AND WIN32)
    # Wine shows the whole tree as drive Z.
    set(test_root "Z:")
    set(KRCOMMON_WINE ${PROJECT_SOURCE_DIR}/cmake/wine-run ${PROJECT_BINARY_DIR}/wine)
    add_test(NAME wine_prefix COMMAND ${KRCOMMON_WINE} --prepare)
    set_tests_properties(wine_prefix PROPERTIES FIXTURES_SETUP wine TIMEOUT 300)
endif()

# Tests that run the program as a user has it ask for the fixture `stage`: the project installed into ${build}/stage.
add_test(NAME stage COMMAND ${CMAKE_COMMAND} -D BUILD=${PROJECT_BINARY_DIR} -D PREFIX=${PROJECT_BINARY_DIR}/stage
         -P ${PROJECT_SOURCE_DIR}/cmake/stage.cmake)
set_tests_properties(stage PROPERTIES FIXTURES_SETUP stage TIMEOUT 120)

set(KRCOMMON_TEST_ENVIRONMENT
    KR_TEST_DATA=${test_root}${PROJECT_SOURCE_DIR}/tests
    KR_TEST_BIN=${test_root}${KRCOMMON_BIN_DIR}
    KR_TEST_STAGE=${test_root}${PROJECT_BINARY_DIR}/stage
    ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
    UBSAN_OPTIONS=print_stacktrace=1
    TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1)

# What every test needs, also one with a CMakeLists.txt of its own. Further arguments: fixtures.
function(krcommon_register_test name)
    set(fixtures ${ARGN})
    if(CMAKE_CROSSCOMPILING AND WIN32)
        list(APPEND fixtures wine)
    endif()
    set_tests_properties(${name} PROPERTIES
        TIMEOUT 300 ENVIRONMENT "${KRCOMMON_TEST_ENVIRONMENT}" FIXTURES_REQUIRED "${fixtures}")
endfunction()

file(GLOB KRCOMMON_TEST_SUPPORT CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/support/*.cpp)

function(krcommon_add_test name)
    add_executable(test_${name} ${ARGN} ${KRCOMMON_TEST_SUPPORT})
    krcommon_own_code(test_${name})
    target_link_libraries(test_${name} PRIVATE KRCommon gtest gmock gtest_main Threads::Threads)
    if(CMAKE_CROSSCOMPILING AND WIN32)
        set_target_properties(test_${name} PROPERTIES CROSSCOMPILING_EMULATOR "${KRCOMMON_WINE}")
    endif()
    add_test(NAME ${name} COMMAND test_${name})
    krcommon_register_test(${name})
endfunction()

file(GLOB test_files CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/*/*_test.cpp
                                       ${PROJECT_SOURCE_DIR}/tests/*/CMakeLists.txt)
set(test_folders "")
foreach(file ${test_files})
    cmake_path(GET file PARENT_PATH folder)
    list(APPEND test_folders ${folder})
endforeach()
list(REMOVE_DUPLICATES test_folders)
foreach(folder ${test_folders})
    cmake_path(GET folder FILENAME name)
    if(EXISTS ${folder}/CMakeLists.txt)
        add_subdirectory(${folder})
    else()
        krcommon_sources(sources tests/${name})
        krcommon_add_test(${name} ${sources})
    endif()
endforeach()
# The host program's tests run it as installed.
if(TEST tarnwell)
    krcommon_register_test(tarnwell stage)
endif()

# A project of its own finds the installed library, builds against it and runs.
if(NOT KRCOMMON_SANITIZE AND EXISTS ${PROJECT_SOURCE_DIR}/examples/minimal_host.cpp)
    add_test(NAME consumer COMMAND ${CMAKE_COMMAND}
        -D SOURCE=${PROJECT_SOURCE_DIR} -D BINARY=${PROJECT_BINARY_DIR}/consumer
        -D PREFIX=${PROJECT_BINARY_DIR}/stage -D GENERATOR=${CMAKE_GENERATOR} -D COMPILER=${CMAKE_CXX_COMPILER}
        -D TOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} "-D RUNNER=${KRCOMMON_WINE}"
        -P ${PROJECT_SOURCE_DIR}/cmake/consumer_test.cmake)
    krcommon_register_test(consumer stage)
endif()
