# Installed on Linux, the library, its plug-ins and its configuration live in LIBDIR/tarnwell, because the library looks
# beside its own file; LIBDIR itself has the links that linker and loader look for. On Windows all stands in one folder.
include(CMakePackageConfigHelpers)

if(WIN32)
    set(KRCOMMON_HOME ${CMAKE_INSTALL_BINDIR})
else()
    set(KRCOMMON_HOME ${CMAKE_INSTALL_LIBDIR}/tarnwell)
    set_target_properties(KRCommon PROPERTIES INSTALL_RPATH "\$ORIGIN")
endif()

install(TARGETS KRCommon EXPORT KRCommonTargets
        RUNTIME DESTINATION ${KRCOMMON_HOME}
        LIBRARY DESTINATION ${KRCOMMON_HOME} NAMELINK_SKIP
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET tarnwell)
    if(NOT WIN32)
        cmake_path(RELATIVE_PATH CMAKE_INSTALL_FULL_LIBDIR BASE_DIRECTORY ${CMAKE_INSTALL_FULL_BINDIR}
                   OUTPUT_VARIABLE libdir_from_bindir)
        set_target_properties(tarnwell PROPERTIES INSTALL_RPATH "\$ORIGIN/${libdir_from_bindir}/tarnwell")
    endif()
    install(TARGETS tarnwell RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    if(TARGET tarnwell_texts)
        # Where each shell looks by itself; Debian's zsh has a folder of its own for packages.
        set(zsh_folder zsh/site-functions)
        if(EXISTS /etc/debian_version)
            set(zsh_folder zsh/vendor-completions)
        endif()
        set(share ${PROJECT_BINARY_DIR}/share)
        install(FILES ${share}/tarnwell.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
        install(FILES ${share}/tarnwell.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
                RENAME tarnwell)
        install(FILES ${share}/_tarnwell DESTINATION ${CMAKE_INSTALL_DATADIR}/${zsh_folder})
        install(FILES ${share}/tarnwell.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
    endif()
endif()
get_property(plugins GLOBAL PROPERTY KRCOMMON_PLUGINS)
if(plugins)
    install(TARGETS ${plugins} LIBRARY DESTINATION ${KRCOMMON_HOME}/plugins)
    get_property(manifests GLOBAL PROPERTY KRCOMMON_PLUGIN_MANIFESTS)
    install(FILES ${manifests} DESTINATION ${KRCOMMON_HOME}/plugins)
endif()
if(EXISTS ${PROJECT_SOURCE_DIR}/config)
    install(DIRECTORY config/ DESTINATION ${KRCOMMON_HOME}/config PATTERN xml_configs EXCLUDE)
endif()
if(EXISTS ${PROJECT_SOURCE_DIR}/config/xml_configs)
    install(DIRECTORY config/xml_configs/ DESTINATION ${KRCOMMON_HOME}/xml_configs)
endif()
install(DIRECTORY common DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING
        PATTERN *.h PATTERN posix EXCLUDE PATTERN win32 EXCLUDE)

# Debian has a package for the headers that ours include; on Windows they come along, with their license.
if(WIN32)
    install(DIRECTORY ${KRCOMMON_FOREIGN_INCLUDE}/nlohmann/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nlohmann)
    if(EXISTS /usr/share/doc/nlohmann-json3-dev/copyright)
        install(FILES /usr/share/doc/nlohmann-json3-dev/copyright DESTINATION licenses RENAME nlohmann-json.txt)
    endif()
else()
    target_link_libraries(KRCommon PUBLIC $<INSTALL_INTERFACE:nlohmann_json::nlohmann_json>)
endif()

if(WIN32)
    install(FILES ${KRCOMMON_RUNTIME_DLLS} DESTINATION ${KRCOMMON_HOME})
    get_property(licenses GLOBAL PROPERTY KRCOMMON_FOREIGN_LICENSES)
    while(licenses)
        list(POP_FRONT licenses file name)
        install(FILES ${file} DESTINATION licenses RENAME ${name})
    endwhile()
else()
    foreach(name libKRCommon.so libKRCommon.so.${PROJECT_VERSION_MAJOR})
        install(CODE "file(CREATE_LINK tarnwell/libKRCommon.so.${PROJECT_VERSION_MAJOR}
            \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/${name}\" SYMBOLIC)")
    endforeach()
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KRCommon)
install(EXPORT KRCommonTargets NAMESPACE KRCommon:: DESTINATION ${package_dir})
configure_package_config_file(cmake/KRCommonConfig.cmake.in ${PROJECT_BINARY_DIR}/KRCommonConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KRCommonConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KRCommonConfig.cmake ${PROJECT_BINARY_DIR}/KRCommonConfigVersion.cmake
        DESTINATION ${package_dir})
