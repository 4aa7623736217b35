#pragma once

#include <gtest/gtest.h>

#include <osg/Geometry>
#include <osg/Node>
#include <osg/ValueObject>
#include <osg/Vec4f>
#include <osg/ref_ptr>
#include <osgText/Text>

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace kelvtest {

/// All nodes of a subtree, top first, depth first; switched-off and masked ones too. Found without
/// the library's own searches, which are under test.
std::vector<osg::Node*> allNodes(osg::Node& top);

/// The nodes of that name below top (not top itself), as Ts; others are left out.
template <typename T = osg::Node>
std::vector<T*> namedBelow(osg::Node& top, const std::string& name)
{
    std::vector<T*> found;
    for (osg::Node* node : allNodes(top))
        if (T* const typed = dynamic_cast<T*>(node); typed && node != &top && node->getName() == name)
            found.push_back(typed);
    return found;
}

/// The first of namedBelow(), null if there is none.
template <typename T = osg::Node>
T* firstBelow(osg::Node& top, const std::string& name)
{
    const std::vector<T*> found = namedBelow<T>(top, name);
    return found.empty() ? nullptr : found.front();
}

/// The nodes of type T in a subtree, top included.
template <typename T>
std::vector<T*> nodesOfType(osg::Node& top)
{
    std::vector<T*> found;
    for (osg::Node* node : allNodes(top))
        if (T* const typed = dynamic_cast<T*>(node)) found.push_back(typed);
    return found;
}

/// The child at an index as a T; null if there is none or it is no T.
template <typename T = osg::Group>
T* childOf(osg::Group& parent, unsigned int index)
{
    return index < parent.getNumChildren() ? dynamic_cast<T*>(parent.getChild(index)) : nullptr;
}

/// "feature_type" of a node; empty if it has none that is an int.
std::optional<int> kindOf(const osg::Object& node);

/// The one colour of a geometry that is bound overall to a single colour of that array type.
template <typename ColourArray = osg::Vec4Array>
std::optional<typename ColourArray::ElementDataType> overallColour(const osg::Geometry& geometry)
{
    const auto* const colours = dynamic_cast<const ColourArray*>(geometry.getColorArray());
    if (!colours || colours->size() != 1 || colours->getBinding() != osg::Array::BIND_OVERALL) return std::nullopt;
    return colours->front();
}

/// Width of the lines in the drawable's own state; 0 if it sets none.
float lineWidthOf(const osg::Node& node);

QString textOf(const osgText::Text& text);

/// Whether every bound and every matrix of a subtree is finite, so that no NaN and no infinity can
/// reach the scene above it. An empty bound is fine.
::testing::AssertionResult isFiniteEverywhere(osg::Node& top);

} // namespace kelvtest
