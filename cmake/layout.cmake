# The folders that the library finds beside itself. Links keep them current without a build step.

function(krcommon_link_beside_library source name)
    if(EXISTS ${source})
        file(CREATE_LINK ${source} ${KRCOMMON_BIN_DIR}/${name} SYMBOLIC)
    endif()
endfunction()

file(MAKE_DIRECTORY ${KRCOMMON_BIN_DIR}/plugins)
krcommon_link_beside_library(${PROJECT_SOURCE_DIR}/config config)
krcommon_link_beside_library(${PROJECT_SOURCE_DIR}/config/xml_configs xml_configs)

# On Windows every module shares one C++ runtime, or exceptions that cross modules corrupt it; its libraries stand
# beside the program.
set(KRCOMMON_RUNTIME_DLLS "")
if(WIN32)
    foreach(dll libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
                        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        if(NOT IS_ABSOLUTE "${path}")
            message(FATAL_ERROR "The compiler does not know where its ${dll} is")
        endif()
        file(REAL_PATH ${path} path)
        file(COPY ${path} DESTINATION ${KRCOMMON_BIN_DIR})
        list(APPEND KRCOMMON_RUNTIME_DLLS ${KRCOMMON_BIN_DIR}/${dll})
    endforeach()
endif()
