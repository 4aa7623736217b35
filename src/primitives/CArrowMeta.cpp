#include <KelvOsgTools/CArrowMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CTableMeta.h>

#include "foundation/Finite.h"
#include "foundation/SceneMarks.h"
#include "primitives/Colours.h"
#include "primitives/HeldAttribute.h"
#include "primitives/LabelAttachment.h"
#include "primitives/NodeSearch.h"
#include "primitives/ShapeBuilder.h"

#include <osg/GL>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LineWidth>
#include <osg/MatrixTransform>
#include <osg/ValueObject>

#include <array>
#include <cmath>

namespace KelvOsgTools {
namespace {

constexpr double kShaftShare = 0.8;    // of the whole length; the head takes the rest
constexpr float kConeTipShare = 0.75f; // of its height: osg::Cone centres itself a quarter above its base
constexpr float kWireHeadRadiusShare = 0.02f;
constexpr float kWireHeadLengthShare = 0.05f;
constexpr float kSelectedGrowthPixels = 1.0f;

/// The way from start to end. Points that are not finite give an arrow of zero size at the origin,
/// so that no NaN reaches a transform or a bound.
struct Course
{
    explicit Course(const CArrowMeta::structArrowMeta& meta)
    {
        const osg::Vec3f way = meta.endPos - meta.startPos;
        if (!std::isfinite(way.length())) return;
        start = meta.startPos;
        end = meta.endPos;
        direction = way;
        length = direction.normalize();
    }

    osg::Vec3f start;
    osg::Vec3f end;
    osg::Vec3f direction; // of length 1; zero for equal end points
    float length = 0.0f;
};

osg::Vec3f between(const osg::Vec3f& from, const osg::Vec3f& to, float share)
{
    return from - (from - to) * share;
}

/// Strokes of a wire head: from the tip to two points on each edge of a diamond around the shaft,
/// in an order that draws them all as one line.
void appendWireHead(osg::Vec3Array& vertices, float length)
{
    constexpr float kThird = 1.0f / 3.0f;
    constexpr float kTwoThirds = 2.0f / 3.0f;
    const float radius = kWireHeadRadiusShare * length;
    const float base = length * 0.5f - kWireHeadLengthShare * length;
    const osg::Vec3f tip(0.0f, 0.0f, length * 0.5f);
    const osg::Vec3f q1(radius, 0.0f, base);
    const osg::Vec3f q2(0.0f, radius, base);
    const osg::Vec3f q3(0.0f, -radius, base);
    const osg::Vec3f q4(-radius, 0.0f, base);

    const std::array<osg::Vec3f, 8> feet = {
        between(q1, q2, kTwoThirds), between(q1, q2, kThird),     between(q1, q3, kThird), between(q1, q3, kTwoThirds),
        between(q3, q4, kThird),     between(q3, q4, kTwoThirds), between(q4, q2, kThird), between(q4, q2, kTwoThirds)};
    vertices.push_back(feet.front());
    for (std::size_t i = 1; i <= feet.size(); ++i) {
        const osg::Vec3f& foot = feet[i % feet.size()];
        vertices.push_back(foot);
        vertices.push_back(tip);
        if (i < feet.size()) vertices.push_back(foot);
    }
}

} // namespace

CArrowMeta::CArrowMeta(const structArrowMeta& meta) : m_metaStruct(meta)
{
    if (meta.isLineArrow) {
        setArrow(meta);
        return;
    }
    const Course course(meta);
    const float shaftHeight = static_cast<float>(course.length * kShaftShare);
    const float headHeight = course.length - shaftHeight;
    const detail::ShapeBuilder shapes(meta.ratio);

    addChild(
        detail::placed(shapes.buildCylinder(meta.radius, shaftHeight, meta.color, detail::kShaftName),
                       detail::poseAlong(course.direction, course.start + course.direction * (shaftHeight * 0.5f))));
    addChild(detail::placed(
        shapes.buildCone(2.0f * meta.radius, headHeight, meta.color, detail::kHeadName),
        detail::poseAlong(course.direction, course.end - course.direction * (headHeight * kConeTipShare))));
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureLine));
}

CArrowMeta::CArrowMeta(const CArrowMeta& other)
    : CFeatureMetaObject(other), m_metaStruct(other.m_metaStruct), m_table(other.m_table), m_state(other.m_state)
{}

CArrowMeta::~CArrowMeta() = default;

bool CArrowMeta::addTable(osg::ref_ptr<osg::Group> table)
{
    return detail::attachLabel(*this, m_table, table);
}

osg::Vec3f CArrowMeta::getStartPos()
{
    return m_metaStruct.startPos;
}

osg::Vec3f CArrowMeta::getEndPos()
{
    return m_metaStruct.endPos;
}

const CArrowMeta::structArrowMeta& CArrowMeta::getMetaStruct() const
{
    return m_metaStruct;
}

void CArrowMeta::setState(featureState state)
{
    if (state == m_state) return;
    const featureArrowConfig& config = CFeatureConfig::sigleFeatureConfig()->getArrowConfig();
    const osg::Vec4f color = detail::colourOf(state, config.selectedColor, config.highlightedColor);

    if (m_metaStruct.isLineArrow) {
        if (const osg::ref_ptr<osg::Geometry> line = detail::findBelow<osg::Geometry>(*this, detail::kArrowLineName)) {
            const float growth = state == featureStateSelected ? kSelectedGrowthPixels : 0.0f;
            detail::setOverallColour<osg::Vec4Array>(*line, color);
            detail::setAttribute(*line->getOrCreateStateSet(), new osg::LineWidth(m_metaStruct.lineWidth + growth));
        }
    } else {
        for (const char* const part : {detail::kShaftName, detail::kHeadName})
            if (const osg::ref_ptr<osg::ShapeDrawable> shape = detail::findBelow<osg::ShapeDrawable>(*this, part))
                shape->setColor(color);
    }
    if (m_table) m_table->setState(state);
    m_state = state; // last, so that what memory did not suffice for can be tried again
}

void CArrowMeta::setArrow(const structArrowMeta& meta)
{
    const Course course(meta);
    const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    vertices->push_back(osg::Vec3f(0.0f, 0.0f, -course.length * 0.5f));
    vertices->push_back(osg::Vec3f(0.0f, 0.0f, course.length * 0.5f));
    if (meta.isArrowHead) appendWireHead(*vertices, course.length);

    const osg::ref_ptr<osg::Geometry> line = new osg::Geometry;
    line->setName(detail::kArrowLineName);
    line->setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    line->setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureLine));
    line->setVertexArray(vertices);
    detail::setOverallColour<osg::Vec4Array>(*line, meta.color);
    line->addPrimitiveSet(new osg::DrawArrays(GL_LINE_LOOP, 0, static_cast<GLsizei>(vertices->size())));
    osg::StateSet* const lineState = line->getOrCreateStateSet();
    lineState->setDataVariance(osg::Object::DYNAMIC);
    detail::setAttribute(*lineState, new osg::LineWidth(meta.lineWidth));

    const osg::Vec3f midpoint = between(course.start, course.end, 0.5f);
    const osg::ref_ptr<osg::MatrixTransform> transform =
        detail::placed(line, detail::poseAlong(course.direction, midpoint));
    if (!meta.isDepthTest) {
        osg::StateSet* const state = transform->getChild(0)->getOrCreateStateSet();
        state->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
        state->setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    }
    addChild(transform);
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureLine));
}

} // namespace KelvOsgTools
