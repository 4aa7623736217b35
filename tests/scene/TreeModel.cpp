#include "scene/TreeModel.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "support/SceneQueries.h"

#include <osg/AutoTransform>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osg/ValueObject>
#include <osg/io_utils>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>

using namespace KelvOsgTools;

namespace kelvtest {
namespace {

const char* const kSortNames[] = {"group", "switch", "base",  "transform", "screen transform", "geode", "dot", "flag",
                                  "line",  "plane",  "label", "shape",     "geometry",         "text"};

bool isFinite(const osg::Vec3f& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y()) && std::isfinite(point.z());
}

bool isDotLineOrPlane(featureType kind)
{
    return kind == featureDot || kind == featureLine || kind == featurePlane;
}

const char* rootName(featureType kind)
{
    if (kind == featureDot) return "featureDotData";
    if (kind == featureLine) return "featureLineData";
    if (kind == featurePlane) return "featurePlaneData";
    if (kind == featureTable) return "featureTableData";
    return nullptr;
}

bool isTemporary(const ModelNode& node)
{
    if (!node.values) return false;
    const auto mark = node.values->find("tmpData");
    return mark != node.values->end() && std::holds_alternative<bool>(mark->second) && std::get<bool>(mark->second);
}

int kindOfNode(const ModelNode& node)
{
    if (!node.values) return 0;
    const auto kind = node.values->find("feature_type");
    return kind != node.values->end() && std::holds_alternative<int>(kind->second) ? std::get<int>(kind->second) : 0;
}

void switchAll(ModelNode& node, bool on)
{
    node.showsNew = on;
    node.shown.assign(node.children.size(), on);
}

osg::Vec4f colourIn(int state, const osg::Vec4f& selected, const osg::Vec4f& highlighted)
{
    if (state == featureStateSelected) return selected;
    if (state == featureStateHighlighted) return highlighted;
    return {0, 0, 0, 1};
}

osg::Vec4f withoutAlpha(const osg::Vec4f& colour)
{
    return {colour.r(), colour.g(), colour.b(), 0};
}

std::string labelText(const CTableMeta::structTableMeta& record)
{
    if (record.tableNamePrefix.isEmpty() && record.tableNameIndexSuffix == -1) return "Table";
    const std::string prefix = record.tableNamePrefix.toStdString();
    return record.tableNameIndexSuffix == -1 ? prefix : prefix + std::to_string(record.tableNameIndexSuffix);
}

TreeModel::Label labelRecord(const osg::Vec3f& point, const TreeModel::LabelArguments& arguments)
{
    TreeModel::Label record;
    record.textColor.set(0, 0, 0, 1);
    record.pos = point;
    record.backgroundColor.set(1, 1, 1);
    record.tableNamePrefix = arguments.prefix;
    record.tableNameIndexSuffix = arguments.suffix;
    record.fontSize = CFeatureConfig::sigleFeatureConfig()->getNormalTableFontSize();
    record.renderIndex = arguments.renderIndex;
    record.isAutoScale = true;
    record.isBottom = false;
    return record;
}

// Texts of what is compared.

struct Describe
{
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(const TreeModel::Label& r) const
    {
        std::ostringstream text;
        text << r.textColor << " at " << r.pos << " on " << r.backgroundColor << " '" << r.tableNamePrefix.toStdString()
             << "' " << r.tableNameIndexSuffix << ' ' << r.fontSize << ' ' << r.renderIndex << ' ' << r.isAutoScale
             << r.isBottom;
        return text.str();
    }
    std::string operator()(const TreeModel::Sphere& r) const
    {
        std::ostringstream text;
        text << r.cneterPos << " '" << r.nodeName << "' " << r.radius << ' ' << r.ratio << ' ' << r.color;
        return text.str();
    }
    std::string operator()(const TreeModel::Arrow& r) const
    {
        std::ostringstream text;
        text << r.startPos << " to " << r.endPos << " '" << r.name << "' " << r.color << ' ' << r.radius << ' '
             << r.ratio << ' ' << r.isLineArrow << ' ' << r.lineWidth << ' ' << r.isDepthTest << r.isArrowHead;
        return text.str();
    }
    std::string operator()(const TreeModel::PlaneRecord& r) const
    {
        std::ostringstream text;
        text << r.planeColor << ' ' << r.lineColor << ' ' << r.planeNormal << " '" << r.name.toStdString() << "' "
             << r.lineWidth << ' ' << r.alpha;
        for (const osg::Vec3f& point : r.pointVec) text << ", " << point;
        return text.str();
    }
};

/// NaN is no number, whatever its sign.
std::string describe(const Record& record)
{
    std::string text = std::visit(Describe(), record);
    for (std::size_t at = text.find("-nan"); at != std::string::npos; at = text.find("-nan", at)) text.erase(at, 1);
    return text;
}

std::string recordIn(const osg::Node& node, Sort sort)
{
    if (sort == Sort::Label) return describe(dynamic_cast<const CTableMeta&>(node).getMetaStruct());
    if (sort == Sort::Dot) return describe(dynamic_cast<const CAutoScaleSphereMeta&>(node).getMetaStruct());
    if (sort == Sort::Line) return describe(dynamic_cast<const CArrowMeta&>(node).getMetaStruct());
    if (sort == Sort::Plane) return describe(dynamic_cast<const CPlaneMeta&>(node).getMetaStruct());
    return {};
}

std::string recordOf(const ModelNode& node)
{
    return node.sort == Sort::Flag ? std::string() : describe(node.record); // which a flag does not tell
}

/// A geometry's own colour, its three or four channels.
std::optional<osg::Vec4f> overallColourOf(const osg::Geometry& geometry)
{
    if (const auto rgba = overallColour<osg::Vec4Array>(geometry)) return rgba;
    if (const auto rgb = overallColour<osg::Vec3Array>(geometry)) return osg::Vec4f(*rgb, 0);
    return std::nullopt;
}

std::optional<osg::Vec4f> colourIn(const osg::Node& node, Sort sort)
{
    if (sort == Sort::Shape) return static_cast<const osg::ShapeDrawable&>(node).getColor();
    if (sort == Sort::Text) return static_cast<const osgText::Text&>(node).getColor();
    if (sort == Sort::Geometry) return overallColourOf(static_cast<const osg::Geometry&>(node));
    return std::nullopt;
}

float radiusIn(const osg::Node& node, Sort sort)
{
    if (sort != Sort::Shape) return 0.0f;
    const auto* const sphere =
        dynamic_cast<const osg::Sphere*>(static_cast<const osg::ShapeDrawable&>(node).getShape());
    return sphere ? sphere->getRadius() : 0.0f;
}

template <typename T>
bool holds(const osg::Object& value, const UserValue& expected)
{
    const auto* const typed = dynamic_cast<const osg::TemplateValueObject<T>*>(&value);
    return typed && std::holds_alternative<T>(expected) && typed->getValue() == std::get<T>(expected);
}

bool hasUserValues(const osg::Node& node, const UserValues& expected)
{
    const osg::UserDataContainer* const container = node.getUserDataContainer();
    const unsigned int count = container ? container->getNumUserObjects() : 0;
    if (count != expected.size()) return false;
    for (unsigned int i = 0; i < count; ++i) {
        const osg::Object& value = *container->getUserObject(i);
        const auto found = expected.find(value.getName());
        if (found == expected.end()) return false;
        if (!holds<int>(value, found->second) && !holds<bool>(value, found->second) &&
            !holds<float>(value, found->second))
            return false;
    }
    return true;
}

bool hasChildren(const ModelNode& node)
{
    const osg::Group* const group = node.real->asGroup();
    if (!group) return node.children.empty();
    if (group->getNumChildren() != node.children.size()) return false;
    for (unsigned int i = 0; i < group->getNumChildren(); ++i)
        if (group->getChild(i) != node.children[i]->real) return false;
    return true;
}

bool hasParents(const ModelNode& node)
{
    if (node.real->getNumParents() != node.parents.size()) return false;
    for (unsigned int i = 0; i < node.parents.size(); ++i)
        if (node.real->getParent(i) != node.parents[i]->real) return false;
    return true;
}

bool hasSwitchValues(const ModelNode& node)
{
    return !isSwitch(node.sort) || static_cast<const osg::Switch&>(*node.real).getValueList() == node.shown;
}

std::string differenceOf(const ModelNode& node)
{
    const osg::Node& real = *node.real;
    if (real.getName() != node.name) return "is named '" + real.getName() + "'";
    if (!hasChildren(node)) return "has other children";
    if (!hasParents(node)) return "has other parents";
    if (!hasSwitchValues(node)) return "has other children switched on";
    if (real.getNodeMask() != node.mask) return "has another mask";
    if (!hasUserValues(real, node.values ? *node.values : UserValues())) return "has other user values";
    if (node.sort < Sort::Dot) return {};

    std::ostringstream text;
    const std::optional<osg::Vec4f> colour = colourIn(real, node.sort);
    if (colour != node.colour) text << "has the colour " << colour.value_or(osg::Vec4f(-1, -1, -1, -1)) << ". ";
    if (node.sort == Sort::Geometry && lineWidthOf(real) != node.lineWidth)
        text << "is " << lineWidthOf(real) << " wide. ";
    if (radiusIn(real, node.sort) != node.radius) text << "has the radius " << radiusIn(real, node.sort) << ". ";
    if (node.sort == Sort::Text && textOf(static_cast<const osgText::Text&>(real)).toStdString() != node.text)
        text << "has another text";
    return text.str();
}

std::string nameOf(const ModelNode& node)
{
    return std::string(kSortNames[static_cast<int>(node.sort)]) + " #" + std::to_string(node.id) + " '" + node.name +
           "'";
}

/// Calls visit for every node that a search meets, parents first.
void walk(ModelNode& node, const std::function<void(ModelNode&)>& visit)
{
    if (node.mask == 0) return; // no visitor enters what is masked out
    visit(node);
    for (ModelNode* child : node.children) walk(*child, visit);
}

} // namespace

bool isGroup(Sort sort)
{
    return sort < Sort::Shape;
}

bool isPrimitive(Sort sort)
{
    return sort == Sort::Dot || sort == Sort::Flag || sort == Sort::Line || sort == Sort::Plane;
}

bool isSwitch(Sort sort)
{
    return sort == Sort::Switch || sort == Sort::Base || isPrimitive(sort);
}

Sort sortOf(const osg::Node& node)
{
    const auto is = [&](auto* null) { return dynamic_cast<decltype(null)>(&node) != nullptr; };
    if (is(static_cast<const CTableMeta*>(nullptr))) return Sort::Label;
    if (is(static_cast<const CAutoScaleSphereMeta*>(nullptr))) return Sort::Dot;
    if (is(static_cast<const CFlagAutoScaleSphereMeta*>(nullptr))) return Sort::Flag;
    if (is(static_cast<const CArrowMeta*>(nullptr))) return Sort::Line;
    if (is(static_cast<const CPlaneMeta*>(nullptr))) return Sort::Plane;
    if (is(static_cast<const featureBaseNode*>(nullptr))) return Sort::Base;
    if (is(static_cast<const osg::Switch*>(nullptr))) return Sort::Switch;
    if (is(static_cast<const osg::AutoTransform*>(nullptr))) return Sort::ScreenTransform;
    if (is(static_cast<const osg::MatrixTransform*>(nullptr))) return Sort::Transform;
    if (is(static_cast<const osg::Geode*>(nullptr))) return Sort::Geode;
    if (is(static_cast<const osg::Group*>(nullptr))) return Sort::Group;
    if (is(static_cast<const osg::ShapeDrawable*>(nullptr))) return Sort::Shape;
    if (is(static_cast<const osg::Geometry*>(nullptr))) return Sort::Geometry;
    return Sort::Text;
}

// Lookups.

ModelNode* TreeModel::findChild(const std::string& name, ModelNode* parent) const
{
    if (!parent) return nullptr;
    for (ModelNode* child : parent->children)
        if (child->name == name) return child;
    return nullptr;
}

ModelNode* TreeModel::findOrCreateNode(const std::string& name, ModelNode* parent, bool create)
{
    ModelNode* const found = findChild(name, parent);
    if (found || !parent || !create) return found;
    ModelNode* const base = make(Sort::Base, name);
    addChild(*base, *make(Sort::Transform, "MatrixTransform"));
    addChild(*parent, *base);
    return base;
}

ModelNode* TreeModel::contentOf(ModelNode* node) const
{
    if (!node || node->children.empty() || !isGroup(node->children[0]->sort)) return nullptr;
    return node->children[0];
}

ModelNode* TreeModel::findOrCreateRoot(ModelNode* scene, featureType kind, bool create)
{
    ModelNode* const common = findOrCreateNode("featureData", scene, create);
    if (!common) return nullptr;
    if (kind == featureAll) return isGroup(common->sort) ? common : nullptr;
    if (!rootName(kind)) return nullptr;
    ModelNode* const root = findOrCreateNode(rootName(kind), contentOf(common), create);
    return root && isGroup(root->sort) ? root : nullptr;
}

ModelNode* TreeModel::existingContent(ModelNode* scene, featureType kind) const
{
    ModelNode* const common = findChild("featureData", scene);
    if (kind == featureAll) return contentOf(common);
    return rootName(kind) ? contentOf(findChild(rootName(kind), contentOf(common))) : nullptr;
}

std::vector<ModelNode*> TreeModel::listNamed(ModelNode& top, const std::vector<std::string>& names) const
{
    std::vector<ModelNode*> found;
    walk(top,
         [&](ModelNode& node) { found.insert(found.end(), std::count(names.begin(), names.end(), node.name), &node); });
    return found;
}

std::vector<ModelNode*> TreeModel::listOfKinds(ModelNode& top, const std::vector<featureType>& kinds) const
{
    std::vector<ModelNode*> found;
    walk(top, [&](ModelNode& node) {
        found.insert(found.end(), std::count(kinds.begin(), kinds.end(), kindOfNode(node)), &node);
    });
    return found;
}

ModelNode* TreeModel::findAnywhere(const std::string& name, ModelNode* scene, ModelNode*& parent) const
{
    ModelNode* const common = findChild("featureData", scene);
    if (!common || !isGroup(common->sort)) return nullptr;
    const std::vector<ModelNode*> found = listNamed(*common, {name});
    if (found.empty()) return nullptr;
    parent = found.front()->parents.empty() ? nullptr : found.front()->parents.front();
    return found.front();
}

ModelNode* TreeModel::findOfKind(const std::string& name, ModelNode* scene, featureType kind) const
{
    return isDotLineOrPlane(kind) ? findChild(name, existingContent(scene, kind)) : nullptr;
}

ModelNode* TreeModel::firstBelow(const ModelNode& top, const std::string& name) const
{
    for (ModelNode* child : top.children) {
        const std::vector<ModelNode*> found = listNamed(*child, {name});
        if (!found.empty()) return found.front();
    }
    return nullptr;
}

// Visibility and removal.

bool TreeModel::switchRoot(ModelNode* scene, bool on, featureType kind)
{
    if (!scene) return false;
    ModelNode* const root = findOrCreateRoot(scene, isDotLineOrPlane(kind) ? kind : featureAll, false);
    if (root && isSwitch(root->sort)) switchAll(*root, on);
    return true;
}

bool TreeModel::switchTemporary(ModelNode* scene, bool on, featureType kind)
{
    ModelNode* const content = isDotLineOrPlane(kind) ? existingContent(scene, kind) : nullptr;
    if (!content) return false;
    for (ModelNode* child : content->children)
        if (isTemporary(*child) && isSwitch(child->sort)) switchAll(*child, on);
    return true;
}

bool TreeModel::removeRoot(ModelNode* scene, featureType kind)
{
    if (!scene) return false;
    ModelNode* const common = findOrCreateRoot(scene, featureAll, false);
    if (!common) return true;
    if (kind == featureAll) {
        if (!common->children.empty()) removeChild(*common, 0);
    } else if (isDotLineOrPlane(kind)) {
        const auto& children = common->children;
        const auto root = std::find(children.begin(), children.end(), findOrCreateRoot(scene, kind, false));
        if (root != children.end()) removeChild(*common, static_cast<unsigned int>(root - children.begin()));
    }
    return true;
}

bool TreeModel::clearTemporary(ModelNode* scene, featureType kind)
{
    if (kind == featureAll) {
        for (const featureType each : {featureDot, featureLine, featurePlane}) clearTemporary(scene, each);
        return false;
    }
    ModelNode* const content = isDotLineOrPlane(kind) ? existingContent(scene, kind) : nullptr;
    if (!content) return false;
    for (std::size_t i = content->children.size(); i-- > 0;)
        if (isTemporary(*content->children[i])) removeChild(*content, static_cast<unsigned int>(i));
    return true;
}

// Whole features.

bool TreeModel::hasPlaceFor(ModelNode* scene, featureType kind) const
{
    if (!scene || (kind != featureAll && !rootName(kind))) return false;
    ModelNode* const common = findChild("featureData", scene);
    if (!common) return true;
    ModelNode* const content = contentOf(common);
    if (!content || kind == featureAll) return content != nullptr;
    ModelNode* const root = findChild(rootName(kind), content);
    return !root || contentOf(root);
}

ModelNode* TreeModel::hang(ModelNode* scene, featureType kind, ModelNode& feature, const std::string& name)
{
    ModelNode& content = *contentOf(findOrCreateRoot(scene, kind, true));
    for (std::size_t i = content.children.size(); i-- > 0;)
        if (content.children[i]->name == name) removeChild(content, static_cast<unsigned int>(i));
    feature.name = name;
    addChild(content, feature);
    return &feature;
}

void TreeModel::fillLabel(ModelNode& label)
{
    const Label& record = std::get<Label>(label.record);
    ModelNode* const geode = make(Sort::Geode);
    ModelNode* const outline = make(Sort::Geometry, "squareLineNode");
    ModelNode* const fill = make(Sort::Geometry, "squareNode");
    ModelNode* const letters = make(Sort::Text, "textNode");
    outline->colour = record.isAutoScale ? record.textColor : osg::Vec4f(0, 0, 0, 1);
    outline->lineWidth = 2.0f;
    fill->colour = osg::Vec4f(record.backgroundColor, 0);
    letters->colour = record.textColor;
    letters->text = labelText(record);
    for (ModelNode* drawable : {outline, fill, letters}) addChild(*geode, *drawable);
    if (!isFinite(record.pos)) geode->mask = 0;
    addChild(label, *geode);
    label.name = "showTableNode";
    setValue(label, "feature_type", featureTable);
    if (!record.isAutoScale) return;
    label.outline = outline;
    label.fill = fill;
    label.letters = letters;
}

ModelNode* TreeModel::makeLabel(const Label& record)
{
    ModelNode* const label = make(Sort::Label);
    label->record = record;
    fillLabel(*label);
    return label;
}

ModelNode* TreeModel::makeMarker(Sort sort, const Sphere& record)
{
    ModelNode* const marker = make(sort);
    ModelNode* const transform = make(Sort::ScreenTransform, record.nodeName);
    ModelNode* const geode = make(Sort::Geode);
    ModelNode* const sphere = make(Sort::Shape, "drawableShpere");
    marker->record = record;
    sphere->colour = record.color;
    sphere->radius = record.radius;
    if (!isFinite(record.cneterPos)) geode->mask = 0;
    addChild(*geode, *sphere);
    addChild(*transform, *geode);
    addChild(*marker, *transform);
    marker->sphere = sphere;
    setValue(*marker, "feature_type", sort == Sort::Dot ? featureDot : featureFlagDot);
    return marker;
}

ModelNode* TreeModel::createDot(const std::string& name, ModelNode* scene, const osg::Vec3f& point,
                                const LabelArguments& label, int state, bool isBottom)
{
    if (!hasPlaceFor(scene, featureDot)) return nullptr;
    Sphere record;
    record.cneterPos = point;
    record.nodeName = "feature_dot_auto_scale";
    record.radius = 3.0f;
    record.ratio = 3.0f;
    record.color.set(1, 1, 1, 1);
    Label labelled = labelRecord(point, label);
    labelled.isBottom = isBottom;
    ModelNode* const dot = makeMarker(Sort::Dot, record);
    addTable(*dot, makeLabel(labelled));
    setState(*dot, state);
    return hang(scene, featureDot, *dot, name);
}

ModelNode* TreeModel::createFlag(const std::string& name, ModelNode* scene, const osg::Vec3f& point,
                                 const LabelArguments& label, featureType kind, bool useFlagFontSize)
{
    if (!hasPlaceFor(scene, kind)) return nullptr;
    Sphere record;
    record.cneterPos = point;
    record.nodeName = "SphereMeta";
    record.radius = 4.0f;
    record.ratio = 3.0f;
    record.color.set(1, 0, 0, 1);
    Label labelled = labelRecord(point, label);
    if (useFlagFontSize) labelled.fontSize = CFeatureConfig::sigleFeatureConfig()->getFlagTableFontSize();
    ModelNode* const flag = makeMarker(Sort::Flag, record);
    addTable(*flag, makeLabel(labelled));
    setState(*flag, featureStateSelected);
    return hang(scene, kind, *flag, name);
}

ModelNode* TreeModel::makeArrow(const Arrow& record)
{
    ModelNode* const arrow = make(Sort::Line);
    arrow->record = record;
    const auto addPart = [&](Sort sort, const char* name) {
        ModelNode* const transform = make(Sort::Transform);
        ModelNode* const geode = make(Sort::Geode);
        ModelNode* const part = make(sort, name);
        part->colour = record.color;
        addChild(*geode, *part);
        addChild(*transform, *geode);
        addChild(*arrow, *transform);
        return part;
    };
    if (record.isLineArrow) {
        ModelNode* const line = addPart(Sort::Geometry, "arrowLineNode");
        line->lineWidth = record.lineWidth;
        setValue(*line, "feature_type", featureLine);
    } else {
        addPart(Sort::Shape, "cylinderDrawable");
        addPart(Sort::Shape, "coneDrawable");
    }
    setValue(*arrow, "feature_type", featureLine);
    return arrow;
}

ModelNode* TreeModel::createLine(int state, const Arrow& record, ModelNode* scene, const LabelArguments& label)
{
    if (!hasPlaceFor(scene, featureLine)) return nullptr;
    ModelNode* const arrow = makeArrow(record);
    addTable(*arrow, makeLabel(labelRecord((record.startPos + record.endPos) * 0.5f, label)));
    setState(*arrow, state);
    return hang(scene, featureLine, *arrow, record.name);
}

std::optional<ModelNode*> TreeModel::createPlane(int state, const QString& name, ModelNode* scene,
                                                 const std::vector<osg::Vec3f>& points, const osg::Vec3f& normal,
                                                 const LabelArguments& label)
{
    if (!hasPlaceFor(scene, featurePlane)) return nullptr;
    if (points.size() < 3 && !normal.isNaN()) return std::nullopt;

    PlaneRecord record;
    record.planeColor.set(0.6f, 0.6f, 0.6f);
    record.lineColor.set(1, 0, 0);
    record.planeNormal.set(0, 0, 0);
    record.name = name;
    record.pointVec = points;
    record.lineWidth = 3.0f;
    record.alpha = 0.5f;
    ModelNode* const plane = make(Sort::Plane);
    plane->record = record;
    setValue(*plane, "feature_type", featurePlane);

    ModelNode* const geode = make(Sort::Geode);
    ModelNode* const border = make(Sort::Geometry, "line");
    ModelNode* const patch = make(Sort::Geometry, "plane");
    border->colour = osg::Vec4f(record.lineColor, 0);
    patch->colour = osg::Vec4f(record.planeColor, 0);
    if (points.size() < 4) patch->mask = 0;
    if (!std::all_of(points.begin(), points.end(), [](const osg::Vec3f& point) { return isFinite(point); }))
        geode->mask = 0;
    addChild(*geode, *border);
    addChild(*geode, *patch);
    addChild(*plane, *geode);

    if (!normal.isNaN()) {
        const float longer = std::max((points[0] - points[1]).length(), (points[1] - points[2]).length());
        const osg::Vec3f shaft = normal * std::max(0.2f * longer, 4.0f);
        for (const int i : {0, 1}) {
            Arrow arrow;
            arrow.startPos = points[i == 0 ? 0 : 2];
            arrow.endPos = arrow.startPos + shaft;
            arrow.name = "ConeAndCylinderMeta";
            arrow.color.set(1, 1, 1, 1);
            arrow.radius = 0.1f;
            arrow.ratio = 3.0f;
            arrow.isLineArrow = true;
            arrow.lineWidth = 2.0f;
            ModelNode* const node = makeArrow(arrow);
            node->name = i == 0 ? "normalArrow1" : "normalArrow2";
            setValue(*node, "feature_type", -1);
            setValue(*node->children[0]->children[0]->children[0], "feature_type", -1);
            addChild(*plane, *node);
        }
    }

    osg::Vec3f sum;
    for (const osg::Vec3f& point : points) sum += point;
    addTable(*plane, makeLabel(labelRecord(sum / static_cast<float>(points.size()), label)));
    setState(*plane, state);
    return hang(scene, featurePlane, *plane, name.toStdString());
}

ModelNode* TreeModel::createSphere(const std::string& name, ModelNode* scene, const osg::Vec3f& centre)
{
    if (!hasPlaceFor(scene, featureDot)) return nullptr;
    ModelNode* const geode = make(Sort::Geode);
    ModelNode* const sphere = make(Sort::Shape);
    sphere->colour = osg::Vec4f(0, 0, 0.8f, 0.8f);
    sphere->radius = 1.0f;
    if (!isFinite(centre)) sphere->mask = 0;
    addChild(*geode, *sphere);
    return hang(scene, featureDot, *geode, name);
}

// Primitives.

void TreeModel::setState(ModelNode& node, int state)
{
    if (node.state == state) return;
    node.state = state;
    const CFeatureConfig& config = *CFeatureConfig::sigleFeatureConfig();
    const auto recolourShape = [&](const char* name, const osg::Vec4f& colour) {
        ModelNode* const shape = firstBelow(node, name);
        if (!shape || shape->sort != Sort::Shape) return;
        shape->colour = colour;
        if (node.sort == Sort::Flag && shape->radius > 0.0f)
            shape->radius = std::get<Sphere>(node.record).radius + (state == featureStateSelected ? 5.0f : 0.0f);
    };
    const auto recolourGeometry = [&](const char* name, const osg::Vec4f& colour) {
        ModelNode* const geometry = firstBelow(node, name);
        if (!geometry || (geometry->sort != Sort::Geometry && geometry->sort != Sort::Shape)) return;
        // A shape has a colour of its own besides, which stays.
        if (geometry->sort == Sort::Geometry) geometry->colour = colour;
        if (node.sort != Sort::Line) return;
        geometry->lineWidth = std::get<Arrow>(node.record).lineWidth + (state == featureStateSelected ? 1.0f : 0.0f);
    };

    if (node.sort == Sort::Dot) {
        const featureDotConfig& colours = config.getDotConfig();
        recolourShape("drawableShpere", colourIn(state, colours.selectedColor, colours.highlightedColor));
    } else if (node.sort == Sort::Flag) {
        const featureFlagDotConfig& colours = config.getFlagDotConfig();
        recolourShape("drawableShpere", colourIn(state, colours.selectedColor, colours.highlightedColor));
    } else if (node.sort == Sort::Line) {
        const featureArrowConfig& colours = config.getArrowConfig();
        const osg::Vec4f colour = colourIn(state, colours.selectedColor, colours.highlightedColor);
        if (std::get<Arrow>(node.record).isLineArrow) {
            recolourGeometry("arrowLineNode", colour);
        } else {
            recolourShape("cylinderDrawable", colour);
            recolourShape("coneDrawable", colour);
        }
    } else if (node.sort == Sort::Plane) {
        const featurePlaneConfig& colours = config.getPlaneConfig();
        recolourGeometry("line", withoutAlpha(colourIn(state, colours.selectedColor, colours.highlightedColor)));
        for (const char* const name : {"normalArrow1", "normalArrow2"})
            if (ModelNode* const arrow = firstBelow(node, name); arrow && isPrimitive(arrow->sort))
                setState(*arrow, state);
    } else if (node.sort == Sort::Label) {
        const featurePlaneConfig& colours = config.getPlaneConfig();
        const osg::Vec4f colour = colourIn(state, colours.tableSelectedColor, colours.tableHighlightedColor);
        if (node.outline) node.outline->colour = colour;
        if (node.letters) node.letters->colour = colour;
    }
    if (node.label) setState(*node.label, state);
}

void TreeModel::updateLanguage(ModelNode& label)
{
    if (!label.letters || label.children.empty()) return;
    removeChild(label, 0);
    fillLabel(label);
    const featurePlaneConfig& colours = CFeatureConfig::sigleFeatureConfig()->getPlaneConfig();
    const osg::Vec4f colour = colourIn(label.state, colours.tableSelectedColor, colours.tableHighlightedColor);
    label.outline->colour = colour;
    label.letters->colour = colour;
}

bool TreeModel::addTable(ModelNode& primitive, ModelNode* table)
{
    if (!table) return false;
    const bool isLabel = table->sort == Sort::Label;
    primitive.label = isLabel ? table : nullptr;
    if (isLabel) addChild(primitive, *table);
    return isLabel || primitive.sort != Sort::Dot;
}

ModelNode* TreeModel::copyAs(const ModelNode& node, Sort sort, bool withNodesBelow)
{
    ModelNode* const copy = make(sort, node.name);
    copy->mask = node.mask;
    copy->values = node.values;
    for (ModelNode* child : node.children)
        addChild(*copy, withNodesBelow && isGroup(child->sort) ? *clone(*child, true) : *child);
    copy->shown = isSwitch(sort) ? node.shown : std::vector<bool>();
    copy->showsNew = node.showsNew;
    return copy;
}

ModelNode* TreeModel::clone(const ModelNode& node, bool withNodesBelow)
{
    // The library's classes leave clone() to their bases.
    const Sort sort = isSwitch(node.sort) ? Sort::Switch : node.sort == Sort::Label ? Sort::ScreenTransform : node.sort;
    return copyAs(node, sort, withNodesBelow);
}

ModelNode* TreeModel::copy(const ModelNode& node)
{
    ModelNode* const copy = copyAs(node, node.sort, false);
    copy->record = node.record;
    copy->state = node.state;
    copy->label = node.label;
    copy->sphere = node.sphere;
    copy->outline = node.outline;
    copy->fill = node.fill;
    copy->letters = node.letters;
    return copy;
}

// OpenSceneGraph.

ModelNode* TreeModel::make(Sort sort, const std::string& name)
{
    m_nodes.push_back(std::make_unique<ModelNode>());
    ModelNode& node = *m_nodes.back();
    node.id = ++m_made;
    node.sort = sort;
    node.name = name;
    return &node;
}

void TreeModel::addChild(ModelNode& parent, ModelNode& child)
{
    parent.children.push_back(&child);
    if (isSwitch(parent.sort)) parent.shown.push_back(parent.showsNew);
    child.parents.push_back(&parent);
}

void TreeModel::setChild(ModelNode& parent, unsigned int index, ModelNode& child)
{
    auto& parents = parent.children[index]->parents;
    parents.erase(std::find(parents.begin(), parents.end(), &parent));
    parent.children[index] = &child;
    child.parents.push_back(&parent);
}

void TreeModel::removeChild(ModelNode& parent, unsigned int index)
{
    auto& parents = parent.children[index]->parents;
    parents.erase(std::find(parents.begin(), parents.end(), &parent));
    parent.children.erase(parent.children.begin() + index);
    if (isSwitch(parent.sort)) parent.shown.erase(parent.shown.begin() + index);
}

void TreeModel::setValue(ModelNode& node, const std::string& key, UserValue value)
{
    if (!node.values) node.values = std::make_shared<UserValues>();
    (*node.values)[key] = value;
}

bool TreeModel::isBelow(const ModelNode& node, const ModelNode& top)
{
    return &node == &top || std::any_of(top.children.begin(), top.children.end(),
                                        [&](const ModelNode* child) { return isBelow(node, *child); });
}

std::size_t TreeModel::walkLength(const ModelNode& top)
{
    std::size_t length = 1;
    for (const ModelNode* child : top.children) length += walkLength(*child);
    return length;
}

// The comparison.

ModelNode* TreeModel::known(const osg::Node* real) const
{
    for (const auto& node : m_nodes)
        if (real && node->real == real) return node.get();
    return nullptr;
}

void TreeModel::bind(ModelNode& node, osg::Node& real)
{
    node.real = &real;
    node.watch = &real;
    bindBelow(node);
}

void TreeModel::bindBelow(ModelNode& node)
{
    osg::Group* const group = node.real->asGroup();
    for (unsigned int i = 0; group && i < node.children.size() && i < group->getNumChildren(); ++i)
        if (!node.children[i]->real) bind(*node.children[i], *group->getChild(i));
}

void TreeModel::sweep(const std::vector<ModelNode*>& held, std::vector<std::unique_ptr<ModelNode>>& dead)
{
    for (const auto& node : m_nodes) node->isReachable = false;
    const std::function<void(ModelNode*)> mark = [&](ModelNode* node) {
        if (!node || node->isReachable) return;
        node->isReachable = true;
        for (ModelNode* child : node->children) mark(child);
        for (ModelNode* part : {node->label, node->sphere, node->outline, node->fill, node->letters}) mark(part);
    };
    for (ModelNode* node : held) mark(node);

    const auto isDead = [](const auto& node) { return !node->isReachable; };
    for (const auto& node : m_nodes)
        node->parents.erase(std::remove_if(node->parents.begin(), node->parents.end(), isDead), node->parents.end());
    const auto firstDead = std::stable_partition(m_nodes.begin(), m_nodes.end(), std::not_fn(isDead));
    std::move(firstDead, m_nodes.end(), std::back_inserter(dead));
    m_nodes.erase(firstDead, m_nodes.end());
}

std::string TreeModel::check(const std::vector<ModelNode*>& held)
{
    std::vector<std::unique_ptr<ModelNode>> dead;
    sweep(held, dead);
    for (const auto& node : dead)
        if (node->watch.valid()) return nameOf(*node) + " is still alive";

    for (ModelNode* node : held) bindBelow(*node);
    for (std::size_t i = 0; i < m_nodes.size(); ++i)
        if (m_nodes[i]->real && m_nodes[i]->watch.valid()) bindBelow(*m_nodes[i]);
    for (const auto& node : m_nodes) {
        if (!node->real) return nameOf(*node) + " is missing";
        if (!node->watch.valid()) return nameOf(*node) + " is no longer alive";
        if (sortOf(*node->real) != node->sort)
            return nameOf(*node) + " is a " + kSortNames[static_cast<int>(sortOf(*node->real))];
        if (const std::string difference = differenceOf(*node); !difference.empty())
            return nameOf(*node) + ' ' + difference;
        if (node->isRecordRight) continue;
        if (recordIn(*node->real, node->sort) != recordOf(*node)) return nameOf(*node) + " has another record";
        node->isRecordRight = true;
    }
    return {};
}

} // namespace kelvtest
