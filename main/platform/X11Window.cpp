#include "X11Window.h"

#include "X11Connection.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <vector>
#include <xcb/xcb.h>

namespace x11 {

namespace {

xcb_atom_t atom(xcb_connection_t* c, const char* name, bool onlyIfExists = false)
{
    auto cookie = xcb_intern_atom(c, onlyIfExists ? 1 : 0, uint16_t(qstrlen(name)), name);
    xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(c, cookie, nullptr);
    if (!reply)
        return XCB_ATOM_NONE;
    const xcb_atom_t a = reply->atom;
    free(reply);
    return a;
}

xcb_window_t rootOf(xcb_connection_t* c)
{
    const xcb_screen_t* screen = rootScreen(c);
    return screen ? screen->root : xcb_window_t(XCB_WINDOW_NONE);
}

void setAtoms(xcb_connection_t* c, xcb_window_t w, const char* property, std::initializer_list<const char*> names)
{
    std::vector<xcb_atom_t> atoms;
    for (const char* n : names)
        atoms.push_back(atom(c, n));
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, property), XCB_ATOM_ATOM, 32, uint32_t(atoms.size()),
                        atoms.data());
}

// A client message about `window` to the manager, as EWMH asks.
void askManager(QWindow* window, const char* type, uint32_t first, uint32_t second)
{
    xcb_connection_t* c = connection();
    if (!c || !window)
        return;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = xcb_window_t(window->winId());
    event.type = atom(c, type);
    event.data.data32[0] = first;
    event.data.data32[1] = second;
    xcb_send_event(c, 0, rootOf(c), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(c);
}

} // namespace

bool windowManagerTilesEverything()
{
    xcb_connection_t* c = connection();
    if (!c)
        return false;
    // i3 announces its IPC socket on the root window; no other manager sets this property.
    const xcb_atom_t socketPath = atom(c, "I3_SOCKET_PATH", true);
    if (socketPath == XCB_ATOM_NONE)
        return false;
    auto* reply = xcb_get_property_reply(
        c, xcb_get_property(c, 0, rootOf(c), socketPath, XCB_GET_PROPERTY_TYPE_ANY, 0, 0), nullptr);
    const bool present = reply && reply->type != XCB_ATOM_NONE;
    free(reply);
    return present;
}

bool windowManagerFramesCatchClicks()
{
    xcb_connection_t* c = connection();
    if (!c)
        return false;
    // The manager names itself on the window its _NET_SUPPORTING_WM_CHECK points to.
    const auto read = [c](xcb_window_t w, xcb_atom_t property, xcb_atom_t type) {
        auto* reply = xcb_get_property_reply(c, xcb_get_property(c, 0, w, property, type, 0, 64), nullptr);
        QByteArray value = reply ? QByteArray(static_cast<const char*>(xcb_get_property_value(reply)),
                                              xcb_get_property_value_length(reply))
                                 : QByteArray();
        free(reply);
        return value;
    };
    const QByteArray check = read(rootOf(c), atom(c, "_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW);
    if (check.size() != 4)
        return false;
    return read(*reinterpret_cast<const xcb_window_t*>(check.constData()), atom(c, "_NET_WM_NAME"),
                atom(c, "UTF8_STRING")) == "Fluxbox";
}

void applyWidgetHints(QWindow* window)
{
    xcb_connection_t* c = connection();
    if (!c || !window)
        return;
    const auto w = xcb_window_t(window->winId());
    // Input hint false and no WM_TAKE_FOCUS: the ICCCM "no input" model, so no manager offers this
    // window the focus on a click (with WM_TAKE_FOCUS it would count as globally active).
    setAtoms(c, w, "WM_PROTOCOLS", {"WM_DELETE_WINDOW", "_NET_WM_PING"});
    setAtoms(c, w, "_NET_WM_STATE",
             {"_NET_WM_STATE_STICKY", "_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_BELOW"});
    const uint32_t allDesktops = 0xFFFFFFFF;
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1,
                        &allDesktops);
    // An empty region asks for blur behind the whole window.
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, atom(c, "_KDE_NET_WM_BLUR_BEHIND_REGION"), XCB_ATOM_CARDINAL, 32,
                        0, nullptr);
    xcb_flush(c);
}

void showOnAllDesktops(QWindow* window)
{
    // Once mapped, the desktop is asked of the manager: KWin ignores the property set before
    // mapping and puts the window on the current desktop.
    askManager(window, "_NET_WM_DESKTOP", 0xFFFFFFFF, 2); // source: a pager, honoured without timestamps
}

void askToShow(QWindow* window)
{
    askManager(window, "_NET_ACTIVE_WINDOW", 2, XCB_CURRENT_TIME); // source: a pager
}

bool isViewable(QWindow* window)
{
    xcb_connection_t* c = connection();
    if (!c || !window)
        return true;
    auto* attrs =
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, xcb_window_t(window->winId())), nullptr);
    const bool viewable = !attrs || attrs->map_state == XCB_MAP_STATE_VIEWABLE;
    free(attrs);
    return viewable;
}

void lowerWindow(QWindow* window)
{
    xcb_connection_t* c = connection();
    if (!c || !window)
        return;
    const uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(c, xcb_window_t(window->winId()), XCB_CONFIG_WINDOW_STACK_MODE, &below);
    xcb_flush(c);
}

bool displayReachable()
{
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    const bool ok = !xcb_connection_has_error(c);
    xcb_disconnect(c);
    return ok;
}

bool isLeftButtonDown()
{
    xcb_connection_t* c = connection();
    if (!c)
        return false;
    xcb_query_pointer_reply_t* reply = xcb_query_pointer_reply(c, xcb_query_pointer(c, rootOf(c)), nullptr);
    if (!reply)
        return false;
    const bool down = reply->mask & XCB_BUTTON_MASK_1;
    free(reply);
    return down;
}

bool isXWayland()
{
    // Its XWAYLAND extension came only with XWayland 23; its outputs have always had these names.
    const QScreen* screen = QGuiApplication::primaryScreen();
    return screen && screen->name().startsWith("XWAYLAND");
}

} // namespace x11
