#include <KelvOsgTools/CSphereMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>

#include "foundation/Finite.h"
#include "foundation/SceneMarks.h"
#include "primitives/Colours.h"
#include "primitives/LabelAttachment.h"
#include "primitives/NodeSearch.h"
#include "primitives/ScreenSphere.h"
#include "primitives/ShapeBuilder.h"

#include <osg/ValueObject>

namespace KelvOsgTools {

CSphereMeta::CSphereMeta() = default;

CSphereMeta::CSphereMeta(const CSphereMeta& other) : CFeatureMetaObject(other), m_geode(other.m_geode) {}

CSphereMeta::~CSphereMeta() = default;

osg::ref_ptr<osg::Geode> CSphereMeta::CreateSphereMeta(const structSphereMeta& meta)
{
    const bool hasPlace = detail::isFinite(meta.cneterPos);
    const osg::Vec3f centre = hasPlace ? meta.cneterPos : osg::Vec3f();
    const osg::ref_ptr<osg::ShapeDrawable> drawable =
        detail::ShapeBuilder(meta.ratio).build(new osg::Sphere(centre, meta.radius), meta.color);
    if (!hasPlace) drawable->setNodeMask(0); // not that of the geode, which visible() sets

    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(drawable);
    geode->setName(meta.nodeName);
    m_geode = geode;
    return geode;
}

osg::ref_ptr<osg::AutoTransform> CSphereMeta::CreateAutoScaleSphereMeta(const structSphereMeta& meta)
{
    return detail::screenSized(detail::makeSphere(meta.radius, meta.ratio, meta.color), meta.cneterPos,
                               osg::AutoTransform::ROTATE_TO_SCREEN);
}

void CSphereMeta::setColor(osg::Vec4f color)
{
    if (!m_geode) return;
    for (unsigned int i = 0; i < m_geode->getNumDrawables(); ++i)
        if (auto* const shape = dynamic_cast<osg::ShapeDrawable*>(m_geode->getDrawable(i))) shape->setColor(color);
}

void CSphereMeta::visible(bool show)
{
    if (m_geode) m_geode->setNodeMask(show ? 1 : 0);
}

CAutoScaleSphereMeta::CAutoScaleSphereMeta(const structSphereMeta& meta)
    : m_metaStruct(meta), m_sphereDrawable(detail::makeSphere(meta.radius, meta.ratio, meta.color, detail::kSphereName))
{
    const osg::ref_ptr<osg::AutoTransform> transform =
        detail::screenSized(m_sphereDrawable, meta.cneterPos, osg::AutoTransform::NO_ROTATION);
    transform->setName(meta.nodeName);
    addChild(transform);
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureDot));
}

CAutoScaleSphereMeta::CAutoScaleSphereMeta(const CAutoScaleSphereMeta& other)
    : CFeatureMetaObject(other),
      m_metaStruct(other.m_metaStruct),
      m_sphereDrawable(other.m_sphereDrawable),
      m_table(other.m_table),
      m_state(other.m_state),
      m_tableMeta(other.m_tableMeta)
{}

CAutoScaleSphereMeta::~CAutoScaleSphereMeta() = default;

bool CAutoScaleSphereMeta::addTable(osg::ref_ptr<osg::Group> table)
{
    if (!detail::attachLabel(*this, m_table, table) || !m_table) return false;
    m_tableMeta = m_table->getMetaStruct();
    return true;
}

osg::Vec3f CAutoScaleSphereMeta::getCenterPos()
{
    return m_metaStruct.cneterPos;
}

const CAutoScaleSphereMeta::structSphereMeta& CAutoScaleSphereMeta::getMetaStruct() const
{
    return m_metaStruct;
}

const CTableMeta::structTableMeta& CAutoScaleSphereMeta::getTableInfo() const
{
    return m_tableMeta;
}

osg::ref_ptr<osg::ShapeDrawable> CAutoScaleSphereMeta::getShpereDrawableNode()
{
    return detail::findBelow<osg::ShapeDrawable>(*this, detail::kSphereName);
}

osg::ref_ptr<osgText::Text> CAutoScaleSphereMeta::getTextNode()
{
    return detail::findBelow<osgText::Text>(*this, detail::kTableTextName);
}

void CAutoScaleSphereMeta::setState(featureState state)
{
    if (state == m_state) return;
    const featureDotConfig& config = CFeatureConfig::sigleFeatureConfig()->getDotConfig();
    if (const osg::ref_ptr<osg::ShapeDrawable> sphere = getShpereDrawableNode())
        sphere->setColor(detail::colourOf(state, config.selectedColor, config.highlightedColor));
    if (m_table) m_table->setState(state);
    m_state = state; // last, so that what memory did not suffice for can be tried again
}

} // namespace KelvOsgTools
