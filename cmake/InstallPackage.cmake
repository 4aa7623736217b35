install(
    TARGETS KelvOsgTools
    EXPORT KelvOsgToolsTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    INCLUDES
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/KelvOsgTools" DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES "${PROJECT_BINARY_DIR}/include/KelvOsgTools/Export.h"
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/KelvOsgTools)

set(KELVOSGTOOLS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KelvOsgTools)
install(
    EXPORT KelvOsgToolsTargets
    NAMESPACE KelvOsgTools::
    DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR})
configure_package_config_file(cmake/KelvOsgToolsConfig.cmake.in "${PROJECT_BINARY_DIR}/KelvOsgToolsConfig.cmake"
                              INSTALL_DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KelvOsgToolsConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/KelvOsgToolsConfig.cmake" "${PROJECT_BINARY_DIR}/KelvOsgToolsConfigVersion.cmake"
              "${PROJECT_SOURCE_DIR}/cmake/OpenSceneGraph.cmake" DESTINATION ${KELVOSGTOOLS_PACKAGE_DIR})
