// ombrix-replay-server <replies-dir> <port-file> <request-log>
// Serves a folder of canned replies (see ReplayServer::serveDirectory) on a free port of 127.0.0.1
// for whole-app runs. The port is written, whole, to <port-file> once it listens; every request
// line is appended to <request-log> as it comes. Runs until killed.
#include "ReplayServer.h"

#include <QCoreApplication>
#include <QFile>
#include <QSaveFile>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const auto args = app.arguments();
    if (args.size() != 4) {
        std::fprintf(stderr, "usage: ombrix-replay-server <replies-dir> <port-file> <request-log>\n");
        return 2;
    }
    QFile log(args[3]);
    if (!log.open(QIODevice::WriteOnly | QIODevice::Append)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(args[3]));
        return 1;
    }
    ReplayServer server;
    server.serveDirectory(args[1]);
    QObject::connect(&server, &ReplayServer::requestReceived, [&log](const QByteArray& line) {
        log.write(line + '\n');
        log.flush();
    });
    if (!server.listen()) {
        std::fprintf(stderr, "cannot listen on 127.0.0.1\n");
        return 1;
    }
    // Written atomically, so whoever waits for the file never reads half a number.
    QSaveFile portFile(args[2]);
    if (!portFile.open(QIODevice::WriteOnly) || portFile.write(QByteArray::number(server.port()) + '\n') < 0 ||
        !portFile.commit()) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(args[2]));
        return 1;
    }
    return app.exec();
}
