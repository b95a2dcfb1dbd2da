#pragma once
// The application's own X connection, shared by the X11 helpers here.
#include <xcb/xcb.h>

namespace x11 {

// Null off X11 or before the application object exists.
xcb_connection_t* connection();

// The connection's screen (Qt's xcb platform serves one).
const xcb_screen_t* rootScreen(xcb_connection_t* c);

// Adds property changes on the root to whatever the toolkit already listens for there.
void watchRootProperties(xcb_connection_t* c);

} // namespace x11
