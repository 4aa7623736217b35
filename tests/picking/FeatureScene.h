#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Group>
#include <osg/MatrixTransform>
#include <osg/ref_ptr>

#include <string>

namespace kelvtest {

/// A scene as hosts build it: "meshData" with a square mesh in the plane z = 0, and "featureData",
/// both placed by the same matrix. Points of features are in the coordinates of the mesh.
class FeatureScene
{
public:
    explicit FeatureScene(float halfSide = 50.0f, const osg::Matrixd& matrix = osg::Matrixd());

    osg::ref_ptr<osg::Group> root;
    osg::ref_ptr<osg::Group> meshData;

    KelvOsgTools::CAutoScaleSphereMeta* addDot(const std::string& name, const osg::Vec3f& place);
    /// A line without a head: with lineArrow two vertices, else a cylinder of radius 3 and a cone.
    KelvOsgTools::CArrowMeta* addLine(const std::string& name, const osg::Vec3f& start, const osg::Vec3f& end,
                                      bool isLineArrow = true);
    /// A square of that half side parallel to the mesh, its normal arrows along +X.
    KelvOsgTools::CPlaneMeta* addPlane(const std::string& name, const osg::Vec3f& centre, float halfSide);
};

} // namespace kelvtest
