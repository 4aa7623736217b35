#pragma once

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/Export.h>

#include <osg/Group>
#include <osg/ShapeDrawable>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <QString>

namespace KelvOsgTools {
class CTableMeta;

/// The primitive of a flag dot: a dot for the named points from which a feature is being made.
///
/// Same nodes as CAutoScaleSphereMeta, but "feature_type" 5, the flag dots' colours, and a sphere
/// that is 5 pixels larger in radius while it is selected.
///
/// @image html CFlagAutoScaleSphereMeta.png "A new flag dot, and the four states"
/// @snippet gallery/Subjects.cpp CFlagAutoScaleSphereMeta
class KELVOSGTOOLS_EXPORT CFlagAutoScaleSphereMeta : public CFeatureMetaObject
{
public:
    /// @name Names of the flag features. Each holds its own name.
    /// @{
    static QString flag_feature_dot_name_one;      ///< the one point of a dot
    static QString flag_feature_line_name_start;   ///< start of a line
    static QString flag_feature_line_name_end;     ///< end of a line
    static QString flag_feature_plane_name_first;  ///< first point of a plane
    static QString flag_feature_plane_name_second; ///< second point of a plane
    static QString flag_feature_plane_name_third;  ///< third point of a plane
    /// @}

    /// Copies the record. A centre that is not finite gives a flag that is neither drawn nor hit.
    explicit CFlagAutoScaleSphereMeta(const CAutoScaleSphereMeta::structSphereMeta& meta);
    ~CFlagAutoScaleSphereMeta() override;

    /// Shallow: shares the children, sphere and label of other.
    CFlagAutoScaleSphereMeta(const CFlagAutoScaleSphereMeta& other);

    /// Makes a CTableMeta the flag's label and child.
    /// @return false, with nothing changed, if table is null. A group that is no CTableMeta gives
    ///         true, unlike a dot's, and leaves the flag without a label.
    bool addTable(osg::ref_ptr<osg::Group> table);

    /// The centre of the record; no transform is applied.
    osg::Vec3f getCenterPos() const;

    /// Colours and sizes the sphere and passes the state on to the label. Does nothing if the
    /// state is the present one.
    void setState(featureState state) override;

private:
    osg::ref_ptr<osg::ShapeDrawable> getShpereDrawableNode();

    CAutoScaleSphereMeta::structSphereMeta m_metaStruct;
    osg::ref_ptr<osg::ShapeDrawable> m_sphereDrawable;
    osg::ref_ptr<CTableMeta> m_table; // null until addTable
    featureState m_state = featureStateNormal;
};

} // namespace KelvOsgTools
