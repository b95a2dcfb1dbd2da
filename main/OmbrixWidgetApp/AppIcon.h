#pragma once
// The application's own icon (the panel header's mark), for the tray and the windows. Drawn from
// the installed SVG at each size a tray asks for, so it stays crisp, and coloured, so it reads on
// light and dark panels alike.
#include <QIcon>
#include <QImage>

namespace appicon {

// The icon at `px` device pixels.
QImage render(int px);
// Every tray size (16, 22, 24, 32, 48) at 1x and 2x.
QIcon icon();

} // namespace appicon
