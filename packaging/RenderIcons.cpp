// Writes the application icon as hicolor PNGs (<dir>/<N>x<N>/apps/<id>.png) for installing.
#include "AppIcon.h"

#include <QDir>
#include <QGuiApplication>

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 2)
        return 2;
    for (int px : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const QString dir = QString("%1/%2x%2/apps").arg(argv[1]).arg(px);
        if (!QDir().mkpath(dir) || !appicon::render(px).save(dir + "/com.ombrixwidget.OmbrixWidget.png"))
            return 1;
    }
    return 0;
}
