#pragma once

#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LineWidth>
#include <osg/StateSet>
#include <osg/Switch>
#include <osg/ref_ptr>

namespace kelvtest {

inline osg::ref_ptr<osg::Group> groupOfGroups(unsigned int count)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    for (unsigned int i = 0; i < count; ++i) group->addChild(new osg::Group);
    return group;
}

inline osg::ref_ptr<osg::Node> switchWithOneOff()
{
    osg::ref_ptr<osg::Switch> toggle = new osg::Switch;
    toggle->addChild(groupOfGroups(2), true);
    toggle->addChild(groupOfGroups(3), false);
    toggle->addChild(new osg::Geometry, true);
    return toggle;
}

inline osg::ref_ptr<osg::Node> withState(const osg::ref_ptr<osg::Group>& group, bool isFull)
{
    for (osg::Node* node : {static_cast<osg::Node*>(group), group->getChild(0)}) {
        osg::StateSet* const state = node->getOrCreateStateSet();
        if (!isFull) continue;
        state->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
        state->setAttributeAndModes(new osg::BlendFunc);
        state->setAttribute(new osg::LineWidth(2.0f));
    }
    return group;
}

constexpr unsigned int kChildShapes = 7;

/// A child of one of several shapes: without children, a leaf, a tree deeper than what is fetched, one
/// partly switched off, one that is a wide group itself, and with a state that is empty or full.
inline osg::ref_ptr<osg::Node> childOfShape(unsigned int shape)
{
    switch (shape % kChildShapes) {
    case 0:
        return new osg::Group;
    case 1:
        return new osg::Geometry;
    case 2: {
        osg::ref_ptr<osg::Group> top = new osg::Group;
        osg::Group* lowest = top;
        for (unsigned int depth = 0; depth < 8; ++depth) {
            const osg::ref_ptr<osg::Group> next = new osg::Group;
            lowest->addChild(next);
            lowest->addChild(new osg::Geode);
            lowest = next;
        }
        return top;
    }
    case 3:
        return switchWithOneOff();
    case 4:
        return groupOfGroups(100);
    case 5:
        return withState(groupOfGroups(2), false);
    default:
        return withState(groupOfGroups(2), true);
    }
}

} // namespace kelvtest
