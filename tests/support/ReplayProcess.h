#pragma once
// For whole-app tests: a replay server on a folder of replies, answering while a test waits.
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QDir>
#include <QSaveFile>

// Whole or not at all: the server reads its folder again at every request.
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
        serveDirectory(m_dir);
        return writeFile(m_dir + "/ip.json", samples::ipMilan) &&
               writeFile(m_dir + "/forecast.json", samples::forecastMilan) && listen();
    }
    void serve(const QByteArray& routes) { writeFile(m_dir + "/replies.json", routes); }
    QList<QByteArray> requests() const { return requestLines(); }

  private:
    QString m_dir;
};
