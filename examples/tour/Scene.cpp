#include "Scene.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/Geometry>
#include <osg/KdTree>
#include <osg/Material>
#include <osg/NodeVisitor>
#include <osg/Transform>
#include <osg/TriangleFunctor>
#include <osgDB/FileNameUtils>
#include <osgDB/FileUtils>
#include <osgDB/ReadFile>
#include <osgUtil/Optimizer>
#include <osgUtil/SmoothingVisitor>

#include <fstream>
#include <stdexcept>

namespace tour {
namespace {

struct CountTriangle
{
    void operator()(const osg::Vec3&, const osg::Vec3&, const osg::Vec3&, bool = false) { ++count; }
    unsigned int count = 0;
};

/// Tells the optimizer that it may resolve every transform.
class FixTransforms : public osg::NodeVisitor
{
public:
    FixTransforms() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Transform& transform) override
    {
        transform.setDataVariance(osg::Object::STATIC);
        traverse(transform);
    }
};

/// Gives every geometry normals and tells what the mesh is made of.
class SurfaceVisitor : public osg::NodeVisitor
{
public:
    SurfaceVisitor() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geometry& geometry) override
    {
        osg::TriangleFunctor<CountTriangle> triangles;
        geometry.accept(triangles);
        m_triangles += triangles.count;
        if (triangles.count > 0 && !geometry.getNormalArray()) osgUtil::SmoothingVisitor::smooth(geometry);
        const osg::Array* const colours = geometry.getColorArray();
        if (colours && colours->getNumElements() > 1) m_isColoured = true;
    }

    unsigned int m_triangles = 0;
    bool m_isColoured = false;
};

osg::ref_ptr<osg::Material> lightSteel(bool isColoured)
{
    osg::ref_ptr<osg::Material> material = new osg::Material;
    material->setColorMode(isColoured ? osg::Material::AMBIENT_AND_DIFFUSE : osg::Material::OFF);
    material->setAmbient(osg::Material::FRONT_AND_BACK, osg::Vec4(0.49f, 0.53f, 0.59f, 1.0f));
    material->setDiffuse(osg::Material::FRONT_AND_BACK, osg::Vec4(0.49f, 0.53f, 0.59f, 1.0f));
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.16f, 0.16f, 0.16f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 24.0f);
    return material;
}

osg::ref_ptr<osg::Node> readNode(const std::string& path)
{
    if (!osgDB::fileExists(path)) throw std::runtime_error("there is no file " + path);
    if (osgDB::fileType(path) == osgDB::DIRECTORY) throw std::runtime_error(path + " is a folder, not a mesh");
    if (!std::ifstream(path)) throw std::runtime_error(path + " cannot be opened for reading");
    osg::ref_ptr<osg::Node> node = osgDB::readRefNodeFile(path);
    if (!node) throw std::runtime_error(path + " is no mesh that can be read (.obj, .stl, .ply and .osgt can)");
    return node;
}

} // namespace

osg::ref_ptr<osg::Node> loadMesh(const std::string& path)
{
    const osg::ref_ptr<osg::Group> mesh = new osg::Group; // the optimizer cannot flatten a transform at the top
    mesh->addChild(readNode(path));

    // Picks give points in the coordinates of the drawable. Without transforms between, those are the
    // coordinates of the mesh, in which the features are placed.
    FixTransforms fix;
    mesh->accept(fix);
    osgUtil::Optimizer().optimize(mesh, osgUtil::Optimizer::FLATTEN_STATIC_TRANSFORMS_DUPLICATING_SHARED_SUBGRAPHS);

    SurfaceVisitor surface;
    mesh->accept(surface);
    if (surface.m_triangles == 0 || !mesh->getBound().valid() || !(mesh->getBound().radius() > 0.0f))
        throw std::runtime_error(path + " holds no surface");

    const osg::ref_ptr<osg::KdTreeBuilder> trees = new osg::KdTreeBuilder; // picks fast in large meshes
    mesh->accept(*trees);

    mesh->getOrCreateStateSet()->setAttributeAndModes(lightSteel(surface.m_isColoured));
    return mesh;
}

Scene sceneAround(osg::Node* mesh)
{
    const osg::BoundingSphere bound = mesh->getBound();
    const osg::Matrixd matrix = osg::Matrixd::translate(-bound.center()) *
                                osg::Matrixd::scale(osg::Vec3d(1.0, 1.0, 1.0) * (kSceneRadius / bound.radius()));

    Scene scene{new osg::Group, new osg::MatrixTransform(matrix)};
    const osg::ref_ptr<osg::Group> meshData = new osg::Group;
    meshData->setName("meshData");
    meshData->addChild(scene.meshTransform);
    scene.meshTransform->addChild(mesh);
    scene.root->addChild(meshData);
    scene.root->getOrCreateStateSet()->setMode(GL_NORMALIZE, osg::StateAttribute::ON); // the transform scales

    const osg::ref_ptr<osg::Group> features =
        KelvOsgTools::findOrCreateFeatureRootNode(scene.root, KelvOsgTools::featureAll, true);
    features->getChild(0)->asTransform()->asMatrixTransform()->setMatrix(matrix);
    return scene;
}

} // namespace tour
