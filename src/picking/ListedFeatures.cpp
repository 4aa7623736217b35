#include "picking/ListedFeatures.h"

#include "foundation/SceneMarks.h"

#include <algorithm>

namespace KelvOsgTools::detail {
namespace {

bool isAscii(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 128; });
}

std::size_t lengthClass(const std::string& name)
{
    return std::min<std::size_t>(name.size(), 63);
}

} // namespace

ListedFeatures::ListedFeatures(const QList<QVariant>& features)
{
    const QString key = QLatin1String(kFeatureUidKey);
    const auto count = static_cast<std::size_t>(features.size());
    m_features.reserve(count);
    m_indexOfName.reserve(count);
    for (const QVariant& feature : features) {
        const QVariantMap map = feature.toMap();
        if (const auto uid = map.constFind(key); uid != map.constEnd()) list(uid->toString());
    }
}

void ListedFeatures::list(const QString& uid)
{
    const std::string name = uid.toStdString();
    if (QString::fromStdString(name) != uid) return; // half a surrogate pair: no node has such a name
    if (!m_indexOfName.emplace(name, m_features.size()).second) return;
    m_features.emplace_back();
    m_lengths.set(lengthClass(name));
}

ListedFeature* ListedFeatures::claim(osg::Node& node)
{
    ListedFeature* const feature = find(node.getName());
    if (!feature || feature->node) return nullptr;
    feature->node = &node;
    return feature;
}

ListedFeature* ListedFeatures::find(const std::string& nodeName)
{
    // Nearly all names are ASCII, which every locale reads alike: they need no conversion.
    if (!isAscii(nodeName)) {
        const QString decoded = QString::fromLocal8Bit(nodeName.data(), static_cast<int>(nodeName.size()));
        const auto found = m_indexOfName.find(decoded.toStdString());
        return found == m_indexOfName.end() ? nullptr : &m_features[found->second];
    }
    if (!m_lengths.test(lengthClass(nodeName))) return nullptr;
    const auto found = m_indexOfName.find(nodeName);
    return found == m_indexOfName.end() ? nullptr : &m_features[found->second];
}

} // namespace KelvOsgTools::detail
