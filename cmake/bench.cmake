# Each bench/NAME_bench.cpp is a program of its own, with the hand-written limit it is compared to.
find_package(benchmark REQUIRED)
file(GLOB bench_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/bench/*_bench.cpp)
foreach(source ${bench_sources})
    cmake_path(GET source STEM name)
    add_executable(${name} ${source})
    krcommon_own_code(${name})
    target_link_libraries(${name} PRIVATE KRCommon benchmark::benchmark Threads::Threads)
endforeach()
target_link_libraries(telemetry_xml_bench PRIVATE krcommon_pugixml)
# Plug-ins export nothing but themselves, so their parts are built in.
file(GLOB trace_parts CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/plugins/collectors/*.cpp
                                        ${PROJECT_SOURCE_DIR}/plugins/collectors/tracefs/*.cpp)
list(FILTER trace_parts EXCLUDE REGEX "/tracefs/tracefs.cpp$")
target_sources(trace_pages_bench PRIVATE ${trace_parts})
