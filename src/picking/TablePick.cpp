#include "picking/TablePick.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/SceneMarks.h"
#include "foundation/UserValues.h"
#include "picking/ListedFeatures.h"
#include "picking/WindowProjection.h"

#include <osg/MatrixTransform>
#include <osg/NodeVisitor>

namespace KelvOsgTools::detail {
namespace {

/// Finds the first node named "featureData", and below it the first node of every listed name with
/// the first label of each. Visits every node at most once, hidden ones too.
class LabelSearch : public osg::NodeVisitor
{
public:
    explicit LabelSearch(ListedFeatures& features)
        : osg::NodeVisitor(osg::NodeVisitor::TRAVERSE_ALL_CHILDREN), m_features(features)
    {}

    using osg::NodeVisitor::apply;
    void apply(osg::Node& node) override
    {
        if (m_stage == Stage::BelowRoot)
            collect(node);
        else if (m_stage == Stage::BeforeRoot)
            seekRoot(node);
    }

private:
    enum class Stage
    {
        BeforeRoot,
        BelowRoot,
        AfterRoot
    };

    void seekRoot(osg::Node& node)
    {
        // An ASCII name has one reading in every locale, and no other bytes read as it.
        if (node.getName() != kCommonRootName) {
            traverse(node);
            return;
        }
        m_stage = Stage::BelowRoot;
        collect(node);
        m_stage = Stage::AfterRoot;
    }

    void collect(osg::Node& node)
    {
        ListedFeature* const feature = m_features.claim(node);
        if (feature) m_withoutTable.push_back(feature);
        if (node.getName() == kTableName) giveTable(node);
        traverse(node);
        if (feature && !m_withoutTable.empty() && m_withoutTable.back() == feature) m_withoutTable.pop_back();
    }

    /// The node is the first label below every listed feature around it that has none yet, a
    /// feature that is itself named like a label included.
    void giveTable(osg::Node& node)
    {
        if (m_withoutTable.empty()) return;
        auto* const table = dynamic_cast<CTableMeta*>(&node);
        for (ListedFeature* const feature : m_withoutTable) feature->table = table;
        m_withoutTable.clear();
    }

    ListedFeatures& m_features;
    std::vector<ListedFeature*> m_withoutTable; // features around the present node, outermost first
    Stage m_stage = Stage::BeforeRoot;
};

/// The transform of the mesh that the features hang under too; null if the scene lacks any of it.
const osg::MatrixTransform* meshTransform(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::ref_ptr<osg::Node> mesh = findChildByName(kMeshName, scene);
    const osg::Group* const group = mesh ? mesh->asGroup() : nullptr;
    return group && group->getNumChildren() > 0 ? dynamic_cast<const osg::MatrixTransform*>(group->getChild(0))
                                                : nullptr;
}

/// The highest label at the position, the first of equal ones; null for none.
const ListedFeature* highestAt(const ListedFeatures& features, const osg::Matrixd& toWindow, float x, float y)
{
    const ListedFeature* highest = nullptr;
    int highestIndex = 0; // so that only 1 and more can win
    for (const ListedFeature& feature : features.all()) {
        if (!feature.table || feature.table->getMetaStruct().renderIndex <= highestIndex) continue;
        if (!feature.table->checkClickPointIsInsideTable(toWindow, x, y)) continue;
        highest = &feature;
        highestIndex = feature.table->getMetaStruct().renderIndex;
    }
    return highest;
}

} // namespace

std::optional<LabelledFeature> pickFeatureTable(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x,
                                                float y)
{
    const osg::ref_ptr<osg::Group> scene = sceneGroupOf(viewer);
    if (!scene || !hasWindow(*viewer->getCamera())) return std::nullopt;
    const osg::MatrixTransform* const placement = meshTransform(scene);
    if (!placement) return std::nullopt;

    ListedFeatures listed(features);
    LabelSearch search(listed);
    scene->accept(search);
    const osg::Matrixd toWindow = placement->getMatrix() * worldToWindow(*viewer->getCamera());
    const ListedFeature* const winner = highestAt(listed, toWindow, x, y);
    if (!winner) return std::nullopt;
    return LabelledFeature{winner->node, featureTypeOf(*winner->node).value_or(featureAll)};
}

} // namespace KelvOsgTools::detail
