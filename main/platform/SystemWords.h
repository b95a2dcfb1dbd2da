#pragma once
// Words that name the system the program runs on. A macOS build speaks of its own machines and
// apps; elsewhere the same places speak of Linux and of kinds of device. Stored keys never change
// with them.
#include <QList>
#include <QString>

namespace systemwords {

struct DeviceCategory {
    QString label;
    QString key; // as stored in the settings
};

#ifdef Q_OS_MACOS
inline const QString panelSubtitle = QStringLiteral("Widget premium per macOS");
inline const QString computerName = QStringLiteral("MacBook");
inline const QString defaultPlayer = QStringLiteral("Apple Music");
inline const QString musicSources = QStringLiteral("Spotify, Apple Music in tempo reale");
inline const QList<DeviceCategory> deviceCategories = {
    {"MacBook", "macbook"}, {"Apple Watch", "watch"}, {"Magic Mouse", "mouse"}, {"AirPods", "airpods"}};
#else
inline const QString panelSubtitle = QStringLiteral("Widget premium per Linux");
inline const QString computerName = QStringLiteral("Computer");
inline const QString defaultPlayer = QStringLiteral("Musica");
inline const QString musicSources = QStringLiteral("Spotify e ogni lettore MPRIS in tempo reale");
inline const QList<DeviceCategory> deviceCategories = {
    {"Computer", "macbook"}, {"Smartwatch", "watch"}, {"Mouse e tastiere", "mouse"}, {"Cuffie", "airpods"}};
#endif

} // namespace systemwords
