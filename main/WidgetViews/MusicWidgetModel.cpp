#include "MusicWidgetModel.h"

#include "MusicMonitor.h"
#include "OutsideData.h"
#include "SettingsManager.h"
#include "SystemWords.h"
#include "ViewsLog.h"

#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>

Q_LOGGING_CATEGORY(lcViews, "ombrix.views", QtWarningMsg)

namespace {
// As long as a download may take before it is given up.
constexpr int downloadTimeoutMs = 60000;
} // namespace

MusicWidgetModel::MusicWidgetModel(QObject* parent) : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(pollIntervalMs);
    connect(&m_timer, &QTimer::timeout, this, &MusicWidgetModel::refreshMusic);
    connect(&MusicMonitor::shared().changes(), &ChangeNotifier::changed, this, [this] {
        if (m_active)
            refreshMusic();
    });
}

QString MusicWidgetModel::displayText(const std::optional<QString>& text)
{
    return text.value_or(QStringLiteral("—"));
}

QString MusicWidgetModel::sourceLabelFor(const std::optional<QString>& source)
{
    // Spotify and Music (by script) by their names; any other player by its own.
    if (source == QStringLiteral("spotify"))
        return QStringLiteral("Spotify");
    if (!source || source == QStringLiteral("music") || source->trimmed().isEmpty())
        return systemwords::defaultPlayer;
    return *source;
}

QColor MusicWidgetModel::sourceColorFor(const std::optional<QString>& source)
{
    return source == QStringLiteral("spotify") ? spotifyGreen() : accentPink();
}

QUrl MusicWidgetModel::artworkUrl(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid())
        return {};
    if (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))
        return url.host().isEmpty() ? QUrl() : url;
    // Players that take the cover from the file or its folder (mpv, VLC, Rhythmbox) give a local file.
    if (url.isLocalFile() && url.host().isEmpty()) {
        const QFileInfo file(url.toLocalFile());
        if (file.isFile() && file.isReadable() && file.size() <= maxLocalArtworkBytes)
            return url;
    }
    return {};
}

std::optional<QColor> MusicWidgetModel::averageColor(const QImage& image)
{
    const int width = image.width();
    const int height = image.height();
    if (width <= 0 || height <= 0)
        return std::nullopt;
    // Alpha is ignored and nothing is weighted: a dark cover gives a dark glow.
    double red = 0, green = 0, blue = 0, count = 0;
    for (int x = 0; x < 10; ++x) {
        for (int y = 0; y < 10; ++y) {
            const int px = int(x / 10.0 * width);
            const int py = int(y / 10.0 * height);
            const QColor c = image.pixelColor(px, py).toRgb();
            if (!c.isValid())
                continue;
            red += c.redF();
            green += c.greenF();
            blue += c.blueF();
            count += 1;
        }
    }
    if (count == 0)
        return std::nullopt;
    return QColor::fromRgbF(float(red / count), float(green / count), float(blue / count), 1.0f);
}

void MusicWidgetModel::setActive(bool active)
{
    m_active = active;
    if (active && !m_timer.isActive()) {
        refreshMusic();
        m_timer.start();
    } else if (!active) {
        m_timer.stop();
    }
    emit activeChanged();
}

void MusicWidgetModel::refreshMusic()
{
    const MusicData reading = MusicMonitor::shared().getNowPlaying();
    const std::optional<QString> previousArtwork = m_musicData.artwork;
    m_musicData = reading;
    emit musicDataChanged();
    emit frameGlowColorChanged();

    SettingsManager::shared().setMusicData(reading);

    // Fetched once per change of artwork, and only while playing.
    if (reading.playing && reading.artwork != previousArtwork) {
        setImage(QImage());
        extractAverageColor(reading.artwork);
    }
}

void MusicWidgetModel::control(const QString& action)
{
    MusicMonitor::shared().controlMusic(action);
    QTimer::singleShot(followUpMs, Qt::PreciseTimer, this, &MusicWidgetModel::refreshMusic);
}

void MusicWidgetModel::extractAverageColor(const std::optional<QString>& address)
{
    const QUrl url = address ? artworkUrl(*address) : QUrl();
    if (url.isEmpty()) {
        setGlowColor(accentPink());
        return;
    }
    if (!m_network)
        m_network = new QNetworkAccessManager(this);
    QNetworkRequest request(url);
    request.setTransferTimeout(downloadTimeoutMs);
    QNetworkReply* reply = m_network->get(request);
    outside::limitBody(reply, outside::maxArtworkBytes);
    // Downloads may overlap; whichever ends last wins. The status is not looked at: a body that
    // decodes as an image is used, anything else changes nothing.
    connect(reply, &QNetworkReply::finished, this, [this, reply] {
        reply->deleteLater();
        const auto body = outside::readBody(reply, outside::maxArtworkBytes);
        const QImage picture = body ? QImage::fromData(*body) : QImage();
        if (!picture.isNull()) {
            setImage(picture);
            if (const auto color = averageColor(picture))
                setGlowColor(*color);
        } else {
            qCDebug(lcViews) << "no artwork in" << reply->url() << reply->errorString();
        }
        emit artworkDownloadFinished();
    });
}

void MusicWidgetModel::setGlowColor(const QColor& color)
{
    m_glowColor = color;
    emit glowColorChanged();
    emit frameGlowColorChanged();
}

void MusicWidgetModel::setImage(const QImage& image)
{
    m_image = image;
    emit imageChanged();
}
