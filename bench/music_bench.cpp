// What the music widget costs the main thread on MPRIS, against test players on a private session
// bus: one getNowPlaying (the 3 s poll), and the longest stall of the main thread while the widget
// polls and its buttons are pressed with the shown player hung (stopped: it never answers).
// usage: music_bench [--gap-seconds=N] [benchmark options]
#include "MusicMonitor.h"
#include "MusicWidgetModel.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <csignal>
#include <cstdio>

namespace {

bool waitFor(const std::function<bool()>& condition)
{
    for (int i = 0; i < 250; ++i) {
        QCoreApplication::processEvents();
        if (condition())
            return true;
        QThread::msleep(20);
    }
    return false;
}

void BM_NowPlaying(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(MusicMonitor::shared().getNowPlaying());
}
BENCHMARK(BM_NowPlaying)->Unit(benchmark::kMicrosecond);

// Longest gap between the ticks of a 5 ms timer: how long the main thread could not draw a frame.
void measureGaps(int seconds)
{
    MusicWidgetModel model;
    model.setActive(true);
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0, longest = 0, ticks = 0;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        if (last > 0)
            longest = std::max(longest, now - last);
        last = now;
        ++ticks;
    });
    probe.start(5);
    QTimer buttons;
    QObject::connect(&buttons, &QTimer::timeout, [&] { model.control(QStringLiteral("next")); });
    buttons.start(500);
    QTimer::singleShot(seconds * 1000, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    std::printf("main thread over %d s with the shown player hung (polls every 3 s, a button every 0.5 s): "
                "%lld ticks of 5 ms, longest gap %.1f ms\n",
                seconds, ticks, longest / 1e6);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir home; // the widget writes its shared data file there
    qputenv("HOME", home.path().toUtf8());
    int gapSeconds = 10;
    for (int i = 1; i < argc; ++i) {
        if (QByteArray(argv[i]).startsWith("--gap-seconds="))
            gapSeconds = QByteArray(argv[i]).mid(14).toInt();
    }
    QProcess daemon;
    daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
    if (!daemon.waitForStarted() || !daemon.waitForReadyRead())
        return 1;
    // Set before the first bus use, so the session bus is the private one.
    qputenv("DBUS_SESSION_BUS_ADDRESS", daemon.readLine().trimmed());

    const QString buildDir = qEnvironmentVariable("OMBRIX_BUILD_DIR", QCoreApplication::applicationDirPath() + "/..");
    QProcess player;
    player.start(QDir(buildDir).filePath("tests/support/ombrix-test-mpris-player"),
                 {"--name", "hung", "--title", "Song", "--artist", "Band"});
    int rc = 1;
    if (player.waitForStarted() && waitFor([] { return MusicMonitor::shared().getNowPlaying().playing; })) {
        ::kill(pid_t(player.processId()), SIGSTOP);
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
        measureGaps(gapSeconds);
        ::kill(pid_t(player.processId()), SIGCONT);
        rc = 0;
    }
    player.kill();
    player.waitForFinished();
    daemon.kill();
    daemon.waitForFinished();
    return rc;
}
