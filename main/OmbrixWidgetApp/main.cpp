#include "AppDelegate.h"
#include "SingleInstance.h"

#include <QApplication>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Ombrix_SettingsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetWindowPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetViewsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_ControlPanelPlugin)

int main(int argc, char** argv)
{
    // Widgets redraw a few small areas once a second: the software scene graph is the lightest.
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    // Frames are a few small regions: sent through the socket they cost less than shared memory,
    // whose reuse makes every frame wait for the X server first.
    if (!qEnvironmentVariableIsSet("QT_XCB_NO_MITSHM"))
        qputenv("QT_XCB_NO_MITSHM", "1");
    QApplication app(argc, argv);
    QApplication::setApplicationName("OmbrixWidget");
    QApplication::setQuitOnLastWindowClosed(false);

    SingleInstance instance;
    if (instance.forwardToRunningCopy())
        return 0;
    instance.listen();

    AppDelegate delegate;
    QObject::connect(&instance, &SingleInstance::showRequested, &delegate, &AppDelegate::showControlPanel);
    QObject::connect(&app, &QCoreApplication::aboutToQuit, &delegate, &AppDelegate::applicationWillTerminate);
    QTimer::singleShot(0, &delegate, &AppDelegate::applicationDidFinishLaunching);
    return app.exec();
}
