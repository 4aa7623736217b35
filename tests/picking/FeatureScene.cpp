#include "picking/FeatureScene.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

using namespace KelvOsgTools;

namespace kelvtest {

FeatureScene::FeatureScene(float halfSide, const osg::Matrixd& matrix)
{
    const MeshScene mesh = meshScene(squareMesh(halfSide), matrix);
    root = mesh.root;
    meshData = mesh.meshData;
    const osg::ref_ptr<osg::Group> features = findOrCreateFeatureRootNode(root, featureAll, true);
    dynamic_cast<osg::MatrixTransform&>(*features->getChild(0)).setMatrix(matrix);
}

CAutoScaleSphereMeta* FeatureScene::addDot(const std::string& name, const osg::Vec3f& place)
{
    const osg::ref_ptr<osg::Group> dot = createAutoScaleShpereAndTable(
        QString::fromStdString(name), root, place, 1, QStringLiteral("P"), 1, featureStateNormal, false);
    return dynamic_cast<CAutoScaleSphereMeta*>(dot.get());
}

CArrowMeta* FeatureScene::addLine(const std::string& name, const osg::Vec3f& start, const osg::Vec3f& end,
                                  bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.name = name;
    meta.startPos = start;
    meta.endPos = end;
    meta.radius = 3.0f;
    meta.isLineArrow = isLineArrow;
    meta.isArrowHead = false;
    const osg::ref_ptr<osg::Group> line =
        createArrowAndTable(featureStateNormal, meta, root, 1, QStringLiteral("L"), 1);
    return dynamic_cast<CArrowMeta*>(line.get());
}

CPlaneMeta* FeatureScene::addPlane(const std::string& name, const osg::Vec3f& centre, float halfSide)
{
    const std::vector<osg::Vec3f> corners{
        centre + osg::Vec3f(-halfSide, -halfSide, 0), centre + osg::Vec3f(halfSide, -halfSide, 0),
        centre + osg::Vec3f(halfSide, halfSide, 0), centre + osg::Vec3f(-halfSide, halfSide, 0)};
    const osg::ref_ptr<osg::Group> plane = createPlaneAndTable(featureStateNormal, QString::fromStdString(name), root,
                                                               corners, osg::Vec3f(1, 0, 0), 1, QStringLiteral("A"), 1);
    return dynamic_cast<CPlaneMeta*>(plane.get());
}

} // namespace kelvtest
