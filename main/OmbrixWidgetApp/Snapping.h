#pragma once
// Magnetic snapping of a moved widget to the screen edges and to the other widgets' edge lines.
#include "Geometry.h"

#include <vector>

namespace snapping {

constexpr double threshold = 12.0;

// The final frame of a window moved to `moved`, given the visible frame and the other widgets'
// frames in the registry's walk order. Only x and y change.
Rect snap(Rect moved, const Rect& visible, const std::vector<Rect>& others);

} // namespace snapping
