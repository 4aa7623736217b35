#pragma once

#include <KelvOsgTools/CTableMeta.h>

#include <osg/AutoTransform>
#include <osg/CullSettings>
#include <osg/Geode>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/Matrixd>
#include <osg/Viewport>
#include <osgText/Text>
#include <osgUtil/CullVisitor>
#include <osgUtil/RenderStage>
#include <osgUtil/StateGraph>

#include <cstddef>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace kelvtest {

constexpr int kCullWidth = 640;
constexpr int kCullHeight = 480;

/// A cull visitor that is led no shorter way, as features know nothing of its kind.
class DetourVisitor : public osgUtil::CullVisitor
{};

/// What a drawable is drawn with. Of no account is the line width of what is filled.
struct Drawn
{
    const osg::Drawable* drawable = nullptr;
    osg::Matrixd matrix;
    osg::Matrixd projection;
    float depth = 0.0f;
    bool isDynamic = false;
    int bin = 0;
    std::map<std::string, std::string> state;
};

bool operator==(const Drawn& a, const Drawn& b);

struct Culled
{
    std::vector<Drawn> drawn; // in order
    std::vector<int> bins;
    double nearest = 0.0;
    double farthest = 0.0;
    std::vector<osg::Matrixd> poses; // of auto-scaled transforms: their scales and rotations
};

bool operator==(const Culled& a, const Culled& b);
void PrintTo(const Culled& culled, std::ostream* out);

/// How a scene is looked at.
struct View
{
    const char* name = "Parallel";
    osg::Matrixd view = osg::Matrixd::lookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Vec3d(0, 1, 0));
    osg::Matrixd projection =
        osg::Matrixd::ortho(-kCullWidth / 2.0, kCullWidth / 2.0, -kCullHeight / 2.0, kCullHeight / 2.0, 1.0, 200.0);
    osg::CullSettings::ComputeNearFarMode nearFar = osg::CullSettings::COMPUTE_NEAR_FAR_USING_BOUNDING_VOLUMES;
    osg::CullSettings::CullingMode culling = osg::CullSettings::DEFAULT_CULLING;
    float smallPixels = 2.0f;
    std::function<void(osgUtil::CullVisitor&)> prepare = [](osgUtil::CullVisitor&) {};
};

void PrintTo(const View& view, std::ostream* out);

osg::Matrixd perspective();
View viewFrom(const char* name, const osg::Vec3d& eye, const osg::Vec3d& target, const osg::Matrixd& projection);

/// A parallel view that shows so many units across, around a point.
View closeUp(const char* name, const osg::Vec2d& centre, double across);

template <typename Adjust>
View parallelBut(const char* name, Adjust&& adjust)
{
    View view;
    view.name = name;
    adjust(view);
    return view;
}

/// From afar and near, with what a viewer may be set to.
const std::vector<View>& cullViews();

/// Culls as a viewer does, frame by frame.
class Cull
{
public:
    explicit Cull(osgUtil::CullVisitor* visitor) : m_visitor(visitor) {}

    Culled operator()(osg::Node& scene, const View& view);

    const osgUtil::StateGraph& graph() const { return *m_graph; }

private:
    osg::ref_ptr<osgUtil::CullVisitor> m_visitor;
    osg::ref_ptr<osgUtil::StateGraph> m_graph = new osgUtil::StateGraph;
    osg::ref_ptr<osgUtil::RenderStage> m_stage = new osgUtil::RenderStage;
    osg::ref_ptr<osg::Viewport> m_viewport = new osg::Viewport(0, 0, kCullWidth, kCullHeight);
};

/// By the visitor that viewers use.
Culled shortCull(osg::Node& scene, const View& view);

/// By the visitor that goes OpenSceneGraph's way.
Culled detourCull(osg::Node& scene, const View& view);

/// Features with overlapping labels, one after the other, of which a host may change one; and as many that
/// stand elsewhere, turned.
struct CullScene
{
    explicit CullScene(unsigned int changedDot = 2, bool isTurned = false);

    osg::Group& dots();
    osg::Group& dot();
    osg::AutoTransform& mark();
    osg::Geode& markGeode();
    osg::Drawable& sphere();
    KelvOsgTools::CTableMeta& label();
    osg::Geode& labelGeode();
    osg::Drawable& outline();
    osg::Drawable& fill();
    osgText::Text& text();

    osg::ref_ptr<osg::Group> top = new osg::Group;
    osg::ref_ptr<osg::MatrixTransform> turned = new osg::MatrixTransform;
    unsigned int changed;
    osg::ref_ptr<osg::Group> around; // the changed dot
};

osg::StateSet& stateOf(osg::Node& node);

} // namespace kelvtest
