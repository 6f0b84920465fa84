// The update check end to end: the real network client against a web server on 127.0.0.1 that
// the test runs, with recorded dialogs and browser.

#include "update/UpdateChecker.h"
#include "update/SiteAddresses.h"

#include "desktop/NetworkHttpClient.h"
#include "sim/SimulatedAlerts.h"
#include "sim/SimulatedBundleInfo.h"
#include "sim/SimulatedHttpClient.h"
#include "sim/SimulatedWorkspace.h"

#include "CountingHttpClient.h"
#include "LoopbackServer.h"
#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

using namespace std::chrono_literals;

namespace orvanta::services {

void PrintTo(const Alert& alert, std::ostream* out)
{
    *out << '{' << ::testing::PrintToString(alert.messageText) << ", "
         << ::testing::PrintToString(alert.informativeText) << ", " << ::testing::PrintToString(alert.buttons) << '}';
}

} // namespace orvanta::services

namespace orvanta::update {
namespace {

using services::Alert;
using testing::CountingHttpClient;
using testing::LoopbackServer;
using testing::Route;
using testing::runUntil;

const QByteArray kFeedPath = "/downloads/orvanta-latest.json";
const QString kDownload = QStringLiteral("https://orvanta.example/downloads/orvanta-1.5.0.tar.gz");
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

// The interface language's table for the dialogs' texts, in Spanish; other keys stay as they are.
QString spanish(const QString& key)
{
    static const QHash<QString, QString> table = {
        {"is Available", "está Disponible"},
        {"Download", "Descargar"},
        {"Later", "Más tarde"},
        {"You are up to date!", "¡Estás al día!"},
        {"Version %@ is the latest version.", "La versión %@ es la última versión."},
        {"Update Check Failed", "Error al Buscar Actualizaciones"},
        {"Could not check for updates. Please try again later.",
         "No se pudo buscar actualizaciones. Por favor, inténtelo de nuevo más tarde."},
    };
    return table.value(key, key);
}

class UpdateCheckerTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(server.listening()); }

    std::unique_ptr<UpdateChecker> makeChecker(UpdateChecker::Translate translate = {})
    {
        return std::make_unique<UpdateChecker>(
            std::move(translate),
            services::PlatformServices{.http = &http, .alerts = &alerts, .workspace = &workspace, .bundle = &bundle},
            server.url(kFeedPath));
    }

    // Waits until this many checks have ended, dialogs included.
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
    EXPECT_EQ(server.requestCount(kFeedPath), 2);
    EXPECT_EQ(alerts.shown, GetParam().shown);
    EXPECT_EQ(workspace.opened, GetParam().opened);
}

// Numbers compare by value, not as text; the rules themselves are the comparison's own tests.
const QList<Alert> kNewer{offered("1.10", "Download Update"), offered("1.10")};
const QList<Alert> kFailed{kFailure};

INSTANTIATE_TEST_SUITE_P(
    Feeds, UpdateCheckerOutcome,
    ::testing::Values(
        Case{"Newer", Route::reply(200, feed("1.10")), "1.9", kNewer, {kDownload, kDownload}},
        Case{"ServerErrorWithAValidFeed", Route::reply(500, feed("1.10")), "1.9", kNewer, {kDownload, kDownload}},
        Case{"HttpDownloadAddress",
             Route::reply(200, feed("1.10", "http://orvanta.example/get")),
             "1.9",
             kNewer,
             {QUrl("http://orvanta.example/get"), QUrl("http://orvanta.example/get")}},
        Case{"Same", Route::reply(200, feed("1.4.1")), "1.4.1", {upToDate("1.4.1")}, {}},
        Case{"UnversionedBuildIsZero", Route::reply(200, feed("0")), std::nullopt, {upToDate("0")}, {}},
        Case{"Older", Route::reply(200, feed("1.9")), "1.10", {upToDate("1.10")}, {}},
        Case{"NoReleaseNotes", Route::reply(200, R"({"version":"9.0","download_url":"u"})"), "1.4.1", kFailed, {}},
        Case{"NotFoundPage",
             Route::reply(404, "<!DOCTYPE html><html>Not Found</html>", "text/html"),
             "1.4.1",
             kFailed,
             {}},
        Case{"CutShort", {.response = "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{"}, "1.4.1", kFailed, {}}),
    [](const ::testing::TestParamInfo<Case>& row) { return row.param.name; });

class UpdateCheckerBadDownloadAddress : public UpdateCheckerTest, public ::testing::WithParamInterface<const char*>
{};

// Download with an address that is no web address, or Later with a good one.
TEST_P(UpdateCheckerBadDownloadAddress, DownloadClosesTheDialogAndOpensNothing)
{
    const bool later = QByteArray(GetParam()) == "Later";
    server.setRoute(kFeedPath, Route::reply(200, feed("1.5.0", later ? kDownload : QString::fromUtf8(GetParam()))));
    if (later) {
        alerts.choices = {1, 1};
    }
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown.size(), 2) << "the dialogs come all the same";
    EXPECT_TRUE(workspace.opened.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(NotAWebAddress, UpdateCheckerBadDownloadAddress,
                         ::testing::Values("not a valid address", "", "https://exa mple.com/download",
                                           "file:///etc/passwd", "javascript:alert(1)", "/downloads/orvanta.tar.gz",
                                           "https://", "Later"));

TEST_F(UpdateCheckerTest, UserDialogsAreTranslatedAndTheLaunchDialogIsNot)
{
    // The server answers only once both requests are waiting, so the checks overlap.
    Route both = Route::reply(200, feed("1.5.0"));
    both.holdUntilRequests = 2;
    server.setRoute(kFeedPath, both);
    auto checker = makeChecker(spanish);
    checker->checkForUpdatesAtLaunch();
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown.size(), 2);
    EXPECT_TRUE(alerts.shown.contains(offered("1.5.0", "Download Update")));
    EXPECT_TRUE(alerts.shown.contains(Alert{"Orvanta 1.5.0 está Disponible", kNotes, {"Descargar", "Más tarde"}}));

    server.setRoute(kFeedPath, Route::reply(200, feed("1.4.1")));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(3));
    server.setRoute(kFeedPath, Route::reply(200, "{}"));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(4));
    EXPECT_EQ(alerts.shown.mid(2),
              (QList<Alert>{{"¡Estás al día!", "La versión 1.4.1 es la última versión.", {"OK"}},
                            {"Error al Buscar Actualizaciones",
                             "No se pudo buscar actualizaciones. Por favor, inténtelo de nuevo más tarde.",
                             {"OK"}}}));
}

TEST_F(UpdateCheckerTest, NoDialogWithoutAFeedAddressOrAChecker)
{
    auto checker = makeChecker();
    checker->setFeedUrl(QUrl());
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    runUntil([] { return false; }, 100ms);
    EXPECT_TRUE(http.requests.isEmpty());

    // A checker gone before the answer came.
    Route late = Route::reply(200, feed("1.5.0"));
    late.delay = 200ms;
    server.setRoute(kFeedPath, late);
    checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(runUntil([&] { return server.requestCount(kFeedPath) == 2; }, 10s));
    checker.reset();
    ASSERT_TRUE(ended(2));
    EXPECT_TRUE(alerts.shown.isEmpty());
}

TEST(UpdateFeed, IsReadFromTheConfiguredSite)
{
    EXPECT_EQ(UpdateChecker::defaultFeedUrl().toString(), QString(websiteAddress()) + "/downloads/orvanta-latest.json");
}

} // namespace
} // namespace orvanta::update
