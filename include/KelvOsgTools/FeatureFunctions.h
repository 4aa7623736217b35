#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Array>
#include <osg/Group>
#include <osg/Matrixd>
#include <osg/Node>
#include <osg/Vec3f>
#include <osg/ref_ptr>
#include <osgViewer/Viewer>

#include <QList>
#include <QString>
#include <QVariant>

#include <string>
#include <vector>

/// @file
/// All free functions. Call them from the one thread that owns the scene.
///
/// Unless said otherwise a result is false or null when something is missing, nothing is logged,
/// and nothing throws. The scene owns every node through reference counting; a returned pointer is
/// one more reference. Node names are UTF-8 and compared exactly.

namespace KelvOsgTools {
class CFeatureMetaObject;
class CFlagAutoScaleSphereMeta;

/// @name Language
/// @{

/// Translates the words "Point", "line" and "Plane" with the translators installed in the
/// application (context "QObject"); gives any other word back as it is.
/// @snippet feature_recipes/main.cpp language
KELVOSGTOOLS_EXPORT QString languageTranslate(const QString& word);

/// @}
/// @name Feature tree
/// Under the host's scene group hangs the common root "featureData", under the transform of that
/// the roots of the kinds, under the transform of each of those its features.
/// @{

/// The first direct child of parent with that name.
/// @param create makes a featureBaseNode of that name, as last child, if there is none
/// @return null if parent is null, or if there is none and create is false
/// @snippet feature_recipes/main.cpp group
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Node> findOrCreateNode(const std::string& name, osg::ref_ptr<osg::Group> parent,
                                                             bool create);

/// The root of a kind below scene; featureAll gives the common root. With create the whole path is
/// made where it is missing.
/// @return null for a kind without a root (featureFlagDot, unknown values), or if the common root
///         lost its transform
/// @snippet feature_recipes/main.cpp remove a kind
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group> findOrCreateFeatureRootNode(osg::ref_ptr<osg::Group> scene,
                                                                         featureType kind, bool create);

/// The first direct child of parent with that name; null parent gives null.
/// @snippet feature_recipes/main.cpp remove all
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Node> findChildByName(const std::string& name, osg::ref_ptr<osg::Group> parent);

/// The first node with that name anywhere below the common root, hidden nodes included.
/// @param parentOut its first parent, null if it has none; untouched when nothing is found
/// @snippet feature_recipes/main.cpp find anywhere
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Node> findFeatureByName(const std::string& name, osg::ref_ptr<osg::Group> scene,
                                                              osg::ref_ptr<osg::Group>& parentOut);

/// The first feature with that name directly under the root of a kind.
/// @param kind featureDot, featureLine or featurePlane; any other kind gives null
/// @snippet feature_recipes/main.cpp find
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Node> findFeatureByName(const std::string& name, osg::ref_ptr<osg::Group> scene,
                                                              featureType kind);

/// Makes a plain blue sphere of radius 1 scene unit under the root of the dots. Despite its name it
/// finds nothing: a sphere (or any node) of that name there is replaced.
/// @return null if scene is null, or if the common root lost its transform
/// @image html findOrCreateShpere.png "The sphere, 40 times as large"
/// @snippet gallery/Subjects.cpp findOrCreateShpere
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Node> findOrCreateShpere(const std::string& name, osg::ref_ptr<osg::Group> scene,
                                                               osg::Vec3f centre);

/// Shows or hides the features of a kind. Every kind but featureDot, featureLine and featurePlane,
/// featureTable included, shows or hides all features.
/// @return false only if scene is null
/// @snippet feature_recipes/main.cpp show
KELVOSGTOOLS_EXPORT bool switchFeatureRoot(osg::ref_ptr<osg::Group> scene, bool on, featureType kind);

/// Shows or hides the temporary features of a kind: those whose user value "tmpData" is a true bool.
/// @return false if scene is null, kind is not featureDot, featureLine or featurePlane, or there is
///         no root of that kind
/// @snippet feature_recipes/main.cpp temporary
KELVOSGTOOLS_EXPORT bool switchFeatureRootFlagNode(osg::ref_ptr<osg::Group> scene, bool on, featureType kind);

/// With featureAll: removes all features of the scene; the common root stays, without its
/// transform, and takes no feature any more. With every other kind: removes nothing. To clear one
/// kind remove the children of the transform of its root.
/// @return false only if scene is null
/// @snippet feature_recipes/main.cpp remove all
KELVOSGTOOLS_EXPORT bool removeFeatureRoot(osg::ref_ptr<osg::Group> scene, featureType kind);

/// Removes the temporary features of a kind: those whose user value "tmpData" is a true bool.
/// featureAll clears dots, lines and planes, and yet answers false.
/// @return false if scene is null, kind is not featureDot, featureLine or featurePlane, or there is
///         no root of that kind
/// @snippet feature_recipes/main.cpp temporary
KELVOSGTOOLS_EXPORT bool clearFeatureRootTempNode(osg::ref_ptr<osg::Group> scene, featureType kind);

/// @}
/// @name Whole features
/// Each function builds a feature with its label and hangs it, named, under the root of its kind as
/// last child. Same-named children there are replaced. On failure, an exhausted memory included,
/// the scene stays as it was.
///
/// Points are in the coordinates of the transform of the roots. renderIndex is the render bin of
/// the label: give what may be picked by its label 1 or more. The label's text is the translated
/// tableNamePrefix followed by tableNameIndexSuffix; -1 means no number.
/// @{

/// A label from its record, not hung anywhere; null only if memory is exhausted.
/// @image html createTable.png "A label of its own"
/// @snippet gallery/Subjects.cpp createTable
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group> createTable(const CTableMeta::structTableMeta& meta);

/// A dot with its label.
/// @param name     name of the feature
/// @param scene    the host's scene group; null gives null
/// @param state    state of the new dot; featureStateNormal leaves it white
/// @param isBottom carried in the label's record
/// @return the CAutoScaleSphereMeta
/// @image html createAutoScaleShpereAndTable.png "A highlighted dot"
/// @snippet gallery/Subjects.cpp createAutoScaleShpereAndTable
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group>
createAutoScaleShpereAndTable(QString name, osg::ref_ptr<osg::Group> scene, osg::Vec3f point, int renderIndex,
                              QString tableNamePrefix, int tableNameIndexSuffix, featureState state, bool isBottom);

/// A flag dot with its label, selected from the start.
/// @param kind root to hang it under: featureDot, featureLine, featurePlane or featureTable;
///             featureAll hangs it beside the roots of the kinds, any other value gives null
/// @param useFlagFontSize label in the flag font size of the configuration, else in the normal one
/// @return the CFlagAutoScaleSphereMeta. The last argument is not read.
/// @image html createFlagAutoScaleShpereAndTable.png "A flag dot"
/// @snippet gallery/Subjects.cpp createFlagAutoScaleShpereAndTable
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group>
createFlagAutoScaleShpereAndTable(QString name, osg::ref_ptr<osg::Group> scene, osg::Vec3f point, int renderIndex,
                                  QString tableNamePrefix, int tableNameIndexSuffix, featureType kind,
                                  bool useFlagFontSize, bool);

/// A line with its label at the midpoint. The record's name is the name of the feature.
/// @param state state of the new line; featureStateNormal leaves it in the record's colour
/// @return the CArrowMeta
/// @image html createArrowAndTable.png "A solid arrow"
/// @snippet gallery/Subjects.cpp createArrowAndTable
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group> createArrowAndTable(featureState state,
                                                                 const CArrowMeta::structArrowMeta& meta,
                                                                 osg::ref_ptr<osg::Group> scene, int renderIndex,
                                                                 QString tableNamePrefix, int tableNameIndexSuffix);

/// A plane with its label at the centroid and a normal arrow at its first and third point.
/// @param points corners in drawing order; four make a patch
/// @param normal direction and scale of the normal arrows, not normalised here: their length is
///               |normal| times the larger of 4 and a fifth of the longer of the first two edges.
///               A NaN component leaves the arrows out. The record does not keep it.
/// @return the CPlaneMeta
/// @throws std::out_of_range for fewer than three points with a normal without NaN: the one
///         exception that crosses this interface; the scene is then as it was
/// @image html createPlaneAndTable.png "A selected plane with its normal arrows"
/// @snippet gallery/Subjects.cpp createPlaneAndTable
KELVOSGTOOLS_EXPORT osg::ref_ptr<osg::Group>
createPlaneAndTable(featureState state, QString name, osg::ref_ptr<osg::Group> scene, std::vector<osg::Vec3f> points,
                    osg::Vec3f normal, int renderIndex, QString tableNamePrefix, int tableNameIndexSuffix);

/// @}
/// @name Picking
/// Window positions are what osgViewer::View::computeIntersections takes: pixels, origin bottom
/// left, y upwards, unless the view's event state says otherwise. Rays need that event state to
/// know the window: an embedded viewer must set its graphics context, input range and y direction.
///
/// All picks agree in a scene where "meshData" and "featureData" stand directly under the scene
/// data, the first child of "meshData" is a MatrixTransform, and the transform of "featureData"
/// holds the same matrix.
///
/// features lists what may be hit by its label: maps with the name of a feature under
/// "feature_uid". A listed label is hit even while its feature is hidden: list what is visible.
/// An entry that is no map, or names nothing, is passed over.
/// @{

/// Finds the point under a window position, on any node or on one with a given name.
/// @param viewer   not owned; null gives false
/// @param nodeName exact name on the hit's node path; empty takes the nearest hit
/// @param point    the hit in the coordinates of the drawable; untouched without a hit
/// @snippet picking_recipes/main.cpp any point
KELVOSGTOOLS_EXPORT bool getClickedPoint(osgViewer::Viewer* viewer, float x, float y, const QString& nodeName,
                                         osg::Vec3f& point);

/// Finds the point of a mesh under a window position, also through what stands before it.
/// @param viewer   not owned; null gives false
/// @param point    the hit in the coordinates of the mesh's drawable. If the mesh is missed but
///                 anything else is hit: false, with the nearest hit in world coordinates.
/// @param meshName name of a direct child of the scene data, usually "meshData"
/// @snippet first_label/main.cpp click
KELVOSGTOOLS_EXPORT bool getClickedPointToMeshData(osgViewer::Viewer* viewer, float x, float y, osg::Vec3f& point,
                                                   QString meshName);

/// Finds the dot, by its label or its sphere, or else the mesh point under a window position.
/// @param viewer   not owned; null gives false
/// @param features what may be hit by its label
/// @param point    the dot's stored centre, or the hit in the coordinates of the mesh's drawable;
///                 untouched if false
/// @param dot      the dot, owned by the scene; untouched when the mesh was hit, and if false
/// @param meshName name of the mesh's node, usually "meshData"
/// @snippet picking_recipes/main.cpp dot or mesh
KELVOSGTOOLS_EXPORT bool getClickedPointToMeshDataAndDotFeature(osgViewer::Viewer* viewer,
                                                                const QList<QVariant>& features, float x, float y,
                                                                osg::Vec3f& point, CAutoScaleSphereMeta*& dot,
                                                                QString meshName);

/// Finds the feature of a kind under a window position: by its label, within 2 pixels (lines, and
/// planes by their normal arrows), or by a ray.
/// @param viewer   not owned; null gives false
/// @param features what may be hit by its label
/// @param wanted   featureAll takes any kind; a kind whose root does not exist gives false
/// @param point    the hit in the coordinates of the drawable; untouched by a hit on a label
/// @param feature  the primitive, owned by the scene; null if a label was hit whose listed node is no
///                 primitive, a named group, say
/// @param kind     its kind
/// @param points   its defining points: appended for a dot (centre) or line (start, end), replaced
///                 for a plane (corners). Pass an empty vector.
/// @return false with nothing written if nothing was hit
/// @image html picking.png "A click beside a thin arrow selects its plane"
/// @snippet picking_recipes/main.cpp click
KELVOSGTOOLS_EXPORT bool getIntersectionToFeatureBranch(osgViewer::Viewer* viewer, const QList<QVariant>& features,
                                                        float x, float y, featureType wanted, osg::Vec3f& point,
                                                        CFeatureMetaObject*& feature, featureType& kind,
                                                        std::vector<osg::Vec3f>& points);

/// @}
/// @name Geometry
/// @{

/// Splits a rotation into angles about X, Y and Z.
/// @param angles radians, such that Rx * Ry * Rz is the rotation (matrices that multiply column
///               vectors); the first is in [0, pi], the others in [-pi, pi]
/// @param angle  radians
/// @param axis   of any length but zero; a zero axis gives NaN angles
/// @snippet feature_recipes/main.cpp rotation
KELVOSGTOOLS_EXPORT void calculateRotateAngles(osg::Vec3f& angles, float angle, osg::Vec3f axis);

/// Centre of the axis-aligned box around the transformed points; not their mean.
/// @param points    null or empty gives the origin
/// @param transform multiplies row vectors, as everywhere in OpenSceneGraph
/// @snippet feature_recipes/main.cpp centre
KELVOSGTOOLS_EXPORT osg::Vec3f getCenterPosAfterTransForm(const osg::Vec3Array* points, const osg::Matrixd& transform);

/// @}

} // namespace KelvOsgTools
