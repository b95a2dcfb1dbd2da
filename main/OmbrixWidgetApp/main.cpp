#include "AppDelegate.h"
#include "SingleInstance.h"
#include "X11Window.h"

#include <QApplication>
#include <QQuickWindow>
#include <QThreadPool>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>
#include <cstdio>

Q_IMPORT_QML_PLUGIN(Ombrix_SettingsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetWindowPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetViewsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_ControlPanelPlugin)

namespace {

constexpr const char* helpText =
    "Uso: OmbrixWidget [--help | --version]\n"
    "Widget da scrivania (orologio, meteo, batterie, musica) con un Control Panel nell'area di notifica.\n"
    "Avviato di nuovo mentre è già in esecuzione, riapre il Control Panel.\n"
    "\n"
    "  -h, --help     mostra questo aiuto ed esce\n"
    "  -v, --version  mostra la versione ed esce\n";

// Gives the exit code when the command line ends the program before it starts, else -1.
int handleCommandLine(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::fputs(helpText, stdout);
            return 0;
        }
        if (arg == "--version" || arg == "-v") {
            std::printf("OmbrixWidget %s\n", OMBRIX_VERSION);
            return 0;
        }
        std::fprintf(stderr, "OmbrixWidget: opzione sconosciuta \"%s\" (vedi --help)\n", argv[i]);
        return 2;
    }
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    if (const int code = handleCommandLine(argc, argv); code >= 0)
        return code;

    // Widgets are placed at chosen screen positions, which only X11 allows: on a Wayland session
    // the program runs through XWayland unless the user asked for a platform.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    if (qgetenv("QT_QPA_PLATFORM").startsWith("xcb") && !x11::displayReachable()) {
        std::fprintf(stderr,
                     "OmbrixWidget: nessun display X raggiungibile (DISPLAY=\"%s\"): serve una sessione grafica X11 o "
                     "XWayland.\n",
                     qgetenv("DISPLAY").constData());
        return 1;
    }

    // Before any GUI start-up: a second copy only knocks on the first one's door.
    SingleInstance instance;
    if (!instance.claim()) {
        instance.forwardToRunningCopy();
        return 0;
    }

    // Widgets redraw a few small areas once a second: the software scene graph is the lightest.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // Frames are a few small regions: sent through the socket they cost less than shared memory,
    // whose reuse makes every frame wait for the X server first.
    if (!qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM"))
        qputenv("QT_XCB_NO_MITSHM", "1");
    QApplication app(argc, argv);
    // Painting splits a tall blend into pieces for the shared pool; one pooled thread takes them, so
    // a clock's tick wakes one thread rather than one per core.
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    QApplication::setApplicationName("OmbrixWidget");
    QApplication::setApplicationVersion(OMBRIX_VERSION);
    QApplication::setDesktopFileName("com.ombrixwidget.OmbrixWidget");
    QApplication::setQuitOnLastWindowClosed(false);
    instance.listen();

    AppDelegate delegate;
    QObject::connect(&instance, &SingleInstance::showRequested, &delegate, &AppDelegate::showControlPanel);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return app.exec();
}
