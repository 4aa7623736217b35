#pragma once

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/Export.h>

#include <osg/Group>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools {
class CTableMeta;

/// Arrow from one point to another: the primitive of a line feature.
///
/// Positions and radius are in the coordinates of the arrow's parent, line width is in pixels.
/// Geometry is built once, in the constructor; later only colour and line width follow the state.
/// The arrow carries "feature_type" 2.
///
/// Nodes of a solid arrow: two transforms, each with a geode, for the shapes "cylinderDrawable" and
/// "coneDrawable". Nodes of a line arrow: one transform, a geode and the geometry "arrowLineNode",
/// which carries "feature_type" 2 as well. The label, after addTable(), is the last child.
///
/// @image html CArrowMeta.png "Solid; line with a head, without one, and with isDepthTest false"
/// @snippet gallery/Subjects.cpp CArrowMeta
class KELVOSGTOOLS_EXPORT CArrowMeta : public CFeatureMetaObject
{
public:
    /// What an arrow is made from; copied when it is built.
    struct structArrowMeta
    {
        osg::Vec3f startPos;                      ///< tail of the shaft
        osg::Vec3f endPos;                        ///< tip of the head
        std::string name = "ConeAndCylinderMeta"; ///< name of the feature, UTF-8; not saved
        osg::Vec4f color{1.0f, 1.0f, 1.0f, 1.0f}; ///< RGBA until the first change of state
        float radius = 0.1f;                      ///< of a solid shaft; the head is twice as wide
        float ratio = 3.0f;                       ///< detail ratio of a solid arrow's tessellation
        bool isLineArrow = false;                 ///< true: thin lines, false: cylinder and cone
        float lineWidth = 2.0f;                   ///< of a line arrow; drawn 1.0 wider while selected
        bool isDepthTest = true;                  ///< of a line arrow; false: neither lit nor hidden by what is nearer
        bool isArrowHead = true;                  ///< of a line arrow; false: the shaft alone
    };

    /// Copies the record. Equal end points give an arrow of zero size, not an error; so do points
    /// that are not finite.
    explicit CArrowMeta(const structArrowMeta& meta);
    ~CArrowMeta() override;

    /// Shallow: shares the children and the label of other.
    CArrowMeta(const CArrowMeta& other);

    /// Makes a CTableMeta the arrow's label and child; a former label stays a child.
    /// @return false, with nothing changed, if table is null. A group that is no CTableMeta gives
    ///         true and leaves the arrow without a label.
    bool addTable(osg::ref_ptr<osg::Group> table);

    osg::Vec3f getStartPos(); ///< of the record; no transform is applied
    osg::Vec3f getEndPos();   ///< of the record; no transform is applied

    /// The record; lives as long as the arrow.
    const structArrowMeta& getMetaStruct() const;

    /// Colours the arrow, widens a selected line arrow, and passes the state on to the label. Does
    /// nothing if the state is the present one.
    void setState(featureState state) override;

private:
    void setArrow(const structArrowMeta& meta);

    structArrowMeta m_metaStruct;
    osg::ref_ptr<CTableMeta> m_table; // null until addTable
    featureState m_state = featureStateNormal;
};

} // namespace KelvOsgTools
