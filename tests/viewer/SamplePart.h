#pragma once

#include <osg/Geode>
#include <osg/ref_ptr>

#include <QString>

namespace viewertest {

/// A bearing block to measure: a plate of 160 by 100 by 10 around the origin, bottom at z = 0, with
/// four bolt holes, and a tube of height 46 in its middle, held by two ribs.
osg::ref_ptr<osg::Geode> samplePart();

/// A bumpy square of side 100 around the origin with 2 * cells * cells triangles.
osg::ref_ptr<osg::Geode> bumpySquare(unsigned int cells);

/// Writes a mesh into a folder; gives the path of the file.
QString writeMesh(const osg::Node& mesh, const QString& folder, const QString& name);

} // namespace viewertest
