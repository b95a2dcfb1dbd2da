#include "PowerSupplyTexts.h"

#include <QDir>
#include <QFile>
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

    bool isBattery() const { return attribute("type") == QLatin1String("Battery"); }
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

bool externalPowerOnline(const QList<Supply>& all)
{
    for (const Supply& s : all) {
        const QString type = s.attribute("type");
        if ((type == QLatin1String("Mains") || type == QLatin1String("USB")) && s.attribute("online").toInt() > 0)
            return true;
    }
    return false;
}

// The state word pmset prints; the parser reads "charging" unless it says "discharging".
QString stateText(const QString& status, bool onAC)
{
    if (status == QLatin1String("Charging"))
        return "charging";
    if (status == QLatin1String("Discharging"))
        return "discharging";
    if (status == QLatin1String("Full"))
        return "charged";
    if (status == QLatin1String("Not charging") || onAC)
        return "AC attached; not charging";
    return "discharging";
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

} // namespace

QString pmsetText(const QString& root)
{
    const QList<Supply> all = supplies(root);
    const bool onAC = externalPowerOnline(all);
    QString lines;
    int index = 0;
    for (const Supply& s : all) {
        const QString scope = s.scope();
        if (!s.isBattery() || !(scope.isEmpty() || scope == QLatin1String("System")))
            continue;
        const auto percent = s.percent();
        lines += QString(" -InternalBattery-%1 (id=%2)\t").arg(index).arg(index + 1);
        if (percent)
            lines += QString::number(*percent) + "%; ";
        lines += stateText(s.attribute("status"), onAC) + "; (no estimate) present: true\n";
        ++index;
    }
    if (lines.isEmpty())
        return {};
    return QString("Now drawing from '%1'\n").arg(onAC ? "AC Power" : "Battery Power") + lines;
}

QString ioregText(const QString& root)
{
    QString text;
    int index = 0;
    for (const Supply& s : supplies(root)) {
        if (!s.isBattery() || s.scope() != QLatin1String("Device"))
            continue;
        const auto percent = s.percent();
        if (!percent)
            continue;
        // The header carries a class name the parser drops, so a device without a model name is
        // passed over, as on macOS.
        text += QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, "
                        "id 0x%1, registered, matched, active, busy 0 (0 ms), retain 7>\n    {\n")
                    .arg(++index, 0, 16);
        text += QString("      \"BatteryPercent\" = %1\n").arg(*percent);
        const QString name = blockSafe(s.attribute("model_name"));
        if (!name.isEmpty())
            text += QString("      \"Product\" = \"%1\"\n").arg(name);
        text += "    }\n\n";
    }
    return text;
}

} // namespace powersupply
