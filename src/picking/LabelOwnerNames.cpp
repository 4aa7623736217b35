#include "picking/LabelOwnerNames.h"

#include <algorithm>

namespace KelvOsgTools::detail {
namespace {

QString decodedName(const osg::Node& node)
{
    return QString::fromLocal8Bit(node.getName().data(), static_cast<int>(node.getName().size()));
}

bool isAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

std::size_t lengthClass(std::size_t length)
{
    return std::min<std::size_t>(length, 63);
}

} // namespace

LabelOwnerNames::LabelOwnerNames(const std::vector<LabelOwner>& owners)
{
    for (const LabelOwner& owner : owners) {
        const QString name = decodedName(*owner.node);
        if (!m_owners.contains(name)) m_owners.insert(name, owner);
        m_nameLengths.set(lengthClass(owner.node->getName().size()));
        m_areAllAscii = m_areAllAscii && isAscii(owner.node->getName());
        m_lastRank = owner.rank;
    }
}

void LabelOwnerNames::keepFirstOfName(const std::vector<TraversedNode>& traversed)
{
    for (std::size_t rank = 0; rank < m_lastRank; ++rank)
        if (mayBeNamesake(traversed[rank])) removeLaterNamesake(*traversed[rank].node, rank);
}

/// Rules most nodes out by the length of their names alone.
bool LabelOwnerNames::mayBeNamesake(const TraversedNode& traversed) const
{
    return !m_areAllAscii || m_nameLengths.test(lengthClass(traversed.nameLength));
}

void LabelOwnerNames::removeLaterNamesake(const osg::Node& node, std::size_t rank)
{
    if (node.getNodeMask() == 0) return; // searches do not visit it
    const auto owner = m_owners.find(decodedName(node));
    if (owner != m_owners.end() && rank < owner->rank) m_owners.erase(owner);
}

const LabelOwner* LabelOwnerNames::find(const QString& name) const
{
    const auto owner = m_owners.constFind(name);
    return owner == m_owners.constEnd() ? nullptr : &*owner;
}

} // namespace KelvOsgTools::detail
