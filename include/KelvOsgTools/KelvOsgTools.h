#pragma once

/// @file
/// Everything the library offers.

/// @namespace KelvOsgTools
/// Measurement annotations in an OpenSceneGraph scene: dots, lines and planes with labels.

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CConeAndCylinderMeta.h>
#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/CFeatureMetaObject.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>
#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/FeatureTypes.h>
#include <KelvOsgTools/NodeVisitors.h>
#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/featureBaseNode.h>
#include <KelvOsgTools/importFeature.h>
