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

} // namespace x11
