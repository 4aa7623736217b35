#include "picking/TablePick.h"

#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include "picking/PickingViewers.h"
#include "picking/RandomScene.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/ValueObject>

#include <gtest/gtest.h>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

constexpr int kScenes = 1500;
constexpr int kPositionsPerScene = 4;

const std::vector<std::string>& nodeNames()
{
    static const std::vector<std::string> names{"a",           "b", "c",        "d",    "e",           "f",
                                                "g",           "h", "aa",       "bb",   "longer-name", "showTableNode",
                                                "featureData", "",  "\xc3\xa4", "\xff", "\xc3\xa4\xff"};
    return names;
}

template <typename T>
const T& oneOf(Random& random, const std::vector<T>& values)
{
    return values[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random)];
}

/// Labels take long to build, so the scenes share some: in all layouts and places around the
/// middle of the window, of few indices, so that they overlap and tie.
const std::vector<osg::ref_ptr<CTableMeta>>& labels()
{
    static const std::vector<osg::ref_ptr<CTableMeta>> pool = [] {
        Random random(1);
        std::vector<osg::ref_ptr<CTableMeta>> built;
        for (int i = 0; i < 40; ++i) {
            CTableMeta::structTableMeta meta;
            meta.pos.set(float(between(random, -20, 20)), float(between(random, -20, 5)), 0.0f);
            meta.renderIndex = i % 5 - 1;
            meta.isAutoScale = i % 7 != 0;
            built.push_back(new CTableMeta(meta));
        }
        return built;
    }();
    return pool;
}

/// Traverses its children last first.
class HostGroup : public osg::Group
{
public:
    void traverse(osg::NodeVisitor& visitor) override
    {
        for (unsigned int i = getNumChildren(); i-- > 0;) getChild(i)->accept(visitor);
    }
};

osg::ref_ptr<osg::Group> randomGroup(Random& random)
{
    if (oneIn(random, 5)) return new osg::Switch;
    if (oneIn(random, 5)) return new osg::Geode;
    if (oneIn(random, 8)) return new HostGroup;
    if (oneIn(random, 5)) return new CAutoScaleSphereMeta(CAutoScaleSphereMeta::structSphereMeta());
    return new osg::Group;
}

void fill(Random& random, osg::Group& group, int depth, std::vector<osg::ref_ptr<osg::Node>>& pool)
{
    const int count = std::uniform_int_distribution<int>(0, 4)(random);
    for (int i = 0; i < count; ++i) {
        osg::ref_ptr<osg::Node> child;
        if (!pool.empty() && oneIn(random, 10))
            child = oneOf(random, pool);
        else if (oneIn(random, 3))
            child = oneOf(random, labels());
        else if (oneIn(random, 4))
            child = new osg::Geometry;
        else {
            const osg::ref_ptr<osg::Group> inner = randomGroup(random);
            if (depth > 0) fill(random, *inner, depth - 1, pool);
            child = inner;
        }
        const bool isLabel = dynamic_cast<CTableMeta*>(child.get()) != nullptr;
        child->setName(isLabel && !oneIn(random, 6) ? "showTableNode" : oneOf(random, nodeNames()));
        child->setNodeMask(oneIn(random, 20) ? 0 : ~0u);
        if (oneIn(random, 4)) child->setUserValue("feature_type", std::uniform_int_distribution<int>(-1, 5)(random));
        group.addChild(child);
        pool.push_back(child);
    }
}

osg::ref_ptr<osg::Group> randomLabelScene(Random& random)
{
    const MeshScene scene = meshScene(new osg::Group, osg::Matrixd::translate(between(random, -5, 5), 0, 0));
    if (oneIn(random, 20)) scene.root->setName("featureData");
    std::vector<osg::ref_ptr<osg::Node>> pool;
    for (int roots = 0; roots < 2; ++roots) {
        const osg::ref_ptr<osg::Group> root = namedGroup(oneIn(random, 8) ? "elsewhere" : "featureData");
        fill(random, *root, 4, pool);
        scene.root->addChild(root);
    }
    return scene.root;
}

QList<QVariant> randomList(Random& random)
{
    QList<QVariant> list;
    for (int i = std::uniform_int_distribution<int>(0, 12)(random); i > 0; --i) {
        if (oneIn(random, 8)) list.append(oneIn(random, 2) ? QVariant(3) : QVariant(QVariantMap()));
        list += listOf({QString::fromLocal8Bit(oneOf(random, nodeNames()).c_str())});
    }
    return list;
}

osg::ref_ptr<osg::Node> firstBelow(osg::Node& top, const QString& name)
{
    findNodeVisitor search(name);
    top.accept(search);
    return search.m_foundNodes.empty() ? nullptr : search.m_foundNodes.front();
}

/// The winner as the rule tells it, one search for every listed name after the other.
osg::ref_ptr<osg::Node> winnerStepByStep(osgViewer::Viewer& viewer, const QList<QVariant>& features, float x, float y)
{
    osg::Group& scene = *viewer.getSceneData()->asGroup();
    const auto& mesh =
        dynamic_cast<osg::MatrixTransform&>(*findChildByName("meshData", &scene)->asGroup()->getChild(0));
    const osg::Camera& camera = *viewer.getCamera();
    const osg::Matrixd toWindow = mesh.getMatrix() * (camera.getViewMatrix() * camera.getProjectionMatrix() *
                                                      camera.getViewport()->computeWindowMatrix());
    const osg::ref_ptr<osg::Node> root = firstBelow(scene, "featureData");
    if (!root) return nullptr;

    int best = 0;
    osg::ref_ptr<osg::Node> winner;
    for (const QVariant& entry : features) {
        if (!entry.toMap().contains("feature_uid")) continue;
        const osg::ref_ptr<osg::Node> feature = firstBelow(*root, entry.toMap().value("feature_uid").toString());
        const osg::ref_ptr<osg::Node> found = feature ? firstBelow(*feature, "showTableNode") : nullptr;
        auto* const table = dynamic_cast<CTableMeta*>(found.get());
        if (!table || !table->checkClickPointIsInsideTable(toWindow, x, y)) continue;
        if (table->getMetaStruct().renderIndex <= best) continue;
        best = table->getMetaStruct().renderIndex;
        winner = feature;
    }
    return winner;
}

} // namespace

TEST(LabelPickInRandomScenes, FindsTheWinnerOfTheStepByStepRule)
{
    int found = 0;
    for (unsigned int seed = 0; seed < kScenes && !HasFailure(); ++seed) {
        Random random(seed);
        const auto viewer = pixelViewer(randomLabelScene(random), 200, 200);
        const QList<QVariant> features = randomList(random);
        for (int i = 0; i < kPositionsPerScene; ++i) {
            const auto x = static_cast<float>(between(random, 70, 130));
            const auto y = static_cast<float>(between(random, 90, 130));
            const osg::ref_ptr<osg::Node> expected = winnerStepByStep(*viewer, features, x, y);
            const auto actual = detail::pickFeatureTable(viewer, features, x, y);
            EXPECT_EQ(actual ? actual->node : nullptr, expected) << "scene " << seed << " at " << x << ", " << y;
            int kind = 0;
            if (expected) expected->getUserValue("feature_type", kind);
            EXPECT_EQ(actual ? actual->kind : 0, kind);
            found += expected ? 1 : 0;
        }
    }
    EXPECT_GT(found, 300) << "the scenes leave nothing to hit";
}
