#pragma once
// A power-supply tree in a temporary folder, laid out as the kernel's /sys/class/power_supply:
// one folder per supply, one small file per attribute.
#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QTemporaryDir>

class FakePowerSupplyTree {
  public:
    using Attributes = QList<QPair<QString, QByteArray>>;

    QString root() const { return m_dir.path(); }

    // Writes each attribute as "<value>\n", the way the kernel shows them.
    void addSupply(const QString& name, const Attributes& attributes);
    // Raw bytes, for files the kernel would never write.
    void writeRaw(const QString& supply, const QString& attribute, const QByteArray& bytes);

    // The usual members.
    void addLaptopBattery(const QString& name, int capacity, const QByteArray& status);
    void addMains(const QString& name, bool online);
    void addDeviceBattery(const QString& name, const QByteArray& model, int capacity);

  private:
    QTemporaryDir m_dir;
};
