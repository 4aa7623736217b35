# Wraps the variables of CMake's find modules in one target. The installed package includes this
# file too, so a host gets the same target.
find_package(OpenSceneGraph 3.6.5 REQUIRED COMPONENTS osgDB osgGA osgText osgUtil osgViewer)

if(NOT TARGET OpenSceneGraph::All)
    add_library(OpenSceneGraph::All INTERFACE IMPORTED)
    target_include_directories(OpenSceneGraph::All SYSTEM INTERFACE ${OPENSCENEGRAPH_INCLUDE_DIRS})
    target_link_libraries(OpenSceneGraph::All INTERFACE ${OPENSCENEGRAPH_LIBRARIES})
endif()
