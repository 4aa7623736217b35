#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Array>
#include <osg/Geometry>
#include <osg/Vec4f>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

/// The colour of a state, given those of its selected and highlighted states. Every other state is
/// black: no state brings the colour of a record back.
inline osg::Vec4f colourOf(featureState state, const osg::Vec4f& selected, const osg::Vec4f& highlighted)
{
    if (state == featureStateSelected) return selected;
    if (state == featureStateHighlighted) return highlighted;
    return {0.0f, 0.0f, 0.0f, 1.0f};
}

/// Gives a geometry a fresh colour array of one colour for all of it.
template <typename ColourArray>
void setOverallColour(osg::Geometry& geometry, const typename ColourArray::ElementDataType& colour)
{
    const osg::ref_ptr<ColourArray> colours = new ColourArray;
    colours->push_back(colour);
    geometry.setColorArray(colours, osg::Array::BIND_OVERALL);
}

} // namespace KelvOsgTools::detail
