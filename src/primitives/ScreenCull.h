#pragma once

#include <osg/AutoTransform>
#include <osg/NodeVisitor>

namespace KelvOsgTools::detail {

// What OpenSceneGraph's cull visitor does with an auto-scaled transform, its geode and the drawables in it, in
// one go. For each transform the visitor would invert the matrix of the view and turn its frustum, and for each
// state set keep a graph of its own: with ten thousand features these are most of what a cull costs.
//
// Drawables, matrices, depths, and the order in which all is drawn, come out as by the visitor. State sets of
// equal effect that follow each other are replaced by the first of them. A transform that a host has changed in
// a way not foreseen here, or that is only partly in view, is left to the visitor.

/// Culls a transform that holds a sphere.
/// @return false if the transform is left to the visitor, which nothing that was done hinders
bool cullSphere(osg::NodeVisitor& visitor, osg::AutoTransform& transform);

/// Culls a transform that holds the drawables of a label.
/// @return false if the transform is left to the visitor, which nothing that was done hinders
bool cullLabel(osg::NodeVisitor& visitor, osg::AutoTransform& transform);

} // namespace KelvOsgTools::detail
