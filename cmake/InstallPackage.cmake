# What `cmake --install` puts where. All of it finds its parts from where it lies itself, so the installed
# folder may be moved. Hosts that take the sources with add_subdirectory() install nothing of ours unless they
# switch KELVOSGTOOLS_INSTALL on.
install(
    TARGETS KelvOsgTools
    EXPORT KelvOsgToolsTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
            COMPONENT Runtime
            NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime
    INCLUDES
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(
    DIRECTORY "${PROJECT_SOURCE_DIR}/include/KelvOsgTools"
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT Development)
install(
    FILES "${PROJECT_BINARY_DIR}/include/KelvOsgTools/Export.h"
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KelvOsgTools
    COMPONENT Development)
install(
    FILES "${PROJECT_SOURCE_DIR}/src/persistence/featureInfo.xsd"
    DESTINATION ${CMAKE_INSTALL_DATADIR}/KelvOsgTools
    COMPONENT Development)

set(KELVOSGTOOLS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KelvOsgTools)
install(
    EXPORT KelvOsgToolsTargets
    NAMESPACE KelvOsgTools::
    DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR}
    COMPONENT Development)
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/KelvOsgToolsConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/KelvOsgToolsConfig.cmake"
                              INSTALL_DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KelvOsgToolsConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(
    FILES "${PROJECT_BINARY_DIR}/KelvOsgToolsConfig.cmake" "${PROJECT_BINARY_DIR}/KelvOsgToolsConfigVersion.cmake"
          "${CMAKE_CURRENT_LIST_DIR}/OpenSceneGraph.cmake"
    DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR}
    COMPONENT Development)

if(UNIX)
    set(pkgconfig_dir ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
    file(RELATIVE_PATH pkgconfig_to_prefix ${pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
    file(RELATIVE_PATH pkgconfig_to_libdir ${pkgconfig_dir} ${CMAKE_INSTALL_FULL_LIBDIR})
    file(RELATIVE_PATH pkgconfig_to_includedir ${pkgconfig_dir} ${CMAKE_INSTALL_FULL_INCLUDEDIR})
    foreach(path IN ITEMS pkgconfig_to_prefix pkgconfig_to_libdir pkgconfig_to_includedir)
        string(REGEX REPLACE "/$" "" ${path} "${${path}}")
    endforeach()
    configure_file("${CMAKE_CURRENT_LIST_DIR}/kelvosgtools.pc.in" "${PROJECT_BINARY_DIR}/kelvosgtools.pc" @ONLY)
    install(
        FILES "${PROJECT_BINARY_DIR}/kelvosgtools.pc"
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT Development)
endif()
