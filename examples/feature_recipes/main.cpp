// The recipes of docs/features.md and docs/labels.md at work, without a window. Exits with 1 if one of
// them does something else than it says.

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/ValueObject>
#include <osgViewer/GraphicsWindow>

#include <QGuiApplication>
#include <QTranslator>

#include <cstdio>

using namespace KelvOsgTools;

namespace {

//! [appearance]
void chooseAppearance()
{
    const osg::Vec4f orange(1.0f, 0.5f, 0.0f, 1.0f);
    CFeatureConfig& config = *CFeatureConfig::sigleFeatureConfig();
    featureDotConfig dots = config.getDotConfig();
    dots.selectedColor = orange;
    config.setDotConfig(dots);
    featurePlaneConfig planes = config.getPlaneConfig();
    planes.tableSelectedColor = orange; // of every label, those of dots and lines too
    config.setPlaneConfig(planes);
    config.setNormalTableFontSize(16);
}
//! [appearance]

//! [own colour]
void showInItsOwnColour(CAutoScaleSphereMeta& dot)
{
    dot.setState(featureStateNormal); // black, and so is its label
    dot.getShpereDrawableNode()->setColor(dot.getMetaStruct().color);
}
//! [own colour]

//! [find]
CArrowMeta* findLine(const std::string& name, const osg::ref_ptr<osg::Group>& scene)
{
    return dynamic_cast<CArrowMeta*>(findFeatureByName(name, scene, featureLine).get()); // owned by the scene
}
//! [find]

//! [find anywhere]
bool isNameTaken(const std::string& name, const osg::ref_ptr<osg::Group>& scene)
{
    osg::ref_ptr<osg::Group> parent;
    return findFeatureByName(name, scene, parent).valid(); // parts of features have names as well
}
//! [find anywhere]

//! [remove one]
void removeFeature(const std::string& name, featureType kind, const osg::ref_ptr<osg::Group>& scene)
{
    const osg::ref_ptr<osg::Node> feature = findFeatureByName(name, scene, kind);
    if (feature) feature->getParent(0)->removeChild(feature);
}
//! [remove one]

//! [remove a kind]
void removeAllOf(featureType kind, const osg::ref_ptr<osg::Group>& scene)
{
    const osg::ref_ptr<osg::Group> root = findOrCreateFeatureRootNode(scene, kind, false);
    if (!root) return;
    osg::Group& features = *root->getChild(0)->asGroup(); // the root's transform holds them
    features.removeChildren(0, features.getNumChildren());
}
//! [remove a kind]

//! [remove all]
void removeAllFeatures(const osg::ref_ptr<osg::Group>& scene)
{
    removeFeatureRoot(scene, featureAll);
    scene->removeChild(findChildByName("featureData", scene)); // else the scene takes no feature any more
}
//! [remove all]

//! [show]
void showOnlyPlanes(const osg::ref_ptr<osg::Group>& scene)
{
    switchFeatureRoot(scene, false, featureDot);
    switchFeatureRoot(scene, false, featureLine);
    switchFeatureRoot(scene, true, featurePlane);
}
//! [show]

//! [temporary]
void flagStartOfLine(const osg::Vec3f& point, const osg::ref_ptr<osg::Group>& scene)
{
    createFlagAutoScaleShpereAndTable(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, scene, point, 11, "start",
                                      -1, featureLine, true, false)
        ->setUserValue("tmpData", true);
}

void hideFlags(const osg::ref_ptr<osg::Group>& scene)
{
    switchFeatureRootFlagNode(scene, false, featureLine);
}

void forgetFlags(const osg::ref_ptr<osg::Group>& scene)
{
    clearFeatureRootTempNode(scene, featureAll); // clears every kind, and answers false all the same
}
//! [temporary]

//! [every feature]
std::vector<CFeatureMetaObject*> allFeatures(osg::Group& scene)
{
    FindFeatureNodeVisitor search({featureDot, featureLine, featurePlane});
    scene.accept(search);
    std::vector<CFeatureMetaObject*> features;
    for (const osg::ref_ptr<osg::Node>& node : search.m_foundNodes)
        if (auto* const feature = dynamic_cast<CFeatureMetaObject*>(node.get())) // a thin line is listed twice
            features.push_back(feature);
    return features;
}
//! [every feature]

//! [nodes by name]
std::size_t countFeaturesNamed(const QStringList& names, osg::Group& scene)
{
    findNodeVisitor search(names);
    scene.accept(search);
    return search.m_foundNodes.size();
}
//! [nodes by name]

//! [named nodes]
std::size_t countNodesNamed(const std::vector<std::string>& names, osg::Group& scene)
{
    FindNamedNodeVisitor search(names);
    scene.accept(search);
    return search.m_foundNodes.size();
}
//! [named nodes]

//! [group]
osg::ref_ptr<osg::Node> groupBesideTheFeatures(const std::string& name, const osg::ref_ptr<osg::Group>& scene)
{
    return findOrCreateNode(name, scene, true); // a featureBaseNode: content hangs under its child 0
}
//! [group]

//! [axis group]
osg::ref_ptr<CAxisMeta> axesThatCanBeHidden(const osg::ref_ptr<osg::Group>& scene)
{
    CConeAndCylinderMeta::structConeAndCylinderMeta axis;
    axis.length = 80.0f; // pixels
    axis.radius = 2.0f;
    osg::ref_ptr<CAxisMeta> axes = new CAxisMeta;
    axes->addChild(CConeAndCylinderMeta::createAxis(axis));
    scene->addChild(axes);
    return axes; // setAllChildrenOff() hides them
}
//! [axis group]

void showHiddenAxesTranslucent(const osg::ref_ptr<osg::Group>& scene)
{
    scene->getOrCreateStateSet()->setMode(GL_BLEND, osg::StateAttribute::ON);
}

void agreeWithWindowsThatShowAxes(osg::GraphicsContext* window)
{
    window->getState()->setUseModelViewAndProjectionUniforms(true);
}

//! [language]
class GermanWords : public QTranslator
{
public:
    QString translate(const char* context, const char* word, const char*, int) const override
    {
        if (qstrcmp(context, "QObject") != 0) return {};
        if (qstrcmp(word, "Point") == 0) return QStringLiteral("Punkt ");
        if (qstrcmp(word, "line") == 0) return QStringLiteral("Linie ");
        if (qstrcmp(word, "Plane") == 0) return QStringLiteral("Ebene ");
        return {};
    }

    bool isEmpty() const override { return false; }
};

void updateLabels(osg::Group& scene)
{
    FindFeatureNodeVisitor labels({featureTable});
    scene.accept(labels);
    for (const osg::ref_ptr<osg::Node>& node : labels.m_foundNodes)
        if (auto* const label = dynamic_cast<CTableMeta*>(node.get())) label->updateLanguage();
}
//! [language]

//! [font]
void drawLabelsIn(const QString& fontFile, osg::Group& scene)
{
    CFeatureConfig::sigleFeatureConfig()->setFontPath(fontFile);
    updateLabels(scene); // new labels need no help
}
//! [font]

//! [rotation]
osg::Vec3f anglesOfQuarterTurnAboutZ()
{
    osg::Vec3f angles; // radians
    calculateRotateAngles(angles, osg::PIf / 2.0f, osg::Z_AXIS);
    return angles;
}
//! [rotation]

//! [centre]
osg::Vec3f centreOfMovedPoints(const osg::Matrixd& motion)
{
    const osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array;
    points->push_back({0, 0, 0});
    points->push_back({1, 0, 0});
    points->push_back({4, 2, 0});
    return getCenterPosAfterTransForm(points, motion); // the middle of their box, not their mean
}
//! [centre]

std::string textOf(const osg::ref_ptr<osg::Group>& scene, const std::string& dotName)
{
    auto* const dot = dynamic_cast<CAutoScaleSphereMeta*>(findFeatureByName(dotName, scene, featureDot).get());
    return dot ? dot->getTextNode()->getText().createUTF8EncodedString() : std::string();
}

bool expect(bool holds, const char* what)
{
    std::printf("%s: %s\n", holds ? "yes" : "NO", what);
    return holds;
}

osg::ref_ptr<osg::Group> sceneWithFeatures()
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot-1", scene, {0, 0, 0}, 11, "Point", 1, featureStateNormal, false);
    createArrowAndTable(featureStateNormal, {{0, 0, 0}, {9, 0, 0}, "line-1", {1, 1, 1, 1}, 0.1f, 3, true}, scene, 12,
                        "line", 1);
    createPlaneAndTable(featureStateNormal, "plane-1", scene, {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}}, {0, 0, 1},
                        13, "Plane", 1);
    return scene;
}

bool recipesOfAppearanceHold()
{
    chooseAppearance();
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    const osg::ref_ptr<osg::Node> node = findFeatureByName("dot-1", scene, featureDot);
    auto& dot = dynamic_cast<CAutoScaleSphereMeta&>(*node);
    dot.setState(featureStateSelected);
    bool holds = expect(dot.getShpereDrawableNode()->getColor() == osg::Vec4f(1.0f, 0.5f, 0.0f, 1.0f) &&
                            dot.getTextNode()->getColor() == osg::Vec4f(1.0f, 0.5f, 0.0f, 1.0f),
                        "dot and label take their colours from two records");
    dot.setState(featureStateNormal);
    holds &= expect(dot.getShpereDrawableNode()->getColor() == osg::Vec4f(0, 0, 0, 1), "the normal state is black");
    showInItsOwnColour(dot);
    return holds & expect(dot.getShpereDrawableNode()->getColor() == dot.getMetaStruct().color,
                          "a dot gets the colour of its record back");
}

bool recipesOfTheTreeHold()
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    bool holds = expect(findLine("line-1", scene) && !findLine("dot-1", scene), "a name is sought within a kind");
    holds &= expect(isNameTaken("dot-1", scene) && isNameTaken("textNode", scene) && !isNameTaken("dot-2", scene),
                    "a search over the tree finds parts as well");
    holds &= expect(allFeatures(*scene).size() == 3, "three features, though a thin line is listed twice");
    holds &= expect(countNodesNamed({"showTableNode"}, *scene) == 3, "each with a label");
    holds &= expect(countFeaturesNamed({"dot-1", "plane-1"}, *scene) == 2, "nodes are found by several names");
    holds &= expect(groupBesideTheFeatures("extra", scene)->asGroup()->getNumChildren() == 1,
                    "a new group has its transform");

    const osg::ref_ptr<CAxisMeta> axes = axesThatCanBeHidden(scene);
    axes->setAllChildrenOff();
    holds &= expect(axes->getNumChildren() == 1 && !axes->getValue(0), "axes are hidden by a switch");
    showHiddenAxesTranslucent(scene);
    const osg::ref_ptr<osgViewer::GraphicsWindow> window = new osgViewer::GraphicsWindowEmbedded(0, 0, 8, 8);
    agreeWithWindowsThatShowAxes(window);
    holds &= expect(window->getState()->getUseModelViewAndProjectionUniforms(), "a window is told about the uniforms");

    flagStartOfLine({0, 0, 0}, scene);
    hideFlags(scene);
    const std::string flag = CFlagAutoScaleSphereMeta::flag_feature_line_name_start.toStdString();
    const osg::ref_ptr<osg::Node> hidden = findFeatureByName(flag, scene, featureLine);
    holds &= expect(hidden && !hidden->asSwitch()->getValue(0), "a temporary feature is hidden alone");
    forgetFlags(scene);
    holds &= expect(!isNameTaken(flag, scene) && isNameTaken("line-1", scene), "and removed alone");

    showOnlyPlanes(scene);
    holds &= expect(!findOrCreateFeatureRootNode(scene, featureDot, false)->asSwitch()->getValue(0) &&
                        findOrCreateFeatureRootNode(scene, featurePlane, false)->asSwitch()->getValue(0),
                    "kinds are hidden by their roots");

    removeFeature("dot-1", featureDot, scene);
    holds &= expect(!isNameTaken("dot-1", scene) && isNameTaken("line-1", scene), "one feature is removed");
    removeAllOf(featureLine, scene);
    holds &= expect(!isNameTaken("line-1", scene) && isNameTaken("plane-1", scene), "one kind is removed");
    removeAllFeatures(scene);
    createAutoScaleShpereAndTable("dot-1", scene, {0, 0, 0}, 11, "Point", 1, featureStateNormal, false);
    return holds & expect(isNameTaken("dot-1", scene) && !isNameTaken("plane-1", scene),
                          "all are removed, and the scene takes new ones");
}

bool recipesOfLabelsHold()
{
    const osg::ref_ptr<osg::Group> scene = sceneWithFeatures();
    bool holds = expect(textOf(scene, "dot-1") == "Point1", "a text is the prefix and the number");
    GermanWords words;
    QCoreApplication::installTranslator(&words);
    holds &= expect(textOf(scene, "dot-1") == "Point1", "labels are translated when they are built");
    updateLabels(*scene);
    holds &= expect(textOf(scene, "dot-1") == "Punkt 1", "or when they are told to");
    drawLabelsIn("there-is-no-such-font.ttf", *scene);
    holds &= expect(textOf(scene, "dot-1") == "Punkt 1", "a missing font is no error");
    QCoreApplication::removeTranslator(&words);
    return holds;
}

bool recipesOfGeometryHold()
{
    const osg::Vec3f centre = centreOfMovedPoints(osg::Matrixd::translate(10, 0, 0));
    bool holds = expect((centre - osg::Vec3f(12, 1, 0)).length() < 1e-5f, "the centre of points is that of their box");
    const osg::Vec3f angles = anglesOfQuarterTurnAboutZ();
    return holds & expect((angles - osg::Vec3f(0, 0, osg::PIf / 2.0f)).length() < 1e-5f,
                          "a turn about Z is an angle about Z alone");
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    bool isRight = recipesOfAppearanceHold();
    isRight &= recipesOfTheTreeHold();
    isRight &= recipesOfLabelsHold();
    isRight &= recipesOfGeometryHold();
    return isRight ? 0 : 1;
}
