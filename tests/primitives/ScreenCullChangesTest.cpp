#include <KelvOsgTools/CSphereMeta.h>

#include "CullScene.h"

#include "support/SceneQueries.h"

#include <osg/Depth>
#include <osg/LineWidth>
#include <osg/Material>
#include <osg/PolygonMode>
#include <osg/ShapeDrawable>
#include <osg/Texture2D>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

/// A change by the host to the middle dot, or to what is around it.
struct Change
{
    const char* name;
    std::function<void(CullScene&)> make;
};

void PrintTo(const Change& change, std::ostream* out)
{
    *out << change.name;
}

class CullCallback : public osg::NodeCallback
{
public:
    void operator()(osg::Node*, osg::NodeVisitor*) override {}
};

class DrawableCullCallback : public osg::DrawableCullCallback
{
public:
    bool cull(osg::NodeVisitor*, osg::Drawable*, osg::RenderInfo*) const override { return true; }
};

/// A drawable that keeps away from visitors.
class ShyDrawable : public osg::Geometry
{
public:
    explicit ShyDrawable(osg::StateSet* state = nullptr)
    {
        setStateSet(state);
        setInitialBound(osg::BoundingBox(-5.0f, -5.0f, -5.0f, 5.0f, 5.0f, 5.0f));
    }
    using osg::Geometry::accept;
    void accept(osg::NodeVisitor&) override {}
};

void hide(osg::Node& node)
{
    node.setNodeMask(0);
}

void withhold(osg::Node& node)
{
    node.setCullCallback(new CullCallback);
}

void withhold(osg::Drawable& drawable)
{
    drawable.setCullCallback(new DrawableCullCallback);
}

/// A plain geode that is drawn among the labels.
osg::ref_ptr<osg::Geode> hostGeode()
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(new osg::ShapeDrawable(new osg::Box));
    geode->getOrCreateStateSet()->setRenderBinDetails(1, "RenderBin"); // that of the labels
    return geode;
}

constexpr auto kProtectedBin = static_cast<osg::StateSet::RenderBinMode>(osg::StateSet::USE_RENDERBIN_DETAILS |
                                                                         osg::StateSet::PROTECTED_RENDERBIN_DETAILS);

const Change kStateChanges[] = {
    {"ModeOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).setMode(GL_DEPTH_TEST, osg::StateAttribute::ON); }},
    {"ModeOfLabelProtected",
     [](CullScene& s) {
         stateOf(s.labelGeode()).setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::PROTECTED);
     }},
    {"OneModeMore", [](CullScene& s) { stateOf(s.labelGeode()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"OneModeLess", [](CullScene& s) { stateOf(s.labelGeode()).removeMode(GL_LIGHTING); }},
    {"AttributeOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).setAttribute(new osg::Depth); }},
    {"TextureOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).setTextureAttribute(0, new osg::Texture2D); }},
    {"TextureModeOfLabel",
     [](CullScene& s) { stateOf(s.labelGeode()).setTextureMode(0, GL_TEXTURE_2D, osg::StateAttribute::ON); }},
    {"UniformOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).addUniform(new osg::Uniform("glow", 1.0f)); }},
    {"DefineOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).setDefine("GLOW"); }},
    {"BinOfLabel", [](CullScene& s) { stateOf(s.labelGeode()).setRenderBinDetails(3, "RenderBin"); }},
    {"KindOfBin", [](CullScene& s) { stateOf(s.labelGeode()).setRenderBinDetails(4, "DepthSortedBin"); }},
    {"BinNotNested",
     [](CullScene& s) {
         for (auto* label : nodesOfType<CTableMeta>(*s.top)) stateOf(*label->getChild(0)).setNestRenderBins(false);
         s.top->getOrCreateStateSet()->setRenderBinDetails(2, "RenderBin");
     }},
    {"BinWithoutName", [](CullScene& s) { stateOf(s.labelGeode()).setBinName(""); }},
    {"BinInherited", [](CullScene& s) { stateOf(s.labelGeode()).setRenderBinToInherit(); }},
    {"BinModeInherited",
     [](CullScene& s) { stateOf(s.labelGeode()).setRenderBinMode(osg::StateSet::INHERIT_RENDERBIN_DETAILS); }},
    {"BinProtected", [](CullScene& s) { stateOf(s.labelGeode()).setRenderBinDetails(-1, "RenderBin", kProtectedBin); }},
    {"BinOverriding",
     [](CullScene& s) {
         stateOf(s.labelGeode()).setRenderBinDetails(-1, "RenderBin", osg::StateSet::OVERRIDE_RENDERBIN_DETAILS);
     }},
    {"BinUsedAndOverriding",
     [](CullScene& s) {
         stateOf(s.labelGeode())
             .setRenderBinDetails(1, "RenderBin",
                                  static_cast<osg::StateSet::RenderBinMode>(osg::StateSet::USE_RENDERBIN_DETAILS |
                                                                            osg::StateSet::OVERRIDE_RENDERBIN_DETAILS));
     }},
    {"DynamicLabelState", [](CullScene& s) { stateOf(s.labelGeode()).setDataVariance(osg::Object::DYNAMIC); }},
    {"LabelWithoutState", [](CullScene& s) { s.labelGeode().setStateSet(nullptr); }},
    {"LabelOfAnothersState",
     [](CullScene& s) { s.labelGeode().setStateSet(new osg::StateSet(stateOf(s.labelGeode()))); }},
    {"StateOfTable", [](CullScene& s) { stateOf(s.label()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfDot", [](CullScene& s) { stateOf(s.dot()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"WidthOfOutline", [](CullScene& s) { stateOf(s.outline()).setAttribute(new osg::LineWidth(5.0f)); }},
    {"OutlineWithoutState", [](CullScene& s) { s.outline().setStateSet(nullptr); }},
    {"ModeOfOutline", [](CullScene& s) { stateOf(s.outline()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"AttributeOfOutline", [](CullScene& s) { stateOf(s.outline()).setAttribute(new osg::Depth); }},
    {"OtherAttributeOfOutline",
     [](CullScene& s) {
         s.outline().setStateSet(new osg::StateSet);
         stateOf(s.outline()).setAttribute(new osg::Depth);
     }},
    {"UniformOfOutline", [](CullScene& s) { stateOf(s.outline()).addUniform(new osg::Uniform("glow", 1.0f)); }},
    {"BinOfOutline", [](CullScene& s) { stateOf(s.outline()).setRenderBinDetails(1, "RenderBin"); }},
    {"DynamicOutlineState", [](CullScene& s) { stateOf(s.outline()).setDataVariance(osg::Object::DYNAMIC); }},
    {"OverridingWidth",
     [](CullScene& s) { stateOf(s.outline()).setAttribute(new osg::LineWidth(2.0f), osg::StateAttribute::OVERRIDE); }},
    {"ProtectedWidth",
     [](CullScene& s) {
         stateOf(*s.top).setAttribute(new osg::LineWidth(7.0f), osg::StateAttribute::OVERRIDE);
         stateOf(s.outline()).setAttribute(new osg::LineWidth(2.0f), osg::StateAttribute::PROTECTED);
     }},
    {"StateOfFill", [](CullScene& s) { stateOf(s.fill()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfText",
     [](CullScene& s) {
         s.text().setStateSet(new osg::StateSet);
         stateOf(s.text()).setMode(GL_BLEND, osg::StateAttribute::ON);
     }},
    {"TextWithoutState", [](CullScene& s) { s.text().setStateSet(nullptr); }},
    {"ModeOfMark", [](CullScene& s) { stateOf(s.markGeode()).setMode(GL_RESCALE_NORMAL, osg::StateAttribute::OFF); }},
    {"AttributeOfMark", [](CullScene& s) { stateOf(s.markGeode()).setAttribute(new osg::Material); }},
    {"BinOfMark", [](CullScene& s) { stateOf(s.markGeode()).setRenderBinDetails(7, "RenderBin"); }},
    {"MarkWithoutState", [](CullScene& s) { s.markGeode().setStateSet(nullptr); }},
    {"StateOfSphere", [](CullScene& s) { stateOf(s.sphere()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"StateOfMarkTransform", [](CullScene& s) { stateOf(s.mark()).setMode(GL_BLEND, osg::StateAttribute::ON); }},
    {"WireframeAbove",
     [](CullScene& s) {
         stateOf(*s.top).setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::LINE));
     }},
    {"WireframeOfLabel",
     [](CullScene& s) {
         for (auto* label : nodesOfType<CTableMeta>(*s.top))
             stateOf(*label->getChild(0))
                 .setAttribute(new osg::PolygonMode(osg::PolygonMode::FRONT_AND_BACK, osg::PolygonMode::LINE));
     }},
    {"BinAboveOverriding",
     [](CullScene& s) {
         stateOf(*s.top).setRenderBinDetails(6, "RenderBin", osg::StateSet::OVERRIDE_RENDERBIN_DETAILS);
     }},
    {"BinAbove", [](CullScene& s) { stateOf(*s.top).setRenderBinDetails(6, "RenderBin"); }},
    {"WidthAboveOverriding",
     [](CullScene& s) { stateOf(*s.top).setAttribute(new osg::LineWidth(7.0f), osg::StateAttribute::OVERRIDE); }},
};

const Change kNodeChanges[] = {
    {"HiddenDot", [](CullScene& s) { hide(s.dot()); }},
    {"HiddenMark", [](CullScene& s) { hide(s.mark()); }},
    {"HiddenMarkGeode", [](CullScene& s) { hide(s.markGeode()); }},
    {"HiddenSphere", [](CullScene& s) { hide(s.sphere()); }},
    {"HiddenLabel", [](CullScene& s) { hide(s.label()); }},
    {"HiddenLabelGeode", [](CullScene& s) { hide(s.labelGeode()); }},
    {"HiddenOutline", [](CullScene& s) { hide(s.outline()); }},
    {"HiddenFill", [](CullScene& s) { hide(s.fill()); }},
    {"HiddenText", [](CullScene& s) { hide(s.text()); }},
    {"CallbackOfMark", [](CullScene& s) { withhold(s.mark()); }},
    {"CallbackOfMarkGeode", [](CullScene& s) { withhold(s.markGeode()); }},
    {"CallbackOfSphere", [](CullScene& s) { withhold(s.sphere()); }},
    {"CallbackOfLabel", [](CullScene& s) { withhold(s.label()); }},
    {"CallbackOfLabelGeode", [](CullScene& s) { withhold(s.labelGeode()); }},
    {"CallbackOfOutline", [](CullScene& s) { withhold(s.outline()); }},
    {"CallbackOfFill", [](CullScene& s) { withhold(s.fill()); }},
    {"CallbackOfText", [](CullScene& s) { withhold(s.text()); }},
    {"SelectedDot", [](CullScene& s) { static_cast<CAutoScaleSphereMeta&>(s.dot()).setState(featureStateSelected); }},
    {"ChildMoreBelowLabel", [](CullScene& s) { s.label().addChild(hostGeode()); }},
    {"ChildMoreBelowMark", [](CullScene& s) { s.mark().addChild(hostGeode()); }},
    {"NoChildBelowLabel", [](CullScene& s) { s.label().removeChildren(0, 1); }},
    {"GroupBelowLabel",
     [](CullScene& s) {
         const osg::ref_ptr<osg::Group> group = new osg::Group;
         group->addChild(&s.labelGeode());
         s.label().setChild(0, group);
     }},
    {"AnotherChildOfDot", [](CullScene& s) { s.dot().addChild(hostGeode()); }},
    {"HostDrawableBetweenLabels", [](CullScene& s) { s.dots().insertChild(2, hostGeode()); }},
    {"DrawableMore", [](CullScene& s) { s.labelGeode().addDrawable(new osg::ShapeDrawable(new osg::Box)); }},
    {"DrawableLess", [](CullScene& s) { s.labelGeode().removeDrawables(2, 1); }},
    {"DrawablesInAnotherOrder",
     [](CullScene& s) {
         const osg::ref_ptr<osg::Drawable> outline = &s.outline();
         s.labelGeode().removeDrawables(0, 1);
         s.labelGeode().addDrawable(outline);
     }},
    {"OutlineAndFillExchanged",
     [](CullScene& s) {
         const osg::ref_ptr<osg::Drawable> outline = &s.outline();
         const osg::ref_ptr<osg::Drawable> fill = &s.fill();
         s.labelGeode().setDrawable(0, fill);
         s.labelGeode().setDrawable(1, outline);
     }},
    {"AnotherOutline", [](CullScene& s) { s.labelGeode().setDrawable(0, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherFill", [](CullScene& s) { s.labelGeode().setDrawable(1, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherText", [](CullScene& s) { s.labelGeode().setDrawable(2, new osg::ShapeDrawable(new osg::Box)); }},
    {"AnotherSphere", [](CullScene& s) { s.markGeode().setDrawable(0, new osg::ShapeDrawable(new osg::Box)); }},
    {"TwoSpheres", [](CullScene& s) { s.markGeode().addDrawable(new osg::ShapeDrawable(new osg::Box)); }},
    {"NoText", [](CullScene& s) { s.text().setText(""); }},
    {"LongText", [](CullScene& s) { s.text().setText(std::string(100, 'M')); }},
    {"ShyOutline", [](CullScene& s) { s.labelGeode().setDrawable(0, new ShyDrawable(&stateOf(s.outline()))); }},
    {"ShyFill", [](CullScene& s) { s.labelGeode().setDrawable(1, new ShyDrawable); }},
    {"ShyText", [](CullScene& s) { s.labelGeode().setDrawable(2, new ShyDrawable(s.text().getStateSet())); }},
    {"ShySphere", [](CullScene& s) { s.markGeode().setDrawable(0, new ShyDrawable); }},
    {"EmptyFill", [](CullScene& s) { s.fill().asGeometry()->setVertexArray(new osg::Vec2Array); }},
    {"UnculledOutline", [](CullScene& s) { s.outline().setCullingActive(false); }},
    {"UnculledSphere", [](CullScene& s) { s.sphere().setCullingActive(false); }},
    {"UnculledLabelGeode", [](CullScene& s) { s.labelGeode().setCullingActive(false); }},
    {"UnculledMarkGeode", [](CullScene& s) { s.markGeode().setCullingActive(false); }},
    {"CulledLabel", [](CullScene& s) { s.label().setCullingActive(true); }},
    {"AbsoluteLabel",
     [](CullScene& s) {
         s.label().setReferenceFrame(osg::Transform::ABSOLUTE_RF);
         s.label().setPosition(osg::Vec3d(400.0, 0.0, -60.0));
     }},
    {"PivotOfLabel", [](CullScene& s) { s.label().setPivotPoint(osg::Vec3d(5.0, 20.0, 0.0)); }},
    {"FarPivotOfLabel", [](CullScene& s) { s.label().setPivotPoint(osg::Vec3d(600.0, 0.0, 0.0)); }},
    {"FarLabelOfAFarPivot",
     [](CullScene& s) {
         s.label().setPivotPoint(osg::Vec3d(600.0, 0.0, 0.0));
         s.label().setPosition(osg::Vec3d(600.0, 0.0, 0.0));
     }},
    {"LabelTurnedAsItIs", [](CullScene& s) { s.label().setAutoRotateMode(osg::AutoTransform::NO_ROTATION); }},
    {"LabelTurnedToTheCamera", [](CullScene& s) { s.label().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_CAMERA); }},
    {"LabelTurnedAboutAnAxis",
     [](CullScene& s) {
         s.label().setAxis(osg::Vec3f(0, 1, 0));
         s.label().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_AXIS);
     }},
    {"TurnedMark", [](CullScene& s) { s.mark().setRotation(osg::Quat(0.7, osg::Vec3d(1, 1, 0))); }},
    {"MarkTurnedToTheScreen", [](CullScene& s) { s.mark().setAutoRotateMode(osg::AutoTransform::ROTATE_TO_SCREEN); }},
    {"LabelOfWorldSize", [](CullScene& s) { s.label().setAutoScaleToScreen(false); }},
    {"StretchedLabelOfWorldSize",
     [](CullScene& s) {
         s.label().setAutoScaleToScreen(false);
         s.label().setScale(osg::Vec3d(0.01, 1.0, 1.0));
     }},
    {"LeastScaleOfLabel", [](CullScene& s) { s.label().setMinimumScale(2.0); }},
    {"LargestScaleOfLabel", [](CullScene& s) { s.label().setMaximumScale(0.5); }},
    {"MovedLabel", [](CullScene& s) { s.label().setPosition(osg::Vec3d(200.0, 0.0, 0.0)); }},
    {"MaskOfAnotherBit", [](CullScene& s) { s.label().setNodeMask(2); }},
};

class ScreenCullOfChange : public ::testing::TestWithParam<Change>
{};

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDraws)
{
    CullScene scene;
    GetParam().make(scene);
    for (const View& view : cullViews()) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shortCull(*scene.top, view), expected) << view.name;
    }
}

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDrawsInATurnedGroup)
{
    CullScene scene(2, true);
    GetParam().make(scene);
    for (const View& view : cullViews()) {
        const Culled expected = detourCull(*scene.top, view);
        EXPECT_EQ(shortCull(*scene.top, view), expected) << view.name;
    }
}

TEST_P(ScreenCullOfChange, DrawsWhatTheVisitorDrawsIfTheFirstDotIsChanged)
{
    CullScene scene(0);
    GetParam().make(scene);
    const Culled expected = detourCull(*scene.top, View{});
    EXPECT_EQ(shortCull(*scene.top, View{}), expected);
}

std::string nameOfChange(const ::testing::TestParamInfo<Change>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(OfStates, ScreenCullOfChange, ::testing::ValuesIn(kStateChanges), nameOfChange);
INSTANTIATE_TEST_SUITE_P(OfNodes, ScreenCullOfChange, ::testing::ValuesIn(kNodeChanges), nameOfChange);

} // namespace
