#include "X11Connection.h"

#include <QGuiApplication>

namespace x11 {

xcb_connection_t* connection()
{
    auto* x = qApp ? qApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x ? x->connection() : nullptr;
}

const xcb_screen_t* rootScreen(xcb_connection_t* c)
{
    return xcb_setup_roots_iterator(xcb_get_setup(c)).data;
}

void watchRootProperties(xcb_connection_t* c)
{
    const xcb_window_t root = rootScreen(c)->root;
    if (auto* attrs = xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, root), nullptr)) {
        const uint32_t mask = attrs->your_event_mask | XCB_EVENT_MASK_PROPERTY_CHANGE;
        xcb_change_window_attributes(c, root, XCB_CW_EVENT_MASK, &mask);
        free(attrs);
    }
}

} // namespace x11
