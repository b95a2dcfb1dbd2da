#pragma once
// The main screen, and the one place where app coordinates (y up, origin bottom left of the
// primary screen) meet Qt's (y down, origin top left).
#include "Geometry.h"

#include <QRect>

namespace screen {

// The primary screen's available area in app coordinates, or (0, 0, 1440, 900) without a screen.
Rect visibleFrame();

// Conversions for a primary screen whose full height is `screenHeight` (Qt coordinates).
QRect toQt(const Rect& r, double screenHeight);
Rect fromQt(const QRect& r, double screenHeight);

// The full height of the primary screen, or 900 without one.
double primaryHeight();

} // namespace screen
