#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Group>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

/// Child 0 of a node of the feature tree: the group that its content hangs under. Null if node is
/// null or the host removed that child or put something else there.
osg::ref_ptr<osg::Group> contentGroup(const osg::Group* node);

/// contentGroup() of the root of a kind, which is not made if it is missing.
osg::ref_ptr<osg::Group> existingContent(const osg::ref_ptr<osg::Group>& scene, featureType kind);

} // namespace KelvOsgTools::detail
