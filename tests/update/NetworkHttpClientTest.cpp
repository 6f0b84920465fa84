// The QtNetwork client against a web server on 127.0.0.1 that misbehaves on purpose.

#include "desktop/NetworkHttpClient.h"

#include "LoopbackServer.h"
#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <optional>

using namespace std::chrono_literals;

namespace orvanta::desktop {
namespace {

using services::HttpResponse;
using testing::LoopbackServer;
using testing::Route;
using testing::runUntil;

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
        EXPECT_TRUE(runUntil([&] { return received.has_value(); }, 15s)) << url.toString().toStdString();
        return received;
    }

    // The body of a transfer that succeeded, or the reason it failed.
    QByteArray outcome(const QByteArray& path, NetworkHttpClient* through = nullptr)
    {
        const auto response = fetch(through ? *through : client, server.url(path));
        if (!response) {
            return "<no response>";
        }
        if (!response->error.isEmpty()) {
            return response->body.isEmpty() ? "<failed>" : "<failed, with a body>";
        }
        return QByteArray::number(response->status) + " " + response->body;
    }

    LoopbackServer server;
    NetworkHttpClient client{HttpLimits{10s}};
};

TEST_F(UpdateNetworkHttpClient, DeliversBodyAndStatusAndAnErrorStatusIsNoTransferError)
{
    server.setRoute("/feed.json", Route::reply(200, R"({"version":"1.0"})"));
    server.setRoute("/missing", Route::reply(404, "<html>Not Found</html>", "text/html"));
    server.setRoute("/broken", Route::reply(500, "{}"));
    EXPECT_EQ(outcome("/feed.json"), R"(200 {"version":"1.0"})");
    EXPECT_EQ(outcome("/missing"), "404 <html>Not Found</html>");
    EXPECT_EQ(outcome("/broken"), "500 {}");
    EXPECT_EQ(server.requests(), (QList<QByteArray>{"/feed.json", "/missing", "/broken"}));
}

TEST_F(UpdateNetworkHttpClient, HandlesTheResponseOffTheMainThreadAndContinuesOnIt)
{
    server.setRoute("/feed.json", Route::reply(200, "{}"));
    QThread* handlerThread = nullptr;
    QThread* continuationThread = nullptr;
    client.getInBackground(server.url("/feed.json"), [&](const HttpResponse& response) {
        handlerThread = QThread::currentThread();
        EXPECT_EQ(response.body, "{}");
        return services::HttpClient::Continuation([&] { continuationThread = QThread::currentThread(); });
    });
    ASSERT_TRUE(runUntil([&] { return continuationThread != nullptr; }, 15s));
    EXPECT_NE(handlerThread, nullptr);
    EXPECT_NE(handlerThread, QCoreApplication::instance()->thread());
    EXPECT_EQ(continuationThread, QCoreApplication::instance()->thread());
}

TEST_F(UpdateNetworkHttpClient, ABodyOverTheLimitFailsWhetherDeclaredOrFoundOutWhileReading)
{
    NetworkHttpClient small{HttpLimits{10s, 16}};
    server.setRoute("/limit", Route::reply(200, QByteArray(kMiB, 'x')));
    server.setRoute("/limit-streamed", Route::untilClose(QByteArray(kMiB, 'x')));
    server.setRoute("/declared", Route::reply(200, QByteArray(kMiB + 1, ' ')));
    server.setRoute("/streamed", Route::untilClose(QByteArray(kMiB + 1, ' ')));
    server.setRoute("/16", Route::untilClose(QByteArray(16, 'a')));
    server.setRoute("/17", Route::untilClose(QByteArray(17, 'a')));
    EXPECT_EQ(outcome("/limit"), "200 " + QByteArray(kMiB, 'x'));
    EXPECT_EQ(outcome("/limit-streamed"), "200 " + QByteArray(kMiB, 'x'));
    EXPECT_EQ(outcome("/declared"), "<failed>");
    EXPECT_EQ(outcome("/streamed"), "<failed>");
    EXPECT_EQ(outcome("/16", &small), "200 " + QByteArray(16, 'a'));
    EXPECT_EQ(outcome("/17", &small), "<failed>");
}

TEST_F(UpdateNetworkHttpClient, ABodyCutShortFails)
{
    server.setRoute("/short", {.response = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"version\":"});
    EXPECT_EQ(outcome("/short"), "<failed>");
}

TEST_F(UpdateNetworkHttpClient, FollowsARedirectThatKeepsTheSchemeAndRefusesOneThatDoesNot)
{
    // The https target is a listening server: the client must not even connect to it.
    LoopbackServer target;
    const QByteArray https = target.url("/feed.json").toEncoded().replace("http:", "https:");
    server.setRoute("/old", Route::redirect(server.url("/new").toEncoded()));
    server.setRoute("/relative", Route::redirect("/new", 301));
    server.setRoute("/new", Route::reply(200, "moved"));
    server.setRoute("/to-https", Route::redirect(https));
    server.setRoute("/to-ftp", Route::redirect("ftp://127.0.0.1/feed.json"));
    server.setRoute("/to-file", Route::redirect("file:///etc/hostname"));
    EXPECT_EQ(outcome("/old"), "200 moved");
    EXPECT_EQ(outcome("/relative"), "200 moved");
    for (const QByteArray path : {"/to-https", "/to-ftp", "/to-file"}) {
        EXPECT_EQ(outcome(path), "<failed>") << path.constData();
    }
    runUntil([] { return false; }, 50ms);
    EXPECT_EQ(target.connectionCount(), 0);
}

TEST_F(UpdateNetworkHttpClient, TheDeadlineCoversTheWholeTransfer)
{
    // A silent server; and a redirect to a late answer, where the time before the redirect counts too.
    NetworkHttpClient impatient{HttpLimits{400ms}};
    Route first = Route::redirect(server.url("/late").toEncoded());
    first.delay = 250ms;
    Route late = Route::reply(200, "late");
    late.delay = 250ms;
    server.setRoute("/silent", {.response = {}, .answer = false});
    server.setRoute("/first", first);
    server.setRoute("/late", late);
    EXPECT_EQ(outcome("/silent", &impatient), "<failed>");
    EXPECT_EQ(outcome("/first", &impatient), "<failed>");
    EXPECT_EQ(server.requestCount("/silent"), 1);
}

TEST_F(UpdateNetworkHttpClient, RefusesAddressesThatAreNotWebAddressesAndClosedPorts)
{
    const QUrl closed = server.url("/feed.json");
    for (const QUrl& url : {QUrl("file:///etc/hostname"), QUrl("ftp://127.0.0.1/feed.json"), QUrl(),
                            QUrl("data:application/json,{}"), QUrl("http:///no-host")}) {
        const auto response = fetch(client, url);
        ASSERT_TRUE(response.has_value());
        EXPECT_NE(response->error, "") << url.toString().toStdString();
        EXPECT_TRUE(response->body.isEmpty());
    }
    EXPECT_EQ(server.connectionCount(), 0);
    server.close();
    EXPECT_NE(fetch(client, closed)->error, "");
}

TEST_F(UpdateNetworkHttpClient, ManyRequestsAtOnceEachGetTheirOwnResponse)
{
    QHash<int, QByteArray> bodies;
    for (int index = 0; index < 8; ++index) {
        server.setRoute("/item/" + QByteArray::number(index), Route::reply(200, QByteArray::number(index * index)));
    }
    for (int index = 0; index < 8; ++index) {
        client.get(server.url(QStringLiteral("/item/%1").arg(index)),
                   [&bodies, index](const HttpResponse& response) { bodies.insert(index, response.body); });
    }
    ASSERT_TRUE(runUntil([&] { return bodies.size() == 8; }, 15s));
    for (int index = 0; index < 8; ++index) {
        EXPECT_EQ(bodies.value(index), QByteArray::number(index * index));
    }
}

} // namespace
} // namespace orvanta::desktop
