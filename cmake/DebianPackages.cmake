# Three Debian packages, made by `cpack` in a build folder: the library, what compiling against it needs, and
# the measuring viewer. docs/installing.md tells how.
if(NOT UNIX OR APPLE)
    return()
endif()

set(runtime_package libkelvosgtools${PROJECT_VERSION_MAJOR})
set(development_package libkelvosgtools-dev)
set(viewer_package kelv-viewer)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kelvosgtools)
set(CPACK_PACKAGE_CONTACT "KelvOsgTools contributors <maintainers@kelvosgtools.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own, the first line of its description
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/packages")
set(CPACK_COMPONENTS_ALL Runtime Development)
if(KELVOSGTOOLS_BUILD_VIEWER)
    list(APPEND CPACK_COMPONENTS_ALL Viewer)
endif()
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/FinishDebianPackages.cmake")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}") # the viewer's link to the library
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS Runtime)
set(CPACK_COMPONENT_VIEWER_DEPENDS Runtime)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${runtime_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/debian/triggers")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "measurement annotations for OpenSceneGraph viewers - shared library
Dots, lines and planes with labels on the meshes of a 3D viewer that draws with
OpenSceneGraph: the library builds and finds them in the scene, tells which one
is under the mouse, recolours what is selected, and saves and loads them.
.
This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME ${development_package})
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "libopenscenegraph-dev (>= 3.6.5), qtbase5-dev (>= 5.15)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
    "measurement annotations for OpenSceneGraph viewers - development files
Dots, lines and planes with labels on the meshes of a 3D viewer that draws with
OpenSceneGraph: the library builds and finds them in the scene, tells which one
is under the mouse, recolours what is selected, and saves and loads them.
.
This package holds the headers, the packages for CMake and pkg-config, and the
schema of the saved files.")

set(CPACK_DEBIAN_VIEWER_PACKAGE_NAME ${viewer_package})
set(CPACK_DEBIAN_VIEWER_PACKAGE_SECTION graphics)
set(CPACK_COMPONENT_VIEWER_DESCRIPTION
    "measuring viewer for meshes
Opens a mesh of any kind that OpenSceneGraph reads and measures it with dots,
lines and planes that carry labels. Measurements are saved and loaded as XML;
coordinates, lengths and normals are exported as tables.")

# What FinishDebianPackages.cmake needs to know.
set(CPACK_KELVOSGTOOLS_PACKAGING_DIR "${PROJECT_SOURCE_DIR}/packaging/debian")
set(CPACK_KELVOSGTOOLS_PACKAGES "Runtime=${runtime_package};Development=${development_package};Viewer=${viewer_package}")

include(CPack)
