#include "MeasureScene.h"
#include "ViewportWidget.h"
#include "viewer/WindowDriver.h"

#include <gtest/gtest.h>

#include <osg/Geometry>
#include <osg/ShapeDrawable>
#include <osgText/Text>

#include <QApplication>
#include <QMouseEvent>
#include <QSet>
#include <QTableView>
#include <QTest>

#include <cmath>
#include <random>

namespace viewer {
namespace {

using namespace KelvOsgTools;
using viewertest::WindowDriver;

constexpr int kFeatures = 12;
constexpr int kClicks = 700;
// Lines are hit from 2 pixels around the position, and the position may lie 0.5 from their pixel.
constexpr int kReachPixels = 3;
constexpr double kAgreement = 0.999;

/// Gives everything drawn below a node one colour.
class Painter : public osg::NodeVisitor
{
public:
    explicit Painter(const osg::Vec4f& colour) : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), m_colour(colour) {}

    void apply(osg::Drawable& drawable) override
    {
        if (auto* const shape = dynamic_cast<osg::ShapeDrawable*>(&drawable)) shape->setColor(m_colour);
        if (dynamic_cast<osgText::Text*>(&drawable)) drawable.setNodeMask(0); // letters cannot be flat
    }

    void apply(osg::Geometry& geometry) override
    {
        if (dynamic_cast<osg::ShapeDrawable*>(&geometry)) return apply(static_cast<osg::Drawable&>(geometry));
        // Outlines reach a pixel beyond what can be hit: the edges of labels and patches are outside.
        if (geometry.getName() == "squareLineNode" || geometry.getName() == "line") geometry.setNodeMask(0);
        const osg::ref_ptr<osg::Vec4Array> colours = new osg::Vec4Array;
        colours->push_back(m_colour);
        geometry.setColorArray(colours, osg::Array::BIND_OVERALL);
    }

private:
    osg::Vec4f m_colour;
};

/// Colours that nothing else in the view has: the background and the axes never are so red and blue.
QColor colourOf(int row)
{
    constexpr int kStep = 10;
    return {255, 20 + kStep * row, 250 - kStep * row};
}

int rowOf(QRgb pixel)
{
    for (int row = 0; row < kFeatures; ++row)
        if (std::abs(qRed(pixel) - 255) <= 1 && std::abs(qGreen(pixel) - colourOf(row).green()) <= 2 &&
            std::abs(qBlue(pixel) - colourOf(row).blue()) <= 2)
            return row;
    return -1;
}

struct Situation
{
    const char* name;
    unsigned int seed;
    QSize size;
    QSize resizedTo;
    osg::Matrixd matrix;
    bool isOrthographic;
};

struct Tally
{
    int clicks = 0;
    int agreed = 0;
    int unambiguous = 0; ///< one feature, or none, was in reach: only one answer was right
};

/// A random scene in a window of its own, and random clicks into it.
class RandomClicks
{
public:
    explicit RandomClicks(const Situation& situation) : m_driver(situation.size), m_random(situation.seed)
    {
        m_driver.openMesh(*viewertest::bumpySquare(24));
        m_driver.window().scene().setMatrix(situation.matrix);
        createFeatures();
        m_driver.window().resize(situation.resizedTo);
        QTest::qWait(50);
        m_driver.viewport().setOrthographic(situation.isOrthographic);
        m_driver.viewport().fit();
        paintFlat();
    }

    void addTo(Tally& tally)
    {
        const QImage lines = pictureOfThinLines();
        const QImage seen = m_driver.picture();
        for (int i = 0; i < kClicks; ++i) {
            const QPoint position = somePosition(seen, i % 2 == 0);
            const QPoint pixel = position * m_driver.viewport().devicePixelRatio();
            QSet<int> right = rowsAround(seen, pixel, kReachPixels);
            for (const int row : rowsAround(lines, pixel, kReachPixels))
                if (row >= 0) right << row;
            ++tally.clicks;
            if (right.size() == 1) ++tally.unambiguous;
            if (right.contains(clickedRow(position))) ++tally.agreed;
        }
    }

private:
    float between(float lowest, float highest)
    {
        return std::uniform_real_distribution<float>(lowest, highest)(m_random);
    }

    osg::Vec3f somePoint() { return {between(-45, 45), between(-45, 45), between(2, 30)}; }

    void createFeatures()
    {
        for (int i = 0; i < kFeatures; ++i) {
            const osg::Vec3f start = somePoint();
            const osg::Vec3f side(between(8, 20), between(-8, 8), between(-4, 4));
            const osg::Vec3f up(between(-4, 4), between(8, 20), between(-4, 4));
            switch (i % 4) {
            case 0:
                m_driver.document().create(featureDot, {start}, true);
                break;
            case 1:
                m_driver.document().create(featureLine, {start, somePoint()}, true);
                break;
            case 2:
                m_driver.document().create(featureLine, {start, somePoint()}, false);
                break;
            default:
                m_driver.document().create(featurePlane, {start, start + side, start + side + up}, true);
            }
        }
    }

    /// Without light and translucency a pixel tells whose it is.
    void paintFlat()
    {
        osg::StateSet& state = *m_driver.window().scene().root()->getOrCreateStateSet();
        state.setMode(GL_LIGHTING, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
        state.setMode(GL_BLEND, osg::StateAttribute::OFF | osg::StateAttribute::OVERRIDE);
        for (int row = 0; row < kFeatures; ++row) {
            const QColor c = colourOf(row);
            Painter painter(osg::Vec4f(float(c.redF()), float(c.greenF()), float(c.blueF()), 1.0f));
            node(row)->accept(painter);
        }
    }

    osg::Node* node(int row) { return m_driver.window().scene().nodeOf(feature(row)); }
    const Feature& feature(int row) { return m_driver.document().features()[std::size_t(row)]; }
    bool isThinLine(int row) { return feature(row).kind == featureLine && feature(row).isLineArrow; }

    /// The picture without all but the thin lines. They leave no depth, so what is drawn after them
    /// covers them even from behind; yet they are the nearer ones to a pick.
    QImage pictureOfThinLines()
    {
        for (int row = 0; row < kFeatures; ++row)
            if (!isThinLine(row)) node(row)->setNodeMask(0);
        const QImage picture = m_driver.picture();
        for (int row = 0; row < kFeatures; ++row) node(row)->setNodeMask(~0u);
        return picture;
    }

    static QSet<int> rowsAround(const QImage& picture, const QPoint& pixel, int reach)
    {
        QSet<int> rows;
        for (int y = pixel.y() - reach; y <= pixel.y() + reach; ++y)
            for (int x = pixel.x() - reach; x <= pixel.x() + reach; ++x)
                if (picture.rect().contains(x, y)) rows << rowOf(picture.pixel(x, y));
        return rows;
    }

    /// Half of the positions anywhere, half on features.
    QPoint somePosition(const QImage& picture, bool onFeature)
    {
        const double ratio = m_driver.viewport().devicePixelRatioF();
        const QSize size = m_driver.viewport().size();
        for (;;) {
            const QPoint position(int(between(0, float(size.width()))), int(between(0, float(size.height()))));
            const QPoint pixel = position * ratio;
            if (!picture.rect().contains(pixel)) continue;
            if (!onFeature || rowOf(picture.pixel(pixel)) >= 0) return position;
        }
    }

    /// Clicks as a user, who sees a frame after each click.
    int clickedRow(const QPoint& position)
    {
        QTest::mouseClick(&m_driver.viewport(), Qt::LeftButton, Qt::NoModifier, position);
        const QModelIndexList selected = m_driver.window().list().selectionModel()->selectedRows();
        m_driver.viewport().repaint();
        return selected.isEmpty() ? -1 : selected.front().row();
    }

    WindowDriver m_driver;
    std::mt19937 m_random;
};

osg::Matrixd movedAndTurned()
{
    return osg::Matrixd::rotate(0.7, osg::Vec3d(1, 2, 3)) * osg::Matrixd::translate(300, -200, 100);
}

TEST(ClickWhatYouSee, AgreesWithThePixels)
{
    const Situation situations[] = {
        {"large", 1, {1400, 900}, {1400, 900}, osg::Matrixd(), false},
        {"small", 2, {800, 500}, {800, 500}, osg::Matrixd(), false},
        {"resized", 3, {800, 500}, {1300, 860}, osg::Matrixd(), false},
        {"parallel", 4, {1100, 720}, {1100, 720}, osg::Matrixd(), true},
        {"moved and turned", 5, {1100, 720}, {1100, 720}, movedAndTurned(), false},
        {"moved, turned, parallel and resized", 6, {1400, 900}, {1000, 640}, movedAndTurned(), true},
    };
    Tally tally;
    for (const Situation& situation : situations) {
        RandomClicks(situation).addTo(tally);
        std::cout << situation.name << ": " << tally.agreed << " of " << tally.clicks << " clicks agree so far, "
                  << tally.unambiguous << " had one right answer\n";
    }
    EXPECT_GE(tally.agreed, kAgreement * tally.clicks);
    EXPECT_GE(tally.unambiguous, tally.clicks / 2); // or the test says little
}

/// A thin line from left to right across the middle of the mesh, seen from above.
class ThinLine : public ::testing::Test
{
protected:
    ThinLine()
    {
        m_driver.openMesh(*viewertest::bumpySquare(24));
        m_driver.viewport().lookFrom(OrbitCamera::Direction::Top);
        m_driver.document().create(featureLine, {{-30, 0, 20}, {30, 0, 20}}, true);
        m_driver.viewport().fit();
        m_driver.picture();
    }

    /// Whether a position so many device pixels above the line hits it.
    bool isHitFrom(double pixels)
    {
        const double ratio = m_driver.viewport().devicePixelRatioF();
        const QPointF onLine = m_driver.viewport().widgetPosition(osg::Vec3d(-15, 0, 20));
        // A position stands for the middle of its pixel.
        const QPointF position = onLine - QPointF(0.5, 0.5 + pixels) / ratio;
        QMouseEvent move(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&m_driver.viewport(), &move);
        return m_driver.document().state(0) == featureStateHighlighted;
    }

    WindowDriver m_driver;
};

TEST_F(ThinLine, IsHitFromTwoPixelsAway)
{
    constexpr double kTwoPixels = 1.95; // the reach ends at 2, which is no place for a test
    EXPECT_TRUE(isHitFrom(0));
    EXPECT_TRUE(isHitFrom(kTwoPixels));
    EXPECT_TRUE(isHitFrom(-kTwoPixels));
}

TEST_F(ThinLine, IsNotHitFromFivePixelsAway)
{
    EXPECT_FALSE(isHitFrom(5));
    EXPECT_FALSE(isHitFrom(-5));
}

} // namespace
} // namespace viewer
