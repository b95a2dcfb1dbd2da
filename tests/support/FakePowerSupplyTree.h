#pragma once
// A power-supply tree in a temporary folder, laid out as the kernel's /sys/class/power_supply:
// one folder per supply, one small file per attribute.
#include <QDir>
#include <QFile>
#include <QList>
#include <QPair>
#include <QTemporaryDir>

class FakePowerSupplyTree {
  public:
    using Attributes = QList<QPair<QString, QByteArray>>;

    QString root() const { return m_dir.path(); }

    // Writes each attribute as "<value>\n", the way the kernel shows them.
    void addSupply(const QString& name, const Attributes& attributes)
    {
        for (const auto& [attribute, value] : attributes)
            writeRaw(name, attribute, value + '\n');
    }
    // Raw bytes, for files the kernel would never write.
    void writeRaw(const QString& supply, const QString& attribute, const QByteArray& bytes)
    {
        QDir(root()).mkpath(supply);
        QFile file(root() + '/' + supply + '/' + attribute);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(bytes);
    }

    // The usual members.
    void addLaptopBattery(const QString& name, int capacity, const QByteArray& status)
    {
        addSupply(name, {{"type", "Battery"}, {"capacity", QByteArray::number(capacity)}, {"status", status}});
    }
    void addMains(const QString& name, bool online)
    {
        addSupply(name, {{"type", "Mains"}, {"online", online ? "1" : "0"}});
    }
    void addDeviceBattery(const QString& name, const QByteArray& model, int capacity)
    {
        addSupply(name, {{"type", "Battery"},
                         {"scope", "Device"},
                         {"model_name", model},
                         {"capacity", QByteArray::number(capacity)},
                         {"status", "Discharging"}});
    }

  private:
    QTemporaryDir m_dir;
};
