#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CTableMeta.h>

#include "foundation/SceneMarks.h"
#include "primitives/Colours.h"
#include "primitives/LabelAttachment.h"
#include "primitives/NodeSearch.h"
#include "primitives/ScreenSphere.h"

#include <osg/ValueObject>

namespace KelvOsgTools {
namespace {

constexpr double kSelectedGrowthPixels = 5.0;

float radiusIn(featureState state, float radius)
{
    return static_cast<float>(radius + (state == featureStateSelected ? kSelectedGrowthPixels : 0.0));
}

} // namespace

QString CFlagAutoScaleSphereMeta::flag_feature_dot_name_one = QStringLiteral("flag_feature_dot_name_one");
QString CFlagAutoScaleSphereMeta::flag_feature_line_name_start = QStringLiteral("flag_feature_line_name_start");
QString CFlagAutoScaleSphereMeta::flag_feature_line_name_end = QStringLiteral("flag_feature_line_name_end");
QString CFlagAutoScaleSphereMeta::flag_feature_plane_name_first = QStringLiteral("flag_feature_plane_name_first");
QString CFlagAutoScaleSphereMeta::flag_feature_plane_name_second = QStringLiteral("flag_feature_plane_name_second");
QString CFlagAutoScaleSphereMeta::flag_feature_plane_name_third = QStringLiteral("flag_feature_plane_name_third");

CFlagAutoScaleSphereMeta::CFlagAutoScaleSphereMeta(const CAutoScaleSphereMeta::structSphereMeta& meta)
    : m_metaStruct(meta), m_sphereDrawable(detail::makeSphere(meta.radius, meta.ratio, meta.color, detail::kSphereName))
{
    detail::prepareSphere(*m_sphereDrawable, radiusIn(featureStateSelected, meta.radius));
    const osg::ref_ptr<osg::AutoTransform> transform =
        detail::screenSized(m_sphereDrawable, meta.cneterPos, osg::AutoTransform::NO_ROTATION);
    transform->setName(meta.nodeName);
    addChild(transform);
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureFlagDot));
}

CFlagAutoScaleSphereMeta::CFlagAutoScaleSphereMeta(const CFlagAutoScaleSphereMeta& other)
    : CFeatureMetaObject(other),
      m_metaStruct(other.m_metaStruct),
      m_sphereDrawable(other.m_sphereDrawable),
      m_table(other.m_table),
      m_state(other.m_state)
{}

CFlagAutoScaleSphereMeta::~CFlagAutoScaleSphereMeta() = default;

bool CFlagAutoScaleSphereMeta::addTable(osg::ref_ptr<osg::Group> table)
{
    return detail::attachLabel(*this, m_table, table);
}

osg::Vec3f CFlagAutoScaleSphereMeta::getCenterPos() const
{
    return m_metaStruct.cneterPos;
}

osg::ref_ptr<osg::ShapeDrawable> CFlagAutoScaleSphereMeta::getShpereDrawableNode()
{
    return detail::findBelow<osg::ShapeDrawable>(*this, detail::kSphereName);
}

void CFlagAutoScaleSphereMeta::setState(featureState state)
{
    if (state == m_state) return;
    const featureFlagDotConfig& config = CFeatureConfig::sigleFeatureConfig()->getFlagDotConfig();
    if (const osg::ref_ptr<osg::ShapeDrawable> sphere = getShpereDrawableNode()) {
        detail::resizeSphere(*sphere, radiusIn(state, m_metaStruct.radius));
        sphere->setColor(detail::colourOf(state, config.selectedColor, config.highlightedColor));
    }
    if (m_table) m_table->setState(state);
    m_state = state; // last, so that what memory did not suffice for can be tried again
}

} // namespace KelvOsgTools
