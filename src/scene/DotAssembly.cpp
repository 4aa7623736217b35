#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/SceneMarks.h"
#include "scene/FeatureAssembly.h"

#include <new>

namespace KelvOsgTools {
namespace {

constexpr float kDotRadiusPixels = 3.0f;
constexpr float kFlagRadiusPixels = 4.0f;
constexpr float kSphereDetailRatio = 3.0f;

osg::ref_ptr<osg::Group> namedTable(const CTableMeta::structTableMeta& meta)
{
    osg::ref_ptr<osg::Group> table = new CTableMeta(meta);
    table->setName(detail::kTableName);
    return table;
}

CAutoScaleSphereMeta::structSphereMeta markerRecord(const osg::Vec3f& point, const char* nodeName, float radius,
                                                    const osg::Vec4f& color)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.cneterPos = point;
    meta.nodeName = nodeName;
    meta.radius = radius;
    meta.ratio = kSphereDetailRatio;
    meta.color = color;
    return meta;
}

CAutoScaleSphereMeta::structSphereMeta dotRecord(const osg::Vec3f& point)
{
    return markerRecord(point, detail::kDotRecordName, kDotRadiusPixels, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
}

CAutoScaleSphereMeta::structSphereMeta flagRecord(const osg::Vec3f& point)
{
    return markerRecord(point, detail::kSphereRecordName, kFlagRadiusPixels, osg::Vec4f(1.0f, 0.0f, 0.0f, 1.0f));
}

} // namespace

osg::ref_ptr<osg::Group> createTable(const CTableMeta::structTableMeta& meta)
try {
    return new CTableMeta(meta);
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Group> createAutoScaleShpereAndTable(QString name, osg::ref_ptr<osg::Group> scene, osg::Vec3f point,
                                                       int renderIndex, QString tableNamePrefix,
                                                       int tableNameIndexSuffix, featureState state, bool isBottom)
try {
    const auto build = [&]() -> osg::ref_ptr<osg::Node> {
        CTableMeta::structTableMeta label =
            detail::labelRecord(point, {renderIndex, tableNamePrefix, tableNameIndexSuffix});
        label.isBottom = isBottom;

        const osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(dotRecord(point));
        dot->addTable(namedTable(label));
        dot->setState(state);
        return dot;
    };
    const osg::ref_ptr<osg::Node> dot = detail::hangFeature(scene, featureDot, name.toStdString(), build);
    return dot ? dot->asGroup() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Group> createFlagAutoScaleShpereAndTable(QString name, osg::ref_ptr<osg::Group> scene,
                                                           osg::Vec3f point, int renderIndex, QString tableNamePrefix,
                                                           int tableNameIndexSuffix, featureType kind,
                                                           bool useFlagFontSize, bool)
try {
    const auto build = [&]() -> osg::ref_ptr<osg::Node> {
        CTableMeta::structTableMeta label =
            detail::labelRecord(point, {renderIndex, tableNamePrefix, tableNameIndexSuffix});
        if (useFlagFontSize) label.fontSize = CFeatureConfig::sigleFeatureConfig()->getFlagTableFontSize();

        const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(flagRecord(point));
        flag->addTable(namedTable(label));
        flag->setState(featureStateSelected);
        return flag;
    };
    const osg::ref_ptr<osg::Node> flag = detail::hangFeature(scene, kind, name.toStdString(), build);
    return flag ? flag->asGroup() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace KelvOsgTools
