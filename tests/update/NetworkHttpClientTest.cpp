// The QtNetwork client against a web server on 127.0.0.1 that misbehaves on purpose.

#include "linux/NetworkHttpClient.h"

#include "support/EventLoop.h"
#include "support/LoopbackServer.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <optional>

using namespace std::chrono_literals;

namespace orvanta::linux_platform {
namespace {

using platform::HttpResponse;
using testing::LoopbackServer;
using testing::Route;
using testing::waitUntil;

constexpr qint64 kMiB = 1024 * 1024;

class UpdateNetworkHttpClient : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(server.listening()); }

    // Fetches url and waits (bounded) for the response on the main thread.
    std::optional<HttpResponse> fetch(NetworkHttpClient& through, const QUrl& url)
    {
        std::optional<HttpResponse> received;
        through.get(url, [&](const HttpResponse& response) { received = response; });
        EXPECT_FALSE(received.has_value()) << "the response came before get() returned";
        EXPECT_TRUE(waitUntil([&] { return received.has_value(); }, 15s)) << url.toString().toStdString();
        return received;
    }

    std::optional<HttpResponse> fetch(const QByteArray& path) { return fetch(client, server.url(path)); }

    LoopbackServer server;
    NetworkHttpClient client{HttpLimits{10s}};
};

TEST_F(UpdateNetworkHttpClient, DeliversBodyAndStatus)
{
    server.setRoute("/feed.json", Route::reply(200, R"({"version":"1.0"})"));
    const auto response = fetch("/feed.json");
    ASSERT_TRUE(response.has_value());
    EXPECT_EQ(response->error, "");
    EXPECT_EQ(response->status, 200);
    EXPECT_EQ(response->body, R"({"version":"1.0"})");
    EXPECT_EQ(server.requests(), QList<QByteArray>{"/feed.json"});
}

TEST_F(UpdateNetworkHttpClient, AnHttpErrorStatusIsNoTransferError)
{
    const QByteArray page = "<html><body>Not Found</body></html>";
    server.setRoute("/missing", Route::reply(404, page, "text/html"));
    server.setRoute("/broken", Route::reply(500, "{}"));

    const auto missing = fetch("/missing");
    ASSERT_TRUE(missing.has_value());
    EXPECT_EQ(missing->error, "");
    EXPECT_EQ(missing->status, 404);
    EXPECT_EQ(missing->body, page);

    const auto broken = fetch("/broken");
    ASSERT_TRUE(broken.has_value());
    EXPECT_EQ(broken->error, "");
    EXPECT_EQ(broken->status, 500);
    EXPECT_EQ(broken->body, "{}");
}

TEST_F(UpdateNetworkHttpClient, HandlesTheResponseOffTheMainThreadAndContinuesOnIt)
{
    server.setRoute("/feed.json", Route::reply(200, "{}"));
    QThread* handlerThread = nullptr;
    QThread* continuationThread = nullptr;
    client.getInBackground(server.url("/feed.json"), [&](const HttpResponse& response) {
        handlerThread = QThread::currentThread();
        EXPECT_EQ(response.body, "{}");
        return platform::HttpClient::Continuation([&] { continuationThread = QThread::currentThread(); });
    });
    ASSERT_TRUE(waitUntil([&] { return continuationThread != nullptr; }, 15s));
    EXPECT_NE(handlerThread, nullptr);
    EXPECT_NE(handlerThread, QCoreApplication::instance()->thread());
    EXPECT_EQ(continuationThread, QCoreApplication::instance()->thread());
}

TEST_F(UpdateNetworkHttpClient, ABodyOfExactlyTheLimitIsDelivered)
{
    const QByteArray body(kMiB, 'x');
    server.setRoute("/limit", Route::reply(200, body));
    server.setRoute("/limit-streamed", Route::untilClose(body));
    for (const QByteArray& path : {QByteArray("/limit"), QByteArray("/limit-streamed")}) {
        const auto response = fetch(path);
        ASSERT_TRUE(response.has_value());
        EXPECT_EQ(response->error, "") << path.constData();
        EXPECT_EQ(response->body.size(), kMiB) << path.constData();
    }
}

TEST_F(UpdateNetworkHttpClient, ABodyOverTheLimitFails)
{
    const QByteArray body(kMiB + 1, ' ');
    // Declared in advance, and found out only while reading.
    server.setRoute("/declared", Route::reply(200, body));
    server.setRoute("/streamed", Route::untilClose(body));
    for (const QByteArray& path : {QByteArray("/declared"), QByteArray("/streamed")}) {
        const auto response = fetch(path);
        ASSERT_TRUE(response.has_value());
        EXPECT_NE(response->error, "") << path.constData();
        EXPECT_TRUE(response->body.isEmpty()) << path.constData();
    }
}

TEST_F(UpdateNetworkHttpClient, ALimitCanBeSmaller)
{
    NetworkHttpClient small{HttpLimits{10s, 16}};
    server.setRoute("/17", Route::untilClose(QByteArray(17, 'a')));
    server.setRoute("/16", Route::untilClose(QByteArray(16, 'a')));
    const auto over = fetch(small, server.url("/17"));
    const auto within = fetch(small, server.url("/16"));
    ASSERT_TRUE(over.has_value() && within.has_value());
    EXPECT_NE(over->error, "");
    EXPECT_EQ(within->error, "");
    EXPECT_EQ(within->body, QByteArray(16, 'a'));
}

TEST_F(UpdateNetworkHttpClient, ABodyCutShortFails)
{
    Route route;
    route.response = "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 100\r\n\r\n{\"version\":";
    server.setRoute("/short", route);
    const auto response = fetch("/short");
    ASSERT_TRUE(response.has_value());
    EXPECT_NE(response->error, "");
    EXPECT_TRUE(response->body.isEmpty());
}

TEST_F(UpdateNetworkHttpClient, FollowsARedirectThatKeepsTheScheme)
{
    server.setRoute("/old", Route::redirect(server.url("/new").toEncoded()));
    server.setRoute("/relative", Route::redirect("/new", 301));
    server.setRoute("/new", Route::reply(200, "moved"));
    for (const QByteArray& path : {QByteArray("/old"), QByteArray("/relative")}) {
        const auto response = fetch(path);
        ASSERT_TRUE(response.has_value());
        EXPECT_EQ(response->error, "") << path.constData();
        EXPECT_EQ(response->body, "moved") << path.constData();
    }
    EXPECT_EQ(server.requests(), (QList<QByteArray>{"/old", "/new", "/relative", "/new"}));
}

TEST_F(UpdateNetworkHttpClient, RefusesARedirectToAnotherScheme)
{
    // The https target is a listening server: the client must not even connect to it.
    LoopbackServer target;
    ASSERT_TRUE(target.listening());
    const QByteArray https = "https://127.0.0.1:" + QByteArray::number(target.port()) + "/feed.json";
    server.setRoute("/to-https", Route::redirect(https));
    server.setRoute("/to-ftp", Route::redirect("ftp://127.0.0.1/feed.json"));
    server.setRoute("/to-file", Route::redirect("file:///etc/hostname"));
    for (const QByteArray& path : {QByteArray("/to-https"), QByteArray("/to-ftp"), QByteArray("/to-file")}) {
        const auto response = fetch(path);
        ASSERT_TRUE(response.has_value());
        EXPECT_NE(response->error, "") << path.constData();
        EXPECT_TRUE(response->body.isEmpty()) << path.constData();
    }
    testing::spinFor(50ms);
    EXPECT_EQ(target.connectionCount(), 0);
}

TEST_F(UpdateNetworkHttpClient, GivesUpOnAServerThatNeverAnswers)
{
    NetworkHttpClient impatient{HttpLimits{300ms}};
    server.setRoute("/silent", Route::silent());
    QElapsedTimer elapsed;
    elapsed.start();
    const auto response = fetch(impatient, server.url("/silent"));
    ASSERT_TRUE(response.has_value());
    EXPECT_NE(response->error, "");
    EXPECT_EQ(response->status, 0);
    EXPECT_GE(elapsed.elapsed(), 250);
    EXPECT_LT(elapsed.elapsed(), 10'000);
    EXPECT_EQ(server.requestCount("/silent"), 1);
}

TEST_F(UpdateNetworkHttpClient, TheDeadlineCoversTheWholeTransfer)
{
    // Redirected to a late answer: the time spent before the redirect counts too.
    NetworkHttpClient impatient{HttpLimits{400ms}};
    Route late = Route::reply(200, "late");
    late.delay = 250ms;
    Route first = Route::redirect(server.url("/late").toEncoded());
    first.delay = 250ms;
    server.setRoute("/first", first);
    server.setRoute("/late", late);
    const auto response = fetch(impatient, server.url("/first"));
    ASSERT_TRUE(response.has_value());
    EXPECT_NE(response->error, "");
    EXPECT_TRUE(response->body.isEmpty());
}

TEST_F(UpdateNetworkHttpClient, RefusesAddressesThatAreNotWebAddresses)
{
    for (const QUrl& url : {QUrl("file:///etc/hostname"), QUrl("ftp://127.0.0.1/feed.json"), QUrl(),
                            QUrl("data:application/json,{}"), QUrl("http:///no-host")}) {
        const auto response = fetch(client, url);
        ASSERT_TRUE(response.has_value());
        EXPECT_NE(response->error, "") << url.toString().toStdString();
        EXPECT_TRUE(response->body.isEmpty());
    }
    EXPECT_EQ(server.connectionCount(), 0);
}

TEST_F(UpdateNetworkHttpClient, AClosedPortFails)
{
    const QUrl url = server.url("/feed.json");
    server.close();
    const auto response = fetch(client, url);
    ASSERT_TRUE(response.has_value());
    EXPECT_NE(response->error, "");
    EXPECT_EQ(response->status, 0);
}

TEST_F(UpdateNetworkHttpClient, ManyRequestsAtOnceEachGetTheirOwnResponse)
{
    for (int index = 0; index < 8; ++index) {
        server.setRoute("/item/" + QByteArray::number(index), Route::reply(200, QByteArray::number(index * index)));
    }
    QHash<int, QByteArray> bodies;
    for (int index = 0; index < 8; ++index) {
        client.get(server.url(QStringLiteral("/item/%1").arg(index)),
                   [&bodies, index](const HttpResponse& response) { bodies.insert(index, response.body); });
    }
    ASSERT_TRUE(waitUntil([&] { return bodies.size() == 8; }, 15s));
    for (int index = 0; index < 8; ++index) {
        EXPECT_EQ(bodies.value(index), QByteArray::number(index * index));
    }
}

TEST_F(UpdateNetworkHttpClient, TheDefaultLimitsAreThirtySecondsAndOneMebibyte)
{
    const NetworkHttpClient defaults;
    EXPECT_EQ(defaults.limits().timeout, 30s);
    EXPECT_EQ(defaults.limits().maxBodySize, kMiB);
}

} // namespace
} // namespace orvanta::linux_platform
