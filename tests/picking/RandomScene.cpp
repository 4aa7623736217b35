#include "picking/RandomScene.h"

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include "picking/PickingViewers.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/AutoTransform>
#include <osg/Billboard>
#include <osg/Camera>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LOD>
#include <osg/MatrixTransform>
#include <osg/PositionAttitudeTransform>
#include <osg/Switch>

#include <vector>

using namespace KelvOsgTools;

namespace kelvtest {
namespace {

constexpr double kReach = 100.0;

/// A group of a kind that no library knows.
class HostGroup : public osg::Group
{
public:
    void traverse(osg::NodeVisitor& visitor) override
    {
        for (unsigned int i = getNumChildren(); i-- > 0;) getChild(i)->accept(visitor); // last first
    }
};

/// A transform of a kind that no library knows: it stands elsewhere than its position says.
class HostAutoTransform : public osg::AutoTransform
{
public:
    bool computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor*) const override
    {
        matrix.preMultTranslate(-getPosition());
        return true;
    }
};

int pick(Random& random, int count)
{
    return std::uniform_int_distribution<int>(0, count - 1)(random);
}

osg::Vec3d randomPoint(Random& random, double reach = kReach)
{
    return {between(random, -reach, reach), between(random, -reach, reach), between(random, -reach, reach)};
}

osg::Quat randomRotation(Random& random)
{
    return osg::Quat(between(random, -3.2, 3.2), randomPoint(random));
}

osg::Matrixd randomMatrix(Random& random)
{
    const osg::Vec3d scale(between(random, 0.3, 2.0), between(random, 0.3, 2.0), between(random, 0.3, 2.0));
    return osg::Matrixd::scale(scale) * osg::Matrixd::rotate(randomRotation(random)) *
           osg::Matrixd::translate(randomPoint(random, 20.0));
}

osg::ref_ptr<osg::Drawable> randomDrawable(Random& random)
{
    static const GLenum modes[] = {GL_TRIANGLES, GL_QUADS, GL_LINES, GL_LINE_LOOP, GL_POINTS, GL_TRIANGLE_STRIP};
    const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    const osg::Vec3f centre = randomPoint(random, oneIn(random, 3) ? 5.0 : 60.0);
    for (int i = 0; i < 12; ++i) vertices->push_back(centre + osg::Vec3f(randomPoint(random, 30.0)));

    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(vertices);
    geometry->addPrimitiveSet(new osg::DrawArrays(modes[pick(random, 6)], 0, oneIn(random, 10) ? 0 : 12));
    if (oneIn(random, 12)) geometry->setCullingActive(false);
    if (oneIn(random, 12)) geometry->setNodeMask(0);
    return geometry;
}

osg::ref_ptr<osg::Node> randomGeode(Random& random)
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    for (int i = pick(random, 3); i >= 0; --i) geode->addDrawable(randomDrawable(random));
    return geode;
}

osg::ref_ptr<osg::Node> randomBillboard(Random& random)
{
    osg::ref_ptr<osg::Billboard> billboard = new osg::Billboard;
    billboard->addDrawable(randomDrawable(random), osg::Vec3(randomPoint(random, 20.0)));
    return billboard;
}

CTableMeta::structTableMeta randomLabel(Random& random)
{
    CTableMeta::structTableMeta meta;
    meta.pos = randomPoint(random);
    meta.isAutoScale = !oneIn(random, 5);
    return meta;
}

CAutoScaleSphereMeta::structSphereMeta randomSphere(Random& random)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.cneterPos = randomPoint(random);
    meta.radius = static_cast<float>(between(random, 1.0, 12.0));
    meta.ratio = 0.2f;
    return meta;
}

osg::ref_ptr<osg::Node> randomArrow(Random& random)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos = randomPoint(random);
    meta.endPos = randomPoint(random);
    meta.radius = 3.0f;
    meta.ratio = 0.2f;
    meta.isLineArrow = oneIn(random, 2);
    osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    arrow->addTable(new CTableMeta(randomLabel(random)));
    return arrow;
}

osg::ref_ptr<osg::Node> randomPlane(Random& random)
{
    CPlaneMeta::structPlaneMeta meta;
    for (int i = 0; i < 4; ++i) meta.pointVec.push_back(randomPoint(random));
    osg::ref_ptr<CPlaneMeta> plane = new CPlaneMeta(meta);
    plane->addNormalArrow(dynamic_cast<osg::Group*>(randomArrow(random).get()));
    plane->addTable(new CTableMeta(randomLabel(random)));
    return plane;
}

osg::ref_ptr<osg::Node> randomFeature(Random& random)
{
    switch (pick(random, 4)) {
    case 0:
        return randomArrow(random);
    case 1:
        return randomPlane(random);
    case 2: {
        osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(randomSphere(random));
        flag->addTable(new CTableMeta(randomLabel(random)));
        return flag;
    }
    default: {
        osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(randomSphere(random));
        dot->addTable(new CTableMeta(randomLabel(random)));
        return dot;
    }
    }
}

osg::ref_ptr<osg::AutoTransform> randomAutoTransform(Random& random)
{
    osg::ref_ptr<osg::AutoTransform> transform = oneIn(random, 8) ? new HostAutoTransform : new osg::AutoTransform;
    transform->setAutoRotateMode(static_cast<osg::AutoTransform::AutoRotateMode>(pick(random, 3)));
    transform->setPosition(randomPoint(random, 60.0));
    transform->setRotation(randomRotation(random) * (oneIn(random, 10) ? 2.0 : 1.0));
    transform->setScale(osg::Vec3d(between(random, 0.1, 2.0), between(random, 0.1, 2.0), between(random, 0.1, 2.0)));
    if (oneIn(random, 10)) transform->setScale(oneIn(random, 2) ? 1e-12 : 1e12);
    if (oneIn(random, 3)) transform->setPivotPoint(randomPoint(random, 30.0));
    if (oneIn(random, 8)) transform->setReferenceFrame(osg::Transform::ABSOLUTE_RF);
    if (!oneIn(random, 3)) transform->setAutoScaleToScreen(true);
    return transform;
}

osg::ref_ptr<osg::Camera> randomCamera(Random& random)
{
    osg::ref_ptr<osg::Camera> camera = new osg::Camera;
    camera->setReferenceFrame(oneIn(random, 2) ? osg::Transform::RELATIVE_RF : osg::Transform::ABSOLUTE_RF);
    camera->setViewMatrix(randomMatrix(random));
    if (oneIn(random, 2)) camera->setProjectionMatrixAsOrtho(-100, 100, -100, 100, -300, 300);
    if (oneIn(random, 2)) camera->setViewport(10, 10, 150, 150);
    return camera;
}

osg::ref_ptr<osg::Group> randomGroup(Random& random)
{
    switch (pick(random, 10)) {
    case 0:
        return new osg::Switch;
    case 1:
        return new osg::MatrixTransform(randomMatrix(random));
    case 2:
    case 3:
    case 4:
        return randomAutoTransform(random);
    case 5:
        return new osg::LOD;
    case 6:
        return oneIn(random, 3) ? osg::ref_ptr<osg::Group>(randomCamera(random)) : namedGroup("plain");
    case 7:
        return new HostGroup;
    case 8: {
        osg::ref_ptr<osg::PositionAttitudeTransform> transform = new osg::PositionAttitudeTransform;
        transform->setPosition(randomPoint(random, 30.0));
        transform->setAttitude(randomRotation(random));
        if (oneIn(random, 4)) transform->setReferenceFrame(osg::Transform::ABSOLUTE_RF_INHERIT_VIEWPOINT);
        return transform;
    }
    default:
        return new osg::Group;
    }
}

osg::ref_ptr<osg::Node> randomLeaf(Random& random)
{
    switch (pick(random, 8)) {
    case 0:
        return randomDrawable(random);
    case 1:
        return randomBillboard(random);
    case 2:
    case 3:
    case 4:
        return randomFeature(random);
    default:
        return randomGeode(random);
    }
}

void addRandomChild(Random& random, osg::Group& group, osg::Node* child)
{
    if (auto* const toggle = dynamic_cast<osg::Switch*>(&group))
        toggle->addChild(child, !oneIn(random, 4));
    else if (auto* const lod = dynamic_cast<osg::LOD*>(&group))
        lod->addChild(child, oneIn(random, 2) ? 0.0f : 50.0f, 1e6f);
    else
        group.addChild(child);
}

/// Fills the group with children and their children, and collects all for being hung up once more.
void fill(Random& random, osg::Group& group, int depth, std::vector<osg::ref_ptr<osg::Node>>& pool)
{
    for (int i = pick(random, 4); i >= 0; --i) {
        osg::ref_ptr<osg::Node> child;
        if (!pool.empty() && oneIn(random, 12))
            child = pool[static_cast<std::size_t>(pick(random, static_cast<int>(pool.size())))];
        else if (depth == 0 || oneIn(random, 3))
            child = randomLeaf(random);
        else {
            const osg::ref_ptr<osg::Group> inner = randomGroup(random);
            fill(random, *inner, depth - 1, pool);
            child = inner;
        }
        if (oneIn(random, 25)) child->setNodeMask(0);
        if (oneIn(random, 25)) child->setCullingActive(false);
        addRandomChild(random, group, child);
        pool.push_back(child);
    }
}

} // namespace

double between(Random& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

bool oneIn(Random& random, int n)
{
    return pick(random, n) == 0;
}

osg::ref_ptr<osg::Group> randomScene(Random& random)
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    std::vector<osg::ref_ptr<osg::Node>> pool;
    for (int i = 0; i < 4; ++i) fill(random, *scene, 3, pool);
    return scene;
}

osg::ref_ptr<osg::Group> randomCrowd(Random& random)
{
    constexpr int kTrees = 80; // from 64 children on, groups are walked in another way
    osg::ref_ptr<osg::Group> crowd = new osg::Group;
    if (oneIn(random, 2)) crowd = new osg::MatrixTransform(randomMatrix(random));
    for (int i = 0; i < kTrees; ++i) crowd->addChild(randomScene(random));
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    scene->addChild(crowd);
    return scene;
}

osg::ref_ptr<osgViewer::Viewer> randomViewer(Random& random, osg::Node* scene)
{
    constexpr int kSize = 200;
    const bool isParallel = oneIn(random, 2);
    osg::ref_ptr<osgViewer::Viewer> viewer =
        isParallel ? pixelViewer(scene, kSize, kSize) : perspectiveViewer(scene, kSize, kSize, 300.0);
    osg::Vec3d side = randomPoint(random);
    side.normalize();
    viewer->getCamera()->setViewMatrixAsLookAt(side * (isParallel ? 100.0 : 300.0), osg::Vec3d(), osg::Z_AXIS);
    if (oneIn(random, 4))
        viewer->getEventQueue()->getCurrentEventState()->setMouseYOrientation(
            osgGA::GUIEventAdapter::Y_INCREASING_DOWNWARDS);
    if (oneIn(random, 4)) moveToSlave(*viewer, 20, 10, kSize - 50, kSize - 30);
    if (!oneIn(random, 4)) cullOnce(*viewer);
    return viewer;
}

} // namespace kelvtest
