#include "PickingScene.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/KdTree>
#include <osg/MatrixTransform>
#include <osgUtil/CullVisitor>
#include <osgUtil/RenderStage>
#include <osgUtil/StateGraph>

#include <cmath>
#include <map>
#include <tuple>

using namespace KelvOsgTools;

namespace kelvbench {
namespace {

constexpr int kMeshColumns = 1000;
constexpr int kMeshRows = 500; // two triangles a cell

osg::ref_ptr<osg::Vec3Array> meshVertices()
{
    osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
    vertices->reserve((kMeshColumns + 1ul) * (kMeshRows + 1ul));
    for (int row = 0; row <= kMeshRows; ++row)
        for (int column = 0; column <= kMeshColumns; ++column)
            vertices->push_back(osg::Vec3f(float(column) / kMeshColumns * kWidth - kWidth / 2.0f,
                                           float(row - kMeshRows) / kMeshRows * kHeight / 2.0f,
                                           std::sin(float(column) * 0.1f) * 5.0f));
    return vertices;
}

osg::ref_ptr<osg::DrawElementsUInt> meshTriangles()
{
    osg::ref_ptr<osg::DrawElementsUInt> triangles = new osg::DrawElementsUInt(GL_TRIANGLES);
    triangles->reserve(6ul * kMeshColumns * kMeshRows);
    for (GLuint row = 0; row < kMeshRows; ++row)
        for (GLuint column = 0; column < kMeshColumns; ++column) {
            const GLuint first = row * (kMeshColumns + 1) + column;
            const GLuint above = first + kMeshColumns + 1;
            for (const GLuint index : {first, first + 1, above + 1, first, above + 1, above})
                triangles->push_back(index);
        }
    return triangles;
}

osg::ref_ptr<osg::Node> buildMesh(Mesh mesh)
{
    const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(meshVertices());
    geometry->addPrimitiveSet(meshTriangles());
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(geometry);
    if (mesh == Mesh::WithKdTree) {
        osg::ref_ptr<osg::KdTreeBuilder> builder = new osg::KdTreeBuilder;
        geode->accept(*builder);
    }
    return geode;
}

/// Where feature number index of count stands: in rows from the upper left, right of the strip.
osg::Vec3f placeOf(int index, int count)
{
    const int columns = static_cast<int>(std::ceil(std::sqrt(double(count))));
    const float x = kStripWidth + (float(index % columns) + 0.5f) / float(columns) * (kWidth - kStripWidth);
    const int row = columns - 1 - index / columns;
    const float y = (float(row) + 0.5f) / float(columns) * kHeight;
    return {x - kWidth / 2.0f, y - kHeight / 2.0f, 20.0f};
}

void addFeature(featureType kind, osg::Group* root, int index, const osg::Vec3f& place)
{
    const std::string name = "feature-" + std::to_string(index);
    const QString uid = QString::fromStdString(name);
    if (kind == featureDot) {
        createAutoScaleShpereAndTable(uid, root, place, 1, QStringLiteral("P"), index, featureStateNormal, false);
    } else if (kind == featureLine) {
        CArrowMeta::structArrowMeta meta;
        meta.name = name;
        meta.startPos = place;
        meta.endPos = place + osg::Vec3f(4.0f, 0.0f, 0.0f);
        meta.isLineArrow = true;
        createArrowAndTable(featureStateNormal, meta, root, 1, QStringLiteral("L"), index);
    } else {
        const std::vector<osg::Vec3f> corners{place, place + osg::Vec3f(3, 0, 0), place + osg::Vec3f(3, 3, 0),
                                              place + osg::Vec3f(0, 3, 0)};
        createPlaneAndTable(featureStateNormal, uid, root, corners, osg::Vec3f(0, 0, 1), 1, QStringLiteral("A"), index);
    }
}

osg::ref_ptr<osgViewer::Viewer> viewerOf(osg::Node* root)
{
    osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setThreadingModel(osgViewer::ViewerBase::SingleThreaded);
    osgViewer::GraphicsWindowEmbedded* const window = viewer->setUpViewerAsEmbeddedInWindow(0, 0, kWidth, kHeight);
    viewer->getCamera()->setViewMatrixAsLookAt(osg::Vec3d(0, 0, 100), osg::Vec3d(), osg::Y_AXIS);
    viewer->getCamera()->setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0,
                                                    200.0);
    viewer->setSceneData(root);

    osgGA::GUIEventAdapter& state = *viewer->getEventQueue()->getCurrentEventState();
    state.setGraphicsContext(window);
    state.setInputRange(0.0f, 0.0f, float(kWidth), float(kHeight));
    state.setMouseYOrientation(osgGA::GUIEventAdapter::Y_INCREASING_UPWARDS);
    return viewer;
}

/// Gives auto-scaled nodes their scale.
void cull(osgViewer::Viewer& viewer)
{
    osg::Camera& camera = *viewer.getCamera();
    const osg::ref_ptr<osgUtil::CullVisitor> visitor = new osgUtil::CullVisitor;
    const osg::ref_ptr<osgUtil::StateGraph> graph = new osgUtil::StateGraph;
    const osg::ref_ptr<osgUtil::RenderStage> stage = new osgUtil::RenderStage;
    visitor->setStateGraph(graph);
    visitor->setRenderStage(stage);
    visitor->pushViewport(camera.getViewport());
    visitor->pushProjectionMatrix(new osg::RefMatrix(camera.getProjectionMatrix()));
    visitor->pushModelViewMatrix(new osg::RefMatrix(camera.getViewMatrix()), osg::Transform::ABSOLUTE_RF);
    viewer.getSceneData()->accept(*visitor);
}

PickingScene build(featureType kind, int count, const osg::ref_ptr<osg::Node>& mesh)
{
    PickingScene scene;
    scene.root = new osg::Group;
    const osg::ref_ptr<osg::Group> meshData = new osg::Group;
    meshData->setName("meshData");
    const osg::ref_ptr<osg::MatrixTransform> transform = new osg::MatrixTransform;
    scene.root->addChild(meshData);
    meshData->addChild(transform);
    transform->addChild(mesh);

    for (int index = 0; index < count; ++index) {
        addFeature(kind, scene.root, index, placeOf(index, count));
        scene.listed.append(QVariantMap{{QStringLiteral("feature_uid"), QStringLiteral("feature-%1").arg(index)}});
    }
    scene.viewer = viewerOf(scene.root);
    cull(*scene.viewer);
    return scene;
}

} // namespace

const PickingScene& pickingScene(featureType kind, int count, Mesh mesh)
{
    static std::map<Mesh, osg::ref_ptr<osg::Node>> meshes;
    static std::map<std::tuple<int, int, Mesh>, PickingScene> scenes;
    osg::ref_ptr<osg::Node>& built = meshes[mesh];
    if (!built) built = buildMesh(mesh);
    const auto key = std::make_tuple(int(kind), count, mesh);
    const auto found = scenes.find(key);
    return found != scenes.end() ? found->second : scenes.emplace(key, build(kind, count, built)).first->second;
}

} // namespace kelvbench
