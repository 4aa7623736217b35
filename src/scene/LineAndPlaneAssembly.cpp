#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include "foundation/SceneMarks.h"
#include "scene/FeatureAssembly.h"

#include <algorithm>
#include <new>
#include <numeric>

namespace KelvOsgTools {
namespace {

constexpr float kNormalArrowShare = 0.2f; // of the longer of a plane's first two edges
constexpr float kNormalArrowMinLength = 4.0f;

osg::Vec3f centroidOf(const std::vector<osg::Vec3f>& points)
{
    // No points divide by zero: the record of the label then says NaN.
    return std::accumulate(points.begin(), points.end(), osg::Vec3f()) / static_cast<float>(points.size());
}

float normalArrowLength(const std::vector<osg::Vec3f>& points)
{
    const float longerEdge = std::max((points.at(0) - points.at(1)).length(), (points.at(1) - points.at(2)).length());
    return std::max(kNormalArrowShare * longerEdge, kNormalArrowMinLength);
}

CPlaneMeta::structPlaneMeta planeRecord(const QString& name, const std::vector<osg::Vec3f>& points)
{
    CPlaneMeta::structPlaneMeta meta;
    meta.planeColor.set(0.6f, 0.6f, 0.6f);
    meta.lineColor.set(1.0f, 0.0f, 0.0f);
    meta.planeNormal.set(0.0f, 0.0f, 0.0f);
    meta.name = name;
    meta.pointVec = points;
    meta.lineWidth = 3.0f;
    meta.alpha = 0.5f;
    return meta;
}

CArrowMeta::structArrowMeta normalArrowRecord(const osg::Vec3f& start, const osg::Vec3f& end)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos = start;
    meta.endPos = end;
    meta.name = detail::kArrowRecordName;
    meta.color.set(1.0f, 1.0f, 1.0f, 1.0f);
    meta.radius = 0.1f;
    meta.ratio = 3.0f;
    meta.isLineArrow = true;
    meta.lineWidth = 2.0f;
    meta.isDepthTest = true;
    meta.isArrowHead = true;
    return meta;
}

/// An arrow that is part of a plane: no search for lines finds it or its line node.
osg::ref_ptr<osg::Group> normalArrow(const std::string& name, const osg::Vec3f& start, const osg::Vec3f& end)
{
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(normalArrowRecord(start, end));
    arrow->setUserValue(detail::kFeatureTypeKey, detail::kPartOfFeature);
    FindNamedNodeVisitor search(std::vector<std::string>{detail::kArrowLineName});
    arrow->accept(search);
    for (const osg::ref_ptr<osg::Node>& line : search.m_foundNodes)
        line->setUserValue(detail::kFeatureTypeKey, detail::kPartOfFeature);
    arrow->setName(name);
    return arrow;
}

void addNormalArrows(CPlaneMeta& plane, const std::vector<osg::Vec3f>& points, const osg::Vec3f& normal)
{
    if (normal.isNaN()) return;
    const osg::Vec3f shaft = normal * normalArrowLength(points);
    plane.addNormalArrow(normalArrow(detail::kFirstNormalArrowName, points.at(0), points.at(0) + shaft));
    plane.addNormalArrow(normalArrow(detail::kSecondNormalArrowName, points.at(2), points.at(2) + shaft));
}

} // namespace

osg::ref_ptr<osg::Group> createArrowAndTable(featureState state, const CArrowMeta::structArrowMeta& meta,
                                             osg::ref_ptr<osg::Group> scene, int renderIndex, QString tableNamePrefix,
                                             int tableNameIndexSuffix)
try {
    const auto build = [&]() -> osg::ref_ptr<osg::Node> {
        const osg::Vec3f midpoint = (meta.startPos + meta.endPos) * 0.5f;
        const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
        arrow->addTable(
            new CTableMeta(detail::labelRecord(midpoint, {renderIndex, tableNamePrefix, tableNameIndexSuffix})));
        arrow->setState(state);
        return arrow;
    };
    const osg::ref_ptr<osg::Node> arrow = detail::hangFeature(scene, featureLine, meta.name, build);
    return arrow ? arrow->asGroup() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Group> createPlaneAndTable(featureState state, QString name, osg::ref_ptr<osg::Group> scene,
                                             std::vector<osg::Vec3f> points, osg::Vec3f normal, int renderIndex,
                                             QString tableNamePrefix, int tableNameIndexSuffix)
try {
    const auto build = [&]() -> osg::ref_ptr<osg::Node> {
        CPlaneMeta::structPlaneMeta meta = planeRecord(name, points);
        const osg::ref_ptr<CPlaneMeta> plane = new CPlaneMeta(meta);
        addNormalArrows(*plane, points, normal);
        plane->addTable(new CTableMeta(
            detail::labelRecord(centroidOf(points), {renderIndex, tableNamePrefix, tableNameIndexSuffix})));
        plane->setState(state);
        return plane;
    };
    const osg::ref_ptr<osg::Node> plane = detail::hangFeature(scene, featurePlane, name.toStdString(), build);
    return plane ? plane->asGroup() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace KelvOsgTools
