#pragma once

#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Group>
#include <osg/Node>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <QString>

#include <functional>
#include <string>

namespace KelvOsgTools::detail {

/// What the assembly functions take for a label, apart from where it stands.
struct LabelArguments
{
    int renderIndex;
    QString prefix;
    int indexSuffix;
};

/// The record of a feature's label, in the normal font size.
CTableMeta::structTableMeta labelRecord(const osg::Vec3f& pos, const LabelArguments& arguments);

/// Builds a node, names it and hangs it as last child under the root of a kind, in place of all
/// children of that name. The scene changes only once the node stands: when build throws, or there
/// is no root for it, the scene is left as it was.
/// @param name by value, as it may belong to the very node that is replaced
/// @return null if there is no usable root; exceptions, of exhausted memory too, are the caller's
osg::ref_ptr<osg::Node> hangFeature(const osg::ref_ptr<osg::Group>& scene, featureType kind, std::string name,
                                    const std::function<osg::ref_ptr<osg::Node>()>& build);

} // namespace KelvOsgTools::detail
