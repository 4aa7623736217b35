#pragma once

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/Node>
#include <osg/ref_ptr>

#include <string>

namespace tour {

/// A host's scene as the library expects it: under the root "meshData", whose first child is a
/// transform, and beside it, made by the library, "featureData" with the same matrix.
struct Scene
{
    osg::ref_ptr<osg::Group> root;
    osg::ref_ptr<osg::MatrixTransform> meshTransform;
};

/// Radius of every mesh in the scene; the transform scales it to that.
constexpr double kSceneRadius = 100.0;

/// Reads a mesh file and makes it fit to be looked at: normals, material, one coordinate system.
/// @throws std::runtime_error, with a text for people, if it cannot be read or holds no surface
osg::ref_ptr<osg::Node> loadMesh(const std::string& path);

/// Puts the mesh into a new scene, centred and scaled to the radius of the scene.
Scene sceneAround(osg::Node* mesh);

} // namespace tour
