#pragma once
// State of the music widget: the last reading of the music monitor, the artwork picture and the
// glow colour taken from it, the 3 s poll and the transport buttons.
#include "SharedWidgetData.h"

#include <QColor>
#include <QImage>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>
#include <optional>

class QNetworkAccessManager;

class MusicWidgetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    // The reading, as the view shows it; all notify on musicDataChanged.
    Q_PROPERTY(bool playing READ playing NOTIFY musicDataChanged)
    Q_PROPERTY(QString track READ track NOTIFY musicDataChanged)
    Q_PROPERTY(QString artist READ artist NOTIFY musicDataChanged)
    Q_PROPERTY(QString sourceLabel READ sourceLabel NOTIFY musicDataChanged)
    Q_PROPERTY(QColor sourceColor READ sourceColor NOTIFY musicDataChanged)

    Q_PROPERTY(QColor glowColor READ glowColor NOTIFY glowColorChanged)
    // What the frame glows with: glowColor while playing, clear otherwise.
    Q_PROPERTY(QColor frameGlowColor READ frameGlowColor NOTIFY frameGlowColorChanged)
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(bool hasImage READ hasImage NOTIFY imageChanged)
    // Bound by the view to its visibility: polls only while true.
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)

    Q_PROPERTY(QColor accentPink READ accentPink CONSTANT)
    Q_PROPERTY(QColor accentOrange READ accentOrange CONSTANT)

  public:
    static constexpr int pollIntervalMs = 3000;
    static constexpr int followUpMs = 300;
    static constexpr qint64 maxLocalArtworkBytes = 8 * 1024 * 1024;

    explicit MusicWidgetModel(QObject* parent = nullptr);

    static QColor accentPink() { return QColor(255, 55, 95); }
    static QColor accentOrange() { return QColor(255, 159, 10); }
    static QColor spotifyGreen() { return QColor(29, 185, 84); }

    // Display rules, free of any view.
    static QString displayText(const std::optional<QString>& text); // "—" for absent
    static QString sourceLabelFor(const std::optional<QString>& source);
    static QColor sourceColorFor(const std::optional<QString>& source);
    // An artwork address worth fetching: http or https with a host, or a readable local file of at
    // most maxLocalArtworkBytes; invalid otherwise.
    static QUrl artworkUrl(const QString& address);
    // Mean of a 10 by 10 grid of samples at 0, 10 ... 90 % of each side; nothing for an empty image.
    static std::optional<QColor> averageColor(const QImage& image);

    const MusicData& musicData() const { return m_musicData; }
    bool playing() const { return m_musicData.playing; }
    QString track() const { return displayText(m_musicData.track); }
    QString artist() const { return displayText(m_musicData.artist); }
    QString sourceLabel() const { return sourceLabelFor(m_musicData.source); }
    QColor sourceColor() const { return sourceColorFor(m_musicData.source); }
    QColor glowColor() const { return m_glowColor; }
    QColor frameGlowColor() const { return playing() ? m_glowColor : QColor(Qt::transparent); }
    QImage image() const { return m_image; }
    bool hasImage() const { return !m_image.isNull(); }
    bool active() const { return m_active; }
    void setActive(bool active);
    bool isPolling() const { return m_timer.isActive(); }

    Q_INVOKABLE void refreshMusic();
    Q_INVOKABLE void control(const QString& action);
    // Returns at once; the picture and then the colour arrive when the download ends.
    void extractAverageColor(const std::optional<QString>& address);

  signals:
    void musicDataChanged();
    void glowColorChanged();
    void frameGlowColorChanged();
    void imageChanged();
    void activeChanged();
    // Each download that ends, whatever came of it.
    void artworkDownloadFinished();

  private:
    void setGlowColor(const QColor& color);
    void setImage(const QImage& image);

    MusicData m_musicData;
    QColor m_glowColor = accentPink();
    QImage m_image;
    bool m_active = false;
    QTimer m_timer;
    QNetworkAccessManager* m_network = nullptr;
};
