#pragma once

namespace KelvOsgTools::detail {

// Node names of the feature tree.
inline constexpr char kCommonRootName[] = "featureData";
inline constexpr char kDotRootName[] = "featureDotData";
inline constexpr char kLineRootName[] = "featureLineData";
inline constexpr char kPlaneRootName[] = "featurePlaneData";
inline constexpr char kTableRootName[] = "featureTableData";
inline constexpr char kFreshBaseNodeName[] = "featureNodeBase";
inline constexpr char kContentTransformName[] = "MatrixTransform";

// Node names of what primitives are made of.
inline constexpr char kTableName[] = "showTableNode";
inline constexpr char kTableOutlineName[] = "squareLineNode";
inline constexpr char kTableFillName[] = "squareNode";
inline constexpr char kTableTextName[] = "textNode";
inline constexpr char kSphereName[] = "drawableShpere";
inline constexpr char kShaftName[] = "cylinderDrawable";
inline constexpr char kHeadName[] = "coneDrawable";
inline constexpr char kArrowLineName[] = "arrowLineNode";
inline constexpr char kPlaneBorderName[] = "line";
inline constexpr char kPlanePatchName[] = "plane";
inline constexpr char kFirstNormalArrowName[] = "normalArrow1";
inline constexpr char kSecondNormalArrowName[] = "normalArrow2";

// Node name that the host gives its group of meshes, directly under the scene data.
inline constexpr char kMeshName[] = "meshData";

// Names that records carry.
inline constexpr char kDotRecordName[] = "feature_dot_auto_scale";
inline constexpr char kSphereRecordName[] = "SphereMeta";
inline constexpr char kArrowRecordName[] = "ConeAndCylinderMeta";

// User values and map keys.
inline constexpr char kFeatureTypeKey[] = "feature_type"; // int, set by primitives
inline constexpr char kTemporaryKey[] = "tmpData";        // bool, set by hosts
inline constexpr char kFeatureUidKey[] = "feature_uid";   // in the maps that hosts pass to picking

// "feature_type" of what is part of a feature yet no feature, so that searches by kind pass over it.
inline constexpr int kPartOfFeature = -1;

} // namespace KelvOsgTools::detail
