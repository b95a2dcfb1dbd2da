#pragma once
// What the monitors reports; its debug lines show with QT_LOGGING_RULES="ombrix.monitors.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcMonitors)
