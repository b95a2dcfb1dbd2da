#include "ShowingDesktop.h"

#include "X11Connection.h"

#include <QCoreApplication>
#include <QPointer>
#include <QWindow>
#include <xcb/xcb.h>

namespace {

xcb_atom_t internAtom(xcb_connection_t* c, const char* name)
{
    auto* reply = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, uint16_t(qstrlen(name)), name), nullptr);
    const xcb_atom_t a = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    free(reply);
    return a;
}

bool showing(xcb_connection_t* c, xcb_atom_t atom)
{
    auto* reply = xcb_get_property_reply(
        c, xcb_get_property(c, 0, x11::rootScreen(c)->root, atom, XCB_ATOM_CARDINAL, 0, 1), nullptr);
    const bool on = reply && xcb_get_property_value_length(reply) == 4 &&
                    *static_cast<const uint32_t*>(xcb_get_property_value(reply)) != 0;
    free(reply);
    return on;
}

} // namespace

ShowingDesktop& ShowingDesktop::shared()
{
    static QPointer<ShowingDesktop> instance;
    if (!instance) {
        instance = new ShowingDesktop();
        instance->setParent(qApp);
    }
    return *instance;
}

ShowingDesktop::ShowingDesktop()
{
    xcb_connection_t* c = x11::connection();
    if (!c)
        return;
    m_atom = internAtom(c, "_NET_SHOWING_DESKTOP");
    // Property changes on the root are added to whatever the toolkit already listens for there.
    const xcb_window_t root = x11::rootScreen(c)->root;
    if (auto* attrs = xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, root), nullptr)) {
        const uint32_t mask = attrs->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, root, XCB_CW_EVENT_MASK, &mask);
        free(attrs);
    }
    xcb_flush(c);
    qApp->installNativeEventFilter(this);
}

bool ShowingDesktop::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t" || !m_atom)
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto* e = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (e->atom == m_atom && showing(x11::connection(), m_atom))
        emit desktopShown();
    return false;
}

bool ShowingDesktop::isViewable(QWindow* window)
{
    xcb_connection_t* c = x11::connection();
    if (!c || !window)
        return true;
    auto* attrs =
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, xcb_window_t(window->winId())), nullptr);
    const bool viewable = !attrs || attrs->map_state == XCB_MAP_STATE_VIEWABLE;
    free(attrs);
    return viewable;
}

void ShowingDesktop::bringBack(QWindow* window)
{
    xcb_connection_t* c = x11::connection();
    if (!c || !window)
        return;
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = xcb_window_t(window->winId());
    event.type = internAtom(c, "_NET_ACTIVE_WINDOW");
    event.data.data32[0] = 2; // from a pager: honoured without a timestamp
    xcb_send_event(c, 0, x11::rootScreen(c)->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(c);
}
