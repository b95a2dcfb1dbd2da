#pragma once
// A named defaults suite: typed values under string keys, one file per suite in the user's config
// directory. Each value is one JSON line tagged with its kind, so every value (an empty list or a
// one-element list included) reads back exactly in another process, and a damaged line costs only
// its own key.
#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>

class DefaultsSuite {
  public:
    // Opens the named suite below `configDir` (the user's config directory when empty). Gives
    // nothing when the suite cannot be used there.
    static std::unique_ptr<DefaultsSuite> open(const QString& suiteName, const QString& configDir = {});
    // The process's own suite; always gives one.
    static std::unique_ptr<DefaultsSuite> standard(const QString& configDir = {});

    // Missing keys and values of another kind give nothing.
    std::optional<bool> boolForKey(const QString& key) const;
    std::optional<QString> stringForKey(const QString& key) const;
    std::optional<QByteArray> dataForKey(const QString& key) const;
    std::optional<QStringList> stringArrayForKey(const QString& key) const;

    // Takes bool, QString, QByteArray or QStringList; any other kind is dropped.
    void setObject(const QVariant& value, const QString& key);
    void removeObject(const QString& key);
    // Writes the whole suite atomically, unless the file already holds exactly that; false when the
    // write failed, the file then as it was and the values kept here for the next call.
    bool synchronize();

  private:
    explicit DefaultsSuite(QString path);
    void load();
    QByteArray encoded() const;
    // The stored value under `key` if it is of that kind.
    const QVariant* find(const QString& key, int typeId) const;

    QString m_path;
    QMap<QString, QVariant> m_values;
    QByteArray m_synced; // what the file holds as far as this process knows
};
