#include "ReplayServer.h"

#include <QDir>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

struct Answer {
    int status = 0; // 0: no HTTP answer
    QByteArray contentType;
    QByteArray body;
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
};

Answer fetch(const QString& url, int timeoutMs = 5000)
{
    QNetworkAccessManager network;
    QNetworkRequest request{QUrl(url)};
    request.setTransferTimeout(timeoutMs);
    QNetworkReply* reply = network.get(request);
    if (!QTest::qWaitFor([&] { return reply->isFinished(); }, timeoutMs + 5000))
        ADD_FAILURE() << "no reply from " << url.toStdString();
    Answer a{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
             reply->header(QNetworkRequest::ContentTypeHeader).toByteArray(), reply->readAll(),
             reply->error()};
    delete reply;
    return a;
}

void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    f.write(bytes);
}

const QByteArray manifest = R"({
  "/json/": {"file": "ip.json"},
  "/v1/search": {"status": 500, "body": "{\"error\":true}", "contentType": "text/plain"},
  "/v1/forecast": {"hang": true}
})";

} // namespace

TEST(ReplayServer, ServesRepliesByPathAndRecordsRequestLines)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    server.setJson("/a", R"({"x":1})");
    server.setReply("/b", {503, "down", "text/plain"});

    const auto a = fetch(server.baseUrl() + "/a?k=%C3%AC&z=1");
    EXPECT_EQ(a.status, 200);
    EXPECT_EQ(a.body, R"({"x":1})");
    EXPECT_EQ(a.contentType, "application/json; charset=utf-8");
    const auto b = fetch(server.baseUrl() + "/b");
    EXPECT_EQ(b.status, 503);
    EXPECT_EQ(b.body, "down");
    EXPECT_EQ(fetch(server.baseUrl() + "/nothing").status, 404);
    EXPECT_EQ(server.requestLines(), (QList<QByteArray>{"GET /a?k=%C3%AC&z=1 HTTP/1.1", "GET /b HTTP/1.1",
                                                        "GET /nothing HTTP/1.1"}));
}

TEST(ReplayServer, AHangingPathNeverAnswers)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    server.setHang("/slow");
    const auto a = fetch(server.baseUrl() + "/slow", 300);
    EXPECT_EQ(a.status, 0);
    EXPECT_NE(a.error, QNetworkReply::NoError);
    EXPECT_EQ(server.requestLines().size(), 1);
}

TEST(ReplayServer, ADelayedReplyComesWholeAfterItsDelay)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("replies.json"), R"({"/late": {"body": "late", "delayMs": 600}})");
    ReplayServer server;
    server.serveDirectory(dir.path());
    ASSERT_TRUE(server.listen());
    QNetworkAccessManager network;
    QNetworkReply* reply = network.get(QNetworkRequest(QUrl(server.baseUrl() + "/late")));
    ASSERT_TRUE(QTest::qWaitFor([&] { return server.requestLines().size() == 1; }, 5000));
    QTest::qWait(100);
    EXPECT_FALSE(reply->isFinished()); // asked, but not yet answered
    ASSERT_TRUE(QTest::qWaitFor([&] { return reply->isFinished(); }, 5000));
    EXPECT_EQ(reply->readAll(), "late");
    delete reply;
}

TEST(ReplayServer, ReadsAFolderAgainAtEachRequest)
{
    QTemporaryDir dir;
    writeFile(dir.filePath("replies.json"), manifest);
    writeFile(dir.filePath("ip.json"), R"({"city":"Milan"})");
    ReplayServer server;
    server.serveDirectory(dir.path());
    ASSERT_TRUE(server.listen());

    EXPECT_EQ(fetch(server.baseUrl() + "/json/").body, R"({"city":"Milan"})");
    const auto search = fetch(server.baseUrl() + "/v1/search?name=x");
    EXPECT_EQ(search.status, 500);
    EXPECT_EQ(search.body, R"({"error":true})");
    EXPECT_EQ(search.contentType, "text/plain");
    EXPECT_EQ(fetch(server.baseUrl() + "/v1/forecast", 300).status, 0);

    writeFile(dir.filePath("ip.json"), R"({"city":"Rome"})");
    EXPECT_EQ(fetch(server.baseUrl() + "/json/").body, R"({"city":"Rome"})");
    // A broken folder answers nothing but 404.
    writeFile(dir.filePath("replies.json"), "{");
    EXPECT_EQ(fetch(server.baseUrl() + "/json/").status, 404);
    EXPECT_FALSE(ReplayServer::readDirectory(dir.path()));
}

TEST(ReplayServer, TheProgramWritesItsPortAndRequestLog)
{
    const QString program = qEnvironmentVariable("OMBRIX_BUILD_DIR") + "/tests/support/ombrix-replay-server";
    if (!QFile::exists(program))
        GTEST_SKIP() << "ombrix-replay-server not built";
    QTemporaryDir dir;
    writeFile(dir.filePath("replies.json"), manifest);
    writeFile(dir.filePath("ip.json"), R"({"city":"Milan"})");
    const QString portFile = dir.filePath("port");
    const QString log = dir.filePath("requests.log");

    QProcess server;
    server.start(program, {dir.path(), portFile, log});
    ASSERT_TRUE(server.waitForStarted(5000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(portFile); }, 10000));
    QFile f(portFile);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const int port = f.readAll().trimmed().toInt();
    ASSERT_GT(port, 0);

    const QString base = QString("http://127.0.0.1:%1").arg(port);
    EXPECT_EQ(fetch(base + "/json/?fields=lat,lon").body, R"({"city":"Milan"})");
    EXPECT_EQ(fetch(base + "/v1/search?name=Forl%C3%AC").status, 500);
    QFile logFile(log);
    ASSERT_TRUE(logFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(logFile.readAll(),
              "GET /json/?fields=lat,lon HTTP/1.1\nGET /v1/search?name=Forl%C3%AC HTTP/1.1\n");

    server.kill();
    server.waitForFinished(5000);

    QProcess wrongUse;
    wrongUse.start(program, {dir.path()});
    ASSERT_TRUE(wrongUse.waitForFinished(5000));
    EXPECT_EQ(wrongUse.exitCode(), 2);
}
