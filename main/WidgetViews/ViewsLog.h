#pragma once
// What the widget views reports; its debug lines show with QT_LOGGING_RULES="ombrix.views.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcViews)
