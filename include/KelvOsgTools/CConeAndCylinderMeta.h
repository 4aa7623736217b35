#pragma once

#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/Export.h>

#include <osg/AutoTransform>
#include <osg/Switch>
#include <osg/Vec4f>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools {

/// Maker of coordinate-axis arrows and of the red, green and blue axis triad.
///
/// What it makes is the caller's to hang into a scene, and stands at the origin of its parent.
///
/// @image html CConeAndCylinderMeta.png "The triad of createAxis()"
/// @snippet gallery/Subjects.cpp CConeAndCylinderMeta
class KELVOSGTOOLS_EXPORT CConeAndCylinderMeta : public CFeatureMetaObject
{
public:
    /// What an axis arrow is made from.
    struct structConeAndCylinderMeta
    {
        float length = 10.0f;                     ///< from the origin to the tip, pixels
        std::string name = "ConeAndCylinderMeta"; ///< carried only
        osg::Vec4f color{1.0f, 1.0f, 1.0f, 1.0f}; ///< RGBA of shaft, head and letter
        float radius = 0.1f;                      ///< of the shaft, pixels; the head is twice as wide
        float ratio = 3.0f;                       ///< detail ratio of the tessellation
        int axisIndex = 0;                        ///< 0: X, 1: Y, 2: Z; any other value: X
    };

    CConeAndCylinderMeta(); ///< without an arrow
    ~CConeAndCylinderMeta() override;

    /// Shallow: shares the children and the arrow of other.
    CConeAndCylinderMeta(const CConeAndCylinderMeta& other);

    /// Builds one axis arrow of constant screen size at the origin: shaft, head and letter. The
    /// arrow is the caller's to place; this object remembers the last one. Reads the font of the
    /// configuration for the letter.
    /// @image html createAxisArraw.png "One axis arrow"
    /// @snippet gallery/Subjects.cpp createAxisArraw
    osg::ref_ptr<osg::AutoTransform> createAxisArraw(const structConeAndCylinderMeta& meta);

    /// Builds the triad: under the transform of a featureBaseNode, each axis twice, once as it is
    /// seen and once, translucent, for where it is hidden by other geometry. The translucency shows
    /// where the host has blending on. Colour and axis of the record are not read.
    ///
    /// Needs an OpenGL context with "#version 330 core" geometry shaders, and no set-up by the host:
    /// it switches OpenSceneGraph's matrix uniforms on in the contexts it is drawn in. Hidden parts
    /// show over what is drawn before the triad.
    static osg::ref_ptr<osg::Switch> createAxis(structConeAndCylinderMeta meta);

    /// Does nothing: the colour of an axis is fixed when it is made.
    virtual void setColor(osg::Vec4f color);

    /// Changes nothing in the scene, whatever show is.
    virtual void visible(bool show);

private:
    osg::ref_ptr<osg::AutoTransform> m_arrow; // the last one made; null until createAxisArraw
    std::string m_coneName = "Cone";
    std::string m_cylinderName = "Cylinder";
};

/// Empty feature of the axis family, for the host to hang axes under.
///
/// @snippet feature_recipes/main.cpp axis group
class KELVOSGTOOLS_EXPORT CAxisMeta : public CFeatureMetaObject
{
public:
    CAxisMeta(); ///< without children
    ~CAxisMeta() override;
    CAxisMeta(const CAxisMeta& other); ///< shallow: shares the children of other
};

} // namespace KelvOsgTools
