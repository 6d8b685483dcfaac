krcommon_sources(sources common)
add_library(KRCommon SHARED ${sources})
add_library(KRCommon::KRCommon ALIAS KRCommon)
krcommon_own_code(KRCommon)

target_compile_features(KRCommon PUBLIC cxx_std_20)
target_compile_definitions(KRCommon PRIVATE KRCOMMON_BUILDING)
target_include_directories(KRCommon PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                           $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
target_link_libraries(KRCommon PRIVATE krcommon_zstd krcommon_pugixml Threads::Threads ${CMAKE_DL_LIBS})
# The one library that public headers name. Whoever uses the installed library finds it by itself (see install.cmake).
target_link_libraries(KRCommon PUBLIC $<BUILD_INTERFACE:krcommon_json>)

if(WIN32)
    # List the machine's devices; wait for a word in memory.
    target_link_libraries(KRCommon PRIVATE setupapi synchronization)
else()
    # Nobody replaces single functions of this library at load time, so its own calls may be direct and inlined, as
    # they are on Windows.
    target_compile_options(KRCommon PRIVATE -fno-semantic-interposition)
    target_link_options(KRCommon PRIVATE LINKER:-Bsymbolic-functions)
endif()

# The same file name on every system, whatever prefix its tools prefer.
set_target_properties(KRCommon PROPERTIES PREFIX lib VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
