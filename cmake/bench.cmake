# Each bench/NAME_bench.cpp is a program of its own, with the hand-written limit it is compared to.
find_package(benchmark REQUIRED)
file(GLOB bench_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*_bench.cpp)
foreach(source ${bench_sources})
    cmake_path(GET source STEM name)
    add_executable(${name} ${source})
    krcommon_own_code(${name})
    target_link_libraries(${name} PRIVATE KRCommon benchmark::benchmark Threads::Threads)
endforeach()
