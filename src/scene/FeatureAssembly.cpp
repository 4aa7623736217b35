#include "scene/FeatureAssembly.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "scene/FeatureRoots.h"

#include <new>

namespace KelvOsgTools::detail {
namespace {

/// Takes back the roots that a failed assembly made on its way.
class FreshRoots
{
public:
    FreshRoots(osg::ref_ptr<osg::Group> scene, featureType kind)
        : m_scene(std::move(scene)), m_kind(kind), m_hadCommonRoot(find(featureAll)), m_hadRoot(find(kind))
    {}
    FreshRoots(const FreshRoots&) = delete;
    FreshRoots& operator=(const FreshRoots&) = delete;

    ~FreshRoots()
    {
        if (m_kept) return;
        if (!m_hadCommonRoot)
            removeFromParent(find(featureAll));
        else if (!m_hadRoot)
            removeFromParent(find(m_kind));
    }

    void keep() { m_kept = true; }

private:
    osg::ref_ptr<osg::Group> find(featureType kind) const { return findOrCreateFeatureRootNode(m_scene, kind, false); }

    static void removeFromParent(const osg::ref_ptr<osg::Group>& root)
    {
        if (root && root->getNumParents() > 0) root->getParent(0)->removeChild(root);
    }

    osg::ref_ptr<osg::Group> m_scene;
    featureType m_kind;
    bool m_hadCommonRoot;
    bool m_hadRoot;
    bool m_kept = false;
};

/// Fetches a node ahead of its use. Thousands of nodes lie scattered in memory: waiting for each is
/// what a search of their names would spend its time on.
void prefetch([[maybe_unused]] const osg::Node* node)
{
#if defined(__GNUC__)
    if (node) __builtin_prefetch(&node->getName());
#endif
}

/// Removes the children of that name, save the last child of the group.
void removeFormerChildren(osg::Group& group, const std::string& name)
{
    constexpr unsigned int kAhead = 16;
    for (unsigned int i = group.getNumChildren() - 1; i-- > 0;) {
        if (i >= kAhead) prefetch(group.getChild(i - kAhead));
        if (const osg::Node* child = group.getChild(i); child && child->getName() == name) group.removeChildren(i, 1);
    }
}

} // namespace

CTableMeta::structTableMeta labelRecord(const osg::Vec3f& pos, const LabelArguments& arguments)
{
    CTableMeta::structTableMeta meta;
    meta.textColor.set(0.0f, 0.0f, 0.0f, 1.0f);
    meta.pos = pos;
    meta.backgroundColor.set(1.0f, 1.0f, 1.0f);
    meta.tableNamePrefix = arguments.prefix;
    meta.tableNameIndexSuffix = arguments.indexSuffix;
    meta.fontSize = CFeatureConfig::sigleFeatureConfig()->getNormalTableFontSize();
    meta.renderIndex = arguments.renderIndex;
    meta.isAutoScale = true;
    meta.isBottom = false;
    return meta;
}

void appendChild(osg::Group& group, osg::Node* child)
{
    const unsigned int end = group.getNumChildren();
    try {
        group.addChild(child);
    } catch (...) {
        // The group may hold the child already while the child does not know its parent.
        if (group.getNumChildren() > end) group.removeChildren(end, 1);
        throw;
    }
}

osg::ref_ptr<osg::Node> hangFeature(const osg::ref_ptr<osg::Group>& scene, featureType kind, std::string name,
                                    const std::function<osg::ref_ptr<osg::Node>()>& build)
try {
    FreshRoots freshRoots(scene, kind);
    const osg::ref_ptr<osg::Group> content = contentGroup(findOrCreateFeatureRootNode(scene, kind, true));
    if (!content) return nullptr;

    const osg::ref_ptr<osg::Node> feature = build();
    feature->setName(name);
    appendChild(*content, feature);
    removeFormerChildren(*content, name);
    freshRoots.keep();
    return feature;
} catch (const std::bad_alloc&) {
    return nullptr;
}

} // namespace KelvOsgTools::detail
