#include "support/PictureScenes.h"

#include <osg/Geode>
#include <osg/Geometry>

#include <cmath>

namespace kelvtest {

using namespace KelvOsgTools;

PictureTest::PictureTest() : m_former(*CFeatureConfig::sigleFeatureConfig())
{
    CFeatureConfig::sigleFeatureConfig()->setFontPath(KELVOSGTOOLS_TEST_FONT);
}

PictureTest::~PictureTest()
{
    *CFeatureConfig::sigleFeatureConfig() = m_former;
}

osg::ref_ptr<osg::Group> groupOf(std::initializer_list<osg::Node*> children)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    for (osg::Node* const child : children) group->addChild(child);
    return group;
}

osg::ref_ptr<osg::Node> unlitRectangle(const Rectangle& rectangle, const osg::Vec4f& colour)
{
    const osg::ref_ptr<osg::Geometry> geometry = osg::createTexturedQuadGeometry(
        osg::Vec3(rectangle.left, rectangle.bottom, rectangle.z), osg::Vec3(rectangle.right - rectangle.left, 0, 0),
        osg::Vec3(0, rectangle.top - rectangle.bottom, 0));
    const osg::ref_ptr<osg::Vec4Array> colours = new osg::Vec4Array;
    colours->push_back(colour);
    geometry->setColorArray(colours, osg::Array::BIND_OVERALL);

    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(geometry);
    geode->getOrCreateStateSet()->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    return geode;
}

Pixel drawnAs(const osg::Vec4f& colour)
{
    const auto channel = [](float value) { return static_cast<int>(std::lround(value * 255.0f)); };
    return {channel(colour.r()), channel(colour.g()), channel(colour.b())};
}

CTableMeta::structTableMeta blueOnYellow(const QString& text, int fontSize)
{
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.0f, 0.0f, 1.0f, 1.0f);
    meta.backgroundColor.set(1.0f, 1.0f, 0.0f);
    meta.tableNamePrefix = text;
    meta.fontSize = fontSize;
    return meta;
}

std::string nameOf(featureState state)
{
    switch (state) {
    case featureStateNone:
        return "None";
    case featureStateNormal:
        return "Normal";
    case featureStateSelected:
        return "Selected";
    case featureStateHighlighted:
        return "Highlighted";
    }
    return "Unknown";
}

Pixel defaultColourOf(featureState state)
{
    if (state == featureStateSelected) return kRed;
    if (state == featureStateHighlighted) return kGreen;
    return kBlack;
}

} // namespace kelvtest
