// The recipes of docs/picking.md and docs/scene-conventions.md at work, without a window: features on
// a box, a hovering mouse and some clicks. Exits with 1 if one of them finds something else.

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgViewer/Viewer>

#include <QGuiApplication>
#include <QVariant>

#include <cstdio>

using namespace KelvOsgTools;

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;

osg::ref_ptr<osg::Group> sceneWithMesh(osg::Node* mesh, const osg::Matrixd& matrix)
{
    osg::ref_ptr<osg::Group> scene = new osg::Group;
    const osg::ref_ptr<osg::Group> meshData = new osg::Group;
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform(matrix);
    meshData->setName("meshData");
    scene->addChild(meshData);
    meshData->addChild(transform);
    transform->addChild(mesh);
    return scene;
}

void placeFeaturesLikeTheMesh(osg::Group* scene, const osg::Matrixd& matrix)
{
    const osg::ref_ptr<osg::Group> features = findOrCreateFeatureRootNode(scene, featureAll, true);
    features->getChild(0)->asTransform()->asMatrixTransform()->setMatrix(matrix);
}

void tellAboutTheWindow(osgViewer::Viewer& viewer, osg::GraphicsContext* window, int width, int height)
{
    osgGA::GUIEventAdapter& state = *viewer.getEventQueue()->getCurrentEventState();
    state.setGraphicsContext(window);
    state.setInputRange(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height));
    state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
}

QList<QVariant> listOf(const QStringList& visibleFeatures)
{
    QList<QVariant> list;
    for (const QString& name : visibleFeatures) list.append(QVariantMap{{QStringLiteral("feature_uid"), name}});
    return list;
}

//! [click]
CFeatureMetaObject* featureUnder(osgViewer::Viewer& viewer, const QList<QVariant>& visible, float x, float y)
{
    CFeatureMetaObject* feature = nullptr; // owned by the scene
    featureType kind = featureAll;
    osg::Vec3f point;
    std::vector<osg::Vec3f> points;
    getIntersectionToFeatureBranch(&viewer, visible, x, y, featureAll, point, feature, kind, points);
    return feature;
}
//! [click]

//! [any point]
bool pointUnder(osgViewer::Viewer& viewer, float x, float y, osg::Vec3f& point)
{
    return getClickedPoint(&viewer, x, y, QString(), point); // of the nearest thing, whatever it is
}
//! [any point]

//! [dot or mesh]
bool dotOrMeshUnder(osgViewer::Viewer& viewer, const QList<QVariant>& visible, float x, float y, osg::Vec3f& point)
{
    CAutoScaleSphereMeta* dot = nullptr; // stays null where the mesh was hit
    return getClickedPointToMeshDataAndDotFeature(&viewer, visible, x, y, point, dot, QStringLiteral("meshData"));
}
//! [dot or mesh]

/// Highlights the feature under the mouse, and paints the one before it black: no state gives back
/// the colours of a new feature.
class Hover
{
public:
    void moveTo(CFeatureMetaObject* feature)
    {
        if (feature == m_feature) return;
        if (m_feature) m_feature->setState(featureStateNormal);
        if (feature) feature->setState(featureStateHighlighted);
        m_feature = feature;
    }

private:
    osg::ref_ptr<CFeatureMetaObject> m_feature;
};

bool expect(bool holds, const char* what)
{
    std::printf("%s: %s\n", holds ? "yes" : "NO", what);
    return holds;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);

    // A box whose top is seen from above, a unit being a pixel: auto-scaled spheres learn their size when
    // they are drawn, which never happens here, and have the size of a unit until then.
    const osg::ref_ptr<osg::Geode> box = new osg::Geode;
    box->addDrawable(new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 200.0f)));
    const osg::Matrixd matrix = osg::Matrixd::translate(50.0, 0.0, 0.0);
    const osg::ref_ptr<osg::Group> scene = sceneWithMesh(box, matrix);
    placeFeaturesLikeTheMesh(scene, matrix);
    createAutoScaleShpereAndTable("dot-1", scene, osg::Vec3f(0, 0, 100), 1, "Point", 1, featureStateNormal, false);
    createAutoScaleShpereAndTable("dot-2", scene, osg::Vec3f(0, 5, 100), 2, "Point", 2, featureStateNormal, false);

    osgViewer::Viewer viewer;
    const osg::ref_ptr<osgViewer::GraphicsWindowEmbedded> window =
        viewer.setUpViewerAsEmbeddedInWindow(0, 0, kWidth, kHeight);
    tellAboutTheWindow(viewer, window, kWidth, kHeight);
    viewer.setSceneData(scene);
    viewer.getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, 0, 1000), osg::Vec3d(), osg::Y_AXIS);
    viewer.getCamera()->setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0, 2000.0);

    const QList<QVariant> visible = listOf({"dot-1", "dot-2"});
    Hover hover;
    osg::Vec3f point;
    bool isRight = true;

    CFeatureMetaObject* const onLabel = featureUnder(viewer, visible, 450, 320);
    hover.moveTo(onLabel);
    isRight &= expect(onLabel && onLabel->getName() == "dot-2", "of overlapping labels the one drawn last is hit");
    isRight &= expect(!featureUnder(viewer, listOf({}), 480, 380), "a mesh is no feature");
    isRight &= expect(pointUnder(viewer, 480, 380, point) && (point - osg::Vec3f(30, 80, 100)).length() < 1e-3f,
                      "the nearest thing under the mouse gives its point");
    isRight &= expect(dotOrMeshUnder(viewer, visible, 450, 320, point) && point == osg::Vec3f(0, 5, 100),
                      "a dot gives its own point");
    isRight &=
        expect(dotOrMeshUnder(viewer, visible, 480, 380, point) && (point - osg::Vec3f(30, 80, 100)).length() < 1e-3f,
               "the mesh gives the point hit, in its own coordinates");
    return isRight ? 0 : 1;
}
