#include "DefaultsSuite.h"

#include "AtomicFile.h"
#include "SettingsLog.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

Q_LOGGING_CATEGORY(lcSettings, "ombrix.settings", QtWarningMsg)

namespace {

// The largest value of each kind the app ever stores is a few hundred bytes (a weather location,
// four device names); anything far past that is damage, and would cost every start its reading.
constexpr qsizetype maxLineBytes = 64 * 1024;

QString configRoot(const QString& configDir)
{
    if (!configDir.isEmpty())
        return configDir;
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/OmbrixWidget";
}

bool usableName(const QString& name)
{
    return !name.isEmpty() && !name.contains('/') && name != "." && name != "..";
}

QJsonObject encodeLine(const QString& key, const QVariant& v)
{
    QJsonObject line{{"k", key}};
    switch (v.typeId()) {
    case QMetaType::Bool:
        line.insert("bool", v.toBool());
        break;
    case QMetaType::QString:
        line.insert("string", v.toString());
        break;
    case QMetaType::QByteArray:
        line.insert("data", QString::fromLatin1(v.toByteArray().toBase64()));
        break;
    default:
        line.insert("list", QJsonArray::fromStringList(v.toStringList()));
        break;
    }
    return line;
}

std::optional<QVariant> decodeLine(const QJsonObject& line)
{
    if (const auto v = line.value("bool"); v.isBool())
        return QVariant(v.toBool());
    if (const auto v = line.value("string"); v.isString())
        return QVariant(v.toString());
    if (const auto v = line.value("data"); v.isString()) {
        const auto decoded =
            QByteArray::fromBase64Encoding(v.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            return std::nullopt;
        return QVariant(*decoded);
    }
    if (const auto v = line.value("list"); v.isArray()) {
        QStringList out;
        for (const auto& e : v.toArray()) {
            if (!e.isString())
                return std::nullopt;
            out.append(e.toString());
        }
        return QVariant(out);
    }
    return std::nullopt;
}

} // namespace

DefaultsSuite::DefaultsSuite(QString path) : m_path(std::move(path))
{
    load();
}

std::unique_ptr<DefaultsSuite> DefaultsSuite::open(const QString& suiteName, const QString& configDir)
{
    if (!usableName(suiteName))
        return nullptr;
    const QString root = configRoot(configDir);
    if (!QDir().mkpath(root))
        return nullptr;
    const QString path = root + "/" + suiteName + ".json";
    const QFileInfo info(path);
    if (info.exists() && (!info.isFile() || !info.isReadable()))
        return nullptr;
    return std::unique_ptr<DefaultsSuite>(new DefaultsSuite(path));
}

std::unique_ptr<DefaultsSuite> DefaultsSuite::standard(const QString& configDir)
{
    const QString root = configRoot(configDir);
    QDir().mkpath(root);
    return std::unique_ptr<DefaultsSuite>(new DefaultsSuite(root + "/standard.json"));
}

void DefaultsSuite::load()
{
    QFile f(m_path);
    if (!f.open(QIODevice::ReadOnly))
        return;
    // One value per line: a truncated or damaged line is skipped and the others still load.
    while (!f.atEnd()) {
        const QByteArray raw = f.readLine().trimmed();
        if (raw.isEmpty() || raw.size() > maxLineBytes)
            continue;
        const auto doc = QJsonDocument::fromJson(raw);
        if (!doc.isObject()) {
            qCWarning(lcSettings) << "skipping a damaged line of" << m_path;
            continue;
        }
        const auto line = doc.object();
        const auto key = line.value("k");
        if (!key.isString())
            continue;
        if (const auto value = decodeLine(line))
            m_values.insert(key.toString(), *value);
    }
    m_synced = encoded();
}

const QVariant* DefaultsSuite::find(const QString& key, int typeId) const
{
    const auto it = m_values.constFind(key);
    return it == m_values.cend() || it->typeId() != typeId ? nullptr : &*it;
}

std::optional<bool> DefaultsSuite::boolForKey(const QString& key) const
{
    const QVariant* v = find(key, QMetaType::Bool);
    return v ? std::optional(v->toBool()) : std::nullopt;
}

std::optional<QString> DefaultsSuite::stringForKey(const QString& key) const
{
    const QVariant* v = find(key, QMetaType::QString);
    return v ? std::optional(v->toString()) : std::nullopt;
}

std::optional<QByteArray> DefaultsSuite::dataForKey(const QString& key) const
{
    const QVariant* v = find(key, QMetaType::QByteArray);
    return v ? std::optional(v->toByteArray()) : std::nullopt;
}

std::optional<QStringList> DefaultsSuite::stringArrayForKey(const QString& key) const
{
    const QVariant* v = find(key, QMetaType::QStringList);
    return v ? std::optional(v->toStringList()) : std::nullopt;
}

void DefaultsSuite::setObject(const QVariant& value, const QString& key)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::QString:
    case QMetaType::QByteArray:
    case QMetaType::QStringList:
        m_values.insert(key, value);
        break;
    default:
        break;
    }
}

void DefaultsSuite::removeObject(const QString& key)
{
    m_values.remove(key);
}

QByteArray DefaultsSuite::encoded() const
{
    QByteArray out;
    for (auto it = m_values.cbegin(); it != m_values.cend(); ++it) {
        out += QJsonDocument(encodeLine(it.key(), it.value())).toJson(QJsonDocument::Compact);
        out += '\n';
    }
    return out;
}

bool DefaultsSuite::synchronize()
{
    // A value set again as it was (every enabled widget at launch) costs no write.
    const QByteArray out = encoded();
    if (out == m_synced)
        return true;
    // On failure the values stay in memory, so the next successful save writes them all.
    if (!atomicfile::replace(m_path, out)) {
        qCWarning(lcSettings) << "could not write" << m_path;
        return false;
    }
    m_synced = out;
    return true;
}
