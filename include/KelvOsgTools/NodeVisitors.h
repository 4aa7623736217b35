#pragma once

#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Node>
#include <osg/NodeVisitor>
#include <osg/ref_ptr>

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace KelvOsgTools {

/// Collects the nodes of a subtree that have one of the given names, told as Qt strings.
///
/// Like its two siblings it visits all children, switched-off ones too, lists nodes in depth-first
/// pre-order and once for every criterion they meet, and searches on below a match. Nodes found
/// stay alive as long as the visitor does. Node names are read in the local 8-bit encoding, names
/// given as std::string in UTF-8.
///
/// @snippet feature_recipes/main.cpp nodes by name
class KELVOSGTOOLS_EXPORT findNodeVisitor : public osg::NodeVisitor
{
public:
    explicit findNodeVisitor(const std::string& name);  ///< seeks one name, in UTF-8
    explicit findNodeVisitor(const QString& name);      ///< seeks one name
    explicit findNodeVisitor(const QStringList& names); ///< seeks any of the names
    findNodeVisitor(const findNodeVisitor& other);      ///< shares the nodes that other found
    ~findNodeVisitor() override;

    void apply(osg::Node& node) override; ///< lists the node if it is sought, and goes on below it

    QStringList m_names;                               ///< the names sought
    std::vector<osg::ref_ptr<osg::Node>> m_foundNodes; ///< the nodes found; appended to by every traversal
};

/// Collects the nodes of a subtree that have one of the given names, compared byte for byte.
/// @see findNodeVisitor for what all three visitors do alike
///
/// @snippet feature_recipes/main.cpp named nodes
class KELVOSGTOOLS_EXPORT FindNamedNodeVisitor : public osg::NodeVisitor
{
public:
    explicit FindNamedNodeVisitor(const std::vector<std::string>& names); ///< seeks any of the names
    explicit FindNamedNodeVisitor(const QStringList& names);              ///< converted to UTF-8
    FindNamedNodeVisitor(const FindNamedNodeVisitor& other);              ///< shares the nodes that other found
    ~FindNamedNodeVisitor() override;

    void apply(osg::Node& node) override; ///< lists the node if it is sought, and goes on below it

    std::vector<osg::ref_ptr<osg::Node>> m_foundNodes; ///< the nodes found; appended to by every traversal
    std::vector<std::string> m_names;                  ///< the names sought
};

/// Collects the nodes of a subtree whose "feature_type" is one of the given kinds.
///
/// A node without that user value, or with one that is not an int, counts as featureAll (0): seeking
/// featureAll collects all of them. Nodes marked -1 match no kind. A line arrow is listed twice for
/// featureLine: its line node carries the kind as well.
/// @see findNodeVisitor for what all three visitors do alike
///
/// @snippet feature_recipes/main.cpp every feature
class KELVOSGTOOLS_EXPORT FindFeatureNodeVisitor : public osg::NodeVisitor
{
public:
    explicit FindFeatureNodeVisitor(const std::vector<featureType>& kinds); ///< seeks any of the kinds
    FindFeatureNodeVisitor(const FindFeatureNodeVisitor& other);            ///< shares the nodes that other found
    ~FindFeatureNodeVisitor() override;

    void apply(osg::Node& node) override; ///< lists the node if it is sought, and goes on below it

    std::vector<osg::ref_ptr<osg::Node>> m_foundNodes; ///< the nodes found; appended to by every traversal
    std::vector<featureType> m_featureTypes;           ///< the kinds sought
};

} // namespace KelvOsgTools
