#pragma once

#include <osg/Group>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <random>

namespace kelvtest {

using Random = std::mt19937;

/// A number from low up to high.
double between(Random& random, double low, double high);

/// True once in n times on average.
bool oneIn(Random& random, int n);

/// A tree of every kind of node that a pick may meet, within 100 units of the origin: groups,
/// switches, transforms of all kinds, levels of detail, cameras, billboards, nodes of a host's own
/// kind, drawables with and without a geode, dots, labels, arrows and planes; some of them switched
/// off, masked out, never culled, empty or of extreme scale.
osg::ref_ptr<osg::Group> randomScene(Random& random);

/// Many such trees side by side, below a plain group or below a transform.
osg::ref_ptr<osg::Group> randomCrowd(Random& random);

/// A viewer over the scene, 200 by 200 pixels: parallel or in perspective, from a random side; with
/// y downwards or a slave camera now and then. Auto-scaled nodes know their scale, or not yet.
osg::ref_ptr<osgViewer::Viewer> randomViewer(Random& random, osg::Node* scene);

} // namespace kelvtest
