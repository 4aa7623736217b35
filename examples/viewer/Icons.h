#pragma once

#include "Tool.h"

#include <QIcon>

namespace viewer {

/// Drawn here, since not every platform has a theme with such icons.
QIcon iconOf(ToolKind tool);
QIcon iconOf(KelvOsgTools::featureType kind);

enum class Symbol
{
    Program,
    OpenMesh,
    OpenFeatures,
    Save,
    Undo,
    Redo,
    Fit,
    Perspective
};
QIcon iconOf(Symbol symbol);

} // namespace viewer
