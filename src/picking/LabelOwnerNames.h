#pragma once

#include "picking/LabelSearch.h"

#include <QHash>
#include <QString>

#include <bitset>
#include <vector>

namespace KelvOsgTools::detail {

/// Nodes whose label was hit, by name.
///
/// Node names are read in the local 8-bit encoding, as the node search visitors read them.
class LabelOwnerNames
{
public:
    /// @param owners in the order of traversal; of equal names the first stays
    explicit LabelOwnerNames(const std::vector<LabelOwner>& owners);

    /// Leaves out every owner that is not the first node of its name.
    /// @param traversed the nodes of the search in the order of traversal
    void keepFirstOfName(const std::vector<TraversedNode>& traversed);

    /// The owner of that name; null if there is none.
    const LabelOwner* find(const QString& name) const;

private:
    bool mayBeNamesake(const TraversedNode& traversed) const;
    void removeLaterNamesake(const osg::Node& node, std::size_t rank);

    QHash<QString, LabelOwner> m_owners;
    std::bitset<64> m_nameLengths; // of the owners, in bytes; longer names count as 63
    bool m_areAllAscii = true;     // else a name may be spelled in several lengths
    std::size_t m_lastRank = 0;
};

} // namespace KelvOsgTools::detail
