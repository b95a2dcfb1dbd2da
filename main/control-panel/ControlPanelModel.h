#pragma once
// The Control Panel's view state and what its location, login and window controls do. The other
// controls bind to the settings store and call its typed setters, whose signals the application follows.
#include <QColor>
#include <QObject>
#include <QQuickItem>
#include <QVariantList>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

class ControlPanelModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString activeTab READ activeTab WRITE setActiveTab NOTIFY activeTabChanged)
    Q_PROPERTY(bool weatherAutoMode READ weatherAutoMode WRITE setWeatherAutoMode NOTIFY weatherAutoModeChanged)
    Q_PROPERTY(QString manualCity READ manualCity WRITE setManualCity NOTIFY manualCityChanged)
    Q_PROPERTY(QString geoStatusText READ geoStatusText NOTIFY geoStatusChanged)
    Q_PROPERTY(QColor geoStatusColor READ geoStatusColor NOTIFY geoStatusChanged)
    Q_PROPERTY(bool searchInProgress READ searchInProgress NOTIFY searchInProgressChanged)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    // Where the content was scrolled to: the scene is made anew each time the panel is shown.
    Q_PROPERTY(double scrollY READ scrollY WRITE setScrollY NOTIFY scrollYChanged)

  public:
    static const QColor systemGray;
    static const QColor statusGreen;
    static const QColor statusRed;

    explicit ControlPanelModel(QObject* parent = nullptr);

    QString activeTab() const { return m_activeTab; }
    void setActiveTab(const QString& tab);
    bool weatherAutoMode() const { return m_weatherAutoMode; }
    // The automatic-location switch: also stores useManual as its negation.
    void setWeatherAutoMode(bool automatic);
    QString manualCity() const { return m_manualCity; }
    void setManualCity(const QString& city);
    QString geoStatusText() const { return m_geoStatusText; }
    QColor geoStatusColor() const { return m_geoStatusColor; }
    bool searchInProgress() const { return m_searchInProgress; }
    // Start at login: read from the autostart entry, which the switch writes or removes.
    bool launchAtLogin() const { return m_launchAtLogin; }
    void setLaunchAtLogin(bool enabled);
    // Reads the entry again, for when it was changed outside the panel.
    Q_INVOKABLE void refreshLaunchAtLogin();

    double scrollY() const { return m_scrollY; }
    void setScrollY(double y);

    // The location controls take the stored values: once, when the panel is first made; after that
    // the panel's own state (a city typed and not saved) outlives the scene.
    Q_INVOKABLE void appear();

    Q_INVOKABLE void saveManualLocation();

    // The window has no title bar: it is moved by a press on its background and has its own
    // close (which only hides it) and minimise controls.
    Q_INVOKABLE void startWindowMove(QQuickItem* item);
    Q_INVOKABLE void hideWindow(QQuickItem* item);
    Q_INVOKABLE void minimizeWindow(QQuickItem* item);

  signals:
    void activeTabChanged();
    void weatherAutoModeChanged();
    void manualCityChanged();
    void geoStatusChanged();
    void searchInProgressChanged();
    void launchAtLoginChanged();
    void scrollYChanged();

  private:
    void setGeoStatus(const QString& text, const QColor& color);
    void setSearchInProgress(bool running);

    QString m_activeTab = "widgets";
    bool m_weatherAutoMode = true;
    QString m_manualCity;
    QString m_geoStatusText;
    QColor m_geoStatusColor = systemGray;
    bool m_searchInProgress = false;
    bool m_launchAtLogin = false;
    double m_scrollY = 0;
};
