#include "FeatureScenes.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/AutoTransform>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/NodeVisitor>
#include <osg/ShapeDrawable>
#include <osgText/Text>

#include <malloc.h>
#include <unistd.h>

#include <fstream>
#include <initializer_list>
#include <string>
#include <utility>

namespace kelvbench {
namespace {
using namespace KelvOsgTools;

osg::Vec3f scattered(int index)
{
    // Steps prime to the range visit every place before any twice.
    return {-480.0f + 0.96f * static_cast<float>(index * 7919 % 1000),
            -380.0f + 0.76f * static_cast<float>(index * 104729 % 997), 0.0f};
}

QString nameOf(int index)
{
    return QStringLiteral("feature-%1").arg(index);
}

void addDot(osg::Group& scene, int index)
{
    createAutoScaleShpereAndTable(nameOf(index), &scene, scattered(index), 1, QStringLiteral("Point"), index,
                                  featureStateNormal, false);
}

void addFlagDot(osg::Group& scene, int index)
{
    createFlagAutoScaleShpereAndTable(nameOf(index), &scene, scattered(index), 1, QStringLiteral("Point"), index,
                                      featureDot, true, false);
}

void addArrow(osg::Group& scene, int index, bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.name = nameOf(index).toStdString();
    meta.startPos = scattered(index);
    meta.endPos = meta.startPos + osg::Vec3f(10.0f + 0.001f * static_cast<float>(index), 5.0f, 0.0f);
    meta.isLineArrow = isLineArrow;
    createArrowAndTable(featureStateNormal, meta, &scene, 1, QStringLiteral("line"), index);
}

void addPlane(osg::Group& scene, int index)
{
    const osg::Vec3f corner = scattered(index);
    createPlaneAndTable(featureStateNormal, nameOf(index), &scene,
                        {corner, corner + osg::Vec3f(9.0f, 0.0f, 0.0f), corner + osg::Vec3f(9.0f, 7.0f, 0.0f),
                         corner + osg::Vec3f(0.0f, 7.0f, 0.0f)},
                        osg::Vec3f(0.0f, 0.0f, 1.0f), 1, QStringLiteral("Plane"), index);
}

/// The shape with vertices of its own, as OpenSceneGraph makes them.
osg::ref_ptr<osg::Drawable> stockShape(const osg::ShapeDrawable& drawable)
{
    const osg::ref_ptr<osg::Shape> shape =
        static_cast<osg::Shape*>(drawable.getShape()->clone(osg::CopyOp::DEEP_COPY_ALL));
    const osg::ref_ptr<osg::TessellationHints> hints = new osg::TessellationHints;
    hints->setDetailRatio(drawable.getTessellationHints()->getDetailRatio());
    osg::ref_ptr<osg::ShapeDrawable> stock = new osg::ShapeDrawable(shape, hints);
    stock->setColor(drawable.getColor());
    return stock;
}

/// A text as it comes from its record, without a thought for what it costs.
osg::ref_ptr<osg::Drawable> stockText(const osgText::Text& text)
{
    osg::ref_ptr<osgText::Text> stock = new osgText::Text;
    stock->setFont(CFeatureConfig::sigleFeatureConfig()->getFontPath().toStdString());
    stock->setFontResolution(64, 64);
    stock->setCharacterSize(text.getCharacterHeight());
    stock->setAxisAlignment(osgText::TextBase::XY_PLANE);
    stock->setAlignment(osgText::TextBase::CENTER_BOTTOM);
    stock->setText(text.getText());
    stock->setColor(text.getColor());
    stock->setDrawMode(osgText::TextBase::TEXT);
    stock->setPosition(text.getPosition());
    return stock;
}

/// Replaces the drawables whose cost the library has brought down by stock ones.
class MakeStraightforward : public osg::NodeVisitor
{
public:
    MakeStraightforward() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Geode& geode) override
    {
        for (unsigned int i = 0; i < geode.getNumDrawables(); ++i) {
            osg::Drawable* const drawable = geode.getDrawable(i);
            if (const auto* const text = dynamic_cast<const osgText::Text*>(drawable))
                geode.setDrawable(i, stockText(*text));
            else if (const auto* const shape = dynamic_cast<const osg::ShapeDrawable*>(drawable))
                geode.setDrawable(i, stockShape(*shape));
        }
    }
};

/// Makes squares that share their arrays.
class SquareMaker
{
public:
    SquareMaker()
    {
        for (const auto& [x, y] : {std::pair{-3.0f, -3.0f}, {3.0f, -3.0f}, {3.0f, 3.0f}, {-3.0f, 3.0f}})
            m_corners->push_back(osg::Vec3f(x, y, 0.0f));
    }

    osg::ref_ptr<osg::Geometry> make() const
    {
        osg::ref_ptr<osg::Geometry> square = new osg::Geometry;
        square->setVertexArray(m_corners);
        square->addPrimitiveSet(m_fan);
        return square;
    }

private:
    osg::ref_ptr<osg::Vec3Array> m_corners = new osg::Vec3Array;
    osg::ref_ptr<osg::DrawArrays> m_fan = new osg::DrawArrays(GL_TRIANGLE_FAN, 0, 4);
};

osg::ref_ptr<osg::StateSet> unlit()
{
    osg::ref_ptr<osg::StateSet> state = new osg::StateSet;
    state->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    return state;
}

osg::ref_ptr<osg::AutoTransform> bareTransform(int index, osg::StateSet* state,
                                               std::initializer_list<osg::ref_ptr<osg::Drawable>> drawables)
{
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->setStateSet(state);
    for (const osg::ref_ptr<osg::Drawable>& drawable : drawables) geode->addDrawable(drawable);
    osg::ref_ptr<osg::AutoTransform> transform = new osg::AutoTransform;
    transform->setAutoScaleToScreen(true);
    transform->setPosition(scattered(index));
    transform->addChild(geode);
    return transform;
}

osg::ref_ptr<osg::Group> bareTransforms(int count)
{
    const SquareMaker squares;
    const osg::ref_ptr<osg::StateSet> state = unlit();
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < 2 * count; ++i) // a dot has two transforms, and four drawables
        scene->addChild(bareTransform(i, state, {squares.make(), squares.make()}));
    return scene;
}

osg::ref_ptr<osg::Group> bareLabels(int count)
{
    const SquareMaker squares;
    const osg::ref_ptr<osg::StateSet> markState = unlit();
    const osg::ref_ptr<osg::StateSet> labelState = unlit();
    labelState->setRenderBinDetails(1, "RenderBin");
    const osg::ref_ptr<osg::StateSet> lineState = unlit();
    const osg::ref_ptr<osgText::Font> font =
        osgText::readRefFontFile(CFeatureConfig::sigleFeatureConfig()->getFontPath().toStdString());

    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < count; ++i) {
        const osg::ref_ptr<osg::Geometry> outline = squares.make();
        outline->setStateSet(lineState);
        const osg::ref_ptr<osgText::Text> text = new osgText::Text;
        text->setFont(font);
        text->setText("Point" + std::to_string(i));
        const osg::ref_ptr<osg::AutoTransform> label = bareTransform(i, labelState, {outline, squares.make(), text});
        label->setAutoRotateMode(osg::AutoTransform::ROTATE_TO_SCREEN);
        scene->addChild(bareTransform(i, markState, {squares.make()}));
        scene->addChild(label);
    }
    return scene;
}

void add(Sort sort, osg::Group& scene, int index)
{
    switch (sort) {
    case Sort::FlagDot:
        return addFlagDot(scene, index);
    case Sort::LineArrow:
        return addArrow(scene, index, true);
    case Sort::SolidArrow:
        return addArrow(scene, index, false);
    case Sort::Plane:
        return addPlane(scene, index);
    default:
        return addDot(scene, index);
    }
}

featureType rootOf(Sort sort)
{
    if (sort == Sort::Plane) return featurePlane;
    return sort == Sort::LineArrow || sort == Sort::SolidArrow ? featureLine : featureDot;
}

} // namespace

osg::ref_ptr<osg::Group> sceneOf(Sort sort, int count)
{
    if (sort == Sort::BareTransform) return bareTransforms(count);
    if (sort == Sort::BareLabel) return bareLabels(count);
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < count; ++i) add(sort, *scene, i);
    return scene;
}

osg::ref_ptr<osg::Group> straightforwardSceneOf(Sort sort, int count)
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    for (int i = 0; i < count; ++i) {
        add(sort, *scene, i);
        const osg::ref_ptr<osg::Group> features = featuresOf(*scene, sort);
        MakeStraightforward visitor;
        features->getChild(features->getNumChildren() - 1)->accept(visitor);
    }
    return scene;
}

osg::ref_ptr<osg::Group> featuresOf(osg::Group& scene, Sort sort)
{
    return findOrCreateFeatureRootNode(&scene, rootOf(sort), false)->getChild(0)->asGroup();
}

std::size_t heapInUse()
{
    return mallinfo2().uordblks + mallinfo2().hblkhd;
}

std::size_t residentMemory()
{
    std::ifstream file("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    file >> total >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace kelvbench
