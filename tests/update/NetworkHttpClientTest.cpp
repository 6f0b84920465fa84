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
    QByteArray outcome(const QByteArray& path, NetworkHttpClient& through)
    {
        const auto response = fetch(through, server.url(path));
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
    NetworkHttpClient small{HttpLimits{10s, 16}};
    NetworkHttpClient impatient{HttpLimits{400ms}};
};

TEST_F(UpdateNetworkHttpClient, GivesBodyAndStatusOrFailsForEachWayAServerAnswers)
{
    // The https target is a listening server: the client must not even connect to it.
    LoopbackServer target;
    const QByteArray https = target.url("/feed.json").toEncoded().replace("http:", "https:");
    Route first = Route::redirect(server.url("/late").toEncoded());
    first.delay = 250ms;
    Route late = Route::reply(200, "late");
    late.delay = 250ms;
    const QByteArray mib(kMiB, 'x');
    struct Row
    {
        QByteArray path;
        Route route;
        NetworkHttpClient& through;
        QByteArray outcome;
    };
    const Row rows[]{
        // An error status is no transfer error.
        {"/feed.json", Route::reply(200, R"({"version":"1.0"})"), client, R"(200 {"version":"1.0"})"},
        {"/missing", Route::reply(404, "<html>Not Found</html>", "text/html"), client, "404 <html>Not Found</html>"},
        {"/broken", Route::reply(500, "{}"), client, "500 {}"},
        // A body over the limit fails, whether declared or found out while reading; so does one cut short.
        {"/limit", Route::reply(200, mib), client, "200 " + mib},
        {"/limit-streamed", Route::untilClose(mib), client, "200 " + mib},
        {"/declared", Route::reply(200, mib + ' '), client, "<failed>"},
        {"/streamed", Route::untilClose(mib + ' '), client, "<failed>"},
        {"/16", Route::untilClose(QByteArray(16, 'a')), small, "200 " + QByteArray(16, 'a')},
        {"/17", Route::untilClose(QByteArray(17, 'a')), small, "<failed>"},
        {"/short", {.response = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"version\":"}, client, "<failed>"},
        // A redirect is followed only when it keeps the scheme.
        {"/old", Route::redirect(server.url("/new").toEncoded()), client, "200 moved"},
        {"/relative", Route::redirect("/new", 301), client, "200 moved"},
        {"/to-https", Route::redirect(https), client, "<failed>"},
        {"/to-ftp", Route::redirect("ftp://127.0.0.1/feed.json"), client, "<failed>"},
        {"/to-file", Route::redirect("file:///etc/hostname"), client, "<failed>"},
        // The deadline covers the whole transfer: a silent server, and the time before a redirect too.
        {"/silent", {.response = {}, .answer = false}, impatient, "<failed>"},
        {"/first", first, impatient, "<failed>"},
    };
    server.setRoute("/new", Route::reply(200, "moved"));
    server.setRoute("/late", late);
    for (const auto& row : rows) {
        server.setRoute(row.path, row.route);
    }
    for (const auto& row : rows) {
        EXPECT_EQ(outcome(row.path, row.through), row.outcome) << row.path.constData();
    }
    EXPECT_EQ(server.requestCount("/silent"), 1);
    runUntil([] { return false; }, 50ms);
    EXPECT_EQ(target.connectionCount(), 0);
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
