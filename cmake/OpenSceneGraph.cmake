# Wraps the variables of CMake's find module in one target; find_package(OpenSceneGraph) comes before. The
# installed package includes this file too, so a host gets the same target. It is global for hosts that take
# the sources with add_subdirectory(): their targets stand outside of the folder that made it.
if(NOT TARGET OpenSceneGraph::All)
    add_library(OpenSceneGraph::All INTERFACE IMPORTED GLOBAL)
    target_include_directories(OpenSceneGraph::All SYSTEM INTERFACE ${OPENSCENEGRAPH_INCLUDE_DIRS})
    target_link_libraries(OpenSceneGraph::All INTERFACE ${OPENSCENEGRAPH_LIBRARIES})
endif()
