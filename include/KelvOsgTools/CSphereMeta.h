#pragma once

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/Export.h>

#include <osg/AutoTransform>
#include <osg/Geode>
#include <osg/Group>
#include <osg/ShapeDrawable>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>
#include <osgText/Text>

#include <string>

namespace KelvOsgTools {

/// Maker of plain spheres, without label and state. The spheres are the caller's to place.
///
/// @image html CSphereMeta.png "A sphere in scene units"
/// @snippet gallery/Subjects.cpp CSphereMeta
class KELVOSGTOOLS_EXPORT CSphereMeta : public CFeatureMetaObject
{
public:
    /// What a sphere is made from.
    struct structSphereMeta
    {
        osg::Vec3f cneterPos;                     ///< centre, in the coordinates of the node the sphere is hung under
        float radius = 1.0f;                      ///< scene units; pixels for CreateAutoScaleSphereMeta()
        std::string nodeName = "SphereMeta";      ///< UTF-8
        float ratio = 3.0f;                       ///< detail ratio of the tessellation
        osg::Vec4f color{1.0f, 1.0f, 1.0f, 1.0f}; ///< RGBA
    };

    CSphereMeta(); ///< without a sphere
    ~CSphereMeta() override;

    /// Shallow: shares the geode of other.
    CSphereMeta(const CSphereMeta& other);

    /// A sphere sized in scene units: a geode named after the record. It becomes the one that
    /// setColor() and visible() act on. A centre that is not finite gives a sphere that is neither
    /// drawn nor hit.
    osg::ref_ptr<osg::Geode> CreateSphereMeta(const structSphereMeta& meta);

    /// A sphere that keeps its size on screen and turns to it. This object keeps no reference. A
    /// centre that is not finite hides this one as well.
    osg::ref_ptr<osg::AutoTransform> CreateAutoScaleSphereMeta(const structSphereMeta& meta);

    /// Colours every shape of the geode made last. Does nothing before CreateSphereMeta().
    virtual void setColor(osg::Vec4f color);

    /// Sets the node mask of the geode made last to exactly 1 (show) or 0. Does nothing before
    /// CreateSphereMeta().
    virtual void visible(bool show);

private:
    osg::ref_ptr<osg::Geode> m_geode; // null until CreateSphereMeta
};

/// The primitive of a dot feature: a sphere that keeps its size on screen, with a label.
///
/// Nodes: the dot, with "feature_type" 1; under it a transform named after the record, a geode and
/// the sphere "drawableShpere"; beside the transform, after addTable(), the label.
///
/// @image html CAutoScaleSphereMeta.png "A new dot, and the four states"
/// @snippet gallery/Subjects.cpp CAutoScaleSphereMeta
class KELVOSGTOOLS_EXPORT CAutoScaleSphereMeta : public CFeatureMetaObject
{
public:
    /// What a dot is made from; copied when it is built.
    struct structSphereMeta
    {
        osg::Vec3f cneterPos;                ///< the marked point, in the coordinates of the node the dot is hung under
        std::string nodeName = "SphereMeta"; ///< name of the scaling transform, UTF-8
        float radius = 1.0f;                 ///< screen pixels
        float ratio = 3.0f;                  ///< detail ratio of the tessellation
        osg::Vec4f color{1.0f, 1.0f, 1.0f, 1.0f}; ///< RGBA until the first change of state
    };

    /// Copies the record. A centre that is not finite gives a dot that is neither drawn nor hit.
    explicit CAutoScaleSphereMeta(const structSphereMeta& meta);
    ~CAutoScaleSphereMeta() override;

    /// Shallow: shares the children, sphere and label of other.
    CAutoScaleSphereMeta(const CAutoScaleSphereMeta& other);

    /// Makes a CTableMeta the dot's label and child.
    /// @return false if table is null, which changes nothing, or no CTableMeta, after which the dot
    ///         knows no label (a former one stays its child)
    bool addTable(osg::ref_ptr<osg::Group> table);

    /// The centre of the record; no transform is applied.
    osg::Vec3f getCenterPos();

    /// The record; lives as long as the dot.
    const structSphereMeta& getMetaStruct() const;

    /// Copy of the label's record; a default record until addTable() succeeded.
    const CTableMeta::structTableMeta& getTableInfo() const;

    /// The first node named "drawableShpere" below the dot; null if there is none or it is no shape.
    osg::ref_ptr<osg::ShapeDrawable> getShpereDrawableNode();

    /// The first node named "textNode" below the dot; null if there is none or it is no text.
    osg::ref_ptr<osgText::Text> getTextNode();

    /// Colours the sphere and passes the state on to the label. Does nothing if the state is the
    /// present one.
    void setState(featureState state) override;

private:
    structSphereMeta m_metaStruct;
    osg::ref_ptr<osg::ShapeDrawable> m_sphereDrawable;
    osg::ref_ptr<CTableMeta> m_table; // null until addTable
    featureState m_state = featureStateNormal;
    CTableMeta::structTableMeta m_tableMeta;
};

} // namespace KelvOsgTools
