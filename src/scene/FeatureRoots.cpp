#include "scene/FeatureRoots.h"

#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "foundation/AppendChild.h"
#include "foundation/UserValues.h"
#include "scene/FeatureAssembly.h"

#include <functional>
#include <new>

namespace KelvOsgTools {
namespace detail {

osg::ref_ptr<osg::Group> contentGroup(const osg::Group* node)
{
    if (!node || node->getNumChildren() == 0) return nullptr;
    return const_cast<osg::Group*>(dynamic_cast<const osg::Group*>(node->getChild(0)));
}

osg::ref_ptr<osg::Group> existingContent(const osg::ref_ptr<osg::Group>& scene, featureType kind)
{
    return contentGroup(findOrCreateFeatureRootNode(scene, kind, false));
}

} // namespace detail

namespace {

/// Name of the root of a kind; null for kinds without a root of their own.
const char* rootNameOf(featureType kind)
{
    switch (kind) {
    case featureDot:
        return detail::kDotRootName;
    case featureLine:
        return detail::kLineRootName;
    case featurePlane:
        return detail::kPlaneRootName;
    case featureTable:
        return detail::kTableRootName;
    default:
        return nullptr;
    }
}

bool isDotLineOrPlane(featureType kind)
{
    return kind == featureDot || kind == featureLine || kind == featurePlane;
}

void switchAll(osg::Switch& node, bool on)
{
    if (on)
        node.setAllChildrenOn();
    else
        node.setAllChildrenOff();
}

/// Calls visit with the index of every temporary child, last first, so that it may remove the child.
void forEachTemporaryChild(osg::Group& group, const std::function<void(unsigned int)>& visit)
{
    for (unsigned int i = group.getNumChildren(); i-- > 0;)
        if (const osg::Node* child = group.getChild(i); child && detail::isTemporary(*child)) visit(i);
}

} // namespace

osg::ref_ptr<osg::Node> findOrCreateNode(const std::string& name, osg::ref_ptr<osg::Group> parent, bool create)
try {
    if (!parent) return nullptr;
    if (osg::ref_ptr<osg::Node> found = findChildByName(name, parent); found || !create) return found;

    const osg::ref_ptr<featureBaseNode> created = new featureBaseNode;
    created->setName(name);
    detail::appendChild(*parent, created);
    return created;
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Group> findOrCreateFeatureRootNode(osg::ref_ptr<osg::Group> scene, featureType kind, bool create)
try {
    const osg::ref_ptr<osg::Node> commonRoot = findOrCreateNode(detail::kCommonRootName, scene, create);
    if (!commonRoot) return nullptr;
    if (kind == featureAll) return commonRoot->asGroup();

    const char* const rootName = rootNameOf(kind);
    if (!rootName) return nullptr;
    const osg::ref_ptr<osg::Node> root =
        findOrCreateNode(rootName, detail::contentGroup(commonRoot->asGroup()), create);
    return root ? root->asGroup() : nullptr;
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Node> findChildByName(const std::string& name, osg::ref_ptr<osg::Group> parent)
{
    if (!parent) return nullptr;
    for (unsigned int i = 0; i < parent->getNumChildren(); ++i)
        if (osg::Node* child = parent->getChild(i); child && child->getName() == name) return child;
    return nullptr;
}

osg::ref_ptr<osg::Node> findFeatureByName(const std::string& name, osg::ref_ptr<osg::Group> scene,
                                          osg::ref_ptr<osg::Group>& parentOut)
try {
    const osg::ref_ptr<osg::Group> commonRoot = findOrCreateFeatureRootNode(scene, featureAll, false);
    if (!commonRoot) return nullptr;

    findNodeVisitor search(name);
    commonRoot->accept(search);
    if (search.m_foundNodes.empty()) return nullptr;

    const osg::ref_ptr<osg::Node> found = search.m_foundNodes.front();
    parentOut = found->getNumParents() > 0 ? found->getParent(0) : nullptr;
    return found;
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Node> findFeatureByName(const std::string& name, osg::ref_ptr<osg::Group> scene, featureType kind)
try {
    if (!isDotLineOrPlane(kind)) return nullptr;
    return findChildByName(name, detail::existingContent(scene, kind));
} catch (const std::bad_alloc&) {
    return nullptr;
}

osg::ref_ptr<osg::Node> findOrCreateShpere(const std::string& name, osg::ref_ptr<osg::Group> scene, osg::Vec3f centre)
try {
    return detail::hangFeature(scene, featureDot, name, [&]() -> osg::ref_ptr<osg::Node> {
        CSphereMeta::structSphereMeta meta;
        meta.cneterPos = centre;
        meta.radius = 1.0f;
        meta.nodeName = detail::kSphereRecordName;
        meta.ratio = 3.0f;
        meta.color.set(0.0f, 0.0f, 0.8f, 0.8f);
        const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
        return maker->CreateSphereMeta(meta);
    });
} catch (const std::bad_alloc&) {
    return nullptr;
}

bool switchFeatureRoot(osg::ref_ptr<osg::Group> scene, bool on, featureType kind)
{
    if (!scene) return false;
    // Labels have no root to hide alone: every kind without features of its own stands for all.
    const osg::ref_ptr<osg::Group> target =
        findOrCreateFeatureRootNode(scene, isDotLineOrPlane(kind) ? kind : featureAll, false);
    if (auto* const root = dynamic_cast<osg::Switch*>(target.get())) switchAll(*root, on);
    return true;
}

bool switchFeatureRootFlagNode(osg::ref_ptr<osg::Group> scene, bool on, featureType kind)
{
    if (!isDotLineOrPlane(kind)) return false;
    const osg::ref_ptr<osg::Group> content = detail::existingContent(scene, kind);
    if (!content) return false;

    forEachTemporaryChild(*content, [&](unsigned int index) {
        if (auto* const feature = dynamic_cast<osg::Switch*>(content->getChild(index))) switchAll(*feature, on);
    });
    return true;
}

bool removeFeatureRoot(osg::ref_ptr<osg::Group> scene, featureType kind)
{
    if (!scene) return false;
    const osg::ref_ptr<osg::Group> commonRoot = findOrCreateFeatureRootNode(scene, featureAll, false);
    if (!commonRoot) return true;

    if (kind == featureAll) commonRoot->removeChildren(0, 1);
    // The root of a kind hangs under the common root's transform, not under the common root, so this
    // removes nothing: hosts rely on the root of one kind surviving.
    else if (isDotLineOrPlane(kind))
        commonRoot->removeChild(findOrCreateFeatureRootNode(scene, kind, false));
    return true;
}

bool clearFeatureRootTempNode(osg::ref_ptr<osg::Group> scene, featureType kind)
{
    if (kind == featureAll) {
        for (const featureType each : {featureDot, featureLine, featurePlane}) clearFeatureRootTempNode(scene, each);
        return false; // although all three were cleared: hosts rely on this answer
    }
    if (!isDotLineOrPlane(kind)) return false;
    const osg::ref_ptr<osg::Group> content = detail::existingContent(scene, kind);
    if (!content) return false;

    forEachTemporaryChild(*content, [&](unsigned int index) { content->removeChildren(index, 1); });
    return true;
}

} // namespace KelvOsgTools
