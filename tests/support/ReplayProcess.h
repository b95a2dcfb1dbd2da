#pragma once
// The replay server program in a process of its own, serving a folder whose replies a test may
// change between requests: for whole-app tests, where the app must reach it over loopback.
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSaveFile>

inline bool writeFile(const QString& path, const QByteArray& bytes)
{
    // Whole or not at all: the server reads its folder again at every request.
    QSaveFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size() && f.commit();
}

class ReplayProcess {
  public:
    explicit ReplayProcess(const QString& dir) : m_dir(dir) { QDir().mkpath(dir); }
    ~ReplayProcess()
    {
        m_process.kill();
        m_process.waitForFinished(3000);
    }

    bool start()
    {
        writeFile(m_dir + "/ip.json", samples::ipMilan);
        writeFile(m_dir + "/forecast.json", samples::forecastMilan);
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.start(buildDir() + "/tests/support/ombrix-replay-server",
                        {m_dir, m_dir + "/port", m_dir + "/requests.log"});
        return m_process.waitForStarted(5000) &&
               XSession::waitFor([&] { return QFile::exists(m_dir + "/port"); }, 10000);
    }
    QString baseUrl() const
    {
        QFile f(m_dir + "/port");
        return f.open(QIODevice::ReadOnly) ? "http://127.0.0.1:" + QString::fromLatin1(f.readAll().trimmed())
                                           : QString();
    }
    // Routes as the folder's "replies.json" takes them.
    void serve(const QByteArray& routes) { writeFile(m_dir + "/replies.json", routes); }
    QList<QByteArray> requests() const
    {
        QFile f(m_dir + "/requests.log");
        QList<QByteArray> lines = f.open(QIODevice::ReadOnly) ? f.readAll().split('\n') : QList<QByteArray>();
        lines.removeAll(QByteArray());
        return lines;
    }

  private:
    QString m_dir;
    QProcess m_process;
};
