#include <KelvOsgTools/CPlaneMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CTableMeta.h>

#include "foundation/AppendChild.h"
#include "foundation/Finite.h"
#include "foundation/SceneMarks.h"
#include "primitives/Colours.h"
#include "primitives/HeldAttribute.h"
#include "primitives/LabelAttachment.h"
#include "primitives/NodeSearch.h"

#include <osg/BlendColor>
#include <osg/BlendFunc>
#include <osg/GL>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LineWidth>
#include <osg/ValueObject>

#include <algorithm>

namespace KelvOsgTools {
namespace {

constexpr std::size_t kPointsOfQuad = 4;

/// One drawable of a plane: all points, one primitive, one colour.
osg::ref_ptr<osg::Geometry> planeGeometry(const char* name, osg::Vec3Array* points, GLenum mode,
                                          const osg::Vec3f& color)
{
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setName(name);
    geometry->setVertexArray(points);
    geometry->addPrimitiveSet(new osg::DrawArrays(mode, 0, static_cast<GLsizei>(points->size())));
    detail::setOverallColour<osg::Vec3Array>(*geometry, color);
    return geometry;
}

void makeTranslucent(osg::StateSet& state, float lineWidth, float alpha)
{
    state.setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state.setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    detail::setAttribute(state, new osg::LineWidth(lineWidth));
    detail::setAttributeAndModes(state, new osg::BlendColor(osg::Vec4f(1.0f, 1.0f, 1.0f, alpha)));
    detail::setAttributeAndModes(state, new osg::BlendFunc(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA));
}

/// A bound without extent, in place of one that the points would make infinite or NaN.
struct NoExtent : osg::Drawable::ComputeBoundingBoxCallback
{
    osg::BoundingBox computeBound(const osg::Drawable&) const override { return {}; }
};

/// Keeps a patch with points that are not finite out of drawing, picking and bounds.
void hide(osg::Geode& geode)
{
    geode.setNodeMask(0);
    for (unsigned int i = 0; i < geode.getNumDrawables(); ++i)
        geode.getDrawable(i)->setComputeBoundingBoxCallback(new NoExtent);
}

} // namespace

CPlaneMeta::CPlaneMeta(structPlaneMeta& meta) : m_PlaneMeta(meta)
{
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featurePlane));
    creatPlane(meta);
}

CPlaneMeta::CPlaneMeta(const CPlaneMeta& other)
    : CFeatureMetaObject(other), m_PlaneMeta(other.m_PlaneMeta), m_state(other.m_state), m_table(other.m_table)
{}

CPlaneMeta::~CPlaneMeta() = default;

bool CPlaneMeta::addNormalArrow(osg::ref_ptr<osg::Group> arrow)
{
    if (!arrow) return false;
    detail::appendChild(*this, arrow);
    return true;
}

bool CPlaneMeta::addTable(osg::ref_ptr<osg::Group> table)
{
    return detail::attachLabel(*this, m_table, table);
}

const std::vector<osg::Vec3f>& CPlaneMeta::getPlaneInfo() const
{
    return m_PlaneMeta.pointVec;
}

const CPlaneMeta::structPlaneMeta& CPlaneMeta::getMetaStruct() const
{
    return m_PlaneMeta;
}

void CPlaneMeta::setState(featureState state)
{
    if (state == m_state) return;
    const featurePlaneConfig& config = CFeatureConfig::sigleFeatureConfig()->getPlaneConfig();
    const osg::Vec4f color = detail::colourOf(state, config.selectedColor, config.highlightedColor);

    if (const osg::ref_ptr<osg::Geometry> border = detail::findBelow<osg::Geometry>(*this, detail::kPlaneBorderName))
        detail::setOverallColour<osg::Vec3Array>(*border, osg::Vec3f(color.r(), color.g(), color.b()));
    for (const char* const name : {detail::kFirstNormalArrowName, detail::kSecondNormalArrowName})
        if (const osg::ref_ptr<CFeatureMetaObject> arrow = detail::findBelow<CFeatureMetaObject>(*this, name))
            arrow->setState(state);
    if (m_table) m_table->setState(state);
    m_state = state; // last, so that what memory did not suffice for can be tried again
}

void CPlaneMeta::creatPlane(structPlaneMeta& meta)
{
    const osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array(meta.pointVec.begin(), meta.pointVec.end());
    const osg::ref_ptr<osg::Geometry> patch = planeGeometry(detail::kPlanePatchName, points, GL_QUADS, meta.planeColor);
    // Some drivers draw the three vertices of an incomplete quad as a triangle.
    if (points->size() < kPointsOfQuad) patch->setNodeMask(0);
    patch->setUseDisplayList(false);
    patch->setUseVertexBufferObjects(true);
    const osg::ref_ptr<osg::Geometry> border =
        planeGeometry(detail::kPlaneBorderName, points, GL_LINE_LOOP, meta.lineColor);
    border->setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn

    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    makeTranslucent(*geode->getOrCreateStateSet(), meta.lineWidth, meta.alpha);
    geode->addDrawable(border);
    geode->addDrawable(patch);
    if (!std::all_of(points->begin(), points->end(), detail::isFinite)) hide(*geode);
    addChild(geode);
}

} // namespace KelvOsgTools
