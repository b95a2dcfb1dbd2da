#include "BatteryTextSource.h"

#include "BatteryMonitor.h"
#include "ChildProcess.h"
#include "HostName.h"
#include "SettingsManager.h"
#include "UPowerDevices.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

constexpr const char* scutilPath = "/usr/sbin/scutil";

bool onPath(const char* tool)
{
    return !QStandardPaths::findExecutable(QString::fromLatin1(tool)).isEmpty();
}

// The tools a machine has do not come and go between polls: the PATH is searched once per source.
bool hasTool(std::optional<bool>& known, const char* tool)
{
    if (!known)
        known = onPath(tool);
    return *known;
}

} // namespace

SystemBatteryTexts::SystemBatteryTexts(QString powerSupplyRoot, std::optional<QDBusConnection> upowerBus)
    : m_root(std::move(powerSupplyRoot)), m_upowerBus(std::move(upowerBus))
{
}

SystemBatteryTexts::~SystemBatteryTexts()
{
    delete m_upower;
}

void SystemBatteryTexts::setChangeHandler(std::function<void()> onChange)
{
    m_onChange = std::move(onChange);
}

powersupply::Reading SystemBatteryTexts::reading()
{
    if (!m_upower && QCoreApplication::instance()) {
        m_upower = new UPowerDevices(m_upowerBus.value_or(QDBusConnection::systemBus()), QCoreApplication::instance());
        QObject::connect(m_upower, &UPowerDevices::changed, m_upower, [this] {
            if (m_onChange)
                m_onChange();
        });
    }
    const powersupply::Reading tree = powersupply::readTree(root());
    return m_upower && m_upower->ready() ? powersupply::merged(m_upower->reading(), tree) : tree;
}

QString SystemBatteryTexts::root() const
{
    if (!m_root.isEmpty())
        return m_root;
    const auto configured = SettingsManager::shared().configString(rootConfigKey);
    return configured && !configured->isEmpty() ? *configured : QString(powersupply::defaultRoot);
}

QString SystemBatteryTexts::pmsetText()
{
    return hasTool(m_hasPmset, "pmset") ? BatteryMonitor::shell("pmset -g batt") : powersupply::pmsetText(reading());
}

QString SystemBatteryTexts::ioregText()
{
    return hasTool(m_hasIoreg, "ioreg") ? BatteryMonitor::shell(R"(ioreg -r -d 1 -k "BatteryPercent")")
                                        : powersupply::ioregText(reading());
}

std::pair<QString, QString> SystemBatteryTexts::texts()
{
    if (hasTool(m_hasPmset, "pmset") || hasTool(m_hasIoreg, "ioreg"))
        return BatteryTextSource::texts();
    const powersupply::Reading now = reading();
    return {powersupply::pmsetText(now), powersupply::ioregText(now)};
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
