// One getNowPlaying through the MPRIS runner, against the test player on a private session bus:
// what the music widget's 3 s poll costs the main thread.
#include "MprisScriptRunner.h"
#include "MusicMonitor.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QProcess>
#include <QThread>
#include <benchmark/benchmark.h>

namespace {

bool nameOwned(const QString& name)
{
    for (int i = 0; i < 250; ++i) {
        if (QDBusConnection::sessionBus().interface()->isServiceRegistered(name).value())
            return true;
        QThread::msleep(20);
    }
    return false;
}

void BM_NowPlayingSpotify(benchmark::State& state)
{
    MusicMonitor monitor(std::make_unique<MprisScriptRunner>());
    for (auto _ : state)
        benchmark::DoNotOptimize(monitor.getNowPlaying());
}
BENCHMARK(BM_NowPlayingSpotify)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
    if (!daemon.waitForStarted() || !daemon.waitForReadyRead())
        return 1;
    // Set before the first bus use, so the session bus is the private one.
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());

    const QString buildDir = qEnvironmentVariable("OMBRIX_BUILD_DIR", QCoreApplication::applicationDirPath() + "/..");
    QProcess player;
    player.start(QDir(buildDir).filePath("tests/support/ombrix-test-mpris-player"),
                 {"--name", "spotify", "--title", "Song", "--artist", "Band", "--art-url", "https://i/x.jpg"});
    int rc = 1;
    if (player.waitForStarted() && nameOwned("org.mpris.MediaPlayer2.spotify")) {
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
        rc = 0;
    }
    player.kill();
    player.waitForFinished();
    daemon.kill();
    daemon.waitForFinished();
    return rc;
}
