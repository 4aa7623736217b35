#pragma once

#include <KelvOsgTools/CTableMeta.h>

#include <osg/Node>

#include <QList>
#include <QString>
#include <QVariant>

#include <bitset>
#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace KelvOsgTools::detail {

/// A listed name's first node and that node's first label, as far as found.
struct ListedFeature
{
    osg::Node* node = nullptr;
    CTableMeta* table = nullptr;
};

/// The features whose labels a host lets be hit, each name once, found by the names of nodes.
class ListedFeatures
{
public:
    /// Reads "feature_uid" of every map in the list; what has none is left out.
    explicit ListedFeatures(const QList<QVariant>& features);

    /// The feature that a node is the first to be named after; null for any other node. Node names
    /// are read in the local 8-bit encoding, as by the node search visitors.
    ListedFeature* claim(osg::Node& node);

    /// In the order of the list.
    const std::vector<ListedFeature>& all() const { return m_features; }

private:
    void list(const QString& uid);
    ListedFeature* find(const std::string& nodeName);

    std::vector<ListedFeature> m_features;
    std::unordered_map<std::string, std::size_t> m_indexOfName; // UTF-8
    std::bitset<64> m_lengths; // of the names, longer ones as 63: spares most nodes the look-up
};

} // namespace KelvOsgTools::detail
