#pragma once

#include <osg/Referenced>
#include <osg/Shape>
#include <osg/ShapeDrawable>
#include <osg/ref_ptr>

namespace KelvOsgTools::detail {

/// A shape drawable that shares arrays with others and keeps alive what they share.
class SharingDrawable : public osg::ShapeDrawable
{
public:
    SharingDrawable(const osg::ref_ptr<osg::Shape>& shape, osg::TessellationHints* hints)
    {
        _shape = shape; // not by setShape, which would tessellate it
        _tessellationHints = hints;
    }

    void keep(const osg::ref_ptr<osg::Referenced>& shared) { m_shared = shared; }

protected:
    ~SharingDrawable() override = default;

private:
    osg::ref_ptr<osg::Referenced> m_shared;
};

} // namespace KelvOsgTools::detail
