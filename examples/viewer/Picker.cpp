#include "Picker.h"

#include "FeatureDocument.h"
#include "MeasureScene.h"

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <QVariant>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr char kMeshName[] = "meshData";

/// Only what is visible may be listed: a listed label is hit even while its feature is hidden.
QList<QVariant> visibleFeatures(FeatureDocument& document, featureType kind)
{
    QList<QVariant> list;
    for (const Feature& feature : document.features())
        if (document.scene().isKindVisible(feature.kind) && (kind == featureAll || kind == feature.kind))
            list << QVariantMap{{QStringLiteral("feature_uid"), feature.name}};
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
    const QString hit = pick(position, featureAll, true);
    if (!hit.isEmpty()) return hit;

    // Thin arrows are drawn over the mesh, so they can be hit through it.
    HiddenMesh withoutMesh(m_document.scene());
    const QString line = pick(position, featureLine, false);
    const int row = m_document.rowOf(line);
    return row >= 0 && m_document.features()[std::size_t(row)].isLineArrow ? line : QString();
}

QString Picker::pick(const osg::Vec2d& position, featureType wanted, bool labelsToo)
{
    osg::Vec3f point;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    const QList<QVariant> labelled = labelsToo ? visibleFeatures(m_document, wanted) : QList<QVariant>();
    const bool hit = getIntersectionToFeatureBranch(&m_viewer, labelled, float(position.x()), float(position.y()),
                                                    wanted, point, feature, kind, points);
    return hit && feature ? QString::fromStdString(feature->getName()) : QString();
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
    if (!getClickedPointToMeshDataAndDotFeature(&m_viewer, visibleFeatures(m_document, featureDot), float(position.x()),
                                                float(position.y()), point, dot, kMeshName))
        return std::nullopt;
    return point;
}

} // namespace viewer
