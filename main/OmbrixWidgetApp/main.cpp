#include "AppDelegate.h"
#include "Autostart.h"
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
    "Uso: OmbrixWidget [--minimized | --help | --version]\n"
    "Widget da scrivania (orologio, meteo, batterie, musica) con un Control Panel nell'area di notifica.\n"
    "Avviato di nuovo mentre è già in esecuzione, riapre il Control Panel.\n"
    "\n"
    "      --minimized  avvia senza mostrare il Control Panel (usato dall'avvio all'accesso)\n"
    "  -h, --help       mostra questo aiuto ed esce\n"
    "  -v, --version    mostra la versione ed esce\n";

struct CommandLine {
    int exitCode = -1; // the program ends before it starts when set
    bool quiet = false;
};

CommandLine handleCommandLine(int argc, char** argv)
{
    CommandLine line;
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg = argv[i];
        if (arg == autostart::quietOption) {
            line.quiet = true;
            continue;
        }
        if (arg == "--help" || arg == "-h") {
            std::fputs(helpText, stdout);
            return {0};
        }
        if (arg == "--version" || arg == "-v") {
            std::printf("OmbrixWidget %s\n", OMBRIX_VERSION);
            return {0};
        }
        std::fprintf(stderr, "OmbrixWidget: opzione sconosciuta \"%s\" (vedi --help)\n", argv[i]);
        return {2};
    }
    return line;
}

} // namespace

int main(int argc, char** argv)
{
    const CommandLine command = handleCommandLine(argc, argv);
    if (command.exitCode >= 0)
        return command.exitCode;

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
    // A quiet start (at login) finds the panel's owner already there and leaves it be.
    if (!instance.claim()) {
        if (!command.quiet)
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
    QTimer::singleShot(0, &delegate, [&delegate, &command] { delegate.applicationDidFinishLaunching(!command.quiet); });
    return app.exec();
}
