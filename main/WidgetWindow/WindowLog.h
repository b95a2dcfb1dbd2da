#pragma once
// What the widget windows reports; its debug lines show with QT_LOGGING_RULES="ombrix.window.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcWindow)
