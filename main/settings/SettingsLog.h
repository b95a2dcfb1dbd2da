#pragma once
// What the settings store reports; its debug lines show with QT_LOGGING_RULES="ombrix.settings.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcSettings)
