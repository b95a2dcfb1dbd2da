#pragma once
// What the operating-system layer reports; its debug lines show with QT_LOGGING_RULES="ombrix.platform.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcPlatform)
