// The simulated services the update check runs on in tests and without a network, and the
// build information of the real program.

#include "linux/BuildBundleInfo.h"
#include "sim/services/SimulatedAlerts.h"
#include "sim/services/SimulatedBundleInfo.h"
#include "sim/services/SimulatedHttpClient.h"
#include "sim/services/SimulatedWorkspace.h"

#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QThread>

#include <optional>

using namespace std::chrono_literals;

namespace orvanta::sim {
namespace {

using platform::HttpResponse;

TEST(UpdateSimulatedHttpClient, AnswersWithTheCannedResponseLater)
{
    SimulatedHttpClient http;
    http.responses.insert("https://orvanta.example/feed.json", HttpResponse{"{}", 500, {}});
    std::optional<HttpResponse> received;
    QThread* handlerThread = nullptr;
    http.getInBackground(QUrl("https://orvanta.example/feed.json"), [&](const HttpResponse& response) {
        handlerThread = QThread::currentThread();
        return platform::HttpClient::Continuation([&received, response] { received = response; });
    });
    EXPECT_FALSE(received.has_value()) << "answered before the call returned";
    ASSERT_TRUE(testing::waitUntil([&] { return received.has_value(); }, 10s));
    EXPECT_EQ(received->body, "{}");
    EXPECT_EQ(received->status, 500);
    EXPECT_EQ(received->error, "");
    EXPECT_NE(handlerThread, QCoreApplication::instance()->thread());
    EXPECT_EQ(http.requests, QList<QUrl>{QUrl("https://orvanta.example/feed.json")});
}

TEST(UpdateSimulatedHttpClient, AnAddressWithoutResponseFails)
{
    SimulatedHttpClient http;
    http.responses.insert("https://orvanta.example/other", HttpResponse{"{}", 200, {}});
    std::optional<HttpResponse> received;
    http.get(QUrl("https://orvanta.example/feed.json"), [&](const HttpResponse& response) { received = response; });
    ASSERT_TRUE(testing::waitUntil([&] { return received.has_value(); }, 10s));
    EXPECT_NE(received->error, "");
    EXPECT_TRUE(received->body.isEmpty());
}

TEST(UpdateSimulatedAlerts, RecordsEachAlertAndAnswersAsScripted)
{
    SimulatedAlerts alerts;
    alerts.choices = {1, -1};
    alerts.defaultChoice = 0;
    const platform::Alert first{"Message", "Details", {"Download", "Later"}};
    const platform::Alert second{"Other", "", {"OK"}};
    EXPECT_EQ(alerts.runModal(first), 1);
    EXPECT_EQ(alerts.runModal(second), -1);
    EXPECT_EQ(alerts.runModal(first), 0);
    EXPECT_EQ(alerts.shown, (QList<platform::Alert>{first, second, first}));
}

TEST(UpdateSimulatedWorkspace, RecordsTheOpenedAddresses)
{
    SimulatedWorkspace workspace;
    EXPECT_TRUE(workspace.openUrl(QUrl("https://orvanta.example/a")));
    EXPECT_TRUE(workspace.openUrl(QUrl("https://orvanta.example/b")));
    EXPECT_EQ(workspace.opened, (QList<QUrl>{QUrl("https://orvanta.example/a"), QUrl("https://orvanta.example/b")}));
}

TEST(UpdateBundleInfo, CarriesTheBuildVersionOrNone)
{
    EXPECT_EQ(linux_platform::BuildBundleInfo("1.4.2").shortVersionString(), std::optional<QString>("1.4.2"));
    EXPECT_EQ(linux_platform::BuildBundleInfo("").shortVersionString(), std::nullopt);
    EXPECT_EQ(SimulatedBundleInfo(std::nullopt).shortVersionString(), std::nullopt);
    EXPECT_EQ(SimulatedBundleInfo("0.9").shortVersionString(), std::optional<QString>("0.9"));
}

} // namespace
} // namespace orvanta::sim
