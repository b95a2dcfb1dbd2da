#include "RootBackground.h"

#include "X11Connection.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <array>
#include <cstring>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

namespace {

using x11::connection;
using x11::rootScreen;

// Several atoms in one round trip.
template <size_t N> std::array<xcb_atom_t, N> atoms(xcb_connection_t* c, const std::array<const char*, N>& names)
{
    std::array<xcb_intern_atom_cookie_t, N> cookies;
    for (size_t i = 0; i < N; ++i)
        cookies[i] = xcb_intern_atom(c, 0, uint16_t(strlen(names[i])), names[i]);
    std::array<xcb_atom_t, N> out{};
    for (size_t i = 0; i < N; ++i) {
        if (auto* r = xcb_intern_atom_reply(c, cookies[i], nullptr)) {
            out[i] = r->atom;
            free(r);
        }
    }
    return out;
}

// The 32-bit values of a window property of the given type; empty when it is absent or of another form.
std::vector<uint32_t> windowProperty(xcb_connection_t* c, xcb_window_t w, xcb_atom_t name, xcb_atom_t type)
{
    std::vector<uint32_t> out;
    auto* r = xcb_get_property_reply(c, xcb_get_property(c, 0, w, name, type, 0, 1024), nullptr);
    if (!r)
        return out;
    if (r->format == 32 && r->type == type) {
        const auto* v = static_cast<const uint32_t*>(xcb_get_property_value(r));
        out.assign(v, v + xcb_get_property_value_length(r) / 4);
    }
    free(r);
    return out;
}

// Pixels of a drawable, in the 32-bit little-endian layout every usual server uses for depth
// 24 and 32; any other layout reads as nothing rather than as garbage.
QImage readPixels(xcb_connection_t* c, xcb_drawable_t d, const QRect& r)
{
    xcb_generic_error_t* error = nullptr;
    auto* reply = xcb_get_image_reply(c,
                                      xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, d, int16_t(r.x()), int16_t(r.y()),
                                                    uint16_t(r.width()), uint16_t(r.height()), ~0u),
                                      &error);
    free(error);
    if (!reply)
        return {};
    const xcb_setup_t* setup = xcb_get_setup(c);
    int bpp = 0;
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem; xcb_format_next(&it))
        if (it.data->depth == reply->depth)
            bpp = it.data->bits_per_pixel;
    QImage image;
    const size_t rowBytes = size_t(r.width()) * 4;
    if (bpp == 32 && setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST && reply->depth >= 24 &&
        size_t(xcb_get_image_data_length(reply)) >= rowBytes * size_t(r.height())) {
        image = QImage(r.size(), QImage::Format_RGB32);
        const uint8_t* data = xcb_get_image_data(reply);
        // The top byte of a depth-24 pixel is padding that setters leave as they please (feh's
        // scaled pixmaps leave it unset); RGB32 wants it 0xff, or the unblurred corners go clear.
        for (int y = 0; y < r.height(); ++y) {
            const auto* in = reinterpret_cast<const uint32_t*>(data + size_t(y) * rowBytes);
            auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < r.width(); ++x)
                out[x] = in[x] | 0xff000000u;
        }
    }
    free(reply);
    return image;
}

QColor meanColor(const QImage& image)
{
    quint64 sum[3] = {0, 0, 0};
    for (int y = 0; y < image.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            sum[0] += qRed(line[x]);
            sum[1] += qGreen(line[x]);
            sum[2] += qBlue(line[x]);
        }
    }
    const quint64 n = quint64(image.width()) * quint64(image.height());
    return n ? QColor(int(sum[0] / n), int(sum[1] / n), int(sum[2] / n)) : QColor(Qt::black);
}

} // namespace

RootBackground& RootBackground::shared()
{
    static QPointer<RootBackground> instance;
    if (!instance) {
        instance = new RootBackground();
        instance->setParent(qApp);
    }
    return *instance;
}

RootBackground::RootBackground()
{
    m_settle.setSingleShot(true);
    m_settle.setInterval(50);
    connect(&m_settle, &QTimer::timeout, this, &RootBackground::backgroundChanged);
    xcb_connection_t* c = connection();
    if (!c)
        return;
    const xcb_window_t root = rootScreen(c)->root;
    const auto a = atoms<3>(c, {"_XROOTPMAP_ID", "ESETROOT_PMAP_ID", "_NET_WM_CM_S0"});
    m_pixmapAtoms[0] = a[0];
    m_pixmapAtoms[1] = a[1];
    m_cmAtom = a[2];

    x11::watchRootProperties(c);
    // A compositor starting or stopping changes the owner of its selection: XFixes tells us.
    const xcb_query_extension_reply_t* ext = xcb_get_extension_data(c, &xcb_xfixes_id);
    if (ext && ext->present) {
        free(xcb_xfixes_query_version_reply(c, xcb_xfixes_query_version(c, 5, 0), nullptr));
        xcb_xfixes_select_selection_input(c, root, m_cmAtom,
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                              XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
        m_xfixesEvent = ext->first_event + XCB_XFIXES_SELECTION_NOTIFY;
    }
    xcb_flush(c);
    readCompositor();
    qApp->installNativeEventFilter(this);
}

void RootBackground::readCompositor()
{
    xcb_connection_t* c = connection();
    auto* owner = xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, m_cmAtom), nullptr);
    m_compositing = owner && owner->owner != XCB_NONE;
    free(owner);
    m_blursBehind = false;
    if (m_compositing) {
        const auto a = atoms<1>(c, {"_KDE_NET_WM_BLUR_BEHIND_REGION"});
        const auto supported =
            windowProperty(c, rootScreen(c)->root, atoms<1>(c, {"_NET_SUPPORTED"})[0], XCB_ATOM_ATOM);
        m_blursBehind = std::find(supported.begin(), supported.end(), a[0]) != supported.end();
    }
}

bool RootBackground::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    const uint8_t type = event->response_type & 0x7f;
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto* e = reinterpret_cast<const xcb_property_notify_event_t*>(event);
        if (e->atom == m_pixmapAtoms[0] || e->atom == m_pixmapAtoms[1])
            m_settle.start();
    } else if (m_xfixesEvent && type == m_xfixesEvent) {
        const auto* e = reinterpret_cast<const xcb_xfixes_selection_notify_event_t*>(event);
        if (e->selection == m_cmAtom) {
            readCompositor();
            emit compositingChanged();
        }
    }
    return false;
}

QImage RootBackground::grab(const QRect& area) const
{
    xcb_connection_t* c = connection();
    if (!c || area.isEmpty())
        return {};
    const xcb_screen_t* screen = rootScreen(c);
    const auto canvas = [&](const QColor& colour) {
        QImage out(area.size(), QImage::Format_RGB32);
        out.fill(colour);
        return out;
    };
    for (const uint32_t name : m_pixmapAtoms) {
        const auto value = windowProperty(c, screen->root, name, XCB_ATOM_PIXMAP);
        if (value.empty() || value[0] == XCB_NONE)
            continue;
        // A pixmap whose setter has gone away fails here, and the next source is tried.
        xcb_generic_error_t* error = nullptr;
        auto* geometry = xcb_get_geometry_reply(c, xcb_get_geometry(c, value[0]), &error);
        free(error);
        if (!geometry)
            continue;
        const QRect part = area & QRect(0, 0, geometry->width, geometry->height);
        free(geometry);
        const QImage pixels = part.isEmpty() ? QImage() : readPixels(c, value[0], part);
        if (pixels.isNull())
            continue;
        QImage out = canvas(meanColor(pixels));
        QPainter(&out).drawImage(part.topLeft() - area.topLeft(), pixels);
        return out;
    }
    // No pixmap: the root's own colour, read where no window covers it (a desktop window that
    // paints the background covers every such place). Only a plain colour counts: a pattern, such
    // as the X server's weave, is no background to frost.
    constexpr int block = 4;
    const int right = screen->width_in_pixels - block, bottom = screen->height_in_pixels - block;
    for (const QPoint p : {QPoint(0, 0), QPoint(right, 0), QPoint(0, bottom), QPoint(right, bottom)}) {
        auto* at = xcb_translate_coordinates_reply(
            c, xcb_translate_coordinates(c, screen->root, screen->root, int16_t(p.x()), int16_t(p.y())), nullptr);
        const bool bare = at && at->child == XCB_NONE;
        free(at);
        const QImage pixels = bare ? readPixels(c, screen->root, QRect(p, QSize(block, block))) : QImage();
        if (pixels.isNull())
            continue;
        QImage plain(pixels.size(), pixels.format());
        plain.fill(pixels.pixel(0, 0));
        if (pixels != plain)
            continue;
        return canvas(pixels.pixel(0, 0));
    }
    return {};
}
