#include "support/Records.h"

#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>

namespace kelvtest {

using namespace KelvOsgTools;

namespace {

const QString kLabel = QStringLiteral("Label");
constexpr int kRenderIndex = 1;
constexpr int kNoIndex = -1;

osg::Group* contentOfChild(osg::Group* parent, const std::string& name)
{
    for (unsigned int i = 0; parent && i < parent->getNumChildren(); ++i)
        if (osg::Group* const child = childOf<osg::Group>(*parent, i); child && child->getName() == name)
            return childOf<osg::Group>(*child, 0);
    return nullptr;
}

} // namespace

CTableMeta::structTableMeta labelSaying(const QString& prefix, int indexSuffix)
{
    CTableMeta::structTableMeta meta;
    meta.tableNamePrefix = prefix;
    meta.tableNameIndexSuffix = indexSuffix;
    return meta;
}

CAutoScaleSphereMeta::structSphereMeta dotAt(const osg::Vec3f& centre)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.cneterPos = centre;
    return meta;
}

CArrowMeta::structArrowMeta solidArrow(const osg::Vec3f& start, const osg::Vec3f& end)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos = start;
    meta.endPos = end;
    return meta;
}

CArrowMeta::structArrowMeta lineArrow(const osg::Vec3f& start, const osg::Vec3f& end)
{
    CArrowMeta::structArrowMeta meta = solidArrow(start, end);
    meta.isLineArrow = true;
    return meta;
}

CPlaneMeta::structPlaneMeta planeThrough(const std::vector<osg::Vec3f>& points)
{
    CPlaneMeta::structPlaneMeta meta;
    meta.pointVec = points;
    return meta;
}

std::vector<osg::Vec3f> squareCorners(float side)
{
    const float half = side * 0.5f;
    return {{-half, -half, 0.0f}, {half, -half, 0.0f}, {half, half, 0.0f}, {-half, half, 0.0f}};
}

osg::ref_ptr<osg::Group> addDot(const osg::ref_ptr<osg::Group>& scene, const std::string& name, const osg::Vec3f& point)
{
    return createAutoScaleShpereAndTable(QString::fromStdString(name), scene, point, kRenderIndex, kLabel, kNoIndex,
                                         featureStateNormal, false);
}

osg::ref_ptr<osg::Group> addFlagDot(const osg::ref_ptr<osg::Group>& scene, const std::string& name, featureType kind,
                                    const osg::Vec3f& point)
{
    return createFlagAutoScaleShpereAndTable(QString::fromStdString(name), scene, point, kRenderIndex, kLabel, kNoIndex,
                                             kind, true, false);
}

osg::ref_ptr<osg::Group> addLine(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                 const osg::Vec3f& start, const osg::Vec3f& end)
{
    CArrowMeta::structArrowMeta meta = lineArrow(start, end);
    meta.name = name;
    return createArrowAndTable(featureStateNormal, meta, scene, kRenderIndex, kLabel, kNoIndex);
}

osg::ref_ptr<osg::Group> addPlane(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                  const std::vector<osg::Vec3f>& points)
{
    return createPlaneAndTable(featureStateNormal, QString::fromStdString(name), scene, points, osg::Z_AXIS,
                               kRenderIndex, kLabel, kNoIndex);
}

osg::Group* contentOf(osg::Group& scene, featureType kind)
{
    osg::Group* const common = contentOfChild(&scene, "featureData");
    switch (kind) {
    case featureAll:
        return common;
    case featureDot:
        return contentOfChild(common, "featureDotData");
    case featureLine:
        return contentOfChild(common, "featureLineData");
    case featurePlane:
        return contentOfChild(common, "featurePlaneData");
    case featureTable:
        return contentOfChild(common, "featureTableData");
    default:
        return nullptr;
    }
}

} // namespace kelvtest
