#pragma once

#include <osg/Group>
#include <osg/ref_ptr>

#include <string>
#include <vector>

namespace kelvtest {

osg::ref_ptr<osg::Group> namedGroup(const std::string& name);

/// A group with one empty group for each name, in that order.
osg::ref_ptr<osg::Group> groupWithChildren(const std::vector<std::string>& names);

/// The names of the children, in order.
std::vector<std::string> childNames(const osg::Group& group);

/// A square of the plane z = 0 around the origin, in two triangles, facing +Z.
osg::ref_ptr<osg::Node> squareMesh(float halfSide);

} // namespace kelvtest
