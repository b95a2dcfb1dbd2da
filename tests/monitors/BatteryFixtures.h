#pragma once
// Hands BatteryMonitor::shared() fixed texts for the length of a scope, and counts the asks.
#include "BatteryMonitor.h"

#include <memory>
#include <ostream>

// Readable failures.
inline void PrintTo(const BatteryDevice& d, std::ostream* os)
{
    *os << "{" << d.id.toStdString() << ", " << d.name.toStdString() << ", " << d.percent << ", "
        << (d.charging ? "charging" : "not charging") << ", " << d.type.toStdString() << "}";
}

struct FakeBatteryTexts : BatteryTextSource {
    QString pmset;
    QString ioreg;
    QString name;
    int pmsetCalls = 0;
    int ioregCalls = 0;
    int nameCalls = 0;

    QString pmsetText() override
    {
        ++pmsetCalls;
        return pmset;
    }
    QString ioregText() override
    {
        ++ioregCalls;
        return ioreg;
    }
    QString computerName() override
    {
        ++nameCalls;
        return name;
    }
};

class FakeBatteryScope {
  public:
    FakeBatteryScope()
    {
        auto fake = std::make_unique<FakeBatteryTexts>();
        texts = fake.get();
        BatteryMonitor::shared().setTextSource(std::move(fake));
    }
    ~FakeBatteryScope() { BatteryMonitor::shared().setTextSource(nullptr); }
    FakeBatteryScope(const FakeBatteryScope&) = delete;
    FakeBatteryScope& operator=(const FakeBatteryScope&) = delete;

    FakeBatteryTexts* texts;
};

// One ioreg block as macOS prints it for a Bluetooth accessory.
inline QString accessoryBlock(const QString& product, int percent)
{
    return QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, id "
                   "0x1000%1, registered, matched, active, busy 0 (0 ms), retain 7>\n"
                   "    {\n"
                   "      \"BatteryPercent\" = %1\n"
                   "      \"Product\" = \"%2\"\n"
                   "    }\n")
        .arg(percent)
        .arg(product);
}
