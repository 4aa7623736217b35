#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "support/PictureScenes.h"
#include "support/PictureWindow.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>

namespace {
using namespace KelvOsgTools;
using namespace kelvtest;

using Threading = osgViewer::ViewerBase;

constexpr int kWidth = 200;
constexpr int kHeight = 100;
constexpr int kChanges = 60;

class ThreadedViewer : public PictureTest, public ::testing::WithParamInterface<Threading::ThreadingModel>
{
protected:
    ThreadedViewer() { m_window.setScene(m_scene); }

    /// The picture of a frame after which the next state was set at once, while it may still be
    /// drawn: it shows the former state all the same.
    template <typename Feature>
    osg::ref_ptr<osg::Image> pictureBeforeChange(Feature& feature, int nextChange)
    {
        m_window.frame();
        feature.setState(stateOf(nextChange));
        return m_window.pictureOfLastFrame();
    }

    static featureState stateOf(int change) { return static_cast<featureState>(change % 4); }

    osg::ref_ptr<osg::Group> m_scene = new osg::Group;
    PictureWindow m_window{kWidth, kHeight, GetParam()};
};

TEST_P(ThreadedViewer, ShowsARecolouredDotAndItsLabelInTheNextFrame)
{
    const osg::ref_ptr<osg::Group> node =
        createAutoScaleShpereAndTable("dot", m_scene, osg::Vec3f(0, -20, 0), 1, "Dot", 1, featureStateSelected, false);
    auto& dot = static_cast<CFeatureMetaObject&>(*node);
    dot.setState(stateOf(0));
    for (int i = 0; i < kChanges; ++i) {
        const osg::ref_ptr<osg::Image> picture = pictureBeforeChange(dot, i + 1);

        const Pixel expected = defaultColourOf(stateOf(i));
        const Pixel sphere = pixelAt(*picture, 100, 30);
        ASSERT_EQ(sphere.r > 150, expected.r > 0) << sphere << " after change " << i;
        ASSERT_EQ(sphere.g > 150, expected.g > 0) << sphere << " after change " << i;
        ASSERT_EQ(pixelAt(*picture, 100, 30 + 10 - 1), expected) << "outline after change " << i;
    }
}

TEST_P(ThreadedViewer, ShowsARecolouredLineInTheNextFrame)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos.set(-80, 0, 0);
    meta.endPos.set(80, 0, 0);
    meta.isLineArrow = true;
    meta.isDepthTest = false;
    const osg::ref_ptr<CArrowMeta> arrow = new CArrowMeta(meta);
    m_scene->addChild(arrow);
    arrow->setState(stateOf(0));
    for (int i = 0; i < kChanges; ++i) {
        const osg::ref_ptr<osg::Image> picture = pictureBeforeChange(*arrow, i + 1);
        ASSERT_EQ(pixelAt(*picture, 60, 50), defaultColourOf(stateOf(i))) << "after change " << i;
        const osg::ref_ptr<osg::Image> column = cut(*picture, {60, 0, 60, kHeight - 1});
        ASSERT_EQ(boxOfDifference(*column, kWhite).height(), stateOf(i) == featureStateSelected ? 3 : 2)
            << "after change " << i;
    }
}

TEST_P(ThreadedViewer, ShowsTheRecolouredBorderOfAPlaneInTheNextFrame)
{
    const osg::ref_ptr<osg::Group> node = createPlaneAndTable(
        featureStateSelected, "plane", m_scene,
        {osg::Vec3f(-40, -40, 0), osg::Vec3f(40, -40, 0), osg::Vec3f(40, 40, 0), osg::Vec3f(-40, 40, 0)},
        osg::Vec3f(0, 0, 1), 1, "Plane", 1);
    auto& plane = static_cast<CFeatureMetaObject&>(*node);
    plane.setState(stateOf(0));
    for (int i = 0; i < kChanges; ++i) {
        const osg::ref_ptr<osg::Image> picture = pictureBeforeChange(plane, i + 1);
        const Pixel state = defaultColourOf(stateOf(i));
        const Pixel overWhite{(state.r + 255) / 2, (state.g + 255) / 2, (state.b + 255) / 2};
        ASSERT_LE(difference(pixelAt(*picture, 59, 30), overWhite), 1) << "after change " << i; // rounding
    }
}

TEST_P(ThreadedViewer, ShowsAFlagDotInItsNewSizeInTheNextFrame)
{
    CAutoScaleSphereMeta::structSphereMeta meta;
    meta.radius = 10;
    const osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(meta);
    m_scene->addChild(flag);
    flag->setState(stateOf(0));
    for (int i = 0; i < kChanges; ++i) {
        const int width = boxOfDifference(*pictureBeforeChange(*flag, i + 1), kWhite).width();
        ASSERT_NEAR(width, stateOf(i) == featureStateSelected ? 30 : 20, 1) << "after change " << i; // half an edge
    }
}

/// Translates "Point" to a longer word, or a shorter one.
class PointTranslator : public QTranslator
{
public:
    explicit PointTranslator(QString word) : m_word(std::move(word)) { QCoreApplication::installTranslator(this); }
    ~PointTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* text, const char*, int) const override
    {
        return QString(text) == "Point" ? m_word : QString();
    }

private:
    QString m_word;
};

TEST_P(ThreadedViewer, ShowsARetranslatedLabelInTheNextFrame)
{
    const QString words[] = {"Messpunkt", "P", "Pt"};
    std::vector<osg::ref_ptr<osg::Image>> expected;
    for (const QString& word : words) {
        const osg::ref_ptr<CTableMeta> written = new CTableMeta(blueOnYellow(word));
        written->setState(featureStateSelected);
        m_window.setScene(groupOf({written}));
        expected.push_back(m_window.render());
    }

    const osg::ref_ptr<CTableMeta> label = new CTableMeta(blueOnYellow("Point"));
    label->setState(featureStateSelected);
    m_window.setScene(groupOf({label}));
    m_window.render();
    for (std::size_t i = 0; i < kChanges; ++i) {
        const PointTranslator translator(words[i % 3]);
        label->updateLanguage();
        // The same text is drawn the same, bit by bit.
        ASSERT_TRUE(alike(*m_window.render(), *expected[i % 3], "threaded-label", {0, 0.0})) << "after change " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Models, ThreadedViewer,
                         ::testing::Values(Threading::AutomaticSelection, // what a viewer has by default
                                           Threading::DrawThreadPerContext, Threading::CullDrawThreadPerContext,
                                           Threading::CullThreadPerCameraDrawThreadPerContext),
                         [](const auto& test) { return nameOf(test.param); });

} // namespace
