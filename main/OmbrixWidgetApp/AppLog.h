#pragma once
// What the application core reports; its debug lines show with QT_LOGGING_RULES="ombrix.app.debug=true".
#include <QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(lcApp)
