#pragma once

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureTypes.h>

#include "support/Picture.h"

#include <gtest/gtest.h>

#include <osg/Group>
#include <osg/Node>
#include <osg/NodeCallback>
#include <osg/Transform>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>

#include <initializer_list>
#include <string>

namespace kelvtest {

/// Gives tests that draw a configuration of their own: the defaults, with the font that all stored
/// pictures were made with. Puts the former configuration back at the end.
class PictureTest : public ::testing::Test
{
protected:
    PictureTest();
    ~PictureTest() override;

private:
    KelvOsgTools::CFeatureConfig m_former;
};

osg::ref_ptr<osg::Group> groupOf(std::initializer_list<osg::Node*> children);

/// An upright rectangle from (left, bottom) to (right, top) at that z, of that colour whatever the light.
struct Rectangle
{
    float left = 0.0f;
    float bottom = 0.0f;
    float right = 0.0f;
    float top = 0.0f;
    float z = 0.0f;
};
osg::ref_ptr<osg::Node> unlitRectangle(const Rectangle& rectangle, const osg::Vec4f& colour);

/// The colour that an unlit surface is drawn in.
Pixel drawnAs(const osg::Vec4f& colour);

/// Where a point goes, and whence it comes back, while the node is culled.
struct ThereAndBack : osg::NodeCallback
{
    void operator()(osg::Node* node, osg::NodeVisitor* visitor) override
    {
        osg::Matrixd there;
        osg::Matrixd back;
        node->asTransform()->computeLocalToWorldMatrix(there, visitor);
        node->asTransform()->computeWorldToLocalMatrix(back, visitor);
        moved = point * there;
        returned = moved * back;
    }

    osg::Vec3d point{10, 20, 0};
    osg::Vec3d moved;
    osg::Vec3d returned;
};

/// A label in colours that are easy to tell apart in a picture: blue text and outline on yellow.
KelvOsgTools::CTableMeta::structTableMeta blueOnYellow(const QString& text, int fontSize = 14);
inline constexpr Pixel kLabelInk = kBlue;
inline constexpr Pixel kLabelFill = kYellow;

/// A name for each state, for parameters of tests.
std::string nameOf(KelvOsgTools::featureState state);

/// The colour of a state with the default configuration, unlit.
Pixel defaultColourOf(KelvOsgTools::featureState state);

} // namespace kelvtest
