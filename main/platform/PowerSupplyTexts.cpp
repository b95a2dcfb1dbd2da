#include "PowerSupplyTexts.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <optional>

namespace powersupply {
namespace {

struct Supply {
    QDir dir;

    // Attributes are one short line; the read is bounded so a stray large file costs nothing.
    QString attribute(const char* name) const
    {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.read(4096)).trimmed();
    }

    QString scope() const { return attribute("scope"); }

    std::optional<int> percent() const
    {
        bool ok = false;
        const uint capacity = attribute("capacity").toUInt(&ok);
        if (ok)
            return int(qMin(capacity, 100u));
        // Devices that only know coarse levels; Low stays under the red threshold of 20.
        const QString level = attribute("capacity_level");
        if (level == QLatin1String("Full"))
            return 100;
        if (level == QLatin1String("High"))
            return 80;
        if (level == QLatin1String("Normal"))
            return 50;
        if (level == QLatin1String("Low"))
            return 10;
        if (level == QLatin1String("Critical"))
            return 5;
        return std::nullopt;
    }
};

QList<Supply> supplies(const QString& root)
{
    QList<Supply> out;
    const QDir dir(root);
    for (const QString& name : dir.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name))
        out.append(Supply{QDir(dir.filePath(name))});
    return out;
}

Status statusOf(const QString& status)
{
    if (status == QLatin1String("Charging"))
        return Status::Charging;
    if (status == QLatin1String("Discharging"))
        return Status::Discharging;
    if (status == QLatin1String("Full"))
        return Status::Full;
    if (status == QLatin1String("Not charging"))
        return Status::NotCharging;
    return Status::Unknown;
}

// The state word pmset prints; the parser reads "charging" unless it says "discharging", so a
// battery held without mains must not print the word at all.
QString stateText(Status status, bool onMains)
{
    switch (status) {
    case Status::Charging:
        return "charging";
    case Status::Discharging:
        return "discharging";
    case Status::Full:
        return "charged";
    case Status::NotCharging:
    case Status::Unknown:
        break;
    }
    return onMains ? "AC attached; not charging" : "discharging";
}

// Several batteries read as one, as UPower's display device does: any charging is charging, else
// any discharging is discharging; the level is the share of the energy they hold together.
Battery combined(const QList<Battery>& batteries)
{
    if (batteries.size() == 1)
        return batteries.first();
    Battery all;
    double energy = 0, energyFull = 0, percentSum = 0;
    int percents = 0;
    bool allFull = true, byEnergy = true;
    for (const Battery& b : batteries) {
        energy += b.energy;
        energyFull += b.energyFull;
        byEnergy = byEnergy && b.energyFull > 0;
        if (b.percent) {
            percentSum += *b.percent;
            ++percents;
        }
        if (b.status == Status::Charging)
            all.status = Status::Charging;
        else if (b.status == Status::Discharging && all.status != Status::Charging)
            all.status = Status::Discharging;
        else if (b.status == Status::NotCharging && all.status == Status::Unknown)
            all.status = Status::NotCharging;
        allFull = allFull && b.status == Status::Full;
    }
    if (allFull)
        all.status = Status::Full;
    if (byEnergy)
        all.percent = qRound(100 * qMin(energy, energyFull) / energyFull);
    else if (percents > 0)
        all.percent = qRound(percentSum / percents);
    return all;
}

// A name goes inside quotes on one line of one block: keep it from closing the quote, breaking
// the line or starting a block.
QString blockSafe(QString name)
{
    name.replace('"', '\'');
    for (const char16_t c : {u'\n', u'\r', u'\v', u'\f', u'\x85', u'\x2028', u'\x2029'})
        name.replace(QChar(c), ' ');
    return name.replace(QLatin1String("+-o"), QLatin1String("+- o")).trimmed();
}

// A Bluetooth address in any of its spellings ("hid-aa:bb:..-battery", "/org/bluez/hci0/dev_AA_BB_.."), or "".
QString bluetoothAddress(const QString& name)
{
    static const QRegularExpression re(QStringLiteral("[0-9A-Fa-f]{2}(?:[:_][0-9A-Fa-f]{2}){5}"));
    const auto match = re.match(name);
    return match.hasMatch() ? match.captured().toLower().replace('_', ':') : QString();
}

bool sameDevice(const Battery& a, const Battery& b)
{
    const QString nameA = a.nativeName.section('/', -1), nameB = b.nativeName.section('/', -1);
    if (!nameA.isEmpty() && nameA == nameB)
        return true;
    const QString address = bluetoothAddress(a.nativeName);
    return !address.isEmpty() && address == bluetoothAddress(b.nativeName);
}

} // namespace

Reading readTree(const QString& root)
{
    Reading reading;
    for (const Supply& s : supplies(root)) {
        const QString type = s.attribute("type");
        if (type == QLatin1String("Mains") || type == QLatin1String("USB")) {
            reading.onMains = reading.onMains || s.attribute("online").toInt() > 0;
            continue;
        }
        if (type != QLatin1String("Battery"))
            continue;
        Battery b;
        b.nativeName = s.dir.dirName();
        b.model = s.attribute("model_name");
        b.percent = s.percent();
        b.status = statusOf(s.attribute("status"));
        // Energy in uWh, or charge in uAh at the design voltage: either way one unit per machine.
        const double volts = s.attribute("voltage_min_design").toDouble() / 1e6;
        b.energy = s.attribute("energy_now").toDouble();
        b.energyFull = s.attribute("energy_full").toDouble();
        if (b.energyFull <= 0 && volts > 0) {
            b.energy = s.attribute("charge_now").toDouble() * volts;
            b.energyFull = s.attribute("charge_full").toDouble() * volts;
        }
        const QString scope = s.scope();
        if (scope.isEmpty() || scope == QLatin1String("System"))
            reading.system.append(b);
        else if (scope == QLatin1String("Device"))
            reading.peripherals.append(b);
    }
    return reading;
}

Reading merged(Reading primary, const Reading& extra)
{
    const auto add = [&primary](QList<Battery>& into, const QList<Battery>& from) {
        for (const Battery& b : from) {
            const auto known = [&b](const Battery& p) { return sameDevice(p, b); };
            if (std::none_of(primary.system.begin(), primary.system.end(), known) &&
                std::none_of(primary.peripherals.begin(), primary.peripherals.end(), known))
                into.append(b);
        }
    };
    add(primary.system, extra.system);
    add(primary.peripherals, extra.peripherals);
    primary.onMains = primary.onMains || extra.onMains;
    return primary;
}

QString pmsetText(const Reading& reading)
{
    if (reading.system.isEmpty())
        return QStringLiteral("Now drawing from 'AC Power'\n");
    const Battery all = combined(reading.system);
    QString text = QString("Now drawing from '%1'\n").arg(reading.onMains ? "AC Power" : "Battery Power");
    text += QStringLiteral(" -InternalBattery-0 (id=1)\t");
    if (all.percent)
        text += QString::number(*all.percent) + "%; ";
    return text + stateText(all.status, reading.onMains) + "; (no estimate) present: true\n";
}

QString ioregText(const Reading& reading)
{
    QString text;
    int index = 0;
    for (const Battery& b : reading.peripherals) {
        if (!b.percent)
            continue;
        // The header carries a class name the parser drops, so a device without a model name is
        // passed over, as on macOS.
        text += QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, "
                        "id 0x%1, registered, matched, active, busy 0 (0 ms), retain 7>\n    {\n")
                    .arg(++index, 0, 16);
        text += QString("      \"BatteryPercent\" = %1\n").arg(*b.percent);
        const QString name = blockSafe(b.model);
        if (!name.isEmpty())
            text += QString("      \"Product\" = \"%1\"\n").arg(name);
        text += "    }\n\n";
    }
    return text;
}

} // namespace powersupply
