// Not a test that runs: it stops compiling when a record or a class gets another layout. Hosts were compiled with
// these layouts and keep them when they load a newer library, so a change needs a new major version.

#include <KelvOsgTools/KelvOsgTools.h>

#include <cstddef>
#include <type_traits>

// Figures of the binary interface that the Debian packages have; others hold the same order, in other sizes.
#if defined(__x86_64__) && defined(__linux__) && _GLIBCXX_USE_CXX11_ABI && QT_VERSION < QT_VERSION_CHECK(6, 0, 0)

// Type and offset together hold the order of the fields, too.
#define KELV_FIELD(record, field, type, offset)                                                                        \
    static_assert(std::is_same_v<decltype(record::field), type> && offsetof(record, field) == (offset))

namespace KelvOsgTools {

KELV_FIELD(CTableMeta::structTableMeta, textColor, osg::Vec4f, 0);
KELV_FIELD(CTableMeta::structTableMeta, pos, osg::Vec3f, 16);
KELV_FIELD(CTableMeta::structTableMeta, backgroundColor, osg::Vec3f, 28);
KELV_FIELD(CTableMeta::structTableMeta, tableNamePrefix, QString, 40);
KELV_FIELD(CTableMeta::structTableMeta, tableNameIndexSuffix, int, 48);
KELV_FIELD(CTableMeta::structTableMeta, fontSize, int, 52);
KELV_FIELD(CTableMeta::structTableMeta, renderIndex, int, 56);
KELV_FIELD(CTableMeta::structTableMeta, isAutoScale, bool, 60);
KELV_FIELD(CTableMeta::structTableMeta, isBottom, bool, 61);
static_assert(sizeof(CTableMeta::structTableMeta) == 64);

KELV_FIELD(CAutoScaleSphereMeta::structSphereMeta, cneterPos, osg::Vec3f, 0);
KELV_FIELD(CAutoScaleSphereMeta::structSphereMeta, nodeName, std::string, 16);
KELV_FIELD(CAutoScaleSphereMeta::structSphereMeta, radius, float, 48);
KELV_FIELD(CAutoScaleSphereMeta::structSphereMeta, ratio, float, 52);
KELV_FIELD(CAutoScaleSphereMeta::structSphereMeta, color, osg::Vec4f, 56);
static_assert(sizeof(CAutoScaleSphereMeta::structSphereMeta) == 72);

KELV_FIELD(CSphereMeta::structSphereMeta, cneterPos, osg::Vec3f, 0);
KELV_FIELD(CSphereMeta::structSphereMeta, radius, float, 12);
KELV_FIELD(CSphereMeta::structSphereMeta, nodeName, std::string, 16);
KELV_FIELD(CSphereMeta::structSphereMeta, ratio, float, 48);
KELV_FIELD(CSphereMeta::structSphereMeta, color, osg::Vec4f, 52);
static_assert(sizeof(CSphereMeta::structSphereMeta) == 72);

KELV_FIELD(CArrowMeta::structArrowMeta, startPos, osg::Vec3f, 0);
KELV_FIELD(CArrowMeta::structArrowMeta, endPos, osg::Vec3f, 12);
KELV_FIELD(CArrowMeta::structArrowMeta, name, std::string, 24);
KELV_FIELD(CArrowMeta::structArrowMeta, color, osg::Vec4f, 56);
KELV_FIELD(CArrowMeta::structArrowMeta, radius, float, 72);
KELV_FIELD(CArrowMeta::structArrowMeta, ratio, float, 76);
KELV_FIELD(CArrowMeta::structArrowMeta, isLineArrow, bool, 80);
KELV_FIELD(CArrowMeta::structArrowMeta, lineWidth, float, 84);
KELV_FIELD(CArrowMeta::structArrowMeta, isDepthTest, bool, 88);
KELV_FIELD(CArrowMeta::structArrowMeta, isArrowHead, bool, 89);
static_assert(sizeof(CArrowMeta::structArrowMeta) == 96);

KELV_FIELD(CPlaneMeta::structPlaneMeta, planeColor, osg::Vec3f, 0);
KELV_FIELD(CPlaneMeta::structPlaneMeta, lineColor, osg::Vec3f, 12);
KELV_FIELD(CPlaneMeta::structPlaneMeta, planeNormal, osg::Vec3f, 24);
KELV_FIELD(CPlaneMeta::structPlaneMeta, name, QString, 40);
KELV_FIELD(CPlaneMeta::structPlaneMeta, pointVec, std::vector<osg::Vec3f>, 48);
KELV_FIELD(CPlaneMeta::structPlaneMeta, lineWidth, float, 72);
KELV_FIELD(CPlaneMeta::structPlaneMeta, alpha, float, 76);
static_assert(sizeof(CPlaneMeta::structPlaneMeta) == 80);

KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, length, float, 0);
KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, name, std::string, 8);
KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, color, osg::Vec4f, 40);
KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, radius, float, 56);
KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, ratio, float, 60);
KELV_FIELD(CConeAndCylinderMeta::structConeAndCylinderMeta, axisIndex, int, 64);
static_assert(sizeof(CConeAndCylinderMeta::structConeAndCylinderMeta) == 72);

KELV_FIELD(featureDotConfig, tableHighlightedColor, osg::Vec4f, 0);
KELV_FIELD(featureDotConfig, tableSelectedColor, osg::Vec4f, 16);
KELV_FIELD(featureDotConfig, highlightedColor, osg::Vec4f, 32);
KELV_FIELD(featureDotConfig, selectedColor, osg::Vec4f, 48);
static_assert(sizeof(featureDotConfig) == 64);

KELV_FIELD(featureFlagDotConfig, tableHighlightedColor, osg::Vec4f, 0);
KELV_FIELD(featureFlagDotConfig, tableSelectedColor, osg::Vec4f, 16);
KELV_FIELD(featureFlagDotConfig, highlightedColor, osg::Vec4f, 32);
KELV_FIELD(featureFlagDotConfig, selectedColor, osg::Vec4f, 48);
static_assert(sizeof(featureFlagDotConfig) == 64);

KELV_FIELD(featureArrowConfig, tableHighlightedColor, osg::Vec4f, 0);
KELV_FIELD(featureArrowConfig, tableSelectedColor, osg::Vec4f, 16);
KELV_FIELD(featureArrowConfig, highlightedColor, osg::Vec4f, 32);
KELV_FIELD(featureArrowConfig, selectedColor, osg::Vec4f, 48);
static_assert(sizeof(featureArrowConfig) == 64);

KELV_FIELD(featurePlaneConfig, tableHighlightedColor, osg::Vec4f, 0);
KELV_FIELD(featurePlaneConfig, tableSelectedColor, osg::Vec4f, 16);
KELV_FIELD(featurePlaneConfig, highlightedColor, osg::Vec4f, 32);
KELV_FIELD(featurePlaneConfig, selectedColor, osg::Vec4f, 48);
static_assert(sizeof(featurePlaneConfig) == 64);

// Objects of these are made, and derived from, by hosts.
static_assert(sizeof(CFeatureMetaObject) == 280);
static_assert(sizeof(featureBaseNode) == 280);
static_assert(sizeof(CTableMeta) == 536);
static_assert(sizeof(CSphereMeta) == 288);
static_assert(sizeof(CAutoScaleSphereMeta) == 440);
static_assert(sizeof(CFlagAutoScaleSphereMeta) == 376);
static_assert(sizeof(CArrowMeta) == 392);
static_assert(sizeof(CPlaneMeta) == 376);
static_assert(sizeof(CConeAndCylinderMeta) == 352);
static_assert(sizeof(CAxisMeta) == 280);
static_assert(sizeof(findNodeVisitor) == 200);
static_assert(sizeof(FindNamedNodeVisitor) == 216);
static_assert(sizeof(FindFeatureNodeVisitor) == 216);
static_assert(sizeof(CFeatureConfig) == 312);
static_assert(sizeof(exportFeature) == 192);
static_assert(sizeof(importFeature) == 192);

static_assert(sizeof(featureType) == 4 && featureAll == 0 && featureDot == 1 && featureLine == 2 && featurePlane == 3 &&
              featureTable == 4 && featureFlagDot == 5);
static_assert(sizeof(featureState) == 4 && featureStateNone == 0 && featureStateNormal == 1 &&
              featureStateSelected == 2 && featureStateHighlighted == 3);
static_assert(sizeof(languageType) == 4 && languageEnglishUnitedStates == 1033);

} // namespace KelvOsgTools

#endif
