#pragma once
// What the Control Panel reports; its debug lines show with QT_LOGGING_RULES="ombrix.panel.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcPanel)
