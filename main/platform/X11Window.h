#pragma once
// X11 window-manager hints and pointer state. Everything here does nothing off X11.
class QWindow;

namespace x11 {

// On every workspace, out of the taskbar and pager, below ordinary windows, never given the focus;
// asks a KDE compositor to blur what lies behind. Call after create() and after every flag change
// (Qt rewrites the window type and protocols then).
void applyWidgetHints(QWindow* window);

// True under a tiling manager (i3) that would tile or float-and-raise any window it manages: there
// a widget must bypass the manager and carry out its own drag and stacking.
bool windowManagerTilesEverything();

// True under a manager whose frame keeps catching clicks over a window that lets them through
// (fluxbox): there a click-through widget must bypass the manager.
bool windowManagerFramesCatchClicks();

// Asks the manager to keep a mapped window on every desktop.
void showOnAllDesktops(QWindow* window);

// Asks the manager to show the window again, as a pager does for a window it picks.
void askToShow(QWindow* window);
// Whether the X server shows the window (it and every ancestor mapped).
bool isViewable(QWindow* window);

// Puts the window at the bottom of the stack; for windows no manager keeps below.
void lowerWindow(QWindow* window);

// Whether an X server answers on $DISPLAY; usable before the application object exists.
bool displayReachable();

// Whether the left button is held right now, asked of the X server (also while the window manager
// holds the pointer during a move).
bool isLeftButtonDown();

// Whether the X server is XWayland, whose view of the pointer stops while the Wayland compositor
// moves a window: it never hears of the release that ends the move.
bool isXWayland();

} // namespace x11
