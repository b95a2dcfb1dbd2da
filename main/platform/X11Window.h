#pragma once
// X11 window-manager hints and pointer state. Everything here does nothing off X11.
class QWindow;

namespace x11 {

// On every workspace, out of the taskbar and pager, below ordinary windows; asks a KDE compositor
// to blur what lies behind. Call after create() and before the window is first shown.
void applyWidgetHints(QWindow* window);

// Whether the left button is held right now, asked of the X server (also while the window manager
// holds the pointer during a move).
bool isLeftButtonDown();

} // namespace x11
