#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Node>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/observer_ptr>

#include <QString>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace kelvtest {

/// What a node is, as far as the rules of the feature tree tell nodes apart.
enum class Sort
{
    Group,
    Switch,
    Base, // featureBaseNode
    Transform,
    ScreenTransform, // osg::AutoTransform
    Geode,
    Dot,
    Flag,
    Line,
    Plane,
    Label,
    Shape, // osg::ShapeDrawable
    Geometry,
    Text
};

bool isGroup(Sort sort);
bool isSwitch(Sort sort);
bool isPrimitive(Sort sort);

/// What an object is expected to be.
Sort sortOf(const osg::Node& node);

using UserValue = std::variant<int, bool, float>;
using UserValues = std::map<std::string, UserValue>;
using Record = std::variant<std::monostate, KelvOsgTools::CTableMeta::structTableMeta,
                            KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta,
                            KelvOsgTools::CArrowMeta::structArrowMeta, KelvOsgTools::CPlaneMeta::structPlaneMeta>;

/// A node as it should be, beside the node that is there.
struct ModelNode
{
    int id = 0;
    Sort sort = Sort::Group;
    std::string name;
    unsigned int mask = ~0u;
    std::shared_ptr<UserValues> values; // shared by copies, as OpenSceneGraph shares them
    std::vector<ModelNode*> children;
    std::vector<ModelNode*> parents;
    std::vector<bool> shown; // of a switch, for each child
    bool showsNew = true;    // of a switch, for children to come

    Record record;
    int state = KelvOsgTools::featureStateNormal;
    std::optional<osg::Vec4f> colour;
    float lineWidth = 0.0f;
    float radius = 0.0f;
    std::string text;

    // What a primitive or a label keeps alive besides its children; null where it keeps nothing.
    ModelNode* label = nullptr;
    ModelNode* sphere = nullptr;
    ModelNode* outline = nullptr;
    ModelNode* fill = nullptr;
    ModelNode* letters = nullptr;

    osg::Node* real = nullptr; // null until it is known which node of the scene this is
    osg::observer_ptr<osg::Node> watch;

    bool isReachable = false;   // of the last sweep
    bool isRecordRight = false; // compared once: records never change
};

/// The rules of the feature tree, told once more and in the plainest way: what every public call
/// makes of a scene, down to the last node, and which nodes are alive after it. It knows
/// OpenSceneGraph's own rules of groups, switches and copies, and nothing of the library's code.
class TreeModel
{
public:
    using featureType = KelvOsgTools::featureType;
    using Label = KelvOsgTools::CTableMeta::structTableMeta;
    using Sphere = KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta;
    using Arrow = KelvOsgTools::CArrowMeta::structArrowMeta;
    using PlaneRecord = KelvOsgTools::CPlaneMeta::structPlaneMeta;

    /// What is expected of the arguments that assemblies have in common.
    struct LabelArguments
    {
        int renderIndex;
        QString prefix;
        int suffix;
    };

    // The public functions.
    ModelNode* findOrCreateNode(const std::string& name, ModelNode* parent, bool create);
    ModelNode* findOrCreateRoot(ModelNode* scene, featureType kind, bool create);
    ModelNode* findChild(const std::string& name, ModelNode* parent) const;
    /// @param parent left alone if nothing is found
    ModelNode* findAnywhere(const std::string& name, ModelNode* scene, ModelNode*& parent) const;
    ModelNode* findOfKind(const std::string& name, ModelNode* scene, featureType kind) const;
    bool switchRoot(ModelNode* scene, bool on, featureType kind);
    bool switchTemporary(ModelNode* scene, bool on, featureType kind);
    bool removeRoot(ModelNode* scene, featureType kind);
    bool clearTemporary(ModelNode* scene, featureType kind);
    ModelNode* makeLabel(const Label& record);
    ModelNode* createDot(const std::string& name, ModelNode* scene, const osg::Vec3f& point,
                         const LabelArguments& label, int state, bool isBottom);
    ModelNode* createFlag(const std::string& name, ModelNode* scene, const osg::Vec3f& point,
                          const LabelArguments& label, featureType kind, bool useFlagFontSize);
    ModelNode* createLine(int state, const Arrow& record, ModelNode* scene, const LabelArguments& label);
    /// Nothing if the call is expected to throw std::out_of_range.
    std::optional<ModelNode*> createPlane(int state, const QString& name, ModelNode* scene,
                                          const std::vector<osg::Vec3f>& points, const osg::Vec3f& normal,
                                          const LabelArguments& label);
    ModelNode* createSphere(const std::string& name, ModelNode* scene, const osg::Vec3f& centre);
    void setState(ModelNode& node, int state);
    void updateLanguage(ModelNode& label);
    /// What addTable of a primitive answers.
    bool addTable(ModelNode& primitive, ModelNode* table);
    /// By the copy constructor of the node's class.
    ModelNode* copy(const ModelNode& node);
    /// What the three searches list, in order.
    std::vector<ModelNode*> listNamed(ModelNode& top, const std::vector<std::string>& names) const;
    std::vector<ModelNode*> listOfKinds(ModelNode& top, const std::vector<featureType>& kinds) const;

    // What hosts do with OpenSceneGraph.
    ModelNode* make(Sort sort, const std::string& name = {});
    ModelNode* clone(const ModelNode& node, bool withNodesBelow);
    void addChild(ModelNode& parent, ModelNode& child);
    void setChild(ModelNode& parent, unsigned int index, ModelNode& child);
    void removeChild(ModelNode& parent, unsigned int index);
    void setValue(ModelNode& node, const std::string& key, UserValue value);
    static bool isBelow(const ModelNode& node, const ModelNode& top);
    /// How many nodes a walk from there meets, those of several parents several times.
    static std::size_t walkLength(const ModelNode& top);

    const std::vector<std::unique_ptr<ModelNode>>& nodes() const { return m_nodes; }
    ModelNode* known(const osg::Node* real) const;
    void bind(ModelNode& node, osg::Node& real);

    /// Forgets what nothing holds any more, given what the host holds, and compares all that is left
    /// with the real tree.
    /// @return what is wrong; empty if nothing is
    std::string check(const std::vector<ModelNode*>& held);

private:
    ModelNode* contentOf(ModelNode* node) const;
    ModelNode* existingContent(ModelNode* scene, featureType kind) const;
    bool hasPlaceFor(ModelNode* scene, featureType kind) const;
    ModelNode* hang(ModelNode* scene, featureType kind, ModelNode& feature, const std::string& name);
    ModelNode* firstBelow(const ModelNode& top, const std::string& name) const;
    ModelNode* makeMarker(Sort sort, const Sphere& record);
    ModelNode* makeArrow(const Arrow& record);
    void fillLabel(ModelNode& label);
    ModelNode* copyAs(const ModelNode& node, Sort sort, bool withNodesBelow);
    void bindBelow(ModelNode& node);
    void sweep(const std::vector<ModelNode*>& held, std::vector<std::unique_ptr<ModelNode>>& dead);

    std::vector<std::unique_ptr<ModelNode>> m_nodes;
    int m_made = 0;
};

} // namespace kelvtest
