#pragma once
// Tells the views that a monitor's reading changed between their polls, so they refresh at once.
#include <QObject>

class ChangeNotifier : public QObject {
    Q_OBJECT

  signals:
    void changed();
};
