#include <KelvOsgTools/CConeAndCylinderMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/featureBaseNode.h>

#include "primitives/ShaderText.h"
#include "support/NodeBuilders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <osg/Depth>
#include <osg/GL>
#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/Program>
#include <osg/ShapeDrawable>
#include <osgText/Font>
#include <osgText/Text>

#include <QFile>
#include <QStringList>

#include <ostream>
#include <string>

namespace {
using namespace KelvOsgTools;
using AxisRecord = CConeAndCylinderMeta::structConeAndCylinderMeta;

const osg::Vec4f kOrange(1.0f, 0.5f, 0.0f, 1.0f);

AxisRecord recordOf(int axisIndex)
{
    AxisRecord record;
    record.axisIndex = axisIndex;
    record.color = kOrange;
    return record;
}

/// The parts of an axis arrow, in the order of its children.
struct AxisParts
{
    explicit AxisParts(osg::AutoTransform& arrow)
        : shaftTransform(dynamic_cast<osg::MatrixTransform*>(arrow.getChild(0))),
          headTransform(dynamic_cast<osg::MatrixTransform*>(arrow.getChild(1))),
          letterTransform(dynamic_cast<osg::AutoTransform*>(arrow.getChild(2))),
          shaft(drawableBelow<osg::ShapeDrawable>(*shaftTransform)),
          head(drawableBelow<osg::ShapeDrawable>(*headTransform)),
          letter(drawableBelow<osgText::Text>(*letterTransform))
    {}

    template <typename T>
    static T* drawableBelow(osg::Group& transform)
    {
        return dynamic_cast<T*>(transform.getChild(0)->asGeode()->getDrawable(0));
    }

    osg::MatrixTransform* shaftTransform;
    osg::MatrixTransform* headTransform;
    osg::AutoTransform* letterTransform;
    osg::ShapeDrawable* shaft;
    osg::ShapeDrawable* head;
    osgText::Text* letter;
};

std::string textOf(osgText::Text& letter)
{
    return letter.getText().createUTF8EncodedString();
}

osg::ref_ptr<osg::AutoTransform> arrowOf(const AxisRecord& record)
{
    return osg::ref_ptr<CConeAndCylinderMeta>(new CConeAndCylinderMeta)->createAxisArraw(record);
}

osg::Group& contentOf(osg::Switch& triad)
{
    return *triad.getChild(0)->asGroup();
}

AxisParts triadParts(osg::Switch& triad, unsigned int child)
{
    return AxisParts(dynamic_cast<osg::AutoTransform&>(*contentOf(triad).getChild(child)));
}

osg::StateSet& stateOf(osg::Switch& triad, unsigned int child)
{
    return *contentOf(triad).getChild(child)->getStateSet();
}

MATCHER_P(IsCloseTo, expected, "")
{
    return (arg - expected).length() < 1e-5;
}

TEST(AxisRecord, HasTheDocumentedDefaults)
{
    const AxisRecord record;
    EXPECT_EQ(record.length, 10.0f);
    EXPECT_EQ(record.name, "ConeAndCylinderMeta");
    EXPECT_EQ(record.color, osg::Vec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(record.radius, 0.1f);
    EXPECT_EQ(record.ratio, 3.0f);
    EXPECT_EQ(record.axisIndex, 0);
}

struct DirectionCase
{
    const char* name;
    int axisIndex;
    osg::Vec3f direction;
    const char* letter;
};

std::ostream& operator<<(std::ostream& stream, const DirectionCase& tested)
{
    return stream << tested.name;
}

class AxisDirection : public testing::TestWithParam<DirectionCase>
{};

TEST_P(AxisDirection, IsThatOfTheIndex)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(GetParam().axisIndex));
    const AxisParts parts(*arrow);
    const osg::Vec3d along = GetParam().direction;
    EXPECT_EQ(textOf(*parts.letter), GetParam().letter);
    EXPECT_THAT(osg::Vec3d(0, 0, 4.5) * parts.shaftTransform->getMatrix(), IsCloseTo(along * 9.0));
    EXPECT_THAT(osg::Vec3d(0, 0, -4.5) * parts.shaftTransform->getMatrix(), IsCloseTo(osg::Vec3d()));
    EXPECT_THAT(osg::Vec3d(0, 0, 0.75) * parts.headTransform->getMatrix(), IsCloseTo(along * 10.0));
    EXPECT_THAT(osg::Vec3d(0, 0, -0.25) * parts.headTransform->getMatrix(), IsCloseTo(along * 9.0));
    EXPECT_THAT(parts.letterTransform->getPosition(), IsCloseTo(along * 10.6));
}

INSTANTIATE_TEST_SUITE_P(Axes, AxisDirection,
                         testing::Values(DirectionCase{"X", 0, osg::X_AXIS, "X"},
                                         DirectionCase{"Y", 1, osg::Y_AXIS, "Y"},
                                         DirectionCase{"Z", 2, osg::Z_AXIS, "Z"},
                                         DirectionCase{"SevenIsX", 7, osg::X_AXIS, "X"},
                                         DirectionCase{"MinusOneIsX", -1, osg::X_AXIS, "X"}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(AxisArrow, HasAShaftOfNineTenthsOfTheLength)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    const AxisParts parts(*arrow);
    const auto* const cylinder = dynamic_cast<const osg::Cylinder*>(parts.shaft->getShape());
    ASSERT_TRUE(cylinder);
    EXPECT_FLOAT_EQ(cylinder->getRadius(), 0.1f);
    EXPECT_FLOAT_EQ(cylinder->getHeight(), 9.0f);
    EXPECT_EQ(cylinder->getCenter(), osg::Vec3());
    EXPECT_EQ(parts.shaft->getName(), "Cylinder");
    EXPECT_EQ(parts.shaft->getColor(), kOrange);
}

TEST(AxisArrow, HasAHeadOfTheRestTwiceAsWide)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    const AxisParts parts(*arrow);
    const auto* const cone = dynamic_cast<const osg::Cone*>(parts.head->getShape());
    ASSERT_TRUE(cone);
    EXPECT_FLOAT_EQ(cone->getRadius(), 0.2f);
    EXPECT_FLOAT_EQ(cone->getHeight(), 1.0f);
    EXPECT_EQ(cone->getCenter(), osg::Vec3());
    EXPECT_EQ(parts.head->getName(), "Cone");
    EXPECT_EQ(parts.head->getColor(), kOrange);
}

TEST(AxisArrow, SharesItsTessellationHintsBetweenShaftAndHead)
{
    AxisRecord record = recordOf(0);
    record.ratio = 1.5f;
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(record);
    const AxisParts parts(*arrow);
    const osg::TessellationHints* const hints = parts.shaft->getTessellationHints();
    ASSERT_TRUE(hints);
    EXPECT_EQ(parts.head->getTessellationHints(), hints);
    EXPECT_EQ(hints->getTessellationMode(), osg::TessellationHints::USE_SHAPE_DEFAULTS);
    EXPECT_EQ(hints->getDetailRatio(), 1.5f);
    EXPECT_EQ(hints->getTargetNumFaces(), 100u);
    EXPECT_TRUE(hints->getCreateFrontFace());
    EXPECT_FALSE(hints->getCreateBackFace());
    EXPECT_TRUE(hints->getCreateNormals());
    EXPECT_FALSE(hints->getCreateTextureCoords());
    EXPECT_TRUE(hints->getCreateTop());
    EXPECT_TRUE(hints->getCreateBody());
    EXPECT_TRUE(hints->getCreateBottom());
}

TEST(AxisArrow, BindsThePositionsOfItsShapesToAttributeZero)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    const AxisParts parts(*arrow);
    for (osg::Geometry* const shape : {parts.shaft, parts.head}) {
        ASSERT_TRUE(shape->getVertexAttribArray(0));
        EXPECT_EQ(shape->getVertexAttribArray(0), shape->getVertexArray());
        EXPECT_EQ(shape->getVertexAttribArray(0)->getBinding(), osg::Array::BIND_PER_VERTEX);
    }
}

TEST(AxisArrow, WritesItsLetterWithTheConfiguredFont)
{
    CFeatureConfig::sigleFeatureConfig()->setFontPath(KELVOSGTOOLS_TEST_FONT);
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    osgText::Text& letter = *AxisParts(*arrow).letter;
    ASSERT_TRUE(letter.getFont());
    EXPECT_EQ(letter.getFont()->getFileName(), KELVOSGTOOLS_TEST_FONT);
    EXPECT_EQ(letter.getCharacterHeight(), 17.0f);
    EXPECT_EQ(letter.getAlignment(), osgText::TextBase::CENTER_CENTER);
    EXPECT_EQ(letter.getColor(), kOrange);
}

TEST(AxisArrow, TurnsItsLetterToTheScreenWithLightingOn)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    osg::AutoTransform& letterTransform = *AxisParts(*arrow).letterTransform;
    EXPECT_EQ(letterTransform.getAutoRotateMode(), osg::AutoTransform::ROTATE_TO_SCREEN);
    EXPECT_FALSE(letterTransform.getAutoScaleToScreen());
    EXPECT_EQ(letterTransform.getChild(0)->getStateSet()->getMode(GL_LIGHTING), osg::StateAttribute::ON);
}

TEST(AxisArrow, KeepsItsSizeOnScreenAtTheOrigin)
{
    const osg::ref_ptr<osg::AutoTransform> arrow = arrowOf(recordOf(0));
    EXPECT_TRUE(arrow->getAutoScaleToScreen());
    EXPECT_EQ(arrow->getAutoRotateMode(), osg::AutoTransform::NO_ROTATION);
    EXPECT_EQ(arrow->getPosition(), osg::Vec3d());
    EXPECT_EQ(arrow->getNumChildren(), 3u);
}

TEST(CConeAndCylinderMetaObject, RemembersOnlyItsLastArrow)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    const osg::ref_ptr<osg::AutoTransform> former = maker->createAxisArraw(recordOf(0));
    const osg::ref_ptr<osg::AutoTransform> last = maker->createAxisArraw(recordOf(1));
    EXPECT_EQ(former->referenceCount(), 1);
    EXPECT_EQ(last->referenceCount(), 2);
    EXPECT_EQ(maker->getNumChildren(), 0u);
}

TEST(CConeAndCylinderMetaObject, SharesArrowAndChildrenWithItsCopy)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    const osg::ref_ptr<osg::AutoTransform> arrow = maker->createAxisArraw(recordOf(0));
    maker->addChild(arrow);
    const osg::ref_ptr<CConeAndCylinderMeta> copy = new CConeAndCylinderMeta(*maker);
    EXPECT_EQ(arrow->referenceCount(), 5); // ours, and for maker and copy one as arrow and one as child
    EXPECT_EQ(copy->getChild(0), arrow);
}

TEST(CConeAndCylinderMetaObject, NamesThePartsInACopyAsWell)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    const osg::ref_ptr<CConeAndCylinderMeta> copy = new CConeAndCylinderMeta(*maker);
    const osg::ref_ptr<osg::AutoTransform> arrow = copy->createAxisArraw(recordOf(0));
    const AxisParts parts(*arrow);
    EXPECT_EQ(parts.shaft->getName(), "Cylinder");
    EXPECT_EQ(parts.head->getName(), "Cone");
}

TEST(CConeAndCylinderMetaObject, KeepsAllColoursOnSetColor)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    const osg::ref_ptr<osg::AutoTransform> arrow = maker->createAxisArraw(recordOf(0));
    maker->setColor(osg::Vec4f(0.0f, 0.0f, 1.0f, 1.0f));
    const AxisParts parts(*arrow);
    EXPECT_EQ(parts.shaft->getColor(), kOrange);
    EXPECT_EQ(parts.head->getColor(), kOrange);
    EXPECT_EQ(parts.letter->getColor(), kOrange);
}

TEST(CConeAndCylinderMetaObject, ChangesNothingOnVisible)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    const osg::ref_ptr<osg::AutoTransform> arrow = maker->createAxisArraw(recordOf(0));
    maker->visible(false);
    const AxisParts parts(*arrow);
    for (const osg::Node* const node : std::initializer_list<const osg::Node*>{arrow.get(), parts.shaft, parts.head})
        EXPECT_EQ(node->getNodeMask(), ~0u);
    EXPECT_EQ(arrow->getNumChildren(), 3u);
}

TEST(CConeAndCylinderMetaObject, IgnoresVisibleBeforeItHasAnArrow)
{
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    maker->visible(true);
    EXPECT_EQ(maker->getNumChildren(), 0u);
}

TEST(CAxisMetaObject, SharesItsChildrenWithItsCopy)
{
    const osg::ref_ptr<CAxisMeta> axis = new CAxisMeta;
    axis->addChild(new osg::Group);
    const osg::ref_ptr<CAxisMeta> copy = new CAxisMeta(*axis);
    EXPECT_EQ(copy->getChild(0), axis->getChild(0));
}

TEST(AxisTriad, HoldsEachAxisTwiceUnderItsTransformWhateverTheRecord)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(recordOf(2));
    EXPECT_TRUE(dynamic_cast<featureBaseNode*>(triad.get()));
    EXPECT_EQ(kelvtest::childNames(*triad), std::vector<std::string>{"MatrixTransform"});
    ASSERT_EQ(contentOf(*triad).getNumChildren(), 6u);
    std::string letters;
    for (unsigned int i = 0; i < 6; ++i) letters += textOf(*triadParts(*triad, i).letter);
    EXPECT_EQ(letters, "XXYYZZ");
}

TEST(AxisTriad, ColoursItsAxesRedGreenAndBlueWhateverTheRecord)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(recordOf(0));
    const osg::Vec4f colours[] = {{1.0f, 0.0f, 0.0f, 1.0f}, {0.0f, 1.0f, 0.0f, 1.0f}, {0.0f, 0.0f, 1.0f, 1.0f}};
    for (unsigned int i = 0; i < 6; ++i) {
        const AxisParts parts = triadParts(*triad, i);
        EXPECT_EQ(parts.shaft->getColor(), colours[i / 2]) << i;
        EXPECT_EQ(parts.head->getColor(), colours[i / 2]) << i;
        EXPECT_EQ(parts.letter->getColor(), colours[i / 2]) << i;
    }
}

TEST(AxisTriad, TakesLengthRadiusAndRatioFromTheRecord)
{
    AxisRecord record;
    record.length = 20.0f;
    record.radius = 0.5f;
    record.ratio = 2.0f;
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(record);
    const AxisParts parts = triadParts(*triad, 5);
    EXPECT_FLOAT_EQ(dynamic_cast<const osg::Cylinder&>(*parts.shaft->getShape()).getHeight(), 18.0f);
    EXPECT_FLOAT_EQ(dynamic_cast<const osg::Cylinder&>(*parts.shaft->getShape()).getRadius(), 0.5f);
    EXPECT_FLOAT_EQ(parts.shaft->getTessellationHints()->getDetailRatio(), 2.0f);
}

TEST(AxisTriad, DrawsAllPassesWithOneProgram)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    const osg::StateAttribute* const program = stateOf(*triad, 0).getAttribute(osg::StateAttribute::PROGRAM);
    ASSERT_TRUE(program);
    for (unsigned int i = 0; i < 6; ++i)
        EXPECT_EQ(stateOf(*triad, i).getAttribute(osg::StateAttribute::PROGRAM), program) << i;
}

TEST(AxisTriad, BuildsItsProgramFromTheResources)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    const auto& program =
        dynamic_cast<const osg::Program&>(*stateOf(*triad, 0).getAttribute(osg::StateAttribute::PROGRAM));
    const std::pair<osg::Shader::Type, const char*> expected[] = {{osg::Shader::VERTEX, ":/shaders/axis.vert"},
                                                                  {osg::Shader::GEOMETRY, ":/shaders/axis.geom"},
                                                                  {osg::Shader::FRAGMENT, ":/shaders/axis.frag"}};
    ASSERT_EQ(program.getNumShaders(), 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        QFile file(expected[i].second);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(program.getShader(i)->getType(), expected[i].first);
        EXPECT_EQ(program.getShader(i)->getShaderSource(), file.readAll().toStdString());
    }
}

TEST(AxisTriad, TellsItsPassesApartByTheUniformIsInside)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    for (unsigned int i = 0; i < 6; ++i) {
        const osg::Uniform* const isInside = stateOf(*triad, i).getUniform("isInside");
        ASSERT_TRUE(isInside) << i;
        EXPECT_EQ(isInside->getType(), osg::Uniform::BOOL) << i;
        bool value = i % 2 == 0;
        EXPECT_TRUE(isInside->get(value)) << i;
        EXPECT_EQ(value, i % 2 == 1) << i;
    }
}

TEST(AxisTriad, GivesBothPassesOfAnAxisItsColour)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    const osg::Vec3f colours[] = {osg::X_AXIS, osg::Y_AXIS, osg::Z_AXIS};
    for (unsigned int i = 0; i < 6; ++i) {
        const osg::Uniform* const colour = stateOf(*triad, i).getUniform("color");
        ASSERT_TRUE(colour) << i;
        osg::Vec3f value;
        EXPECT_TRUE(colour->get(value)) << i;
        EXPECT_EQ(value, colours[i / 2]) << i;
    }
}

TEST(AxisTriad, ComparesOnlyItsHiddenPassesByGreaterDepth)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    for (const unsigned int hidden : {1u, 3u, 5u}) {
        EXPECT_FALSE(stateOf(*triad, hidden - 1).getAttribute(osg::StateAttribute::DEPTH));
        const auto* const depth =
            dynamic_cast<const osg::Depth*>(stateOf(*triad, hidden).getAttribute(osg::StateAttribute::DEPTH));
        ASSERT_TRUE(depth);
        EXPECT_EQ(depth->getFunction(), osg::Depth::GREATER);
        EXPECT_EQ(depth->getZNear(), 0.0);
        EXPECT_EQ(depth->getZFar(), 1.0);
        EXPECT_FALSE(depth->getWriteMask());
    }
}

TEST(AxisTriad, SetsNoBlending)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    for (unsigned int i = 0; i < 6; ++i) {
        EXPECT_EQ(stateOf(*triad, i).getMode(GL_BLEND), osg::StateAttribute::INHERIT) << i;
        EXPECT_FALSE(stateOf(*triad, i).getAttribute(osg::StateAttribute::BLENDFUNC)) << i;
    }
}

TEST(AxisTriad, KeepsTheBehaviourOfItsProgramInADeepCopy)
{
    const osg::ref_ptr<osg::Switch> triad = CConeAndCylinderMeta::createAxis(AxisRecord());
    const osg::StateAttribute& program = *stateOf(*triad, 0).getAttribute(osg::StateAttribute::PROGRAM);
    const osg::ref_ptr<osg::Object> copy = program.clone(osg::CopyOp::DEEP_COPY_ALL);
    EXPECT_TRUE(typeid(*copy) == typeid(program));
}

QStringList criticalLines;

void keepCriticalLines(QtMsgType type, const QMessageLogContext&, const QString& line)
{
    if (type == QtCriticalMsg) criticalLines << line;
}

TEST(ReadShaderText, GivesTheWholeContentOfAResource)
{
    QFile file(":/shaders/axis.frag");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const std::string text = detail::readShaderText(":/shaders/axis.frag");
    EXPECT_EQ(text, file.readAll().toStdString());
    EXPECT_EQ(text.rfind("#version 330 core\n", 0), 0u);
}

TEST(ReadShaderText, LogsAMissingResourceAndGivesAnEmptyText)
{
    criticalLines.clear();
    const QtMessageHandler former = qInstallMessageHandler(keepCriticalLines);
    const std::string text = detail::readShaderText(":/shaders/none.vert");
    qInstallMessageHandler(former);
    EXPECT_EQ(text, "");
    EXPECT_EQ(criticalLines, QStringList{"Cannot open :/shaders/none.vert"});
}

} // namespace
