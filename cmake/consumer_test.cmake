# Configures, builds and runs examples/ against the library installed in PREFIX.
set(arguments -S ${SOURCE}/examples -B ${BINARY} -G ${GENERATOR} -D CMAKE_PREFIX_PATH=${PREFIX}
    -D CMAKE_CXX_COMPILER=${COMPILER})
if(TOOLCHAIN)
    # The toolchain finds packages below its root only; the installed library is a second root.
    list(APPEND arguments -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN} -D KRCommon_DIR=${PREFIX}/lib/cmake/KRCommon)
endif()
execute_process(COMMAND ${CMAKE_COMMAND} ${arguments} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BINARY} COMMAND_ERROR_IS_FATAL ANY)
set(program ${BINARY}/minimal_host)
if(RUNNER)
    set(program ${program}.exe)
    set(ENV{WINEPATH} "Z:${PREFIX}/bin")
endif()
execute_process(COMMAND ${RUNNER} ${program} COMMAND_ERROR_IS_FATAL ANY)
