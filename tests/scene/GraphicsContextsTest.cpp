#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CConeAndCylinderMeta.h>
#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureRig.h"
#include "support/PictureScenes.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <gtest/gtest.h>

#include <osg/BufferObject>
#include <osg/ContextData>
#include <osg/GL>
#include <osg/Texture>

#include <functional>
#include <memory>
#include <ostream>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

using Scene = osg::ref_ptr<osg::Group>;

constexpr int kSize = 200;
constexpr Tolerance kSame{0, 0.0}; // the same renderer draws the same scene

/// Display lists are not counted by OpenSceneGraph: GL itself is asked, while its context is current.
struct CountDisplayLists : osg::Camera::DrawCallback
{
    void operator()(osg::RenderInfo&) const override
    {
        constexpr GLuint kMostListsOfATest = 500;
        m_count = 0;
        for (GLuint list = 1; list <= kMostListsOfATest; ++list) m_count += glIsList(list) ? 1 : 0;
    }

    mutable unsigned int m_count = 0;
};

/// What a context holds.
struct GlObjects
{
    unsigned int buffers = 0;
    unsigned int textures = 0;
    unsigned int displayLists = 0;
};

bool operator==(const GlObjects& a, const GlObjects& b)
{
    return a.buffers == b.buffers && a.textures == b.textures && a.displayLists == b.displayLists;
}

bool operator!=(const GlObjects& a, const GlObjects& b)
{
    return !(a == b);
}

std::ostream& operator<<(std::ostream& stream, const GlObjects& objects)
{
    return stream << objects.buffers << " buffers, " << objects.textures << " textures, " << objects.displayLists
                  << " display lists";
}

/// A viewer with a context of its own, which ends with it.
class OwnContext
{
public:
    explicit OwnContext(osg::Node* scene) : m_rig(kSize, kSize)
    {
        // Or else OpenSceneGraph keeps released lists for later use.
        osg::Drawable::setMinimumNumberOfDisplayListsToRetainInCache(0);
        m_rig.camera().setPostDrawCallback(m_lists);
        m_rig.setScene(scene);
    }

    osg::ref_ptr<osg::Image> picture() { return m_rig.render(); }
    unsigned int id() { return m_rig.camera().getGraphicsContext()->getState()->getContextID(); }

    /// What is left after some frames, in which OpenSceneGraph deletes what was released.
    GlObjects objects()
    {
        m_rig.render(4);
        GlObjects objects = managedObjects(id());
        objects.displayLists = m_lists->m_count;
        return objects;
    }

    static GlObjects managedObjects(unsigned int id)
    {
        const auto& buffers = *osg::get<osg::GLBufferObjectManager>(id);
        const auto& textures = *osg::get<osg::TextureObjectManager>(id);
        return {buffers.getNumberActiveGLBufferObjects() + buffers.getNumberOrphanedGLBufferObjects(),
                textures.getNumberActiveTextureObjects() + textures.getNumberOrphanedTextureObjects(), 0};
    }

private:
    PictureRig m_rig;
    osg::ref_ptr<CountDisplayLists> m_lists = new CountDisplayLists;
};

Scene allKinds()
{
    Scene scene = new osg::Group;
    addDot(scene, "dot", osg::Vec3f(-60, 40, 0));
    addDot(scene, "other dot", osg::Vec3f(-20, 40, 0));
    addFlagDot(scene, "flag", featureDot, osg::Vec3f(40, 40, 0));
    addLine(scene, "line", osg::Vec3f(-60, -60, 0), osg::Vec3f(60, -60, 0));
    CArrowMeta::structArrowMeta solid = solidArrow({-60, -20, 0}, {60, -20, 0});
    solid.name = "solid line";
    solid.radius = 3.0f;
    createArrowAndTable(featureStateHighlighted, solid, scene, 1, QStringLiteral("line"), 2);
    addPlane(scene, "plane", squareCorners(60.0f));
    return scene;
}

class GraphicsContexts : public PictureTest
{};

TEST_F(GraphicsContexts, DrawTheSameSceneAlike)
{
    const Scene scene = allKinds();
    OwnContext one(scene);
    OwnContext other(scene);
    ASSERT_NE(one.id(), other.id());
    const osg::ref_ptr<osg::Image> picture = one.picture();
    EXPECT_FALSE(boxOfDifference(*picture, kWhite).isEmpty());
    EXPECT_TRUE(alike(*other.picture(), *picture, "contexts-same-scene", kSame));
}

TEST_F(GraphicsContexts, DrawScenesThatShareMeshesAndGlyphsAsIfEachWereAlone)
{
    const osg::ref_ptr<osg::Image> alone = OwnContext(allKinds()).picture();
    OwnContext one(allKinds());
    OwnContext other(allKinds());
    one.picture();
    EXPECT_TRUE(alike(*other.picture(), *alone, "contexts-shared-other", kSame));
    EXPECT_TRUE(alike(*one.picture(), *alone, "contexts-shared-one", kSame));
}

TEST_F(GraphicsContexts, DrawTheSameTriadAlikeAlsoWhenTheyComeLater)
{
    CConeAndCylinderMeta::structConeAndCylinderMeta meta;
    meta.length = 60.0f;
    meta.radius = 4.0f;
    const osg::ref_ptr<osg::Node> triad = CConeAndCylinderMeta::createAxis(meta);
    OwnContext one(triad);
    const osg::ref_ptr<osg::Image> picture = one.picture();
    EXPECT_FALSE(boxOfDifference(*picture, kWhite).isEmpty());
    EXPECT_TRUE(alike(*OwnContext(triad).picture(), *picture, "contexts-triad", kSame));
    EXPECT_TRUE(alike(*OwnContext(triad).picture(), *picture, "contexts-triad-later", kSame));
    EXPECT_TRUE(alike(*one.picture(), *picture, "contexts-triad-first", kSame));
}

TEST_F(GraphicsContexts, ShowAChangeInAllOfThem)
{
    const Scene scene = allKinds();
    OwnContext one(scene);
    OwnContext other(scene);
    const osg::ref_ptr<osg::Image> before = one.picture();
    other.picture();
    osg::ref_ptr<osg::Group> parent;
    for (const char* const name : {"dot", "flag", "line", "solid line", "plane"})
        dynamic_cast<CFeatureMetaObject&>(*findFeatureByName(name, scene, parent)).setState(featureStateNone);
    addDot(scene, "newcomer", osg::Vec3f(0, 0, 0));
    const osg::ref_ptr<osg::Image> after = one.picture();
    EXPECT_FALSE(alike(*after, *before, "contexts-unchanged", kSame));
    EXPECT_TRUE(alike(*other.picture(), *after, "contexts-changed", kSame));
}

TEST_F(GraphicsContexts, ThatGoLeaveTheOthersTheirPicture)
{
    const Scene scene = allKinds();
    OwnContext staying(scene);
    const osg::ref_ptr<osg::Image> picture = staying.picture();
    OwnContext(scene).picture();
    EXPECT_TRUE(alike(*staying.picture(), *picture, "contexts-one-went", kSame));
}

TEST_F(GraphicsContexts, ThatComeAfterOneWentDrawWhatItDrew)
{
    const Scene scene = allKinds();
    const osg::ref_ptr<osg::Image> first = OwnContext(scene).picture();
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(alike(*OwnContext(scene).picture(), *first, "contexts-anew", kSame)) << i;
}

TEST_F(GraphicsContexts, ThatComeDrawFeaturesThatAnotherDrewBeforeTheyChanged)
{
    const Scene scene = allKinds();
    OwnContext(scene).picture();
    osg::ref_ptr<osg::Group> parent;
    dynamic_cast<CFeatureMetaObject&>(*findFeatureByName("flag", scene, parent)).setState(featureStateNone);
    const Scene fresh = allKinds();
    dynamic_cast<CFeatureMetaObject&>(*findFeatureByName("flag", fresh, parent)).setState(featureStateNone);
    EXPECT_TRUE(alike(*OwnContext(scene).picture(), *OwnContext(fresh).picture(), "contexts-changed-between", kSame));
}

TEST_F(GraphicsContexts, KeepNothingOnceTheyWent)
{
    const Scene scene = allKinds();
    unsigned int id = 0;
    {
        OwnContext context(scene);
        id = context.id();
        EXPECT_GT(context.objects().buffers, 0u);
        EXPECT_GT(context.objects().textures, 0u);
        EXPECT_GT(context.objects().displayLists, 0u);
    }
    EXPECT_EQ(OwnContext::managedObjects(id), GlObjects());
}

TEST_F(GraphicsContexts, MayGoBeforeTheFeaturesTheyDrew)
{
    Scene scene = allKinds();
    OwnContext staying(scene);
    const GlObjects empty = OwnContext(new osg::Group).objects();
    OwnContext(scene).picture();
    staying.picture();
    removeFeatureRoot(scene, featureAll);
    EXPECT_EQ(staying.objects(), empty);
}

/// Something to draw, and what hosts do with it while it is drawn.
struct Drawn
{
    const char* label;
    std::function<osg::ref_ptr<osg::Node>(const Scene&)> make;
};

void PrintTo(const Drawn& drawn, std::ostream* stream)
{
    *stream << drawn.label;
}

osg::ref_ptr<osg::Node> addSolidLine(const Scene& scene)
{
    CArrowMeta::structArrowMeta meta = solidArrow({-60, 0, 0}, {60, 0, 0});
    meta.name = "feature";
    return createArrowAndTable(featureStateNormal, meta, scene, 1, QStringLiteral("line"), 1);
}

osg::ref_ptr<osg::Node> addScaledLabel(const Scene& scene)
{
    CTableMeta::structTableMeta meta = labelSaying("Label");
    meta.isAutoScale = false;
    const osg::ref_ptr<osg::Node> label = new CTableMeta(meta);
    scene->addChild(label);
    return label;
}

osg::ref_ptr<osg::Node> addWorldSphere(const Scene& scene)
{
    return findOrCreateShpere("feature", scene, osg::Vec3f());
}

class DrawnFeature : public PictureTest, public ::testing::WithParamInterface<Drawn>
{
protected:
    static void goThroughAllStates(osg::Node& node, OwnContext& context)
    {
        for (const int state : {3, 2, 0, 1}) {
            if (auto* const feature = dynamic_cast<CFeatureMetaObject*>(&node))
                feature->setState(static_cast<featureState>(state));
            for (CTableMeta* label : nodesOfType<CTableMeta>(node)) label->updateLanguage();
            context.picture();
        }
    }

    static void remove(osg::ref_ptr<osg::Node>& node)
    {
        while (node->getNumParents() > 0) node->getParent(0)->removeChild(node);
        node = nullptr;
    }

    Scene m_scene = new osg::Group;
};

TEST_P(DrawnFeature, LeavesNothingInAContextThatLivesOn)
{
    OwnContext context(m_scene);
    const GlObjects before = context.objects();
    osg::ref_ptr<osg::Node> feature = GetParam().make(m_scene);
    EXPECT_NE(context.objects(), before);
    goThroughAllStates(*feature, context);
    remove(feature);
    EXPECT_EQ(context.objects(), before);
}

TEST_P(DrawnFeature, NeedsNoMoreObjectsForManyChangesThanForOne)
{
    OwnContext context(m_scene);
    const osg::ref_ptr<osg::Node> feature = GetParam().make(m_scene);
    goThroughAllStates(*feature, context);
    const GlObjects once = context.objects();
    for (int i = 0; i < 4; ++i) goThroughAllStates(*feature, context);
    EXPECT_EQ(context.objects(), once);
}

TEST_P(DrawnFeature, LeavesItsEqualWhatTheyShare)
{
    OwnContext context(m_scene);
    const osg::ref_ptr<osg::Node> staying = GetParam().make(m_scene);
    const osg::ref_ptr<osg::Image> picture = context.picture();
    const GlObjects ofOne = context.objects();

    const Scene elsewhere = new osg::Group;
    m_scene->addChild(elsewhere);
    osg::ref_ptr<osg::Node> going = GetParam().make(elsewhere);
    context.picture();
    remove(going);
    m_scene->removeChild(elsewhere);
    EXPECT_TRUE(alike(*context.picture(), *picture, std::string("contexts-stays-") + GetParam().label, kSame));
    EXPECT_EQ(context.objects(), ofOne);
}

TEST_P(DrawnFeature, LeavesNothingInAnyOfTwoContexts)
{
    OwnContext one(m_scene);
    OwnContext other(m_scene);
    const GlObjects before = one.objects();
    osg::ref_ptr<osg::Node> feature = GetParam().make(m_scene);
    one.picture();
    goThroughAllStates(*feature, other);
    remove(feature);
    other.picture(); // until then its viewer holds what it drew last
    EXPECT_EQ(one.objects(), before);
    EXPECT_EQ(other.objects(), before);
}

TEST_P(DrawnFeature, GoesThroughManyContextsWithoutKeepingAnything)
{
    const osg::ref_ptr<osg::Node> feature = GetParam().make(m_scene);
    for (int i = 0; i < 3; ++i) {
        unsigned int id = 0;
        {
            OwnContext context(m_scene);
            id = context.id();
            goThroughAllStates(*feature, context);
        }
        EXPECT_EQ(OwnContext::managedObjects(id), GlObjects()) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Features, DrawnFeature,
    ::testing::Values(Drawn{"Dot", [](const Scene& scene) { return addDot(scene, "feature"); }},
                      Drawn{"FlagDot", [](const Scene& scene) { return addFlagDot(scene, "feature"); }},
                      Drawn{"Line", [](const Scene& scene) { return addLine(scene, "feature"); }},
                      Drawn{"SolidLine", addSolidLine},
                      Drawn{"Plane", [](const Scene& scene) { return addPlane(scene, "feature"); }},
                      Drawn{"ScaledLabel", addScaledLabel}, Drawn{"WorldSphere", addWorldSphere}),
    [](const auto& drawn) { return std::string(drawn.param.label); });

} // namespace
