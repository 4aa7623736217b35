#include "scene/TreeWalk.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "support/SceneQueries.h"

#include <osg/Geometry>
#include <osg/MatrixTransform>
#include <osg/Switch>
#include <osg/ValueObject>
#include <osg/io_utils>

#include <algorithm>
#include <chrono>
#include <limits>
#include <sstream>
#include <stdexcept>

using namespace KelvOsgTools;

namespace kelvtest {
namespace {

constexpr std::size_t kMaxHeld = 6;
constexpr std::size_t kMaxNodes = 700;      // then a scene starts anew
constexpr std::size_t kMaxWalkLength = 900; // of all scenes: a group of several parents is walked several times

const std::vector<std::string>& featureNames()
{
    static const std::vector<std::string> names = {"a", "b", "c", "dot-1", "line", "точка", ""};
    return names;
}

/// Names with a meaning in the tree.
const std::vector<std::string>& specialNames()
{
    static const std::vector<std::string> names = {"featureData",      "featureDotData",   "featureLineData",
                                                   "featurePlaneData", "featureTableData", "MatrixTransform",
                                                   "showTableNode",    "textNode",         "drawableShpere",
                                                   "arrowLineNode",    "normalArrow1",     "normalArrow2",
                                                   "cylinderDrawable", "squareNode",       "coneDrawable",
                                                   "featureNodeBase",  "SphereMeta",       "plane"};
    return names;
}

std::string shownAs(const ModelNode* node)
{
    return node ? "#" + std::to_string(node->id) + " '" + node->name + "'" : "null";
}

QString toQt(const std::string& text)
{
    return QString::fromStdString(text);
}

osg::Node* realOf(const ModelNode* node)
{
    return node ? node->real : nullptr;
}

osg::Group* groupOf(const ModelNode* node)
{
    return node ? node->real->asGroup() : nullptr;
}

bool isFeatureOrLabel(Sort sort)
{
    return isPrimitive(sort) || sort == Sort::Label;
}

bool isLabel(Sort sort)
{
    return sort == Sort::Label;
}

bool hasCopyConstructor(Sort sort)
{
    return isFeatureOrLabel(sort) || sort == Sort::Base;
}

bool isGroupForHosts(Sort sort)
{
    return isGroup(sort) && sort != Sort::Geode;
}

osg::ref_ptr<osg::Node> copyOf(const ModelNode& node)
{
    const osg::Node& real = *node.real;
    switch (node.sort) {
    case Sort::Dot:
        return new CAutoScaleSphereMeta(dynamic_cast<const CAutoScaleSphereMeta&>(real));
    case Sort::Flag:
        return new CFlagAutoScaleSphereMeta(dynamic_cast<const CFlagAutoScaleSphereMeta&>(real));
    case Sort::Line:
        return new CArrowMeta(dynamic_cast<const CArrowMeta&>(real));
    case Sort::Plane:
        return new CPlaneMeta(dynamic_cast<const CPlaneMeta&>(real));
    case Sort::Label:
        return new CTableMeta(dynamic_cast<const CTableMeta&>(real));
    default:
        return new featureBaseNode(dynamic_cast<const featureBaseNode&>(real));
    }
}

osg::ref_ptr<osg::Node> hostNode(Sort sort)
{
    if (sort == Sort::Switch) return new osg::Switch;
    if (sort == Sort::Transform) return new osg::MatrixTransform;
    if (sort == Sort::Base) return new featureBaseNode;
    if (sort == Sort::Geometry) return new osg::Geometry;
    return new osg::Group;
}

bool addTableTo(const ModelNode& primitive, const osg::ref_ptr<osg::Group>& table)
{
    osg::Node& real = *primitive.real;
    if (primitive.sort == Sort::Dot) return dynamic_cast<CAutoScaleSphereMeta&>(real).addTable(table);
    if (primitive.sort == Sort::Flag) return dynamic_cast<CFlagAutoScaleSphereMeta&>(real).addTable(table);
    if (primitive.sort == Sort::Line) return dynamic_cast<CArrowMeta&>(real).addTable(table);
    return dynamic_cast<CPlaneMeta&>(real).addTable(table);
}

std::string unequal(bool expected, bool actual)
{
    return expected == actual ? std::string() : std::string("answered ") + (actual ? "true" : "false");
}

} // namespace

/// The numbers of a step, one after the other, as what a call needs.
class TreeWalk::Numbers
{
public:
    explicit Numbers(const Step& step) : m_step(step) {}

    unsigned int below(std::size_t limit) { return number() % static_cast<unsigned int>(limit); }
    bool yes() { return below(2) == 1; }

    std::string featureName()
    {
        const unsigned int n = below(10);
        if (n < 7) return featureNames()[n];
        return specialNames()[below(specialNames().size())];
    }

    std::string anyName()
    {
        const unsigned int n = below(featureNames().size() + specialNames().size());
        return n < featureNames().size() ? featureNames()[n] : specialNames()[n - featureNames().size()];
    }

    featureType kind() { return static_cast<featureType>(static_cast<int>(below(8)) - 1); }
    int state() { return static_cast<int>(below(6)) - 1; }

    float coordinate()
    {
        constexpr float kInfinity = std::numeric_limits<float>::infinity();
        constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
        static const float values[] = {0,  1,  -5,  100,   1e6f, 0.25f,     3,          7,
                                       -2, 12, -40, 1e-6f, 1.5f, kInfinity, -kInfinity, kNaN};
        const unsigned int n = below(96);
        return values[n < 16 ? n : n % 13];
    }

    osg::Vec3f point()
    {
        const float x = coordinate();
        const float y = coordinate();
        return {x, y, coordinate()};
    }

    TreeModel::LabelArguments label()
    {
        static const QString prefixes[] = {"Point", "line", "Plane", "P", "", "测量"};
        static const int suffixes[] = {-1, 0, 12, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
        const int renderIndex = suffixes[below(5)];
        const QString prefix = prefixes[below(6)];
        return {renderIndex, prefix, suffixes[below(5)]};
    }

    osg::Vec4f colour()
    {
        const unsigned int n = below(8);
        return {n & 1 ? 1.0f : 0.0f, n & 2 ? 1.0f : 0.25f, n & 4 ? 1.0f : 0.0f, 0.5f};
    }

private:
    /// What the step tells; numbers mixed from those once they are used up.
    unsigned int number()
    {
        const std::size_t count = m_step.numbers.size();
        const unsigned int told = m_step.numbers[m_used % count];
        const auto round = static_cast<unsigned int>(m_used++ / count);
        return round == 0 ? told : told / (7 * round) + 31 * round;
    }

    const Step& m_step;
    std::size_t m_used = 0;
};

const std::vector<TreeWalk::WeightedCall>& TreeWalk::calls()
{
    static const std::vector<WeightedCall> all = {
        {&TreeWalk::createDot, 8},      {&TreeWalk::createFlag, 6},     {&TreeWalk::createLine, 6},
        {&TreeWalk::createPlane, 6},    {&TreeWalk::createSphere, 3},   {&TreeWalk::createLineFromRecord, 2},
        {&TreeWalk::createLabel, 2},    {&TreeWalk::findOrCreate, 3},   {&TreeWalk::findOrCreateRoot, 4},
        {&TreeWalk::findChild, 3},      {&TreeWalk::findAnywhere, 5},   {&TreeWalk::findOfKind, 4},
        {&TreeWalk::search, 4},         {&TreeWalk::switchRoot, 5},     {&TreeWalk::switchTemporary, 5},
        {&TreeWalk::removeRoot, 2},     {&TreeWalk::clearTemporary, 4}, {&TreeWalk::setState, 12},
        {&TreeWalk::updateLanguage, 4}, {&TreeWalk::addTable, 3},       {&TreeWalk::copy, 3},
        {&TreeWalk::clone, 3},          {&TreeWalk::configure, 2},      {&TreeWalk::hostRename, 5},
        {&TreeWalk::hostRemove, 6},     {&TreeWalk::hostAdd, 6},        {&TreeWalk::hostReplace, 2},
        {&TreeWalk::hostMake, 3},       {&TreeWalk::hostMark, 8},       {&TreeWalk::hostForget, 2},
        {&TreeWalk::hostNewScene, 1},   {&TreeWalk::tamper, 0}};
    return all;
}

TreeWalk::TreeWalk(std::ostream* log) : m_log(log), m_formerConfig(*CFeatureConfig::sigleFeatureConfig())
{
    for (auto& [node, real] : m_scenes) {
        real = new osg::Group;
        node = m_model.make(Sort::Group);
        m_model.bind(*node, *real);
    }
}

TreeWalk::~TreeWalk()
{
    *CFeatureConfig::sigleFeatureConfig() = m_formerConfig;
}

std::string TreeWalk::take(const Step& step)
{
    Numbers numbers(step);
    const bool isFull = m_model.nodes().size() > kMaxNodes;
    const Call call = isFull ? &TreeWalk::hostNewScene : calls()[step.call].call;
    const std::string wrong = (this->*call)(numbers);
    const std::string difference = m_model.check(held());
    return wrong.empty() ? difference : wrong;
}

std::string TreeWalk::end()
{
    for (const auto& [node, real] : m_scenes)
        if (!isFiniteEverywhere(*real)) return "not finite everywhere";
    m_held.clear();
    for (auto& [node, real] : m_scenes) real = nullptr;
    return m_model.check({});
}

// Choices.

std::vector<ModelNode*> TreeWalk::held() const
{
    std::vector<ModelNode*> nodes;
    for (const auto& [node, real] : m_scenes) nodes.push_back(node);
    for (const auto& [node, real] : m_held) nodes.push_back(node);
    return nodes;
}

void TreeWalk::hold(ModelNode* node, osg::Node* real)
{
    m_held.emplace_back(node, real);
    if (m_held.size() > kMaxHeld) m_held.erase(m_held.begin());
}

ModelNode* TreeWalk::aNodeOf(Numbers& next, bool (*isWanted)(Sort)) const
{
    std::vector<ModelNode*> wanted;
    for (const auto& node : m_model.nodes())
        if (isWanted(node->sort)) wanted.push_back(node.get());
    const unsigned int index = next.below(1u << 30);
    return wanted.empty() ? nullptr : wanted[index % wanted.size()];
}

ModelNode* TreeWalk::aNode(Numbers& next) const
{
    return m_model.nodes()[next.below(m_model.nodes().size())].get();
}

ModelNode* TreeWalk::aGroup(Numbers& next) const
{
    return next.below(20) == 0 ? nullptr : aNodeOf(next, isGroupForHosts);
}

ModelNode* TreeWalk::aScene(Numbers& next) const
{
    const unsigned int n = next.below(24);
    if (n == 0) return nullptr;
    return n < 3 ? aNodeOf(next, isGroupForHosts) : m_scenes[n % 3].first;
}

void TreeWalk::tell(const std::string& call) const
{
    if (m_log) *m_log << call << std::endl;
}

std::string TreeWalk::compareResult(ModelNode* expected, const osg::ref_ptr<osg::Node>& actual, bool keep)
{
    if (!expected != !actual) return actual ? "gave a node instead of null" : "gave null";
    if (!expected) return {};
    if (isPrimitive(expected->sort) && !expected->real) ++m_featuresMade;
    if (expected->real && expected->real != actual) return "gave another node than " + shownAs(expected);
    if (!expected->real && m_model.known(actual)) return "gave a node that was there before";
    if (!expected->real) m_model.bind(*expected, *actual);
    if (keep) hold(expected, actual);
    return {};
}

// Calls of the library.

std::string TreeWalk::createDot(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.featureName();
    const int state = next.state();
    const osg::Vec3f point = next.point();
    const TreeModel::LabelArguments label = next.label();
    const bool isBottom = next.yes();
    const bool keep = next.below(8) == 0;
    std::ostringstream call;
    call << "create dot '" << name << "' in " << shownAs(scene) << " at " << point << ", state " << state;
    tell(call.str());

    ModelNode* const expected = m_model.createDot(name, scene, point, label, state, isBottom);
    return compareResult(expected,
                         createAutoScaleShpereAndTable(toQt(name), groupOf(scene), point, label.renderIndex,
                                                       label.prefix, label.suffix, static_cast<featureState>(state),
                                                       isBottom)
                             .get(),
                         keep);
}

std::string TreeWalk::createFlag(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.featureName();
    const featureType kind = next.kind();
    const osg::Vec3f point = next.point();
    const TreeModel::LabelArguments label = next.label();
    const bool useFlagFontSize = next.yes();
    std::ostringstream call;
    call << "create flag '" << name << "' in " << shownAs(scene) << " at " << point << ", kind " << kind;
    tell(call.str());

    ModelNode* const expected = m_model.createFlag(name, scene, point, label, kind, useFlagFontSize);
    return compareResult(expected,
                         createFlagAutoScaleShpereAndTable(toQt(name), groupOf(scene), point, label.renderIndex,
                                                           label.prefix, label.suffix, kind, useFlagFontSize,
                                                           next.yes())
                             .get(),
                         false);
}

std::string TreeWalk::createLine(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    CArrowMeta::structArrowMeta record;
    record.name = next.featureName();
    const int state = next.state();
    record.isLineArrow = next.below(3) > 0;
    record.startPos = next.point();
    record.endPos = next.point();
    record.color = next.colour();
    record.isArrowHead = next.yes();
    record.isDepthTest = next.yes();
    record.ratio = 0.5f; // a coarse one: nothing is drawn
    const TreeModel::LabelArguments label = next.label();
    const bool keep = next.below(8) == 0;
    std::ostringstream call;
    call << "create " << (record.isLineArrow ? "thin" : "solid") << " line '" << record.name << "' in "
         << shownAs(scene) << " from " << record.startPos << " to " << record.endPos << ", state " << state;
    tell(call.str());

    ModelNode* const expected = m_model.createLine(state, record, scene, label);
    return compareResult(expected,
                         createArrowAndTable(static_cast<featureState>(state), record, groupOf(scene),
                                             label.renderIndex, label.prefix, label.suffix)
                             .get(),
                         keep);
}

std::string TreeWalk::createLineFromRecord(Numbers& next)
{
    ModelNode* const line = aNodeOf(next, [](Sort sort) { return sort == Sort::Line; });
    if (!line) return {};
    ModelNode* const scene = aScene(next);
    const TreeModel::LabelArguments label = next.label();
    tell("create line from the record of " + shownAs(line) + " in " + shownAs(scene));

    const int state = next.state();
    const TreeModel::Arrow expectedRecord = std::get<TreeModel::Arrow>(line->record);
    ModelNode* const expected = m_model.createLine(state, expectedRecord, scene, label);
    // The record belongs to a node that the call itself may remove.
    const CArrowMeta::structArrowMeta& record = dynamic_cast<CArrowMeta&>(*line->real).getMetaStruct();
    return compareResult(expected,
                         createArrowAndTable(static_cast<featureState>(state), record, groupOf(scene),
                                             label.renderIndex, label.prefix, label.suffix)
                             .get(),
                         false);
}

std::string TreeWalk::createPlane(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.featureName();
    const int state = next.state();
    const std::size_t counts[] = {4, 4, 4, 4, 4, 4, 3, 8, 5, 2, 1, 0};
    std::vector<osg::Vec3f> points(counts[next.below(12)]);
    for (osg::Vec3f& point : points) point = next.point();
    const osg::Vec3f normal = next.point();
    const TreeModel::LabelArguments label = next.label();
    std::ostringstream call;
    call << "create plane '" << name << "' in " << shownAs(scene) << ", state " << state << ", normal " << normal;
    for (const osg::Vec3f& point : points) call << ", " << point;
    tell(call.str());

    const std::optional<ModelNode*> expected = m_model.createPlane(state, toQt(name), scene, points, normal, label);
    try {
        const osg::ref_ptr<osg::Group> plane =
            createPlaneAndTable(static_cast<featureState>(state), toQt(name), groupOf(scene), points, normal,
                                label.renderIndex, label.prefix, label.suffix);
        if (!expected) return "threw nothing";
        return compareResult(*expected, plane.get(), false);
    } catch (const std::out_of_range&) {
        return expected ? "threw" : "";
    }
}

std::string TreeWalk::createSphere(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.featureName();
    const osg::Vec3f centre = next.point();
    tell("create sphere '" + name + "' in " + shownAs(scene));
    ModelNode* const expected = m_model.createSphere(name, scene, centre);
    return compareResult(expected, findOrCreateShpere(name, groupOf(scene), centre), false);
}

std::string TreeWalk::createLabel(Numbers& next)
{
    CTableMeta::structTableMeta record;
    record.pos = next.point();
    record.textColor = next.colour();
    record.isAutoScale = next.yes();
    record.tableNameIndexSuffix = next.label().suffix;
    tell(std::string("create label, ") + (record.isAutoScale ? "normal" : "scaled"));
    ModelNode* const expected = m_model.makeLabel(record);
    return compareResult(expected, createTable(record).get(), true);
}

std::string TreeWalk::findOrCreate(Numbers& next)
{
    ModelNode* const parent = aGroup(next);
    const std::string name = next.anyName();
    const bool create = next.below(3) == 0;
    tell("find" + std::string(create ? " or create '" : " '") + name + "' in " + shownAs(parent));
    ModelNode* const expected = m_model.findOrCreateNode(name, parent, create);
    return compareResult(expected, findOrCreateNode(name, groupOf(parent), create), false);
}

std::string TreeWalk::findOrCreateRoot(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const featureType kind = next.kind();
    const bool create = next.yes();
    tell("find" + std::string(create ? " or create" : "") + " the root of kind " + std::to_string(kind) + " in " +
         shownAs(scene));
    ModelNode* const expected = m_model.findOrCreateRoot(scene, kind, create);
    return compareResult(expected, findOrCreateFeatureRootNode(groupOf(scene), kind, create).get(), false);
}

std::string TreeWalk::findChild(Numbers& next)
{
    ModelNode* const parent = aGroup(next);
    const std::string name = next.anyName();
    tell("find child '" + name + "' of " + shownAs(parent));
    return compareResult(m_model.findChild(name, parent), findChildByName(name, groupOf(parent)), false);
}

std::string TreeWalk::findAnywhere(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.yes() ? next.featureName() : next.anyName();
    tell("find '" + name + "' anywhere in " + shownAs(scene));
    ModelNode* expectedParent = m_scenes[0].first;
    ModelNode* const expected = m_model.findAnywhere(name, scene, expectedParent);
    osg::ref_ptr<osg::Group> parent = m_scenes[0].second;
    const osg::ref_ptr<osg::Node> found = findFeatureByName(name, groupOf(scene), parent);
    if (parent != realOf(expectedParent)) return "gave another parent than " + shownAs(expectedParent);
    return compareResult(expected, found, false);
}

std::string TreeWalk::findOfKind(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const std::string name = next.featureName();
    const featureType kind = next.kind();
    tell("find '" + name + "' of kind " + std::to_string(kind) + " in " + shownAs(scene));
    ModelNode* const expected = m_model.findOfKind(name, scene, kind);
    return compareResult(expected, findFeatureByName(name, groupOf(scene), kind), false);
}

std::string TreeWalk::search(Numbers& next)
{
    ModelNode* const top = aNode(next);
    const std::vector<std::string> names = {next.anyName(), next.anyName()};
    const std::vector<featureType> kinds = {next.kind(), next.kind()};
    tell("search " + shownAs(top) + " for '" + names[0] + "' and '" + names[1] + "', for kinds " +
         std::to_string(kinds[0]) + " and " + std::to_string(kinds[1]));

    findNodeVisitor byQtName(QStringList{toQt(names[0]), toQt(names[1])});
    FindNamedNodeVisitor byName(names);
    FindFeatureNodeVisitor byKind(kinds);
    top->real->accept(byQtName);
    top->real->accept(byName);
    top->real->accept(byKind);
    const auto isEqual = [](const std::vector<ModelNode*>& expected,
                            const std::vector<osg::ref_ptr<osg::Node>>& found) {
        return std::equal(
            expected.begin(), expected.end(), found.begin(), found.end(),
            [](const ModelNode* node, const osg::ref_ptr<osg::Node>& real) { return node->real == real; });
    };
    const std::vector<ModelNode*> named = m_model.listNamed(*top, names);
    if (!isEqual(named, byQtName.m_foundNodes)) return "the search by Qt names found other nodes";
    if (!isEqual(named, byName.m_foundNodes)) return "the search by names found other nodes";
    if (!isEqual(m_model.listOfKinds(*top, kinds), byKind.m_foundNodes)) return "the search by kinds found other nodes";
    return {};
}

std::string TreeWalk::switchRoot(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const featureType kind = next.kind();
    const bool on = next.yes();
    tell("switch kind " + std::to_string(kind) + (on ? " on in " : " off in ") + shownAs(scene));
    return unequal(m_model.switchRoot(scene, on, kind), switchFeatureRoot(groupOf(scene), on, kind));
}

std::string TreeWalk::switchTemporary(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const featureType kind = next.kind();
    const bool on = next.yes();
    tell("switch temporary features of kind " + std::to_string(kind) + (on ? " on in " : " off in ") + shownAs(scene));
    return unequal(m_model.switchTemporary(scene, on, kind), switchFeatureRootFlagNode(groupOf(scene), on, kind));
}

std::string TreeWalk::removeRoot(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const featureType kind = next.kind();
    tell("remove kind " + std::to_string(kind) + " in " + shownAs(scene));
    return unequal(m_model.removeRoot(scene, kind), removeFeatureRoot(groupOf(scene), kind));
}

std::string TreeWalk::clearTemporary(Numbers& next)
{
    ModelNode* const scene = aScene(next);
    const featureType kind = next.kind();
    tell("clear temporary features of kind " + std::to_string(kind) + " in " + shownAs(scene));
    return unequal(m_model.clearTemporary(scene, kind), clearFeatureRootTempNode(groupOf(scene), kind));
}

std::string TreeWalk::setState(Numbers& next)
{
    if (ModelNode* const node = aNodeOf(next, isFeatureOrLabel)) setStateOf(*node, next.state());
    return {};
}

void TreeWalk::setStateOf(ModelNode& node, int state)
{
    tell("set state " + std::to_string(state) + " of " + shownAs(&node));
    m_model.setState(node, state);
    if (node.sort == Sort::Label)
        dynamic_cast<CTableMeta&>(*node.real).setState(static_cast<featureState>(state));
    else
        dynamic_cast<CFeatureMetaObject&>(*node.real).setState(static_cast<featureState>(state));
}

std::string TreeWalk::updateLanguage(Numbers& next)
{
    ModelNode* const label = aNodeOf(next, isLabel);
    if (!label) return {};
    if (next.below(3) == 0) hostMakeIn(*label, Sort::Group, next.anyName());
    tell("update the language of " + shownAs(label));
    m_model.updateLanguage(*label);
    dynamic_cast<CTableMeta&>(*label->real).updateLanguage();
    return {};
}

std::string TreeWalk::addTable(Numbers& next)
{
    ModelNode* const primitive = aNodeOf(next, isPrimitive);
    ModelNode* const table = next.below(3) > 0 ? aNodeOf(next, isLabel) : aGroup(next);
    if (!primitive || (table && TreeModel::isBelow(*primitive, *table))) return {};
    tell("add table " + shownAs(table) + " to " + shownAs(primitive));
    const bool expected = m_model.addTable(*primitive, table);
    return unequal(expected, addTableTo(*primitive, groupOf(table)));
}

std::string TreeWalk::copy(Numbers& next)
{
    ModelNode* const node = aNodeOf(next, hasCopyConstructor);
    if (!node) return {};
    tell("copy " + shownAs(node));
    const osg::ref_ptr<osg::Node> real = copyOf(*node);
    ModelNode* const expected = m_model.copy(*node);
    const std::string wrong = compareResult(expected, real, true);
    if (wrong.empty() && isFeatureOrLabel(expected->sort)) setStateOf(*expected, next.state());
    return wrong;
}

std::string TreeWalk::configure(Numbers& next)
{
    tell("change the configuration");
    CFeatureConfig& config = *CFeatureConfig::sigleFeatureConfig();
    const auto change = [&](auto record) {
        record.tableHighlightedColor = next.colour();
        record.tableSelectedColor = next.colour();
        record.highlightedColor = next.colour();
        record.selectedColor = next.colour();
        return record;
    };
    config.setDotConfig(change(featureDotConfig()));
    config.setFlagDotConfig(change(featureFlagDotConfig()));
    config.setArrowConfig(change(featureArrowConfig()));
    config.setPlaneConfig(change(featurePlaneConfig()));
    config.setNormalTableFontSize(static_cast<int>(12 + next.below(17)));
    config.setFlagTableFontSize(static_cast<int>(12 + next.below(17)));
    return {};
}

// What hosts do.

std::string TreeWalk::clone(Numbers& next)
{
    ModelNode* const node = aNodeOf(next, isGroup);
    const bool withNodesBelow = next.yes();
    if (withNodesBelow && TreeModel::walkLength(*node) > kMaxNodes / 4) return {};
    tell("clone " + shownAs(node) + (withNodesBelow ? " with all below" : ""));
    const osg::CopyOp copyop(withNodesBelow ? osg::CopyOp::DEEP_COPY_NODES : osg::CopyOp::SHALLOW_COPY);
    const osg::ref_ptr<osg::Node> real = osg::clone(node->real, copyop);
    return compareResult(m_model.clone(*node, withNodesBelow), real, true);
}

std::string TreeWalk::hostRename(Numbers& next)
{
    ModelNode* const node = aNode(next);
    const std::string name = next.yes() ? next.featureName() : next.anyName();
    tell("host renames " + shownAs(node) + " to '" + name + "'");
    node->name = name;
    node->real->setName(name);
    return {};
}

std::string TreeWalk::hostRemove(Numbers& next)
{
    ModelNode* const parent = aGroup(next);
    if (!parent || parent->children.empty()) return {};
    const unsigned int index = next.below(parent->children.size());
    tell("host removes " + shownAs(parent->children[index]) + " from " + shownAs(parent));
    m_model.removeChild(*parent, index);
    groupOf(parent)->removeChildren(index, 1);
    return {};
}

std::string TreeWalk::hostAdd(Numbers& next)
{
    ModelNode* const parent = aGroup(next);
    ModelNode* const child = aNode(next);
    if (!parent || TreeModel::isBelow(*parent, *child)) return {}; // a circle is no scene
    m_model.addChild(*parent, *child);
    std::size_t length = 0;
    for (const ModelNode* node : held()) length += TreeModel::walkLength(*node);
    if (length > kMaxWalkLength) {
        m_model.removeChild(*parent, static_cast<unsigned int>(parent->children.size() - 1));
        return {};
    }
    tell("host adds " + shownAs(child) + " to " + shownAs(parent));
    groupOf(parent)->addChild(child->real);
    return {};
}

std::string TreeWalk::hostReplace(Numbers& next)
{
    ModelNode* const parent = aGroup(next);
    ModelNode* const child = aNode(next);
    if (!parent || parent->children.empty() || TreeModel::isBelow(*parent, *child)) return {};
    if (TreeModel::walkLength(*child) > kMaxNodes / 4) return {};
    const unsigned int index = next.below(parent->children.size());
    tell("host puts " + shownAs(child) + " in place of child " + std::to_string(index) + " of " + shownAs(parent));
    m_model.setChild(*parent, index, *child);
    groupOf(parent)->setChild(index, child->real);
    return {};
}

std::string TreeWalk::hostMake(Numbers& next)
{
    const Sort sorts[] = {Sort::Group, Sort::Switch, Sort::Transform, Sort::Base, Sort::Geometry};
    ModelNode* const parent = aGroup(next);
    const Sort sort = sorts[next.below(5)];
    if (parent) hostMakeIn(*parent, sort, next.anyName());
    return {};
}

void TreeWalk::hostMakeIn(ModelNode& parent, Sort sort, const std::string& name)
{
    const osg::ref_ptr<osg::Node> real = hostNode(sort);
    real->setName(name);
    ModelNode* const node = m_model.make(sort, name);
    if (sort == Sort::Base) m_model.addChild(*node, *m_model.make(Sort::Transform, "MatrixTransform"));
    m_model.addChild(parent, *node);
    m_model.bind(*node, *real);
    tell("host makes " + shownAs(node) + " in " + shownAs(&parent));
    groupOf(&parent)->addChild(real);
}

std::string TreeWalk::hostMark(Numbers& next)
{
    ModelNode* const node = next.yes() ? aNodeOf(next, isPrimitive) : aNode(next);
    if (!node) return {};
    const unsigned int n = next.below(8);
    const std::string key = n < 6 ? "tmpData" : "feature_type";
    tell("host marks " + shownAs(node) + " with " + key + ", way " + std::to_string(n));
    if (n < 4 || n == 6) {
        const bool value = n < 3;
        if (n == 6) { // a kind that is an int
            const int kind = static_cast<int>(next.below(6));
            m_model.setValue(*node, key, kind);
            node->real->setUserValue(key, kind);
            return {};
        }
        m_model.setValue(*node, key, value);
        node->real->setUserValue(key, value);
    } else if (n == 4) {
        m_model.setValue(*node, key, 1);
        node->real->setUserValue(key, 1);
    } else {
        m_model.setValue(*node, key, 1.0f);
        node->real->setUserValue(key, 1.0f);
    }
    return {};
}

std::string TreeWalk::hostForget(Numbers& next)
{
    if (m_held.empty()) return {};
    const unsigned int index = next.below(m_held.size());
    tell("host forgets " + shownAs(m_held[index].first));
    m_held.erase(m_held.begin() + index);
    return {};
}

std::string TreeWalk::hostNewScene(Numbers& next)
{
    auto& [node, real] = m_scenes[next.below(m_scenes.size())];
    tell("host starts a new scene in place of " + shownAs(node));
    m_held.clear();
    real = new osg::Group;
    node = m_model.make(Sort::Group);
    m_model.bind(*node, *real);
    return {};
}

std::string TreeWalk::tamper(Numbers& next)
{
    ModelNode* const node = aNode(next);
    tell("tamper with " + shownAs(node));
    node->real->setName(node->name + " and more");
    return {};
}

// Sequences.

Steps randomSteps(unsigned int seed, std::size_t count)
{
    std::mt19937 random(seed);
    std::vector<unsigned int> lots;
    for (unsigned int i = 0; i < TreeWalk::calls().size(); ++i) lots.insert(lots.end(), TreeWalk::calls()[i].weight, i);
    Steps steps(count);
    for (Step& step : steps) {
        step.call = lots[random() % lots.size()];
        for (unsigned int& number : step.numbers) number = static_cast<unsigned int>(random() & 0x7fffffff);
    }
    return steps;
}

Step tampering(unsigned int node)
{
    Step step;
    step.call = static_cast<unsigned int>(TreeWalk::calls().size() - 1);
    step.numbers[0] = node;
    return step;
}

std::string failureOf(const Steps& steps, std::ostream* log)
{
    TreeWalk walk(log);
    for (std::size_t i = 0; i < steps.size(); ++i)
        if (const std::string wrong = walk.take(steps[i]); !wrong.empty())
            return "step " + std::to_string(i) + ": " + wrong;
    return walk.end();
}

Steps shrunk(Steps steps)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    for (std::size_t length = steps.size() / 2; length > 0;
         length = steps.size() < 2 * length ? steps.size() / 2 : length) {
        bool wasCut = false;
        for (std::size_t first = 0; first < steps.size() && std::chrono::steady_clock::now() < deadline;) {
            Steps fewer = steps;
            const std::size_t last = std::min(first + length, steps.size());
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(first),
                        fewer.begin() + static_cast<std::ptrdiff_t>(last));
            if (failureOf(fewer).empty()) {
                first = last;
            } else {
                steps = std::move(fewer);
                wasCut = true;
            }
        }
        if (!wasCut) length /= 2;
        if (length == 0 || std::chrono::steady_clock::now() >= deadline) break;
    }
    return steps;
}

} // namespace kelvtest
