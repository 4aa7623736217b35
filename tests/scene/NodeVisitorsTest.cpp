#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include <gtest/gtest.h>

#include <osg/MatrixTransform>
#include <osg/Switch>
#include <osg/ValueObject>
#include <osg/observer_ptr>

#include <QTextCodec>

#include <type_traits>

namespace {
using namespace KelvOsgTools;
using kelvtest::groupWithChildren;
using kelvtest::namedGroup;

using Nodes = std::vector<osg::ref_ptr<osg::Node>>;

Nodes nodesNamed(const QStringList& names, osg::Node& top)
{
    findNodeVisitor search(names);
    top.accept(search);
    return search.m_foundNodes;
}

Nodes nodesNamed(const std::vector<std::string>& names, osg::Node& top)
{
    FindNamedNodeVisitor search(names);
    top.accept(search);
    return search.m_foundNodes;
}

Nodes nodesOfKinds(const std::vector<featureType>& kinds, osg::Node& top)
{
    FindFeatureNodeVisitor search(kinds);
    top.accept(search);
    return search.m_foundNodes;
}

osg::ref_ptr<osg::Group> groupOfKind(int kind, const std::string& name = {})
{
    osg::ref_ptr<osg::Group> group = namedGroup(name);
    group->setUserValue("feature_type", kind);
    return group;
}

/// outer > (middle > inner, sibling), where outer and inner have the same name.
struct NestedNames
{
    osg::ref_ptr<osg::Group> outer = namedGroup("same");
    osg::ref_ptr<osg::Group> middle = namedGroup("middle");
    osg::ref_ptr<osg::Group> inner = namedGroup("same");
    osg::ref_ptr<osg::Group> sibling = namedGroup("same");

    NestedNames()
    {
        outer->addChild(middle);
        middle->addChild(inner);
        outer->addChild(sibling);
    }
};

// Criteria

TEST(FindNodeVisitor, ReadsAStringAsUtf8)
{
    EXPECT_EQ(findNodeVisitor(std::string("Spaltmaß")).m_names, QStringList(QStringLiteral("Spaltmaß")));
}

TEST(FindNodeVisitor, TakesOneNameOrAList)
{
    EXPECT_EQ(findNodeVisitor(QStringLiteral("one")).m_names, QStringList({"one"}));
    EXPECT_EQ(findNodeVisitor(QStringList{"one", "two"}).m_names, QStringList({"one", "two"}));
}

TEST(FindNamedNodeVisitor, TakesStringsAsTheyAre)
{
    const std::vector<std::string> names = {"b", "a", "\xff"};
    EXPECT_EQ(FindNamedNodeVisitor(names).m_names, names);
}

TEST(FindNamedNodeVisitor, ConvertsQtNamesToUtf8InOrder)
{
    const FindNamedNodeVisitor search(QStringList{QStringLiteral("Spaltmaß"), QStringLiteral("测量")});
    EXPECT_EQ(search.m_names, (std::vector<std::string>{u8"Spaltmaß", u8"测量"}));
}

TEST(FindFeatureNodeVisitor, TakesItsKinds)
{
    const std::vector<featureType> kinds = {featurePlane, featureDot};
    EXPECT_EQ(FindFeatureNodeVisitor(kinds).m_featureTypes, kinds);
}

TEST(NodeVisitors, StartWithoutFoundNodes)
{
    EXPECT_TRUE(findNodeVisitor(QStringLiteral("one")).m_foundNodes.empty());
    EXPECT_TRUE(FindNamedNodeVisitor(QStringList{"one"}).m_foundNodes.empty());
    EXPECT_TRUE(FindFeatureNodeVisitor({featureDot}).m_foundNodes.empty());
}

template <typename Visitor>
class AnyNodeVisitor : public ::testing::Test
{};
using AllVisitors = ::testing::Types<findNodeVisitor, FindNamedNodeVisitor, FindFeatureNodeVisitor>;
TYPED_TEST_SUITE(AnyNodeVisitor, AllVisitors);

TYPED_TEST(AnyNodeVisitor, IsANodeVisitorWithAVirtualDestructor)
{
    static_assert(std::is_base_of_v<osg::NodeVisitor, TypeParam>);
    static_assert(std::has_virtual_destructor_v<TypeParam>);
}

// What the three visitors do alike

/// A visitor of each class that finds the nodes named "same" of NestedNames.
template <typename Visitor>
Visitor seekingSame();
template <>
findNodeVisitor seekingSame()
{
    return findNodeVisitor(QStringLiteral("same"));
}
template <>
FindNamedNodeVisitor seekingSame()
{
    return FindNamedNodeVisitor(QStringList{"same"});
}
template <>
FindFeatureNodeVisitor seekingSame()
{
    return FindFeatureNodeVisitor({featureDot});
}

NestedNames nestedDots()
{
    NestedNames nodes;
    for (const auto& node : {nodes.outer, nodes.inner, nodes.sibling}) node->setUserValue("feature_type", 1);
    return nodes;
}

TYPED_TEST(AnyNodeVisitor, ListsNodesDepthFirstAndSearchesOnBelowAMatch)
{
    const NestedNames nodes = nestedDots();
    TypeParam search = seekingSame<TypeParam>();
    nodes.outer->accept(search);
    EXPECT_EQ(search.m_foundNodes, (Nodes{nodes.outer, nodes.inner, nodes.sibling}));
}

TYPED_TEST(AnyNodeVisitor, FindsSwitchedOffNodes)
{
    const NestedNames nodes = nestedDots();
    const osg::ref_ptr<osg::Switch> hidden = new osg::Switch;
    hidden->addChild(nodes.outer, false);
    TypeParam search = seekingSame<TypeParam>();
    hidden->accept(search);
    EXPECT_EQ(search.m_foundNodes.size(), 3u);
}

TYPED_TEST(AnyNodeVisitor, KeepsFoundNodesAlive)
{
    osg::ref_ptr<osg::Group> node = groupOfKind(featureDot, "same");
    const osg::observer_ptr<osg::Group> observed = node.get();
    {
        TypeParam search = seekingSame<TypeParam>();
        node->accept(search);
        node = nullptr;
        EXPECT_TRUE(observed.valid());
    }
    EXPECT_FALSE(observed.valid());
}

TYPED_TEST(AnyNodeVisitor, AddsToWhatAnEarlierSearchFound)
{
    const NestedNames nodes = nestedDots();
    TypeParam search = seekingSame<TypeParam>();
    nodes.sibling->accept(search);
    nodes.inner->accept(search);
    EXPECT_EQ(search.m_foundNodes, (Nodes{nodes.sibling, nodes.inner}));
}

TYPED_TEST(AnyNodeVisitor, GivesItsCopyCriteriaAndFoundNodes)
{
    const NestedNames nodes = nestedDots();
    TypeParam search = seekingSame<TypeParam>();
    nodes.outer->accept(search);
    TypeParam copy(search);
    EXPECT_EQ(copy.m_foundNodes, search.m_foundNodes);

    copy.m_foundNodes.clear();
    nodes.outer->accept(copy);
    EXPECT_EQ(copy.m_foundNodes.size(), 3u);
}

TYPED_TEST(AnyNodeVisitor, LeavesItsCopyAloneAfterwards)
{
    const NestedNames nodes = nestedDots();
    TypeParam search = seekingSame<TypeParam>();
    const TypeParam copy(search);
    nodes.outer->accept(search);
    EXPECT_TRUE(copy.m_foundNodes.empty());
}

struct CountingGroup : osg::Group
{
    void traverse(osg::NodeVisitor& visitor) override
    {
        ++traversals;
        osg::Group::traverse(visitor);
    }
    int traversals = 0;
};

template <typename Visitor>
Visitor seekingNothing();
template <>
findNodeVisitor seekingNothing()
{
    return findNodeVisitor(QStringList());
}
template <>
FindNamedNodeVisitor seekingNothing()
{
    return FindNamedNodeVisitor(std::vector<std::string>());
}
template <>
FindFeatureNodeVisitor seekingNothing()
{
    return FindFeatureNodeVisitor(std::vector<featureType>());
}

TYPED_TEST(AnyNodeVisitor, FindsNothingWithoutCriteriaYetTraversesAll)
{
    const osg::ref_ptr<CountingGroup> top = new CountingGroup;
    const osg::ref_ptr<CountingGroup> below = new CountingGroup;
    top->addChild(below);
    TypeParam search = seekingNothing<TypeParam>();
    top->accept(search);
    EXPECT_TRUE(search.m_foundNodes.empty());
    EXPECT_EQ(top->traversals, 1);
    EXPECT_EQ(below->traversals, 1);
}

// Names

TEST(FindNodeVisitor, ListsANodeOnceForEveryEqualName)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a", "b"});
    osg::Node* const a = parent->getChild(0);
    osg::Node* const b = parent->getChild(1);
    EXPECT_EQ(nodesNamed(QStringList{"a", "b", "a"}, *parent), (Nodes{a, a, b}));
}

TEST(FindNamedNodeVisitor, ListsANodeOnceForEveryEqualName)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a", "b"});
    osg::Node* const a = parent->getChild(0);
    osg::Node* const b = parent->getChild(1);
    EXPECT_EQ(nodesNamed(std::vector<std::string>{"a", "b", "a"}, *parent), (Nodes{a, a, b}));
}

TEST(NameVisitors, CompareTheWholeNameAndItsCase)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"Dot", "dot-1", "do", "dot ", " dot", ""});
    EXPECT_TRUE(nodesNamed(QStringList{"dot"}, *parent).empty());
    EXPECT_TRUE(nodesNamed(std::vector<std::string>{"dot"}, *parent).empty());
}

TEST(NameVisitors, FindNodesWithoutANameByTheEmptyName)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"a", ""});
    parent->setName("top");
    EXPECT_EQ(nodesNamed(QStringList{""}, *parent), (Nodes{parent->getChild(1)}));
    EXPECT_EQ(nodesNamed(std::vector<std::string>{""}, *parent), (Nodes{parent->getChild(1)}));
}

class NameVisitorsInAnyScript : public ::testing::TestWithParam<const char*>
{};

TEST_P(NameVisitorsInAnyScript, FindTheName)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"other", GetParam()});
    const Nodes expected = {parent->getChild(1)};
    EXPECT_EQ(nodesNamed(QStringList{QString::fromUtf8(GetParam())}, *parent), expected);
    EXPECT_EQ(nodesNamed(std::vector<std::string>{GetParam()}, *parent), expected);

    findNodeVisitor byUtf8{std::string(GetParam())};
    parent->accept(byUtf8);
    EXPECT_EQ(byUtf8.m_foundNodes, expected);
}

INSTANTIATE_TEST_SUITE_P(Scripts, NameVisitorsInAnyScript,
                         ::testing::Values("Spaltmaß größer", "测量点一", "نقطة القياس", "𝛥-gap"));

TEST(FindNamedNodeVisitor, FindsNamesThatAreNoValidText)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"\xc3", "\xff\xfe"});
    EXPECT_EQ(nodesNamed(std::vector<std::string>{"\xff\xfe"}, *parent), (Nodes{parent->getChild(1)}));
}

TEST(FindNodeVisitor, ReadsNodeNamesInTheLocalEncoding)
{
    const osg::ref_ptr<osg::Group> parent = groupWithChildren({"Spaltma\xdf"});
    QTextCodec* const before = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    const Nodes found = nodesNamed(QStringList{QStringLiteral("Spaltmaß")}, *parent);
    QTextCodec::setCodecForLocale(before);
    EXPECT_EQ(found, (Nodes{parent->getChild(0)}));
}

TEST(FindNodeVisitor, ReportsTheDotRootWhileItIsOff)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, featureDot, true);
    switchFeatureRoot(scene, false, featureAll);
    EXPECT_EQ(nodesNamed(QStringList{"featureDotData"}, *findOrCreateFeatureRootNode(scene, featureAll, false)),
              (Nodes{root}));
}

// Kinds

TEST(FindFeatureNodeVisitor, ListsKindsInterleavedAsTheyOccur)
{
    const osg::ref_ptr<osg::Group> top = groupOfKind(featureTable);
    for (const int kind : {2, 1, 3, 1, 5, 2}) top->addChild(groupOfKind(kind));
    EXPECT_EQ(nodesOfKinds({featureDot, featureLine}, *top),
              (Nodes{top->getChild(0), top->getChild(1), top->getChild(3), top->getChild(5)}));
}

TEST(FindFeatureNodeVisitor, ListsANodeOnceForEveryEqualKind)
{
    const osg::ref_ptr<osg::Group> dot = groupOfKind(featureDot);
    EXPECT_EQ(nodesOfKinds({featureDot, featureLine, featureDot}, *dot), (Nodes{dot, dot}));
}

TEST(FindFeatureNodeVisitor, CollectsUnmarkedNodesWhenSeekingAll)
{
    const osg::ref_ptr<osg::Group> top = namedGroup("top");
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform;
    const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    top->addChild(transform);
    transform->addChild(geode);
    transform->addChild(groupOfKind(featureDot));
    top->addChild(groupOfKind(featureAll));
    EXPECT_EQ(nodesOfKinds({featureAll}, *top), (Nodes{top, transform, geode, top->getChild(1)}));
}

TEST(FindFeatureNodeVisitor, NeverListsNodesThatAreMerelyPartOfAFeature)
{
    const osg::ref_ptr<osg::Group> part = groupOfKind(-1);
    EXPECT_TRUE(
        nodesOfKinds({featureAll, featureDot, featureLine, featurePlane, featureTable, featureFlagDot}, *part).empty());
}

TEST(FindFeatureNodeVisitor, ReadsNoKindFromANameOrFromOtherUserValues)
{
    const osg::ref_ptr<osg::Group> node = namedGroup("feature_type");
    node->setUserValue("featureType", 1);
    node->setUserValue("tmpData", 1);
    EXPECT_TRUE(nodesOfKinds({featureDot}, *node).empty());
    EXPECT_EQ(nodesOfKinds({featureAll}, *node), (Nodes{node}));
}

template <typename Value>
class KindOfWrongType : public ::testing::Test
{};
using NoInts = ::testing::Types<bool, char, unsigned char, short, unsigned short, unsigned int, float, double>;
TYPED_TEST_SUITE(KindOfWrongType, NoInts);

TYPED_TEST(KindOfWrongType, CountsAsNoFeature)
{
    const osg::ref_ptr<osg::Group> node = new osg::Group;
    node->setUserValue("feature_type", static_cast<TypeParam>(1));
    EXPECT_TRUE(nodesOfKinds({featureDot}, *node).empty());
    EXPECT_EQ(nodesOfKinds({featureAll}, *node), (Nodes{node}));
}

TEST(FindFeatureNodeVisitor, TakesAKindThatIsAStringForNoFeature)
{
    const osg::ref_ptr<osg::Group> node = new osg::Group;
    node->setUserValue("feature_type", std::string("1"));
    EXPECT_TRUE(nodesOfKinds({featureDot}, *node).empty());
    EXPECT_EQ(nodesOfKinds({featureAll}, *node), (Nodes{node}));
}

TEST(FindFeatureNodeVisitor, TakesAnObjectOfThatNameThatIsNoValueForNoFeature)
{
    const osg::ref_ptr<osg::Group> node = new osg::Group;
    node->getOrCreateUserDataContainer()->addUserObject(namedGroup("feature_type"));
    EXPECT_EQ(nodesOfKinds({featureAll}, *node), (Nodes{node}));
}

TEST(FindFeatureNodeVisitor, ReadsTheFirstOfTwoValuesOfThatName)
{
    const osg::ref_ptr<osg::Group> node = new osg::Group;
    osg::UserDataContainer& values = *node->getOrCreateUserDataContainer();
    values.addUserObject(new osg::BoolValueObject("feature_type", true));
    values.addUserObject(new osg::IntValueObject("feature_type", 1));
    EXPECT_TRUE(nodesOfKinds({featureDot}, *node).empty());
}

TEST(FindFeatureNodeVisitor, SeeksValuesThatAreNoKindToo)
{
    const osg::ref_ptr<osg::Group> node = groupOfKind(99);
    EXPECT_EQ(nodesOfKinds({static_cast<featureType>(99)}, *node), (Nodes{node}));
}

TEST(FindFeatureNodeVisitor, FindsTheFeaturesOfARealScene)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const Nodes dots = {kelvtest::addDot(scene, "dot 1"), kelvtest::addDot(scene, "dot 2")};
    const Nodes planes = {kelvtest::addPlane(scene, "plane")};
    const osg::ref_ptr<osg::Group> line = kelvtest::addLine(scene, "line");
    EXPECT_EQ(nodesOfKinds({featureDot}, *scene), dots);
    EXPECT_EQ(nodesOfKinds({featurePlane}, *scene), planes);
    EXPECT_EQ(nodesOfKinds({featureLine}, *scene), (Nodes{line, kelvtest::firstBelow(*line, "arrowLineNode")}));
    EXPECT_EQ(nodesOfKinds({featureTable}, *scene).size(), 4u);
}

} // namespace
