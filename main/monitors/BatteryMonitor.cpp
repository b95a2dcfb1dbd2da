#include "BatteryMonitor.h"

#include "ChildProcess.h"
#include "OutsideData.h"

#include <QRegularExpression>
#include <array>
#include <functional>
#include <string_view>

namespace {

// \d and \s as Unicode reads them; a number in other digits then fails the conversion below.
constexpr auto reOptions = QRegularExpression::UseUnicodePropertiesOption;

const QRegularExpression& percentPattern()
{
    static const QRegularExpression re(QStringLiteral(R"((\d+)%)"), reOptions);
    return re;
}

const QRegularExpression& batteryPercentPattern()
{
    static const QRegularExpression re(QStringLiteral(R"("?BatteryPercent"?\s*=\s*(\d+))"), reOptions);
    return re;
}

const QRegularExpression& headerPattern()
{
    static const QRegularExpression re(QStringLiteral(R"(\+-o\s+([^<]+?)\s+<class)"), reOptions);
    return re;
}

// Unanchored, with an optional leading quote: "Product" also matches "DeviceProduct" and "Name"
// any key ending in Name; the first match in the block wins.
QRegularExpression namePattern(const QString& key)
{
    return QRegularExpression(R"("?)" + QRegularExpression::escape(key) + R"re("?\s*=\s*"([^"]+)")re", reOptions);
}

const std::array<QRegularExpression, 3>& namePatterns()
{
    static const std::array<QRegularExpression, 3> res = {namePattern("Product"), namePattern("DeviceProduct"),
                                                          namePattern("Name")};
    return res;
}

// Group 1 of the first match as a signed 64-bit number, or nothing.
std::optional<qint64> firstNumber(const QRegularExpression& re, QStringView text)
{
    const auto match = re.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    // Only ASCII digits convert, as with Int64(String).
    bool ok = false;
    const qint64 value = match.capturedView(1).toLongLong(&ok);
    return ok ? std::optional(value) : std::nullopt;
}

QStringView firstLine(QStringView block)
{
    static const QRegularExpression lineBreak(QStringLiteral("[\\n\\v\\f\\r\\x{85}\\x{2028}\\x{2029}]"));
    const auto match = lineBreak.match(block);
    return match.hasMatch() ? block.first(match.capturedStart()) : block;
}

// Qt's substring search visits every character; these scans run over the whole listing at every
// poll, so they look for a rare first character (a vectorised scan) or skip ahead by the key's length.
qsizetype indexOfMarker(QStringView text, qsizetype from)
{
    for (qsizetype i = text.indexOf(u'+', from); i >= 0; i = text.indexOf(u'+', i + 1))
        if (text.sliced(i).startsWith(u"+-o"))
            return i;
    return -1;
}

bool hasBatteryPercent(QStringView block)
{
    static constexpr std::u16string_view key = u"BatteryPercent";
    static const std::boyer_moore_horspool_searcher searcher(key.begin(), key.end());
    const char16_t* end = block.utf16() + block.size();
    return std::search(block.utf16(), end, searcher) != end;
}

bool isServiceClassName(const QString& name)
{
    return name == QLatin1String("AppleDeviceManagementHIDEventService") ||
           name == QLatin1String("AppleBluetoothHIDDevice") || name == QLatin1String("AppleDeviceBluetoothHIDDriver");
}

std::optional<BatteryDevice> parseBlock(QStringView block, bool hasMarker)
{
    QString name;
    for (const QRegularExpression& re : namePatterns()) {
        const auto match = re.match(block);
        if (match.hasMatch()) {
            name = match.captured(1);
            break;
        }
    }
    const qint64 percent = firstNumber(batteryPercentPattern(), block).value_or(100);
    if (name.isEmpty() && hasMarker) {
        const auto match = headerPattern().match(QLatin1String("+-o") + firstLine(block).toString());
        if (match.hasMatch())
            name = match.captured(1).trimmed();
    }
    if (isServiceClassName(name) || name.isEmpty())
        return std::nullopt;
    name = outside::cutText(name);
    const QString id = QString(name).replace(' ', '-').toLower();
    return BatteryDevice{id, name, percent, false, BatteryMonitor::deviceType(name)};
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
    const QString pmset = m_source->pmsetText();
    return parseBatteryDevices(pmset, m_source->ioregText());
}

QString BatteryMonitor::getComputerName()
{
    const QString name = m_source->computerName();
    return name.isEmpty() ? QStringLiteral("MacBook") : outside::cutText(name);
}

QList<BatteryDevice> BatteryMonitor::parseBatteryDevices(const QString& pmsetText, const QString& ioregText)
{
    return QList<BatteryDevice>{parseInternalBattery(pmsetText)} + parseAccessories(ioregText);
}

BatteryDevice BatteryMonitor::parseInternalBattery(const QString& pmsetText)
{
    const qint64 percent = firstNumber(percentPattern(), pmsetText).value_or(100);
    // "discharging" contains "charging", hence the second half of the test.
    const bool charging = pmsetText.contains(QLatin1String("drawing from 'AC Power'")) ||
                          (pmsetText.contains(QLatin1String("charging")) &&
                           !pmsetText.contains(QLatin1String("discharging")));
    return BatteryDevice{"macbook", "MacBook", percent, charging, "macbook"};
}

QList<BatteryDevice> BatteryMonitor::parseAccessories(const QString& ioregText)
{
    // Blocks are views into the text, so a large listing is read without copying it.
    QList<BatteryDevice> devices;
    const QStringView text(ioregText);
    constexpr QStringView marker(u"+-o");
    qsizetype start = 0;
    for (bool hasMarker = false;; hasMarker = true) {
        const qsizetype next = indexOfMarker(text, start);
        const QStringView block = text.sliced(start, (next < 0 ? text.size() : next) - start);
        // The piece ahead of the first marker had no marker, so it has no header line.
        if (hasBatteryPercent(block))
            if (const auto device = parseBlock(block, hasMarker))
                devices.append(*device);
        if (next < 0)
            return devices;
        start = next + marker.size();
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
