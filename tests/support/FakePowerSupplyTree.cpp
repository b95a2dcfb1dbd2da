#include "FakePowerSupplyTree.h"

#include <QDir>
#include <QFile>

void FakePowerSupplyTree::addSupply(const QString& name, const Attributes& attributes)
{
    QDir(root()).mkpath(name);
    for (const auto& [attribute, value] : attributes)
        writeRaw(name, attribute, value + '\n');
}

void FakePowerSupplyTree::writeRaw(const QString& supply, const QString& attribute, const QByteArray& bytes)
{
    QDir(root()).mkpath(supply);
    QFile file(root() + '/' + supply + '/' + attribute);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(bytes);
}

void FakePowerSupplyTree::addLaptopBattery(const QString& name, int capacity, const QByteArray& status)
{
    addSupply(name, {{"type", "Battery"}, {"capacity", QByteArray::number(capacity)}, {"status", status}});
}

void FakePowerSupplyTree::addMains(const QString& name, bool online)
{
    addSupply(name, {{"type", "Mains"}, {"online", online ? "1" : "0"}});
}

void FakePowerSupplyTree::addDeviceBattery(const QString& name, const QByteArray& model, int capacity)
{
    addSupply(name, {{"type", "Battery"},
                     {"scope", "Device"},
                     {"model_name", model},
                     {"capacity", QByteArray::number(capacity)},
                     {"status", "Discharging"}});
}
