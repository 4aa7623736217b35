#include "picking/TablePick.h"

#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/UserValues.h"
#include "picking/CountedGroup.h"
#include "picking/PickingViewers.h"
#include "support/NodeBuilders.h"
#include "support/ViewerBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/ValueObject>

#include <gtest/gtest.h>

using namespace KelvOsgTools;
using namespace kelvtest;

namespace {

constexpr float kAboveAnchor = 15.0f; // inside every label, whose lower edge is 10 pixels up

/// A scene for picking in a window of 200 by 200 pixels, (0, 0) of the world in the middle. What is
/// added to features hangs below "featureData".
struct LabelScene
{
    explicit LabelScene(const osg::Matrixd& matrix = osg::Matrixd())
        : mesh(meshScene(new osg::Group, matrix)),
          features(namedGroup("featureData")),
          viewer(pixelViewer(mesh.root, 200, 200))
    {
        mesh.root->addChild(features);
    }

    std::optional<detail::LabelledFeature> pick(const QList<QVariant>& list, float x, float y) const
    {
        return detail::pickFeatureTable(viewer, list, x, y);
    }

    /// Name of what is picked just above the middle of the window; "none" for nothing.
    std::string pickedName(const QList<QVariant>& list) const
    {
        const auto picked = pick(list, 100.0f, 100.0f + kAboveAnchor);
        return picked ? picked->node->getName() : "none";
    }

    MeshScene mesh;
    osg::ref_ptr<osg::Group> features;
    osg::ref_ptr<osgViewer::Viewer> viewer;
};

osg::ref_ptr<CTableMeta> label(int renderIndex, const osg::Vec3f& place = osg::Vec3f())
{
    CTableMeta::structTableMeta meta;
    meta.pos = place;
    meta.renderIndex = renderIndex;
    return new CTableMeta(meta);
}

/// A node of that name with a label in the middle of the window.
osg::ref_ptr<osg::Group> feature(const std::string& name, int renderIndex = 1)
{
    osg::ref_ptr<osg::Group> group = namedGroup(name);
    group->addChild(label(renderIndex));
    return group;
}

float labelWidth()
{
    const osg::ref_ptr<CTableMeta> table = label(1);
    const osg::Drawable& fill = *table->getChild(0)->asGroup()->getChild(1)->asDrawable();
    return fill.getBoundingBox().xMax() - fill.getBoundingBox().xMin();
}

} // namespace

TEST(LabelPick, FindsTheListedFeatureUnderThePosition)
{
    LabelScene scene;
    const auto dot = feature("dot");
    scene.features->addChild(dot);
    const auto picked = scene.pick(listOf({"dot"}), 100.0f, 115.0f);
    ASSERT_TRUE(picked);
    EXPECT_EQ(picked->node, dot);
}

TEST(LabelPick, FindsEachOfHundreds)
{
    LabelScene scene;
    QStringList uids;
    for (int i = 0; i < 400; ++i) { // 200 pixels apart, so that one of them is in the window
        uids.append(QString("dot-%1").arg(i));
        const osg::ref_ptr<osg::Group> dot = namedGroup(uids.back().toStdString());
        dot->addChild(label(1, osg::Vec3f(200.0f * static_cast<float>(i), 0, 0)));
        scene.features->addChild(dot);
    }
    for (int i = 0; i < 400; i += 57) {
        scene.viewer->getCamera()->setViewMatrix(osg::Matrixd::translate(-200.0 * i, 0, -100));
        EXPECT_EQ(scene.pickedName(listOf(uids)), uids[i].toStdString());
    }
}

TEST(LabelPick, PassesOverWhatIsNotListed)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"other"})), "none");
    EXPECT_EQ(scene.pickedName({}), "none");
}

TEST(LabelPick, GivesTheKindOfTheFeature)
{
    LabelScene scene;
    const auto line = feature("line");
    line->setUserValue("feature_type", 2);
    scene.features->addChild(line);
    EXPECT_EQ(scene.pick(listOf({"line"}), 100.0f, 115.0f)->kind, 2);
}

TEST(LabelPick, GivesKindZeroWithoutAnInt)
{
    LabelScene scene;
    const auto line = feature("line");
    line->setUserValue("feature_type", 2.0f);
    scene.features->addChild(line);
    EXPECT_EQ(scene.pick(listOf({"line"}), 100.0f, 115.0f)->kind, 0);
}

TEST(LabelPick, MissesBesideTheEdgesOfTheLabel)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    const float half = labelWidth() / 2.0f;
    EXPECT_TRUE(scene.pick(listOf({"dot"}), 100.0f + half - 0.5f, 115.0f));
    EXPECT_FALSE(scene.pick(listOf({"dot"}), 100.0f + half + 0.5f, 115.0f));
    EXPECT_TRUE(scene.pick(listOf({"dot"}), 100.0f - half + 0.5f, 110.5f));
    EXPECT_FALSE(scene.pick(listOf({"dot"}), 100.0f - half + 0.5f, 109.5f));
}

TEST(LabelPick, TakesAnchorsThroughTheMatrixOfTheMesh)
{
    const osg::Matrixd matrix =
        osg::Matrixd::scale(2, 2, 2) * osg::Matrixd::rotate(osg::PI_2, osg::Z_AXIS) * osg::Matrixd::translate(5, 10, 0);
    LabelScene scene(matrix);
    const auto dot = namedGroup("dot");
    dot->addChild(label(1, osg::Vec3f(20, 0, 0))); // to (40, 0), to (0, 40), to (5, 50)
    scene.features->addChild(dot);
    EXPECT_TRUE(scene.pick(listOf({"dot"}), 105.0f, 150.0f + kAboveAnchor));
    EXPECT_FALSE(scene.pick(listOf({"dot"}), 120.0f, 100.0f + kAboveAnchor));
}

TEST(LabelPick, PrefersTheHigherRenderIndex)
{
    LabelScene scene;
    scene.features->addChild(feature("three", 3));
    scene.features->addChild(feature("five", 5));
    scene.features->addChild(feature("four", 4));
    EXPECT_EQ(scene.pickedName(listOf({"three", "five", "four"})), "five");
}

TEST(LabelPick, PrefersTheEarlierInTheListOfEqualRenderIndices)
{
    LabelScene scene;
    scene.features->addChild(feature("a", 3));
    scene.features->addChild(feature("b", 3));
    EXPECT_EQ(scene.pickedName(listOf({"b", "a"})), "b");
    EXPECT_EQ(scene.pickedName(listOf({"a", "b"})), "a");
}

class UnpickableIndex : public testing::TestWithParam<int>
{};
INSTANTIATE_TEST_SUITE_P(LabelPick, UnpickableIndex, testing::Values(0, -1, -1000));

TEST_P(UnpickableIndex, IsNeverPicked)
{
    LabelScene scene;
    scene.features->addChild(feature("dot", GetParam()));
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, TestsOnlyTheFirstNodeOfAName)
{
    LabelScene scene;
    scene.features->addChild(namedGroup("dot"));
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, TestsOnlyTheFirstNodeOfANameAmongDrawablesToo)
{
    LabelScene scene;
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(new osg::Geometry);
    geode->getChild(0)->setName("dot");
    scene.features->addChild(geode);
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");

    geode->getChild(0)->setNodeMask(0); // not visited, so not the first any more
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "dot");
}

TEST(LabelPick, TestsOnlyTheFirstLabelOfAFeature)
{
    LabelScene scene;
    const auto dot = namedGroup("dot");
    dot->addChild(label(1, osg::Vec3f(0, -80, 0)));
    dot->addChild(label(1));
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, TakesTheFirstNodeNamedLikeALabelEvenIfItIsNone)
{
    LabelScene scene;
    const auto dot = namedGroup("dot");
    dot->addChild(namedGroup("showTableNode"));
    dot->addChild(label(1));
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, TakesADrawableNamedLikeALabelForOne)
{
    LabelScene scene;
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(new osg::Geometry);
    geode->getChild(0)->setName("showTableNode");
    const auto dot = namedGroup("dot");
    dot->addChild(geode);
    dot->addChild(label(1));
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");

    geode->getChild(0)->setNodeMask(0);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "dot");
}

/// A geode of a host that shows visitors none of its children.
struct ClosedGeode : osg::Geode
{
    void traverse(osg::NodeVisitor&) override {}
};

TEST(LabelPick, SeesOfAGeodeWhatItShowsToVisitors)
{
    LabelScene scene;
    const osg::ref_ptr<osg::Geode> closed = new ClosedGeode;
    const osg::ref_ptr<osg::Geode> open = new osg::Geode;
    for (const auto& geode : {closed, open}) geode->addChild(label(1));
    closed->setName("closed");
    open->setName("open");
    scene.features->addChild(closed);
    EXPECT_EQ(scene.pickedName(listOf({"closed"})), "none");
    scene.features->addChild(open);
    EXPECT_EQ(scene.pickedName(listOf({"open"})), "open");
}

TEST(LabelPick, DoesNotKnowALabelOfAnotherName)
{
    LabelScene scene;
    const auto dot = feature("dot");
    dot->getChild(0)->setName("renamed");
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, LetsALabelStandForANestedAndTheOuterFeature)
{
    LabelScene scene;
    const auto outer = namedGroup("outer");
    outer->addChild(feature("inner"));
    scene.features->addChild(outer);
    EXPECT_EQ(scene.pickedName(listOf({"outer", "inner"})), "outer");
    EXPECT_EQ(scene.pickedName(listOf({"inner", "outer"})), "inner");
}

TEST(LabelPick, FindsALabelListedByItsOwnName)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"showTableNode"})), "showTableNode");
}

TEST(LabelPick, FindsTheRootItselfWhenListed)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"featureData"})), "featureData");
}

TEST(LabelPick, FindsALabelWhoseFeatureIsSwitchedOff)
{
    LabelScene scene;
    const osg::ref_ptr<osg::Switch> off = new osg::Switch;
    off->addChild(feature("dot"), false);
    scene.features->addChild(off);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "dot");
}

TEST(LabelPick, DoesNotFindAFeatureThatIsMaskedOut)
{
    LabelScene scene;
    const auto dot = feature("dot");
    dot->setNodeMask(0);
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, ReadsNodeNamesInTheLocalEncoding)
{
    LabelScene scene;
    scene.features->addChild(feature("Gr\xc3\xb6\xc3\x9f"
                                     "e"));
    EXPECT_TRUE(scene.pick(listOf({QString::fromUtf8("Größe")}), 100.0f, 115.0f));
    EXPECT_FALSE(scene.pick(listOf({"Grosse"}), 100.0f, 115.0f));
}

TEST(LabelPick, SearchesBelowTheFirstFeatureDataOnly)
{
    LabelScene scene;
    const auto second = namedGroup("featureData");
    second->addChild(feature("dot"));
    scene.mesh.root->addChild(second);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, FindsFeatureDataAnywhereBelowTheScene)
{
    LabelScene scene;
    scene.features->setName("elsewhere");
    const auto deep = namedGroup("featureData");
    deep->addChild(feature("dot"));
    scene.features->addChild(deep);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "dot");
}

TEST(LabelPick, NeedsFeatureData)
{
    LabelScene scene;
    scene.features->setName("elsewhere");
    scene.features->addChild(feature("dot"));
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, NeedsMeshDataDirectlyBelowTheScene)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    scene.mesh.meshData->setName("elsewhere");
    scene.mesh.transform->setName("meshData");
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, NeedsAMatrixTransformAsFirstChildOfMeshData)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    scene.mesh.meshData->insertChild(0, new osg::Group);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
    scene.mesh.meshData->removeChildren(0, 2);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, NeedsAViewportWithAnArea)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    scene.viewer->getCamera()->setViewport(100, 100, 0, 0);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
    scene.viewer->getCamera()->setViewport(nullptr);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, PassesOverEntriesThatNameNothing)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    QList<QVariant> list{QVariant(),
                         QVariant(7),
                         QVariant("dot"),
                         QVariantMap(),
                         QVariantMap{{"uid", "dot"}},
                         QVariantMap{{"feature_uid", QVariantList{1, 2}}},
                         QVariantMap{{"feature_uid", "missing"}}};
    EXPECT_EQ(scene.pickedName(list), "none");
    list += listOf({"dot"});
    EXPECT_EQ(scene.pickedName(list), "dot");
}

TEST(LabelPick, NamesNothingWithAnEntryWithoutUidWhereAFeatureHasNoName)
{
    LabelScene scene;
    scene.features->addChild(feature(""));
    EXPECT_EQ(scene.pickedName({QVariantMap(), QVariant()}), "none");
}

TEST(LabelPick, MissesWherePositionsAreNoNumbers)
{
    LabelScene scene;
    scene.features->addChild(feature("dot"));
    EXPECT_FALSE(scene.pick(listOf({"dot"}), NAN, 115.0f));
    EXPECT_FALSE(scene.pick(listOf({"dot"}), 100.0f, INFINITY));
}

TEST(LabelPick, MissesALabelWithoutAPlace)
{
    LabelScene scene;
    const auto dot = namedGroup("dot");
    dot->addChild(label(1, osg::Vec3f(NAN, 0, 0)));
    scene.features->addChild(dot);
    EXPECT_EQ(scene.pickedName(listOf({"dot"})), "none");
}

TEST(LabelPick, VisitsANodeOnceHoweverManyAreListed)
{
    LabelScene scene;
    const osg::ref_ptr<CountedGroup> counted = new CountedGroup;
    scene.features->addChild(counted);
    QStringList uids;
    for (int i = 0; i < 50; ++i) {
        uids.append(QString("dot-%1").arg(i));
        counted->addChild(feature(uids.back().toStdString(), 1 + i % 3));
    }
    EXPECT_TRUE(scene.pick(listOf(uids + uids), 100.0f, 115.0f));
    EXPECT_EQ(counted->count, 1);
    EXPECT_FALSE(scene.pick(listOf(uids), 20.0f, 20.0f));
    EXPECT_EQ(counted->count, 2);
}
