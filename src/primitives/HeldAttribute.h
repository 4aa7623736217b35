#pragma once

#include <osg/StateAttribute>
#include <osg/StateSet>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

// A state set that runs out of memory drops the attribute it was given, without a reference to it. These
// take one first.

inline void setAttribute(osg::StateSet& state, const osg::ref_ptr<osg::StateAttribute>& attribute)
{
    state.setAttribute(attribute);
}

inline void setAttributeAndModes(osg::StateSet& state, const osg::ref_ptr<osg::StateAttribute>& attribute)
{
    state.setAttributeAndModes(attribute);
}

} // namespace KelvOsgTools::detail
