#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CConeAndCylinderMeta.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "support/Config.h"
#include "support/NodeBuilders.h"
#include "support/Records.h"
#include "support/SceneQueries.h"

#include <gtest/gtest.h>

#include <osg/ShapeDrawable>
#include <osg/io_utils>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <link.h>
#include <new>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

// The allocation, counted from now, that fails; 0 means none does.
long allocationsUntilFailure = 0;

// What the next call of the library is to start with; arguments of its callers are none of its business.
long nextAllocationsUntilFailure = 0;

void arm()
{
    allocationsUntilFailure = nextAllocationsUntilFailure;
}

bool failsNow()
{
    return allocationsUntilFailure > 0 && --allocationsUntilFailure == 0;
}

/// Memory that the library's own code asked for and has not given back. OpenSceneGraph's and Qt's
/// constructors leak when an allocation within them fails: that is theirs.
class OwnMemory
{
public:
    void watch(bool on)
    {
        m_count = 0;
        m_isOn = on;
    }

    void add(void* memory, const void* caller)
    {
        if (!m_isOn || caller < m_code.first || caller >= m_code.second) return;
        if (m_count == m_blocks.size()) std::abort(); // more than any test here asks for
        m_blocks[m_count++] = memory;
    }

    void remove(const void* memory)
    {
        const auto end = m_blocks.begin() + static_cast<std::ptrdiff_t>(m_count);
        const auto found = std::find(m_blocks.begin(), end, memory);
        if (found != end) *found = m_blocks[--m_count];
    }

    std::size_t count() const { return m_count; }

    /// Finds the library's code.
    bool locate() { return dl_iterate_phdr(&OwnMemory::look, this) != 0; }

private:
    static int look(dl_phdr_info* object, std::size_t, void* data)
    {
        if (std::string(object->dlpi_name).find("/libKelvOsgTools.so") == std::string::npos) return 0;
        for (int i = 0; i < object->dlpi_phnum; ++i) {
            const ElfW(Phdr)& part = object->dlpi_phdr[i];
            if (part.p_type != PT_LOAD || !(part.p_flags & PF_X)) continue;
            const auto* const begin = reinterpret_cast<const char*>(object->dlpi_addr + part.p_vaddr);
            static_cast<OwnMemory*>(data)->m_code = {begin, begin + part.p_memsz};
            return 1;
        }
        return 0;
    }

    std::pair<const void*, const void*> m_code{};
    std::array<void*, 20000> m_blocks{};
    std::size_t m_count = 0;
    bool m_isOn = false;
};

OwnMemory ownMemory;

void* allocate(std::size_t size, const void* caller)
{
    if (failsNow()) throw std::bad_alloc();
    void* const memory = std::malloc(size > 0 ? size : 1);
    if (!memory) throw std::bad_alloc();
    ownMemory.add(memory, caller);
    return memory;
}

void release(void* memory)
{
    ownMemory.remove(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size, __builtin_return_address(0));
}

void* operator new[](std::size_t size)
{
    return allocate(size, __builtin_return_address(0));
}

void operator delete(void* memory) noexcept
{
    release(memory);
}

void operator delete[](void* memory) noexcept
{
    release(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    release(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    release(memory);
}

namespace {
using namespace KelvOsgTools;

using Assembly = std::function<osg::ref_ptr<osg::Group>(const osg::ref_ptr<osg::Group>&)>;

osg::ref_ptr<osg::Group> dotIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    return createAutoScaleShpereAndTable(QStringLiteral("feature"), scene, osg::Vec3f(), 1, QStringLiteral("Point"), 1,
                                         featureStateSelected, false);
}

osg::ref_ptr<osg::Group> flagDotIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    return createFlagAutoScaleShpereAndTable(QStringLiteral("feature"), scene, osg::Vec3f(), 1, QStringLiteral("Point"),
                                             1, featureLine, true, false);
}

osg::ref_ptr<osg::Group> arrowIn(const osg::ref_ptr<osg::Group>& scene, bool isLineArrow)
{
    CArrowMeta::structArrowMeta meta;
    meta.name = "feature";
    meta.endPos.set(1.0f, 2.0f, 3.0f);
    meta.isLineArrow = isLineArrow;
    arm();
    return createArrowAndTable(featureStateSelected, meta, scene, 1, QStringLiteral("line"), 1);
}

osg::ref_ptr<osg::Group> planeIn(const osg::ref_ptr<osg::Group>& scene)
{
    std::vector<osg::Vec3f> corners = {osg::Vec3f(), osg::X_AXIS, osg::X_AXIS + osg::Y_AXIS, osg::Y_AXIS};
    arm();
    return createPlaneAndTable(featureStateSelected, QStringLiteral("feature"), scene, std::move(corners), osg::Z_AXIS,
                               1, QStringLiteral("Plane"), 1);
}

osg::ref_ptr<osg::Group> sphereIn(const osg::ref_ptr<osg::Group>& scene)
{
    arm();
    const osg::ref_ptr<osg::Node> sphere = findOrCreateShpere("feature", scene, osg::Vec3f());
    return sphere ? sphere->asGroup() : nullptr;
}

struct NamedAssembly
{
    const char* name;
    Assembly build;
};

class ExhaustedMemory : public ::testing::TestWithParam<NamedAssembly>
{};

/// Fails the first, the second, ... allocation of a call in turn, until one passes without.
/// @param call  arms itself
/// @param check called after every call that met a failure
void failEachAllocation(const std::function<void()>& call, const std::function<void(long)>& check)
{
    for (long n = 1;; ++n) {
        nextAllocationsUntilFailure = n;
        call();
        const bool failed = allocationsUntilFailure == 0;
        allocationsUntilFailure = 0;
        nextAllocationsUntilFailure = 0;
        if (!failed) {
            EXPECT_GT(n, 1) << "the call asks for no memory";
            return;
        }
        check(n);
    }
}

// What asks for memory that it can do without (a cache, say) may survive a failure: the feature is then
// there, whole.

TEST_P(ExhaustedMemory, LeavesAnEmptySceneEmpty)
{
    GetParam().build(new osg::Group); // loads what is loaded once per process
    osg::ref_ptr<osg::Group> scene;
    osg::ref_ptr<osg::Group> feature;
    const auto call = [&] {
        scene = new osg::Group;
        feature = GetParam().build(scene);
    };
    failEachAllocation(call,
                       [&](long n) { EXPECT_EQ(scene->getNumChildren(), feature ? 1u : 0u) << "allocation " << n; });
    EXPECT_TRUE(feature.valid());
}

TEST_P(ExhaustedMemory, LeavesTheFeatureThatWasToBeReplaced)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    osg::ref_ptr<osg::Group> former = GetParam().build(scene);
    const osg::ref_ptr<osg::Group> siblings = former->getParent(0);
    osg::ref_ptr<osg::Group> feature;
    failEachAllocation([&] { feature = GetParam().build(scene); },
                       [&](long n) {
                           if (feature) former = feature;
                           ASSERT_EQ(siblings->getNumChildren(), 1u) << "allocation " << n;
                           EXPECT_EQ(siblings->getChild(0), former) << "allocation " << n;
                           EXPECT_EQ(former->getNumParents(), 1u) << "allocation " << n;
                       });
    EXPECT_TRUE(feature.valid());
}

TEST_P(ExhaustedMemory, LeaksNothingOfTheLibrarysOwn)
{
    ASSERT_TRUE(ownMemory.locate());
    const osg::ref_ptr<osg::Group> warm = GetParam().build(new osg::Group); // keeps what features share
    osg::ref_ptr<osg::Group> scene;
    const auto call = [&] {
        scene = new osg::Group;
        ownMemory.watch(true);
        GetParam().build(scene);
    };
    failEachAllocation(call, [&](long n) {
        scene = nullptr;
        EXPECT_EQ(ownMemory.count(), 0u) << "allocation " << n;
    });
    EXPECT_GT(ownMemory.count(), 0u) << "nothing is watched";
    scene = nullptr;
    EXPECT_EQ(ownMemory.count(), 0u);
    ownMemory.watch(false);
}

TEST_P(ExhaustedMemory, LeavesWhatIsMadeAfterwardsAsItShouldBe)
{
    const kelvtest::RestoredConfig config;
    config->setFontPath(QStringLiteral(KELVOSGTOOLS_TEST_FONT));
    const auto fontIn = [](osg::Group& feature) {
        const auto* const text = kelvtest::firstBelow<osgText::Text>(feature, "textNode");
        const osgText::Font* const font = text ? text->getFont() : nullptr;
        return font ? font->getFileName() : std::string();
    };
    const std::string font = fontIn(*GetParam().build(new osg::Group));
    failEachAllocation([&] { GetParam().build(new osg::Group); }, [](long) {});
    EXPECT_EQ(fontIn(*GetParam().build(new osg::Group)), font);
}

INSTANTIATE_TEST_SUITE_P(Assemblies, ExhaustedMemory,
                         ::testing::Values(NamedAssembly{"Dot", dotIn}, NamedAssembly{"FlagDot", flagDotIn},
                                           NamedAssembly{"LineArrow", [](const auto& s) { return arrowIn(s, true); }},
                                           NamedAssembly{"SolidArrow", [](const auto& s) { return arrowIn(s, false); }},
                                           NamedAssembly{"Plane", planeIn}, NamedAssembly{"Sphere", sphereIn}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(ExhaustedMemoryOfALabel, GivesNone)
{
    const CTableMeta::structTableMeta record;
    createTable(record); // loads what is loaded once per process
    nextAllocationsUntilFailure = 1;
    arm();
    const osg::ref_ptr<osg::Group> label = createTable(record);
    EXPECT_EQ(allocationsUntilFailure, 0) << "no allocation failed";
    allocationsUntilFailure = 0;
    nextAllocationsUntilFailure = 0;
    EXPECT_FALSE(label.valid());
}

/// A change of an object, which may fail, and can then be made again.
struct Change
{
    const char* name;
    std::function<osg::ref_ptr<osg::Node>()> make;
    std::function<void(osg::Node&)> apply;
};

void PrintTo(const Change& change, std::ostream* stream)
{
    *stream << change.name;
}

/// What is to be seen of a tree.
std::string lookOf(osg::Node& top)
{
    std::ostringstream look;
    for (osg::Node* node : kelvtest::allNodes(top)) {
        look << node->className() << " '" << node->getName() << "' " << node->getNodeMask();
        if (const auto* const group = node->asGroup()) look << ' ' << group->getNumChildren();
        if (const auto* const shape = dynamic_cast<osg::ShapeDrawable*>(node)) {
            look << ' ' << shape->getColor() << ' ' << shape->getBoundingBox().xMax();
        } else if (const auto* const geometry = node->asGeometry()) {
            if (const auto rgba = kelvtest::overallColour<osg::Vec4Array>(*geometry)) look << ' ' << *rgba;
            if (const auto rgb = kelvtest::overallColour<osg::Vec3Array>(*geometry)) look << ' ' << *rgb;
            look << ' ' << kelvtest::lineWidthOf(*geometry) << ' ' << geometry->getBoundingBox().xMax();
        }
        if (const auto* const text = dynamic_cast<osgText::Text*>(node))
            look << ' ' << text->getColor() << ' ' << kelvtest::textOf(*text).toStdString();
        look << '\n';
    }
    return look.str();
}

class ExhaustedMemoryOfAChange : public ::testing::TestWithParam<Change>
{
protected:
    /// @return false if it failed
    bool apply(osg::Node& node) const
    {
        try {
            arm();
            GetParam().apply(node);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }
};

TEST_P(ExhaustedMemoryOfAChange, LetsItBeMadeAgain)
{
    const osg::ref_ptr<osg::Node> expected = GetParam().make();
    GetParam().apply(*expected);
    osg::ref_ptr<osg::Node> node;
    bool wasMade = false;
    const auto call = [&] {
        const long failure = std::exchange(nextAllocationsUntilFailure, 0);
        node = GetParam().make();
        nextAllocationsUntilFailure = failure;
        wasMade = apply(*node);
    };
    failEachAllocation(call, [&](long n) {
        if (!wasMade) GetParam().apply(*node);
        ASSERT_EQ(lookOf(*node), lookOf(*expected)) << "allocation " << n;
    });
}

TEST_P(ExhaustedMemoryOfAChange, LeaksNothingOfTheLibrarysOwn)
{
    ASSERT_TRUE(ownMemory.locate());
    const osg::ref_ptr<osg::Node> warm = GetParam().make();
    GetParam().apply(*warm);
    osg::ref_ptr<osg::Node> node;
    const auto call = [&] {
        const long failure = std::exchange(nextAllocationsUntilFailure, 0);
        ownMemory.watch(true);
        node = GetParam().make();
        nextAllocationsUntilFailure = failure;
        apply(*node);
    };
    failEachAllocation(call, [&](long n) {
        node = nullptr;
        EXPECT_EQ(ownMemory.count(), 0u) << "allocation " << n;
    });
    node = nullptr;
    EXPECT_EQ(ownMemory.count(), 0u);
    ownMemory.watch(false);
}

void select(osg::Node& node)
{
    dynamic_cast<CFeatureMetaObject&>(node).setState(featureStateSelected);
}

template <typename Primitive>
void addLabel(osg::Node& node)
{
    const long failure = std::exchange(allocationsUntilFailure, 0); // of the argument, none fails
    const osg::ref_ptr<osg::Group> label = new CTableMeta(kelvtest::labelSaying("Label"));
    allocationsUntilFailure = failure;
    dynamic_cast<Primitive&>(node).addTable(label);
}

osg::ref_ptr<osg::Node> solidLine()
{
    return arrowIn(new osg::Group, false);
}

osg::ref_ptr<osg::Node> label()
{
    return new CTableMeta(kelvtest::labelSaying("Point", 3));
}

osg::ref_ptr<osg::Node> plane()
{
    CPlaneMeta::structPlaneMeta meta = kelvtest::planeThrough(kelvtest::squareCorners(10.0f));
    return new CPlaneMeta(meta);
}

INSTANTIATE_TEST_SUITE_P(
    Changes, ExhaustedMemoryOfAChange,
    ::testing::Values(
        Change{"StateOfADot", [] { return kelvtest::addDot(new osg::Group, "dot"); }, select},
        Change{"StateOfAFlag",
               [] {
                   const osg::ref_ptr<osg::Group> flag = kelvtest::addFlagDot(new osg::Group, "flag");
                   dynamic_cast<CFeatureMetaObject&>(*flag).setState(featureStateNormal);
                   return flag;
               },
               select},
        Change{"StateOfALine", [] { return kelvtest::addLine(new osg::Group, "line"); }, select},
        Change{"StateOfASolidLine", solidLine,
               [](osg::Node& node) { dynamic_cast<CFeatureMetaObject&>(node).setState(featureStateNone); }},
        Change{"StateOfAPlane", [] { return kelvtest::addPlane(new osg::Group, "plane"); }, select},
        Change{"StateOfALabel", label,
               [](osg::Node& node) { dynamic_cast<CTableMeta&>(node).setState(featureStateHighlighted); }},
        Change{"LanguageOfALabel", label, [](osg::Node& node) { dynamic_cast<CTableMeta&>(node).updateLanguage(); }},
        Change{"FirstLabelOfADot", [] { return new CAutoScaleSphereMeta(kelvtest::dotAt({})); },
               addLabel<CAutoScaleSphereMeta>},
        Change{"FirstLabelOfALine",
               [] {
                   return new CArrowMeta(kelvtest::lineArrow({}, {1, 0, 0}));
               },
               addLabel<CArrowMeta>},
        Change{"FirstLabelOfAPlane", plane, addLabel<CPlaneMeta>}),
    [](const auto& change) { return std::string(change.param.name); });

/// A constructor, or a call that makes something for its caller.
struct Making
{
    const char* name;
    std::function<osg::ref_ptr<osg::Node>()> make;
};

void PrintTo(const Making& making, std::ostream* stream)
{
    *stream << making.name;
}

class ExhaustedMemoryOfAMaking : public ::testing::TestWithParam<Making>
{};

TEST_P(ExhaustedMemoryOfAMaking, LeaksNothingOfTheLibrarysOwn)
{
    ASSERT_TRUE(ownMemory.locate());
    const osg::ref_ptr<osg::Node> warm = GetParam().make();
    osg::ref_ptr<osg::Node> node;
    const auto call = [&] {
        node = nullptr;
        ownMemory.watch(true);
        try {
            arm();
            node = GetParam().make();
        } catch (const std::bad_alloc&) {
            node = nullptr;
        }
    };
    failEachAllocation(call, [&](long n) {
        node = nullptr;
        EXPECT_EQ(ownMemory.count(), 0u) << "allocation " << n;
    });
    ASSERT_TRUE(node.valid());
    EXPECT_EQ(lookOf(*node), lookOf(*warm));
    node = nullptr;
    EXPECT_EQ(ownMemory.count(), 0u);
    ownMemory.watch(false);
}

INSTANTIATE_TEST_SUITE_P(Makings, ExhaustedMemoryOfAMaking,
                         ::testing::Values(Making{"Label", label},
                                           Making{"Dot", [] { return new CAutoScaleSphereMeta(kelvtest::dotAt({})); }},
                                           Making{"Flag",
                                                  [] { return new CFlagAutoScaleSphereMeta(kelvtest::dotAt({})); }},
                                           Making{"Line",
                                                  [] {
                                                      return new CArrowMeta(kelvtest::lineArrow({}, {1, 0, 0}));
                                                  }},
                                           Making{"SolidLine",
                                                  [] {
                                                      return new CArrowMeta(kelvtest::solidArrow({}, {1, 0, 0}));
                                                  }},
                                           Making{"Plane", plane}, Making{"Base", [] { return new featureBaseNode; }},
                                           Making{"WorldSphere",
                                                  [] {
                                                      const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
                                                      return maker->CreateSphereMeta({});
                                                  }},
                                           Making{"ScreenSphere",
                                                  [] {
                                                      const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
                                                      return maker->CreateAutoScaleSphereMeta({});
                                                  }},
                                           Making{"Triad", [] { return CConeAndCylinderMeta::createAxis({}); }},
                                           Making{"CopyOfALabel",
                                                  [] {
                                                      static const osg::ref_ptr<CTableMeta> original =
                                                          new CTableMeta(kelvtest::labelSaying("Label"));
                                                      return new CTableMeta(*original);
                                                  }}),
                         [](const auto& making) { return std::string(making.param.name); });

/// A function that answers instead of throwing.
struct Answering
{
    const char* name;
    std::function<void(const osg::ref_ptr<osg::Group>& scene)> call;
};

void PrintTo(const Answering& answering, std::ostream* stream)
{
    *stream << answering.name;
}

class ExhaustedMemoryOfAFunction : public ::testing::TestWithParam<Answering>
{};

TEST_P(ExhaustedMemoryOfAFunction, IsAnsweredAndLeavesTheScene)
{
    const osg::ref_ptr<osg::Group> warm = new osg::Group; // keeps what features share
    kelvtest::addDot(warm, "dot");
    kelvtest::addPlane(warm, "plane");
    osg::ref_ptr<osg::Group> scene;
    std::string before;
    const auto call = [&] {
        const long failure = std::exchange(nextAllocationsUntilFailure, 0);
        scene = new osg::Group;
        kelvtest::addDot(scene, "dot");
        kelvtest::addPlane(scene, "plane");
        before = lookOf(*scene);
        nextAllocationsUntilFailure = failure;
        EXPECT_NO_THROW(GetParam().call(scene));
    };
    for (long n = 1;; ++n) {
        nextAllocationsUntilFailure = n;
        call();
        const bool failed = allocationsUntilFailure == 0;
        allocationsUntilFailure = 0;
        if (!failed) break;
        EXPECT_EQ(lookOf(*scene), before) << "allocation " << n;
    }
}

// Longer than what a string holds without asking for memory.
const std::string kLongName(40, 'n');

INSTANTIATE_TEST_SUITE_P(Functions, ExhaustedMemoryOfAFunction,
                         ::testing::Values(Answering{"FindOrCreateNode",
                                                     [](const auto& scene) {
                                                         arm();
                                                         findOrCreateNode(kLongName, scene, true);
                                                     }},
                                           Answering{"FindOrCreateRoot",
                                                     [](const auto& scene) {
                                                         arm();
                                                         findOrCreateFeatureRootNode(scene, featureTable, true);
                                                     }},
                                           Answering{"FindExistingRoot",
                                                     [](const auto& scene) {
                                                         arm();
                                                         findOrCreateFeatureRootNode(scene, featurePlane, false);
                                                     }},
                                           Answering{"FindAnywhere",
                                                     [](const auto& scene) {
                                                         osg::ref_ptr<osg::Group> parent;
                                                         arm();
                                                         findFeatureByName("plane", scene, parent);
                                                     }},
                                           Answering{"FindOfKind",
                                                     [](const auto& scene) {
                                                         arm();
                                                         findFeatureByName("plane", scene, featurePlane);
                                                     }},
                                           Answering{"Sphere",
                                                     [](const auto& scene) {
                                                         arm();
                                                         findOrCreateShpere(kLongName, scene, osg::Vec3f());
                                                     }},
                                           Answering{"SwitchPlanesOn",
                                                     [](const auto& scene) {
                                                         arm();
                                                         switchFeatureRoot(scene, true, featurePlane);
                                                     }},
                                           Answering{"SwitchTemporaryPlanes",
                                                     [](const auto& scene) {
                                                         arm();
                                                         switchFeatureRootFlagNode(scene, true, featurePlane);
                                                     }},
                                           Answering{"RemovePlanes",
                                                     [](const auto& scene) {
                                                         arm();
                                                         removeFeatureRoot(scene, featurePlane);
                                                     }},
                                           Answering{"ClearTemporaryFeatures",
                                                     [](const auto& scene) {
                                                         arm();
                                                         clearFeatureRootTempNode(scene, featureAll);
                                                     }}),
                         [](const auto& answering) { return std::string(answering.param.name); });

} // namespace
