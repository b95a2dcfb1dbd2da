#include "ShowingDesktop.h"

#include "X11Connection.h"

#include <QCoreApplication>
#include <QPointer>
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
    x11::watchRootProperties(c);
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
