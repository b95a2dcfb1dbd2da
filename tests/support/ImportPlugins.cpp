// The app's QML modules are static: their plugins are pulled in here once for the test binary.
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Ombrix_SettingsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetWindowPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_WidgetViewsPlugin)
Q_IMPORT_QML_PLUGIN(Ombrix_ControlPanelPlugin)
