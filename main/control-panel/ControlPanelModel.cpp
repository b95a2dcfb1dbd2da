#include "ControlPanelModel.h"

#include "Autostart.h"
#include "PanelLog.h"
#include "SettingsManager.h"
#include "WeatherMonitor.h"

#include <QCoreApplication>
#include <QQuickWindow>

Q_LOGGING_CATEGORY(lcPanel, "ombrix.panel", QtWarningMsg)

const QColor ControlPanelModel::systemGray = QColor(142, 142, 147);
const QColor ControlPanelModel::statusGreen = QColor(48, 209, 88);
const QColor ControlPanelModel::statusRed = QColor(255, 69, 58);

ControlPanelModel::ControlPanelModel(QObject* parent) : QObject(parent)
{
    appear();
}

void ControlPanelModel::setScrollY(double y)
{
    m_scrollY = y;
    emit scrollYChanged();
}

void ControlPanelModel::setActiveTab(const QString& tab)
{
    m_activeTab = tab;
    emit activeTabChanged();
}

void ControlPanelModel::appear()
{
    const WeatherSettings w = SettingsManager::shared().weatherSettings();
    m_weatherAutoMode = !w.useManual;
    m_manualCity = w.city;
    emit weatherAutoModeChanged();
    emit manualCityChanged();
}

void ControlPanelModel::setLaunchAtLogin(bool enabled)
{
    autostart::setEnabled(enabled, QCoreApplication::applicationFilePath());
    refreshLaunchAtLogin();
}

void ControlPanelModel::refreshLaunchAtLogin()
{
    m_launchAtLogin = autostart::isEnabled();
    emit launchAtLoginChanged();
}

void ControlPanelModel::setManualCity(const QString& city)
{
    m_manualCity = city;
    emit manualCityChanged();
}

void ControlPanelModel::setWeatherAutoMode(bool automatic)
{
    m_weatherAutoMode = automatic;
    emit weatherAutoModeChanged();
    auto& s = SettingsManager::shared();
    WeatherSettings copy = s.weatherSettings();
    copy.useManual = !automatic;
    s.saveWeatherSettings(copy);
}

void ControlPanelModel::saveManualLocation()
{
    const QString name = m_manualCity.trimmed();
    if (name.isEmpty())
        return;
    setSearchInProgress(true);
    setGeoStatus(QString::fromUtf8("Ricerca in corso…"), systemGray);
    WeatherMonitor::shared().searchCityCoordinates(
        name, this, [this](const WeatherResult<std::optional<WeatherSettings>>& result) {
            if (const auto* found = std::get_if<std::optional<WeatherSettings>>(&result)) {
                if (found->has_value()) {
                    SettingsManager::shared().saveWeatherSettings(**found);
                    setGeoStatus(QString::fromUtf8("✓ Impostato su ") + (*found)->city, statusGreen);
                } else {
                    qCDebug(lcPanel) << "no city found";
                    setGeoStatus(QString::fromUtf8("Città non trovata"), statusRed);
                }
            } else {
                setGeoStatus("Errore di rete", statusRed);
            }
            setSearchInProgress(false);
        });
}

void ControlPanelModel::setGeoStatus(const QString& text, const QColor& color)
{
    m_geoStatusText = text;
    m_geoStatusColor = color;
    emit geoStatusChanged();
}

void ControlPanelModel::setSearchInProgress(bool running)
{
    m_searchInProgress = running;
    emit searchInProgressChanged();
}

void ControlPanelModel::startWindowMove(QQuickItem* item)
{
    if (item && item->window())
        item->window()->startSystemMove();
}

void ControlPanelModel::hideWindow(QQuickItem* item)
{
    if (item && item->window())
        item->window()->hide();
}

void ControlPanelModel::minimizeWindow(QQuickItem* item)
{
    if (item && item->window())
        item->window()->showMinimized();
}
