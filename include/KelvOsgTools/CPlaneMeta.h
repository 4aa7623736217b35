#pragma once

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/Export.h>

#include <osg/Group>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <QString>

#include <vector>

namespace KelvOsgTools {
class CTableMeta;

/// Translucent patch with a border: the primitive of a plane feature.
///
/// Points are in the coordinates of the plane's parent. Every four of them in a row are one quad of
/// the patch; fewer draw a border only. The plane carries "feature_type" 3.
///
/// Nodes: a geode with the geometries "line" (border) and "plane" (patch); then the normal arrows;
/// then the label.
///
/// @image html CPlaneMeta.png "A new plane, and the four states"
/// @snippet gallery/Subjects.cpp CPlaneMeta
class KELVOSGTOOLS_EXPORT CPlaneMeta : public CFeatureMetaObject
{
public:
    /// What a plane is made from; copied when it is built.
    struct structPlaneMeta
    {
        osg::Vec3f planeColor{0.6f, 0.6f, 0.6f};    ///< RGB of the patch
        osg::Vec3f lineColor{1.0f, 0.0f, 0.0f};     ///< RGB of the border until the first change of state
        osg::Vec3f planeNormal;                     ///< carried and saved; not used in drawing
        QString name = QStringLiteral("planeMeta"); ///< name of the feature; not used in drawing, not saved
        std::vector<osg::Vec3f> pointVec;           ///< corners in drawing order
        float lineWidth = 3.0f;                     ///< of the border, pixels
        float alpha = 0.5f;                         ///< opacity of patch and border, 0 to 1
    };

    /// Copies the record, which stays unchanged. Without a point, or with one that is not finite,
    /// the plane is neither drawn nor hit.
    explicit CPlaneMeta(structPlaneMeta& meta);
    ~CPlaneMeta() override;

    /// Shallow: shares the children and the label of other.
    CPlaneMeta(const CPlaneMeta& other);

    /// Makes arrow a child. States reach it if it is named "normalArrow1" or "normalArrow2".
    /// @return false, with nothing changed, if arrow is null
    bool addNormalArrow(osg::ref_ptr<osg::Group> arrow);

    /// Makes a CTableMeta the plane's label and child; a former label stays a child.
    /// @return false, with nothing changed, if table is null. A group that is no CTableMeta gives
    ///         true and leaves the plane without a label.
    bool addTable(osg::ref_ptr<osg::Group> table);

    /// The corners of the record; live as long as the plane.
    const std::vector<osg::Vec3f>& getPlaneInfo() const;

    /// The record; lives as long as the plane.
    const structPlaneMeta& getMetaStruct() const;

    /// Colours the border, never the patch, and passes the state on to the normal arrows and the
    /// label. Does nothing if the state is the present one.
    void setState(featureState state) override;

private:
    void creatPlane(structPlaneMeta& meta);

    structPlaneMeta m_PlaneMeta;
    featureState m_state = featureStateNormal;
    osg::ref_ptr<CTableMeta> m_table; // null until addTable
};

} // namespace KelvOsgTools
