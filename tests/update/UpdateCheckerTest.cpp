// The update check end to end: the real network client against a web server on 127.0.0.1.

#include "update/UpdateChecker.h"

#include "desktop/NetworkHttpClient.h"
#include "sim/SimulatedAlerts.h"
#include "sim/SimulatedBundleInfo.h"
#include "sim/SimulatedWorkspace.h"

#include "CountingHttpClient.h"
#include "LoopbackServer.h"
#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

using namespace std::chrono_literals;

namespace orvanta::update {
namespace {

using services::Alert;
using testing::CountingHttpClient;
using testing::LoopbackServer;
using testing::Route;
using testing::runUntil;

const QByteArray kFeedPath = "/downloads/orvanta-latest.json";
const QString kDownload = QStringLiteral("https://orvanta.example/downloads/orvanta-1.5.0.tar.gz");
const QString kHttp = QStringLiteral("http://orvanta.example/get");
const QString kNotes = QStringLiteral("Faster start.\nFixes the delay slider.");
const Alert kFailure{"Update Check Failed", "Could not check for updates. Please try again later.", {"OK"}};

QByteArray feed(const QString& version, const QString& download = kDownload)
{
    const QJsonObject members{{"version", version}, {"download_url", download}, {"release_notes", kNotes}};
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

Alert upToDate(const QString& installed)
{
    return {"You are up to date!", "Version " + installed + " is the latest version.", {"OK"}};
}

Alert offered(const QString& version, const QString& download = "Download")
{
    return {"Orvanta " + version + " is Available", kNotes, {download, "Later"}};
}

class UpdateCheckerTest : public ::testing::Test
{
protected:
    std::unique_ptr<UpdateChecker> makeChecker(UpdateChecker::Translate translate = {})
    {
        return std::make_unique<UpdateChecker>(
            std::move(translate),
            services::PlatformServices{.http = &http, .alerts = &alerts, .workspace = &workspace, .bundle = &bundle},
            server.url(kFeedPath));
    }

    bool ended(int checks)
    {
        return runUntil([&] { return http.finishedCount() >= checks; }, 15s);
    }

    LoopbackServer server;
    desktop::NetworkHttpClient network{desktop::HttpLimits{10s}};
    CountingHttpClient http{network};
    sim::SimulatedAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.4.1")};
};

// The launch check, then the user's, against one answer of the server.
struct Case
{
    const char* name;
    Route answer;
    std::optional<QString> installed; // none: the build carries no version
    QList<Alert> shown;               // the launch check's dialog, if any, then the user's
    QList<QUrl> opened;               // Download is chosen in each dialog that offers it
};

class UpdateCheckerOutcome : public UpdateCheckerTest, public ::testing::WithParamInterface<Case>
{};

TEST_P(UpdateCheckerOutcome, LaunchAndUserChecks)
{
    bundle.shortVersion = GetParam().installed;
    server.setRoute(kFeedPath, GetParam().answer);
    auto checker = makeChecker();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(1));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, GetParam().shown);
    EXPECT_EQ(workspace.opened, GetParam().opened);
}

const QList<Alert> kNewer{offered("1.10", "Download Update"), offered("1.10")};
const QList<Alert> kFailed{kFailure};

INSTANTIATE_TEST_SUITE_P(
    Feeds, UpdateCheckerOutcome,
    ::testing::Values(
        Case{"Newer", Route::reply(200, feed("1.10")), "1.9", kNewer, {kDownload, kDownload}},
        Case{"ServerErrorWithAValidFeed", Route::reply(500, feed("1.10")), "1.9", kNewer, {kDownload, kDownload}},
        Case{"HttpAddress", Route::reply(200, feed("1.10", kHttp)), "1.9", kNewer, {kHttp, kHttp}},
        // Download with an address that is no web address opens nothing.
        Case{"FileAddress", Route::reply(200, feed("1.10", "file:///etc/passwd")), "1.9", kNewer, {}},
        Case{"Same", Route::reply(200, feed("1.4.1")), "1.4.1", {upToDate("1.4.1")}, {}},
        Case{"UnversionedBuildIsZero", Route::reply(200, feed("0")), std::nullopt, {upToDate("0")}, {}},
        Case{"NotFoundPage", Route::reply(404, "<html>Not Found</html>", "text/html"), "1.4.1", kFailed, {}},
        Case{"CutShort", {.response = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{"}, "1.4.1", kFailed, {}}),
    [](const ::testing::TestParamInfo<Case>& row) { return row.param.name; });

TEST_F(UpdateCheckerTest, UserDialogsAreTranslatedAndTheLaunchDialogIsNot)
{
    auto checker = makeChecker([](const QString& key) { return "[" + key + "]"; });
    int checks = 0;
    for (const QByteArray& answer : {feed("1.5.0"), feed("1.4.1"), QByteArray("{}"), feed("1.5.0")}) {
        server.setRoute(kFeedPath, Route::reply(200, answer));
        checks < 3 ? checker->checkForUpdates() : checker->checkForUpdatesAtLaunch();
        ASSERT_TRUE(ended(++checks));
    }
    EXPECT_EQ(alerts.shown, (QList<Alert>{{"Orvanta 1.5.0 [is Available]", kNotes, {"[Download]", "[Later]"}},
                                          {"[You are up to date!]", "[Version 1.4.1 is the latest version.]", {"[OK]"}},
                                          {"[Update Check Failed]", "[" + kFailure.informativeText + "]", {"[OK]"}},
                                          offered("1.5.0", "Download Update")}));
}

// A checker gone before the answer came shows nothing.
TEST_F(UpdateCheckerTest, NoDialogWithoutAChecker)
{
    Route late = Route::reply(200, feed("1.5.0"));
    late.delay = 200ms;
    server.setRoute(kFeedPath, late);
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(runUntil([&] { return server.requestCount(kFeedPath) == 2; }, 10s));
    checker.reset();
    ASSERT_TRUE(ended(2));
    EXPECT_TRUE(alerts.shown.isEmpty());
}

} // namespace
} // namespace orvanta::update
