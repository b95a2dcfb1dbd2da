#include "BatteryTextSource.h"

#include "BatteryMonitor.h"
#include "ChildProcess.h"
#include "HostName.h"
#include "SettingsManager.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

constexpr const char* scutilPath = "/usr/sbin/scutil";

bool onPath(const char* tool) { return !QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty(); }

} // namespace

SystemBatteryTexts::SystemBatteryTexts(QString powerSupplyRoot) : m_root(std::move(powerSupplyRoot)) {}

QString SystemBatteryTexts::root() const
{
    if (!m_root.isEmpty())
        return m_root;
    const auto configured = SettingsManager::shared().configString(rootConfigKey);
    return configured && !configured->isEmpty() ? *configured : QString(powersupply::defaultRoot);
}

QString SystemBatteryTexts::pmsetText()
{
    return onPath("pmset") ? BatteryMonitor::shell("pmset -g batt") : powersupply::pmsetText(root());
}

QString SystemBatteryTexts::ioregText()
{
    return onPath("ioreg") ? BatteryMonitor::shell(R"(ioreg -r -d 1 -k "BatteryPercent")")
                           : powersupply::ioregText(root());
}

QString SystemBatteryTexts::computerName()
{
    if (QFileInfo(scutilPath).isExecutable()) {
        const auto out = childprocess::run(scutilPath, {"--get", "ComputerName"}, childprocess::Channels::OutputOnly);
        const auto text = out ? childprocess::decodeUtf8(*out) : std::nullopt;
        if (text && !text->trimmed().isEmpty())
            return text->trimmed();
    }
    return hostname::localizedName();
}
