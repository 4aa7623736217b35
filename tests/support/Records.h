#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include <osg/Group>
#include <osg/Vec3f>
#include <osg/ref_ptr>

#include <QString>

#include <string>
#include <vector>

namespace kelvtest {

// Records of primitives, with their defaults where nothing is asked for.

KelvOsgTools::CTableMeta::structTableMeta labelSaying(const QString& prefix, int indexSuffix = -1);
KelvOsgTools::CAutoScaleSphereMeta::structSphereMeta dotAt(const osg::Vec3f& centre);
KelvOsgTools::CArrowMeta::structArrowMeta solidArrow(const osg::Vec3f& start, const osg::Vec3f& end);
KelvOsgTools::CArrowMeta::structArrowMeta lineArrow(const osg::Vec3f& start, const osg::Vec3f& end);
KelvOsgTools::CPlaneMeta::structPlaneMeta planeThrough(const std::vector<osg::Vec3f>& points);

/// The corners of a square of the plane z = 0 around the origin.
std::vector<osg::Vec3f> squareCorners(float side);

// Whole features, made through the assembly functions: index -1, label "Label", normal state.

osg::ref_ptr<osg::Group> addDot(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                const osg::Vec3f& point = osg::Vec3f());
osg::ref_ptr<osg::Group> addFlagDot(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                    KelvOsgTools::featureType kind = KelvOsgTools::featureDot,
                                    const osg::Vec3f& point = osg::Vec3f());
/// A line arrow, from start to end.
osg::ref_ptr<osg::Group> addLine(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                 const osg::Vec3f& start = osg::Vec3f(),
                                 const osg::Vec3f& end = osg::Vec3f(10.0f, 0.0f, 0.0f));
/// A square of side 10 by default, with normal +Z.
osg::ref_ptr<osg::Group> addPlane(const osg::ref_ptr<osg::Group>& scene, const std::string& name,
                                  const std::vector<osg::Vec3f>& points = squareCorners(10.0f));

/// The group that the features of a kind hang under, found by names and indices alone; null if the
/// path is incomplete. Kind 0 gives the group of the common root.
osg::Group* contentOf(osg::Group& scene, KelvOsgTools::featureType kind);

} // namespace kelvtest
