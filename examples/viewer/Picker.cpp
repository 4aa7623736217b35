#include "Picker.h"

#include "FeatureDocument.h"
#include "MeasureScene.h"

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/FeatureFunctions.h>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr char kMeshName[] = "meshData";
constexpr float kCoplanarShare = 1e-3f; // of the radius around the scene

/// Lists what may be hit by its label. What is hidden may not, nor what lies behind the eye: labels
/// are told by where their anchor is projected to, and that is somewhere in the window, too.
QList<QVariant> labelledFeatures(const osg::Camera& camera, FeatureDocument& document, featureType kind)
{
    const osg::Matrixd toClip = document.scene().matrix() * camera.getViewMatrix() * camera.getProjectionMatrix();
    QList<QVariant> list;
    for (const Feature& feature : document.features()) {
        const bool isWanted = kind == featureAll || kind == feature.kind;
        const bool isBeforeEye = (osg::Vec4d(middleOf(feature), 1.0) * toClip).w() > 0.0;
        if (isWanted && isBeforeEye && document.scene().isKindVisible(feature.kind))
            list << QVariantMap{{QStringLiteral("feature_uid"), feature.name}};
    }
    return list;
}

/// Takes the mesh out of picks as long as it lives.
class HiddenMesh
{
public:
    explicit HiddenMesh(MeasureScene& scene) : m_mesh(scene.mesh()), m_mask(m_mesh ? m_mesh->getNodeMask() : 0)
    {
        if (m_mesh) m_mesh->setNodeMask(0);
    }
    ~HiddenMesh()
    {
        if (m_mesh) m_mesh->setNodeMask(m_mask);
    }

private:
    osg::ref_ptr<osg::Node> m_mesh;
    osg::Node::NodeMask m_mask;
};

} // namespace

QString Picker::featureAt(const osg::Vec2d& position)
{
    QString name = pick(position, featureAll, labelledFeatures(*m_viewer.getCamera(), m_document, featureAll)).name;
    // What is drawn over the mesh although it does not lie before it:
    if (name.isEmpty()) name = lineOverMesh(position);
    if (name.isEmpty()) name = planeOnMesh(position);
    return name;
}

Picker::Hit Picker::pick(const osg::Vec2d& position, featureType wanted, const QList<QVariant>& labelled)
{
    Hit hit;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    if (getIntersectionToFeatureBranch(&m_viewer, labelled, float(position.x()), float(position.y()), wanted, hit.point,
                                       feature, kind, points) &&
        feature)
        hit.name = QString::fromStdString(feature->getName());
    return hit;
}

QString Picker::lineOverMesh(const osg::Vec2d& position)
{
    const HiddenMesh hidden(m_document.scene());
    const QString name = pick(position, featureLine, {}).name;
    const int row = m_document.rowOf(name);
    return row >= 0 && m_document.features()[std::size_t(row)].isLineArrow ? name : QString();
}

QString Picker::planeOnMesh(const osg::Vec2d& position)
{
    const std::optional<osg::Vec3f> meshPoint = meshPointAt(position);
    if (!meshPoint) return {};
    const HiddenMesh hidden(m_document.scene());
    const Hit hit = pick(position, featurePlane, {});
    const float tolerance = kCoplanarShare * float(m_document.scene().bound().radius());
    return (hit.point - *meshPoint).length() < tolerance ? hit.name : QString();
}

std::optional<osg::Vec3f> Picker::meshPointAt(const osg::Vec2d& position)
{
    osg::Vec3f point;
    if (!getClickedPointToMeshData(&m_viewer, float(position.x()), float(position.y()), point, kMeshName))
        return std::nullopt;
    return point;
}

std::optional<osg::Vec3f> Picker::meshOrDotPointAt(const osg::Vec2d& position)
{
    osg::Vec3f point;
    CAutoScaleSphereMeta* dot = nullptr;
    if (!getClickedPointToMeshDataAndDotFeature(&m_viewer,
                                                labelledFeatures(*m_viewer.getCamera(), m_document, featureDot),
                                                float(position.x()), float(position.y()), point, dot, kMeshName))
        return std::nullopt;
    return point;
}

} // namespace viewer
