#include "BatteryMonitor.h"

#include "ChildProcess.h"
#include "OutsideData.h"
#include "SystemWords.h"

#include <QRegularExpression>
#include <array>

namespace {

// \d and \s as Unicode reads them; a number in other digits then fails the conversion below.
constexpr auto reOptions = QRegularExpression::UseUnicodePropertiesOption;

const QRegularExpression& percentPattern()
{
    static const QRegularExpression re(QStringLiteral(R"((\d+)%)"), reOptions);
    return re;
}

const QRegularExpression& headerPattern()
{
    static const QRegularExpression re(QStringLiteral(R"(\+-o\s+([^<]+?)\s+<class)"), reOptions);
    return re;
}

// The readers below match as `"?KEY"?\s*=\s*VALUE` would, unanchored, with \s and \d as Unicode reads
// them: "Product" also matches "DeviceProduct" and "Name" any key ending in Name, and the first key
// whose value reads wins. They are written out because a regular expression per block costs about a
// microsecond of set-up alone, and a listing has a block per accessory at every poll.

// A key, found by a vectorised scan for its first character: Qt's substring search visits every
// character at several times the cost.
struct Key {
    QStringView text;

    qsizetype in(QStringView s, qsizetype from = 0) const
    {
        for (qsizetype i = s.indexOf(text[0], from); i >= 0; i = s.indexOf(text[0], i + 1))
            if (s.sliced(i).startsWith(text))
                return i;
        return -1;
    }
};

constexpr Key productKey{u"Product"}, deviceProductKey{u"DeviceProduct"}, nameKey{u"Name"},
    batteryPercentKey{u"BatteryPercent"}, markerKey{u"+-o"};

qsizetype skipSpaces(QStringView s, qsizetype i)
{
    while (i < s.size() && s[i].isSpace())
        ++i;
    return i;
}

// The value after the first key that is followed by "=", as `value` reads it there.
template <typename Read> QStringView firstValue(QStringView block, const Key& key, Read value)
{
    for (qsizetype at = key.in(block); at >= 0; at = key.in(block, at + 1)) {
        qsizetype i = at + key.text.size();
        if (i < block.size() && block[i] == u'"')
            ++i;
        i = skipSpaces(block, i);
        if (i >= block.size() || block[i] != u'=')
            continue;
        if (const QStringView v = value(block.sliced(skipSpaces(block, i + 1))); !v.isEmpty())
            return v;
    }
    return {};
}

// "([^"]+)"
QStringView quotedText(QStringView s)
{
    if (s.isEmpty() || s[0] != u'"')
        return {};
    const qsizetype end = s.indexOf(u'"', 1);
    return end > 1 ? s.sliced(1, end - 1) : QStringView();
}

// (\d+): decimal digits of any script, a character outside the basic plane included.
QStringView digits(QStringView s)
{
    qsizetype i = 0;
    while (i < s.size()) {
        if (s[i].isHighSurrogate() && i + 1 < s.size() && s[i + 1].isLowSurrogate() &&
            QChar::isDigit(QChar::surrogateToUcs4(s[i], s[i + 1])))
            i += 2;
        else if (s[i].isDigit())
            ++i;
        else
            break;
    }
    return s.first(i);
}

// A run of digits as a signed 64-bit number, or nothing; only ASCII digits convert, as with
// Int64(String).
std::optional<qint64> number(QStringView run)
{
    bool ok = false;
    const qint64 value = run.toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

QStringView firstLine(QStringView block)
{
    static const QRegularExpression lineBreak(QStringLiteral("[\\n\\v\\f\\r\\x{85}\\x{2028}\\x{2029}]"));
    const auto match = lineBreak.match(block);
    return match.hasMatch() ? block.first(match.capturedStart()) : block;
}

bool isServiceClassName(const QString& name)
{
    return name == QLatin1String("AppleDeviceManagementHIDEventService") ||
           name == QLatin1String("AppleBluetoothHIDDevice") || name == QLatin1String("AppleDeviceBluetoothHIDDriver");
}

std::optional<BatteryDevice> parseBlock(QStringView block, bool hasMarker)
{
    QString name;
    for (const Key* key : {&productKey, &deviceProductKey, &nameKey}) {
        name = firstValue(block, *key, quotedText).toString();
        if (!name.isEmpty())
            break;
    }
    const QStringView percentDigits = firstValue(block, batteryPercentKey, digits);
    const qint64 percent = percentDigits.isEmpty() ? 100 : number(percentDigits).value_or(100);
    if (name.isEmpty() && hasMarker) {
        const auto match = headerPattern().match(QLatin1String("+-o") + firstLine(block).toString());
        if (match.hasMatch())
            name = match.captured(1).trimmed();
    }
    if (isServiceClassName(name) || name.isEmpty())
        return std::nullopt;
    name = outside::cutText(name);
    // Lowered once: the type words hold no spaces, and lowering a lowered name copies nothing.
    QString id = name.toLower();
    QString type = BatteryMonitor::deviceType(id);
    return BatteryDevice{id.replace(u' ', u'-'), name, percent, false, std::move(type)};
}

} // namespace

BatteryMonitor::BatteryMonitor()
{
    setTextSource(nullptr);
}

BatteryMonitor& BatteryMonitor::shared()
{
    static BatteryMonitor instance;
    return instance;
}

void BatteryMonitor::setTextSource(std::unique_ptr<BatteryTextSource> source)
{
    m_source = source ? std::move(source) : std::make_unique<SystemBatteryTexts>();
    m_source->setChangeHandler([this] { emit m_changes.changed(); });
}

QString BatteryMonitor::shell(const QString& command)
{
    const auto out = childprocess::run("/bin/zsh", {"-c", command}, childprocess::Channels::Merged);
    const auto text = out ? childprocess::decodeUtf8(*out) : std::nullopt;
    return text.value_or(QString());
}

QList<BatteryDevice> BatteryMonitor::getBatteryDevices()
{
    const auto [pmset, ioreg] = m_source->texts();
    return parseBatteryDevices(pmset, ioreg);
}

QString BatteryMonitor::getComputerName()
{
    const QString name = m_source->computerName();
    return name.isEmpty() ? systemwords::computerName : outside::cutText(name);
}

QList<BatteryDevice> BatteryMonitor::parseBatteryDevices(const QString& pmsetText, const QString& ioregText)
{
    return QList<BatteryDevice>{parseInternalBattery(pmsetText)} + parseAccessories(ioregText);
}

BatteryDevice BatteryMonitor::parseInternalBattery(const QString& pmsetText)
{
    const auto match = percentPattern().match(pmsetText);
    const qint64 percent = match.hasMatch() ? number(match.capturedView(1)).value_or(100) : 100;
    // "discharging" contains "charging", hence the second half of the test.
    const bool charging =
        pmsetText.contains(QLatin1String("drawing from 'AC Power'")) ||
        (pmsetText.contains(QLatin1String("charging")) && !pmsetText.contains(QLatin1String("discharging")));
    return BatteryDevice{"macbook", "MacBook", percent, charging, "macbook"};
}

QList<BatteryDevice> BatteryMonitor::parseAccessories(const QString& ioregText)
{
    // Blocks are views into the text, so a large listing is read without copying it.
    QList<BatteryDevice> devices;
    const QStringView text(ioregText);
    qsizetype start = 0;
    for (bool hasMarker = false;; hasMarker = true) {
        const qsizetype next = markerKey.in(text, start);
        const QStringView block = text.sliced(start, (next < 0 ? text.size() : next) - start);
        // The piece ahead of the first marker had no marker, so it has no header line.
        if (batteryPercentKey.in(block) >= 0)
            if (const auto device = parseBlock(block, hasMarker))
                devices.append(*device);
        if (next < 0)
            return devices;
        start = next + markerKey.text.size();
    }
}

QString BatteryMonitor::deviceType(const QString& name)
{
    const QString lower = name.toLower();
    static const std::array<std::pair<const char*, const char*>, 7> table = {{
        {"mouse", "mouse"},
        {"keyboard", "keyboard"},
        {"trackpad", "trackpad"},
        {"pencil", "pencil"},
        {"airpods", "airpods"},
        {"headphone", "airpods"},
        {"watch", "watch"},
    }};
    for (const auto& [word, type] : table) {
        if (lower.contains(QLatin1String(word)))
            return QString::fromLatin1(type);
    }
    return QStringLiteral("accessory");
}
