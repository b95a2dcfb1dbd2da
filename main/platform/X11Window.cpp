#include "X11Window.h"

#include <QGuiApplication>
#include <QWindow>
#include <vector>
#include <xcb/xcb.h>

namespace x11 {

namespace {

xcb_connection_t* connection()
{
    auto* x = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x ? x->connection() : nullptr;
}

xcb_atom_t atom(xcb_connection_t* c, const char* name)
{
    auto cookie = xcb_intern_atom(c, 0, uint16_t(qstrlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(c, cookie, nullptr);
    if (!reply)
        return XCB_ATOM_NONE;
    const xcb_atom_t a = reply->atom;
    free(reply);
    return a;
}

} // namespace

void applyWidgetHints(QWindow* window)
{
    xcb_connection_t* c = connection();
    if (!c || !window)
        return;
    const auto w = xcb_window_t(window->winId());
    std::vector<xcb_atom_t> states;
    for (const char* s : {"_NET_WM_STATE_STICKY", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER",
                          "_NET_WM_STATE_BELOW"})
        states.push_back(atom(c, s));
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        uint32_t(states.size()), states.data());
    const uint32_t allDesktops = 0xFFFFFFFF;
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1,
                        &allDesktops);
    // An empty region asks for blur behind the whole window.
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, "_KDE_NET_WM_BLUR_BEHIND_REGION"),
                        XCB_ATOM_CARDINAL, 32, 0, nullptr);
    xcb_flush(c);
}

bool isLeftButtonDown()
{
    xcb_connection_t* c = connection();
    if (!c)
        return false;
    const xcb_setup_t* setup = xcb_get_setup(c);
    const xcb_screen_t* screen = xcb_setup_roots_iterator(setup).data;
    if (!screen)
        return false;
    xcb_query_pointer_reply_t* reply = xcb_query_pointer_reply(c, xcb_query_pointer(c, screen->root), nullptr);
    if (!reply)
        return false;
    const bool down = reply->mask & XCB_BUTTON_MASK_1;
    free(reply);
    return down;
}

} // namespace x11
