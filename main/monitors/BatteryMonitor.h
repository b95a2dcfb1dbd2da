#pragma once
// Battery readings of the machine and its paired accessories, parsed from the text of pmset and
// ioreg (or of the stand-in that renders the same text), and the computer's name. Holds no
// readings: every call asks again.
#include "BatteryTextSource.h"
#include "ChangeNotifier.h"
#include "SharedWidgetData.h"

#include <QList>
#include <QString>
#include <memory>

class BatteryMonitor {
  public:
    static BatteryMonitor& shared();

    // The machine's own record first, then the accessories in the order of their blocks.
    QList<BatteryDevice> getBatteryDevices();
    // Never empty; "MacBook" when nothing knows the name.
    QString getComputerName();

    // The parser, a pure function of the two texts.
    static QList<BatteryDevice> parseBatteryDevices(const QString& pmsetText, const QString& ioregText);
    static BatteryDevice parseInternalBattery(const QString& pmsetText);
    static QList<BatteryDevice> parseAccessories(const QString& ioregText);
    static QString deviceType(const QString& name);

    // Replaces where the texts come from; null puts back the machine's own source.
    void setTextSource(std::unique_ptr<BatteryTextSource> source);
    // Fires when the source learns of a change before the next poll would.
    const ChangeNotifier& changes() const { return m_changes; }

    BatteryMonitor(const BatteryMonitor&) = delete;
    BatteryMonitor& operator=(const BatteryMonitor&) = delete;

  private:
    BatteryMonitor();

    // One command line through /bin/zsh, standard output and error as one text. Any failure
    // (no shell, output that is not UTF-8) gives "".
    static QString shell(const QString& command);
    friend class SystemBatteryTexts;

    ChangeNotifier m_changes;
    std::unique_ptr<BatteryTextSource> m_source;
};
