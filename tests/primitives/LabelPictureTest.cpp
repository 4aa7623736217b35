#include "support/PictureRig.h"

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include <gtest/gtest.h>

namespace {
using namespace KelvOsgTools;

TEST(LabelPicture, StandsAboveItsDot)
{
    CFeatureConfig::sigleFeatureConfig()->setFontPath(KELVOSGTOOLS_TEST_FONT);
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot", scene, osg::Vec3f(), 1, "Point", 12, featureStateHighlighted, false);

    kelvtest::PictureRig rig(120, 80);
    rig.setScene(scene);
    EXPECT_TRUE(kelvtest::matchesStored(*rig.render(), "primitives/label-above-dot"));
}

} // namespace
