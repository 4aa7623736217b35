#pragma once

#include "Feature.h"

#include <osg/BoundingBox>
#include <osg/BoundingSphere>
#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

#include <QMap>
#include <QObject>

namespace viewer {

/// The scene graph of the viewer, laid out as picking expects it: "meshData" and "featureData"
/// directly under the root, both with the same transform.
class MeasureScene : public QObject
{
    Q_OBJECT

public:
    explicit MeasureScene(QObject* parent = nullptr);

    osg::Group* root() { return m_root; }
    osg::Node* mesh() { return m_transform->getNumChildren() > 0 ? m_transform->getChild(0) : nullptr; }

    /// Shows a mesh instead of the former one. Its drawables must be in the coordinates of the node:
    /// see MeshLoader.
    void setMesh(osg::Node* mesh);

    /// Moves mesh and features together.
    void setMatrix(const osg::Matrixd& matrix);
    const osg::Matrixd& matrix() const { return m_transform->getMatrix(); }

    /// Shows a feature in a state. It must be as it was when it was last built.
    void show(const Feature& feature, KelvOsgTools::featureState state);

    /// Builds the nodes of a feature, in place of those of a feature with the same name.
    void rebuild(const Feature& feature, KelvOsgTools::featureState state);
    void remove(const Feature& feature);

    /// The node of a feature; null if it has none.
    osg::Node* nodeOf(const Feature& feature) const;

    void setKindVisible(KelvOsgTools::featureType kind, bool visible);
    bool isKindVisible(KelvOsgTools::featureType kind) const { return !m_hiddenKinds[kind]; }

    /// Shows the points from which a feature is being made as flag dots, and what it would become as
    /// a preview. Replaces the former ones; no points clear them.
    void showTemporary(KelvOsgTools::featureType kind, const std::vector<osg::Vec3f>& points, bool isLineArrow);

    /// Translates the labels anew, flags included.
    void updateLanguage();

    /// @name What mesh and features take up, in world coordinates; not valid in an empty scene
    /// Dots and labels count as points: their extent depends on the camera.
    /// @{
    osg::BoundingSphere bound() const;
    osg::BoundingBox box() const;
    /// @}

    /// A shaft radius that suits the size of the mesh.
    float solidArrowRadius() const;

signals:
    void changed();

private:
    void build(const Feature& feature, KelvOsgTools::featureState state);
    void buildLine(const Feature& feature, KelvOsgTools::featureState state);
    void buildPlane(const Feature& feature, KelvOsgTools::featureState state);
    void buildPreview(const std::vector<osg::Vec3f>& points, bool isLineArrow);

    osg::ref_ptr<osg::Group> m_root = new osg::Group;
    osg::ref_ptr<osg::Group> m_meshData = new osg::Group;
    osg::ref_ptr<osg::MatrixTransform> m_transform = new osg::MatrixTransform;
    QMap<QString, Feature> m_shown; // by name
    bool m_hiddenKinds[KelvOsgTools::featureFlagDot + 1] = {};
};

} // namespace viewer
