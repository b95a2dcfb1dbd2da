#include "RootBackground.h"
#include "X11Connection.h"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

// Wallpaper setters leave the padding byte of depth-24 pixels as they please: it must never
// reach the backdrop as transparency.
TEST(RootBackground, RootPixmapPaddingByteIsReadAsOpaqueColour)
{
    xcb_connection_t* c = x11::connection();
    if (!c)
        GTEST_SKIP() << "needs an X display";
    const xcb_screen_t* screen = x11::rootScreen(c);
    ASSERT_EQ(screen->root_depth, 24);
    const xcb_pixmap_t pixmap = xcb_generate_id(c);
    xcb_create_pixmap(c, screen->root_depth, pixmap, screen->root, 8, 8);
    const xcb_gcontext_t gc = xcb_generate_id(c);
    xcb_create_gc(c, gc, pixmap, 0, nullptr);
    std::vector<uint32_t> pixels(64);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = (uint32_t(i * 37 % 256) << 24) | 0x102030; // garbage above a dark blue-grey
    xcb_put_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap, gc, 8, 8, 0, 0, 0, screen->root_depth,
                  uint32_t(pixels.size() * 4), reinterpret_cast<const uint8_t*>(pixels.data()));
    const char name[] = "_XROOTPMAP_ID";
    auto* atom = xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, sizeof name - 1, name), nullptr);
    ASSERT_NE(atom, nullptr);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, screen->root, atom->atom, XCB_ATOM_PIXMAP, 32, 1, &pixmap);
    free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)); // the server has it all

    const QImage image = RootBackground::shared().grab(QRect(0, 0, 8, 8));

    xcb_delete_property(c, screen->root, atom->atom);
    xcb_free_gc(c, gc);
    xcb_free_pixmap(c, pixmap);
    xcb_flush(c);
    free(atom);
    ASSERT_EQ(image.size(), QSize(8, 8));
    // Raw words: pixel() would hide the padding byte of an RGB32 image.
    int wrong = 0;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            wrong += reinterpret_cast<const QRgb*>(image.constScanLine(y))[x] != qRgb(0x10, 0x20, 0x30);
    EXPECT_EQ(wrong, 0);
}
