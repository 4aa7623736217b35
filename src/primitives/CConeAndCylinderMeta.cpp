#include <KelvOsgTools/CConeAndCylinderMeta.h>

#include <KelvOsgTools/NodeVisitors.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "foundation/LabelFont.h"
#include "primitives/AxisProgram.h"
#include "primitives/HeldAttribute.h"
#include "primitives/ShapeBuilder.h"

#include <osg/Array>
#include <osg/Depth>
#include <osg/GL>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/StateSet>
#include <osg/Uniform>
#include <osgText/Text>

#include <array>
#include <cmath>
#include <vector>

namespace KelvOsgTools {
namespace {

constexpr double kShaftShare = 0.9;            // of the whole length; the head takes the rest
constexpr float kConeTipShare = 0.75f;         // of its height: osg::Cone centres itself a quarter above its base
constexpr float kLetterDistance = 1.06f;       // of the whole length: a little beyond the tip
constexpr float kLetterSizePixels = 17.0f;     // the arrow around it keeps its size on screen
constexpr unsigned int kPositionAttribute = 0; // where the vertex shader reads

struct Axis
{
    osg::Vec3f direction;
    const char* letter;
    osg::Vec3f triadColour;
};

const std::array<Axis, 3> kAxes = {{{osg::X_AXIS, "X", {1.0f, 0.0f, 0.0f}},
                                    {osg::Y_AXIS, "Y", {0.0f, 1.0f, 0.0f}},
                                    {osg::Z_AXIS, "Z", {0.0f, 0.0f, 1.0f}}}};

const Axis& axisAt(int index)
{
    return index == 1 || index == 2 ? kAxes[static_cast<std::size_t>(index)] : kAxes.front();
}

/// Hands the positions to the shader as well. Not every driver lets generic attribute 0 follow the
/// vertex array of the fixed pipeline.
osg::ref_ptr<osg::ShapeDrawable> readableByShader(const osg::ref_ptr<osg::ShapeDrawable>& shape)
{
    shape->setVertexAttribArray(kPositionAttribute, shape->getVertexArray(), osg::Array::BIND_PER_VERTEX);
    return shape;
}

osg::ref_ptr<osg::AutoTransform> screenFacingLetter(const std::string& letter, const osg::Vec4f& colour,
                                                    const osg::Vec3f& position)
{
    const osg::ref_ptr<osgText::Text> text = new osgText::Text;
    text->setCharacterSize(kLetterSizePixels);
    text->setText(letter);
    text->setFont(detail::labelFontFile());
    text->setAlignment(osgText::TextBase::CENTER_CENTER);
    text->setColor(colour);

    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(text);
    osg::StateSet* const state = geode->getOrCreateStateSet();
    state->setMode(GL_LIGHTING, osg::StateAttribute::ON);
    detail::setAttribute(*state,
                         new osg::Program); // a host may have text drawn without shaders: not with the triad's, then

    osg::ref_ptr<osg::AutoTransform> transform = new osg::AutoTransform;
    transform->setAutoRotateMode(osg::AutoTransform::ROTATE_TO_SCREEN);
    transform->setPosition(position);
    transform->addChild(geode);
    return transform;
}

osgText::Text& letterOf(osg::AutoTransform& arrow)
{
    osg::Node* const geode = arrow.getChild(2)->asTransform()->getChild(0);
    return *static_cast<osgText::Text*>(geode->asGeode()->getDrawable(0));
}

/// What one arrow of the triad shows: the axis as it is seen, or its parts behind other geometry.
struct Pass
{
    osg::ref_ptr<osg::Uniform> isInside;
    osg::ref_ptr<osg::Depth> depth; // null: that of the host
};

void drawWith(osg::AutoTransform& arrow, osg::Program& program, osg::Uniform& colour, const Pass& pass)
{
    osg::StateSet& state = *arrow.getOrCreateStateSet();
    state.setAttributeAndModes(&program, osg::StateAttribute::ON);
    state.addUniform(&colour);
    state.addUniform(pass.isInside);
    if (!pass.depth) return;
    state.setAttribute(pass.depth);
    letterOf(arrow).setEnableDepthWrites(false); // texts switch the depth mask themselves, whatever the state says
}

} // namespace

CConeAndCylinderMeta::CConeAndCylinderMeta() = default;

CConeAndCylinderMeta::~CConeAndCylinderMeta() = default;

CConeAndCylinderMeta::CConeAndCylinderMeta(const CConeAndCylinderMeta& other)
    : CFeatureMetaObject(other),
      m_arrow(other.m_arrow),
      m_coneName(other.m_coneName),
      m_cylinderName(other.m_cylinderName)
{}

osg::ref_ptr<osg::AutoTransform> CConeAndCylinderMeta::createAxisArraw(const structConeAndCylinderMeta& meta)
{
    const Axis& axis = axisAt(meta.axisIndex);
    const osg::Vec3f& direction = axis.direction;
    const float shaftHeight = static_cast<float>(meta.length * kShaftShare);
    const float headHeight = meta.length - shaftHeight;
    const detail::ShapeBuilder shapes(meta.ratio);

    osg::ref_ptr<osg::AutoTransform> arrow = new osg::AutoTransform;
    arrow->setAutoScaleToScreen(true);
    arrow->setPosition(osg::Vec3d());
    arrow->addChild(
        detail::placed(readableByShader(shapes.buildCylinder(meta.radius, shaftHeight, meta.color, m_cylinderName)),
                       detail::poseAlong(direction, direction * (shaftHeight * 0.5f))));
    arrow->addChild(detail::placed(
        readableByShader(shapes.buildCone(2.0f * meta.radius, headHeight, meta.color, m_coneName)),
        detail::poseAlong(direction, direction * meta.length - direction * (headHeight * kConeTipShare))));
    arrow->addChild(screenFacingLetter(axis.letter, meta.color, direction * meta.length * kLetterDistance));

    m_arrow = arrow;
    return arrow;
}

osg::ref_ptr<osg::Switch> CConeAndCylinderMeta::createAxis(structConeAndCylinderMeta meta)
{
    const osg::ref_ptr<featureBaseNode> triad = new featureBaseNode;
    osg::Group* const content = triad->getNumChildren() > 0 ? triad->getChild(0)->asGroup() : nullptr;
    if (!content) return nullptr;

    const osg::ref_ptr<osg::Program> program = new detail::AxisProgram;
    const Pass seen{new osg::Uniform("isInside", false), nullptr};
    const Pass hidden{new osg::Uniform("isInside", true), new osg::Depth(osg::Depth::GREATER, 0.0, 1.0, false)};

    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    for (std::size_t i = 0; i < kAxes.size(); ++i) {
        meta.color = osg::Vec4f(kAxes[i].triadColour, 1.0f);
        meta.axisIndex = static_cast<int>(i);
        const osg::ref_ptr<osg::Uniform> colour = new osg::Uniform("color", kAxes[i].triadColour);
        for (const Pass& pass : {seen, hidden}) {
            const osg::ref_ptr<osg::AutoTransform> arrow = maker->createAxisArraw(meta);
            drawWith(*arrow, *program, *colour, pass);
            content->addChild(arrow);
        }
    }
    return triad;
}

void CConeAndCylinderMeta::setColor(osg::Vec4f) {}

void CConeAndCylinderMeta::visible(bool)
{
    if (!m_arrow) return;
    // The parts are looked up and left as they are: a host hides an arrow by its node mask.
    FindNamedNodeVisitor parts(std::vector<std::string>{m_coneName, m_cylinderName});
    m_arrow->accept(parts);
}

CAxisMeta::CAxisMeta() = default;

CAxisMeta::~CAxisMeta() = default;

CAxisMeta::CAxisMeta(const CAxisMeta& other) : CFeatureMetaObject(other) {}

} // namespace KelvOsgTools
