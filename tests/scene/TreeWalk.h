#pragma once

#include <KelvOsgTools/CFeatureConfig.h>

#include "scene/TreeModel.h"

#include <osg/Group>
#include <osg/ref_ptr>

#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace kelvtest {

/// One call, told in numbers that mean something in any state of the scenes: an index counts from the
/// start again where there are fewer nodes. So a sequence stays playable whatever is cut out of it.
struct Step
{
    unsigned int call = 0;
    std::array<unsigned int, 8> numbers{};
};

using Steps = std::vector<Step>;

Steps randomSteps(unsigned int seed, std::size_t count);

/// The call that changes a node behind the model's back. Never among random steps.
Step tampering(unsigned int node);

/// Three scenes of a host and their model, which go through the same calls.
class TreeWalk
{
public:
    /// @param log where each call is told before it is made; may be null
    explicit TreeWalk(std::ostream* log = nullptr);
    ~TreeWalk();
    TreeWalk(const TreeWalk&) = delete;
    TreeWalk& operator=(const TreeWalk&) = delete;

    /// Makes a call on scenes and model, and compares what comes back and what has become of them.
    /// @return what is wrong; empty if nothing is
    std::string take(const Step& step);

    /// Lets go of everything.
    /// @return what is wrong: a node that is still alive, say
    std::string end();

    int featuresMade() const { return m_featuresMade; }

private:
    class Numbers;
    using Call = std::string (TreeWalk::*)(Numbers&);
    struct WeightedCall
    {
        Call call;
        int weight;
    };
    static const std::vector<WeightedCall>& calls();
    friend Steps randomSteps(unsigned int seed, std::size_t count);
    friend Step tampering(unsigned int node);

    std::string createDot(Numbers& next);
    std::string createFlag(Numbers& next);
    std::string createLine(Numbers& next);
    std::string createLineFromRecord(Numbers& next);
    std::string createPlane(Numbers& next);
    std::string createSphere(Numbers& next);
    std::string createLabel(Numbers& next);
    std::string findOrCreate(Numbers& next);
    std::string findOrCreateRoot(Numbers& next);
    std::string findChild(Numbers& next);
    std::string findAnywhere(Numbers& next);
    std::string findOfKind(Numbers& next);
    std::string search(Numbers& next);
    std::string switchRoot(Numbers& next);
    std::string switchTemporary(Numbers& next);
    std::string removeRoot(Numbers& next);
    std::string clearTemporary(Numbers& next);
    std::string setState(Numbers& next);
    std::string updateLanguage(Numbers& next);
    std::string addTable(Numbers& next);
    std::string copy(Numbers& next);
    std::string clone(Numbers& next);
    std::string configure(Numbers& next);
    std::string hostRename(Numbers& next);
    std::string hostRemove(Numbers& next);
    std::string hostAdd(Numbers& next);
    std::string hostReplace(Numbers& next);
    std::string hostMake(Numbers& next);
    std::string hostMark(Numbers& next);
    std::string hostForget(Numbers& next);
    std::string hostNewScene(Numbers& next);
    std::string tamper(Numbers& next);

    void setStateOf(ModelNode& node, int state);
    void hostMakeIn(ModelNode& parent, Sort sort, const std::string& name);
    ModelNode* aNode(Numbers& next) const;
    ModelNode* aGroup(Numbers& next) const;
    ModelNode* aNodeOf(Numbers& next, bool (*isWanted)(Sort)) const;
    ModelNode* aScene(Numbers& next) const;
    std::vector<ModelNode*> held() const;
    void hold(ModelNode* node, osg::Node* real);
    std::string compareResult(ModelNode* expected, const osg::ref_ptr<osg::Node>& actual, bool keep);
    void tell(const std::string& call) const;

    std::ostream* m_log;
    KelvOsgTools::CFeatureConfig m_formerConfig;
    TreeModel m_model;
    std::array<std::pair<ModelNode*, osg::ref_ptr<osg::Group>>, 3> m_scenes;
    std::vector<std::pair<ModelNode*, osg::ref_ptr<osg::Node>>> m_held; // what the host remembers, oldest first
    int m_featuresMade = 0;
};

/// Takes steps until one goes wrong.
/// @return what is wrong, with the number of the step; empty if nothing is
std::string failureOf(const Steps& steps, std::ostream* log = nullptr);

/// Cuts out of steps that fail what they fail without.
Steps shrunk(Steps steps);

} // namespace kelvtest
