#include <KelvOsgTools/NodeVisitors.h>

#include "foundation/UserValues.h"

#include <algorithm>

namespace KelvOsgTools {
namespace {

bool isAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

std::vector<std::string> toUtf8(const QStringList& names)
{
    std::vector<std::string> converted;
    converted.reserve(static_cast<std::size_t>(names.size()));
    for (const QString& name : names) converted.push_back(name.toStdString());
    return converted;
}

/// Appends node once for every name that equals the node's own.
template <typename Name>
void appendForEachMatch(const Name& name, const QStringList& sought, osg::Node& node,
                        std::vector<osg::ref_ptr<osg::Node>>& found)
{
    for (const QString& entry : sought)
        if (entry == name) found.emplace_back(&node);
}

} // namespace

findNodeVisitor::findNodeVisitor(const std::string& name) : findNodeVisitor(QString::fromStdString(name)) {}

findNodeVisitor::findNodeVisitor(const QString& name) : findNodeVisitor(QStringList(name)) {}

findNodeVisitor::findNodeVisitor(const QStringList& names)
    : osg::NodeVisitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN), m_names(names)
{}

findNodeVisitor::findNodeVisitor(const findNodeVisitor& other)
    : osg::Object(other), osg::NodeVisitor(other), m_names(other.m_names), m_foundNodes(other.m_foundNodes)
{}

findNodeVisitor::~findNodeVisitor() = default;

void findNodeVisitor::apply(osg::Node& node)
{
    const std::string& name = node.getName();
    const int length = static_cast<int>(name.size());
    // Nearly all names are ASCII, which every locale reads alike: they need no conversion.
    if (isAscii(name))
        appendForEachMatch(QLatin1String(name.data(), length), m_names, node, m_foundNodes);
    else
        appendForEachMatch(QString::fromLocal8Bit(name.data(), length), m_names, node, m_foundNodes);
    traverse(node);
}

FindNamedNodeVisitor::FindNamedNodeVisitor(const std::vector<std::string>& names)
    : osg::NodeVisitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN), m_names(names)
{}

FindNamedNodeVisitor::FindNamedNodeVisitor(const QStringList& names) : FindNamedNodeVisitor(toUtf8(names)) {}

FindNamedNodeVisitor::FindNamedNodeVisitor(const FindNamedNodeVisitor& other)
    : osg::Object(other), osg::NodeVisitor(other), m_foundNodes(other.m_foundNodes), m_names(other.m_names)
{}

FindNamedNodeVisitor::~FindNamedNodeVisitor() = default;

void FindNamedNodeVisitor::apply(osg::Node& node)
{
    for (const std::string& name : m_names)
        if (node.getName() == name) m_foundNodes.emplace_back(&node);
    traverse(node);
}

FindFeatureNodeVisitor::FindFeatureNodeVisitor(const std::vector<featureType>& kinds)
    : osg::NodeVisitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN), m_featureTypes(kinds)
{}

FindFeatureNodeVisitor::FindFeatureNodeVisitor(const FindFeatureNodeVisitor& other)
    : osg::Object(other),
      osg::NodeVisitor(other),
      m_foundNodes(other.m_foundNodes),
      m_featureTypes(other.m_featureTypes)
{}

FindFeatureNodeVisitor::~FindFeatureNodeVisitor() = default;

void FindFeatureNodeVisitor::apply(osg::Node& node)
{
    const int nodeKind = detail::featureTypeOf(node).value_or(featureAll);
    for (const featureType kind : m_featureTypes)
        if (kind == nodeKind) m_foundNodes.emplace_back(&node);
    traverse(node);
}

} // namespace KelvOsgTools
