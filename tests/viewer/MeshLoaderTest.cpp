#include "MeshLoader.h"
#include "viewer/SamplePart.h"

#include <gtest/gtest.h>

#include <osg/ComputeBoundsVisitor>
#include <osg/Geometry>
#include <osg/KdTree>
#include <osg/MatrixTransform>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace viewer {
namespace {

bool goOn(double)
{
    return true;
}

/// Looks at every geometry of a mesh and at the transforms above it.
class Inspector : public osg::NodeVisitor
{
public:
    Inspector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geometry& geometry) override
    {
        isMoved |= osg::computeLocalToWorld(getNodePath()) != osg::Matrixd();
        hasKdTrees &= dynamic_cast<osg::KdTree*>(geometry.getShape()) != nullptr;
        hasNormals &= geometry.getNormalArray() != nullptr;
    }

    bool isMoved = false;
    bool hasKdTrees = true;
    bool hasNormals = true;
};

class LoadMesh : public ::testing::Test
{
protected:
    Inspector inspected(const LoadedMesh& mesh)
    {
        Inspector inspector;
        mesh.node->accept(inspector);
        return inspector;
    }

    QTemporaryDir m_folder;
};

TEST_F(LoadMesh, BuildsKdTreesAndCountsTriangles)
{
    const LoadedMesh mesh =
        loadMesh(viewertest::writeMesh(*viewertest::bumpySquare(5), m_folder.path(), "mesh.stl"), goOn);
    ASSERT_TRUE(mesh.node) << qPrintable(mesh.error);
    EXPECT_TRUE(inspected(mesh).hasKdTrees);
    EXPECT_TRUE(inspected(mesh).hasNormals);
    EXPECT_EQ(mesh.triangles, 2u * 5u * 5u);
}

TEST_F(LoadMesh, BringsAllDrawablesIntoTheCoordinatesOfTheWhole)
{
    const osg::ref_ptr<osg::MatrixTransform> moved = new osg::MatrixTransform(osg::Matrixd::translate(1000, 0, 0));
    moved->addChild(viewertest::bumpySquare(2));
    const osg::ref_ptr<osg::Group> both = new osg::Group;
    both->addChild(moved);
    both->addChild(moved->getChild(0)); // shared, and once not moved
    const LoadedMesh mesh = loadMesh(viewertest::writeMesh(*both, m_folder.path(), "mesh.osgb"), goOn);
    ASSERT_TRUE(mesh.node) << qPrintable(mesh.error);
    EXPECT_FALSE(inspected(mesh).isMoved);
    osg::ComputeBoundsVisitor bounds;
    mesh.node->accept(bounds);
    EXPECT_FLOAT_EQ(bounds.getBoundingBox().xMin(), -50.0f);
    EXPECT_FLOAT_EQ(bounds.getBoundingBox().xMax(), 1050.0f);
}

TEST_F(LoadMesh, TellsThatAFileIsMissing)
{
    const LoadedMesh mesh = loadMesh(QDir(m_folder.path()).filePath("none.stl"), goOn);
    EXPECT_FALSE(mesh.node);
    EXPECT_FALSE(mesh.error.isEmpty());
}

TEST_F(LoadMesh, TellsThatAFileHoldsNoSurface)
{
    const osg::ref_ptr<osg::Group> empty = new osg::Group;
    const LoadedMesh mesh = loadMesh(viewertest::writeMesh(*empty, m_folder.path(), "mesh.osgb"), goOn);
    EXPECT_FALSE(mesh.node);
    EXPECT_FALSE(mesh.error.isEmpty());
}

TEST_F(LoadMesh, StopsWhenItIsNotWantedAnyMore)
{
    const QString path = viewertest::writeMesh(*viewertest::bumpySquare(2), m_folder.path(), "mesh.stl");
    EXPECT_FALSE(loadMesh(path, [](double) { return false; }).node);
}

} // namespace
} // namespace viewer
