#pragma once
// For whole-app tests: a replay server whose replies are files in a folder.
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size() && f.commit();
}

class ReplayProcess : public ReplayServer {
  public:
    explicit ReplayProcess(const QString& dir) : m_dir(dir) { QDir().mkpath(dir); }
    bool start()
    {
        return writeFile(m_dir + "/ip.json", samples::ipMilan) &&
               writeFile(m_dir + "/forecast.json", samples::forecastMilan) && listen();
    }
    // Routes as {"/path": {"file": a file in the folder}}, read now; other paths answer 404.
    void serve(const QByteArray& routes)
    {
        const QJsonObject paths = QJsonDocument::fromJson(routes).object();
        for (auto it = paths.begin(); it != paths.end(); ++it) {
            QFile file(m_dir + '/' + it.value().toObject().value("file").toString());
            if (file.open(QIODevice::ReadOnly))
                setJson(it.key(), file.readAll());
        }
    }
    QList<QByteArray> requests() const { return requestLines(); }

  private:
    QString m_dir;
};
