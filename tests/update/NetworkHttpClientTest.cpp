// The QtNetwork client against a web server on 127.0.0.1 that misbehaves on purpose.

#include "desktop/NetworkHttpClient.h"

#include "LoopbackServer.h"
#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

using namespace std::chrono_literals;

namespace orvanta::desktop {
namespace {

using services::HttpResponse;
using testing::LoopbackServer;
using testing::Route;
using testing::runUntil;

class UpdateNetworkHttpClient : public ::testing::Test
{
protected:
    LoopbackServer server;
    NetworkHttpClient client{HttpLimits{10s}};
};

// All requests at once, each with its own answer: the body and status, or a failure.
TEST_F(UpdateNetworkHttpClient, GivesBodyAndStatusOrFailsForEachWayAServerAnswers)
{
    // The https target is a listening server: the client must not even connect to it.
    LoopbackServer target;
    const QByteArray https = target.url("/feed.json").toEncoded().replace("http:", "https:");
    NetworkHttpClient small{HttpLimits{10s, 16}};
    NetworkHttpClient impatient{HttpLimits{400ms}};
    const QByteArray full(16, 'a');
    LoopbackServer closed;
    closed.close();
    const auto at = [this](const char* path) { return server.url(path); };
    struct Row
    {
        QUrl url;
        Route route;
        NetworkHttpClient& through;
        QByteArray outcome;
    };
    const Row rows[]{
        // A body over the limit fails, whether declared or found out while reading.
        {at("/declared-16"), Route::reply(200, full), small, "200 " + full},
        {at("/declared-17"), Route::reply(200, full + 'a'), small, "<failed>"},
        {at("/16"), Route::untilClose(full), small, "200 " + full},
        {at("/17"), Route::untilClose(full + 'a'), small, "<failed>"},
        // A redirect is followed only when it keeps the scheme.
        {at("/old"), Route::redirect(server.url("/new").toEncoded()), client, "200 moved"},
        {at("/to-https"), Route::redirect(https), client, "<failed>"},
        // The deadline covers the whole transfer.
        {at("/silent"), {.response = {}, .answer = false}, impatient, "<failed>"},
        // An address that is no web address, and a closed port.
        {QUrl("file:///etc/hostname"), {}, client, "<failed>"},
        {closed.url("/feed.json"), {}, client, "<failed>"},
    };
    server.setRoute("/new", Route::reply(200, "moved"));
    QList<QByteArray> outcomes(std::ssize(rows));
    int received = 0;
    for (qsizetype i = 0; i < std::ssize(rows); ++i) {
        server.setRoute(rows[i].url.path().toUtf8(), rows[i].route);
        rows[i].through.get(rows[i].url, [&outcomes, &received, i](const HttpResponse& response) {
            outcomes[i] = response.error.isEmpty()  ? QByteArray::number(response.status) + " " + response.body
                          : response.body.isEmpty() ? QByteArray("<failed>")
                                                    : "<failed, with a body>";
            ++received;
        });
    }
    EXPECT_EQ(received, 0) << "a response came before get() returned";
    ASSERT_TRUE(runUntil([&] { return received == std::ssize(rows); }, 15s));
    for (qsizetype i = 0; i < std::ssize(rows); ++i) {
        EXPECT_EQ(outcomes[i], rows[i].outcome) << rows[i].url.toString().toStdString();
    }
    EXPECT_EQ(server.requestCount("/silent"), 1);
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

} // namespace
} // namespace orvanta::desktop
