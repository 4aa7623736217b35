#include "scene/FeatureAssembly.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/AheadTraversal.h"
#include "foundation/AppendChild.h"
#include "scene/FeatureRoots.h"

namespace KelvOsgTools::detail {
namespace {

/// Takes back the roots that a failed assembly made on its way. It only counts: when memory is
/// exhausted there is none to look names up with.
class FreshRoots
{
public:
    explicit FreshRoots(const osg::ref_ptr<osg::Group>& scene)
        : m_scene(scene),
          m_sceneSize(sizeOf(scene)),
          m_content(existingContent(scene, featureAll)),
          m_contentSize(sizeOf(m_content))
    {}
    FreshRoots(const FreshRoots&) = delete;
    FreshRoots& operator=(const FreshRoots&) = delete;

    ~FreshRoots()
    {
        if (m_kept) return;
        removeFrom(m_scene, m_sceneSize);
        removeFrom(m_content, m_contentSize);
    }

    void keep() { m_kept = true; }

private:
    static unsigned int sizeOf(const osg::ref_ptr<osg::Group>& group) { return group ? group->getNumChildren() : 0; }

    static void removeFrom(const osg::ref_ptr<osg::Group>& group, unsigned int formerSize)
    {
        if (sizeOf(group) > formerSize) group->removeChildren(formerSize, group->getNumChildren() - formerSize);
    }

    osg::ref_ptr<osg::Group> m_scene;
    unsigned int m_sceneSize;
    osg::ref_ptr<osg::Group> m_content; // of the common root; null if that has to be made
    unsigned int m_contentSize;
    bool m_kept = false;
};

/// Looks at the last byte first: names of features mostly differ in their numbers.
bool hasName(const osg::Node& node, const std::string& name)
{
    const std::string& own = node.getName();
    return own.size() == name.size() && (name.empty() || own.back() == name.back()) && own == name;
}

/// Removes the children of that name, save the last child of the group.
void removeFormerChildren(osg::Group& group, const std::string& name)
{
    constexpr unsigned int kAhead = 16;
    for (unsigned int i = group.getNumChildren() - 1; i-- > 0;) {
        if (i >= kAhead) prefetch(&group.getChild(i - kAhead)->getName(), sizeof(std::string));
        if (hasName(*group.getChild(i), name)) group.removeChildren(i, 1);
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

// NOLINTNEXTLINE(performance-unnecessary-value-param): see the header
osg::ref_ptr<osg::Node> hangFeature(const osg::ref_ptr<osg::Group>& scene, featureType kind, std::string name,
                                    const std::function<osg::ref_ptr<osg::Node>()>& build)
{
    FreshRoots freshRoots(scene);
    const osg::ref_ptr<osg::Group> content = contentGroup(findOrCreateFeatureRootNode(scene, kind, true));
    if (!content) return nullptr;

    const osg::ref_ptr<osg::Node> feature = build();
    feature->setName(name);
    appendChild(*content, feature);
    removeFormerChildren(*content, name);
    freshRoots.keep();
    return feature;
}

} // namespace KelvOsgTools::detail
