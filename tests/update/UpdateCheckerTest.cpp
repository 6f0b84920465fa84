// The update check end to end: the real network client against a web server on 127.0.0.1 that
// the test runs, with recorded dialogs and browser.

#include "update/UpdateChecker.h"
#include "update/SiteAddresses.h"

#include "linux/NetworkHttpClient.h"
#include "sim/services/SimulatedAlerts.h"
#include "sim/services/SimulatedBundleInfo.h"
#include "sim/services/SimulatedHttpClient.h"
#include "sim/services/SimulatedWorkspace.h"

#include "support/CountingHttpClient.h"
#include "support/EventLoop.h"
#include "support/LoopbackServer.h"
#include "support/Printers.h"
#include "support/SpanishTexts.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>

using namespace std::chrono_literals;

namespace orvanta::update {
namespace {

using platform::Alert;
using testing::CountingHttpClient;
using testing::LoopbackServer;
using testing::Route;
using testing::SpanishTexts;
using testing::waitUntil;

const QByteArray kFeedPath = "/downloads/orvanta-latest.json";
const QString kDownloadAddress = QStringLiteral("https://orvanta.example/downloads/orvanta-1.5.0.tar.gz");
const QString kNotes = QStringLiteral("Faster start.\nFixes the delay slider.");

QByteArray feedDocument(const QJsonObject& members)
{
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

QByteArray feed(const QString& version, const QString& downloadAddress = kDownloadAddress)
{
    return feedDocument({{"version", version}, {"download_url", downloadAddress}, {"release_notes", kNotes}});
}

Alert upToDate(const QString& installed)
{
    return {"You are up to date!", "Version " + installed + " is the latest version.", {"OK"}};
}

const Alert kFailure{"Update Check Failed", "Could not check for updates. Please try again later.", {"OK"}};

class UpdateCheckerTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(server.listening()); }

    std::unique_ptr<UpdateChecker> makeChecker(UpdateChecker::Translate translate = {})
    {
        platform::PlatformServices services;
        services.http = http.get();
        services.alerts = &alerts;
        services.workspace = &workspace;
        services.bundle = &bundle;
        return std::make_unique<UpdateChecker>(std::move(translate), services, server.url(kFeedPath));
    }

    void serve(const Route& route) { server.setRoute(kFeedPath, route); }

    // Waits until this many checks have ended, dialogs included.
    bool ended(int checks = 1)
    {
        return waitUntil([&] { return http->finishedCount() >= checks; }, 15s);
    }

    void useTimeout(std::chrono::milliseconds timeout)
    {
        http.reset();
        network = std::make_unique<linux_platform::NetworkHttpClient>(linux_platform::HttpLimits{timeout});
        http = std::make_unique<CountingHttpClient>(*network);
    }

    LoopbackServer server;
    std::unique_ptr<linux_platform::NetworkHttpClient> network =
        std::make_unique<linux_platform::NetworkHttpClient>(linux_platform::HttpLimits{10s});
    std::unique_ptr<CountingHttpClient> http = std::make_unique<CountingHttpClient>(*network);
    sim::SimulatedAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.4.1")};
};

TEST_F(UpdateCheckerTest, UserCheckOffersANewerVersionAndOpensItsDownloadAddress)
{
    serve(Route::reply(200, feed("1.5.0")));
    auto checker = makeChecker();
    checker->checkForUpdates();
    ASSERT_TRUE(ended());

    ASSERT_EQ(server.requests(), QList<QByteArray>{kFeedPath});
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0], (Alert{"Orvanta 1.5.0 is Available", kNotes, {"Download", "Later"}}));
    EXPECT_EQ(workspace.opened, QList<QUrl>{QUrl(kDownloadAddress)});
}

TEST_F(UpdateCheckerTest, LaterOpensNothing)
{
    serve(Route::reply(200, feed("1.5.0")));
    alerts.choices = {1, 1};
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));

    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_TRUE(workspace.opened.isEmpty());
}

TEST_F(UpdateCheckerTest, LaunchCheckShowsTheFixedEnglishDialogForANewerVersion)
{
    serve(Route::reply(200, feed("1.5.0")));
    auto checker = makeChecker();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended());

    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0], (Alert{"Orvanta 1.5.0 is Available", kNotes, {"Download Update", "Later"}}));
    EXPECT_EQ(workspace.opened, QList<QUrl>{QUrl(kDownloadAddress)});
}

TEST_F(UpdateCheckerTest, AMemberOfAnotherTypeFailsTheWholeFeed)
{
    serve(Route::reply(
        200,
        feedDocument(
            {{"version", "1.5.0"}, {"download_url", kDownloadAddress}, {"release_notes", kNotes}, {"size", 1048576}})));
    auto checker = makeChecker();
    checker->checkForUpdates();
    ASSERT_TRUE(ended());
    EXPECT_EQ(alerts.shown, QList<Alert>{kFailure});

    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(server.requestCount(kFeedPath), 2);
    EXPECT_EQ(alerts.shown.size(), 1) << "the launch check stays silent on failure";
    EXPECT_TRUE(workspace.opened.isEmpty());
}

TEST_F(UpdateCheckerTest, MissingReleaseNotesFailTheFeed)
{
    serve(Route::reply(200, feedDocument({{"version", "9.0"}, {"download_url", kDownloadAddress}})));
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, QList<Alert>{kFailure});
}

TEST_F(UpdateCheckerTest, NotFoundWithAnHtmlPageIsAFailure)
{
    serve(Route::reply(404, "<!DOCTYPE html><html><body><h1>Not Found</h1></body></html>", "text/html"));
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, QList<Alert>{kFailure});
}

TEST_F(UpdateCheckerTest, ServerErrorWithAValidFeedCountsAsSuccess)
{
    serve(Route::reply(500, feed("1.5.0")));
    auto checker = makeChecker();
    checker->checkForUpdates();
    ASSERT_TRUE(ended());
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));

    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_EQ(alerts.shown[0].buttons, (QStringList{"Download", "Later"}));
    EXPECT_EQ(alerts.shown[1].buttons, (QStringList{"Download Update", "Later"}));
    EXPECT_EQ(alerts.shown[1].messageText, "Orvanta 1.5.0 is Available");
}

TEST_F(UpdateCheckerTest, ABuildWithoutAVersionComparesAgainstZero)
{
    bundle.shortVersion.reset();
    auto checker = makeChecker();
    EXPECT_EQ(checker->installedVersion(), "0");

    serve(Route::reply(200, feed("0.0.1")));
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended());
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Orvanta 0.0.1 is Available");

    serve(Route::reply(200, feed("0")));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_EQ(alerts.shown[1], upToDate("0"));
}

TEST_F(UpdateCheckerTest, TheBuildVersionIsTheInstalledOne)
{
    bundle.shortVersion = QStringLiteral("2.3.4");
    auto checker = makeChecker();
    EXPECT_EQ(checker->installedVersion(), "2.3.4");
}

struct UpToDateCase
{
    const char* installed;
    const char* published;
};

class UpdateCheckerUpToDate : public UpdateCheckerTest, public ::testing::WithParamInterface<UpToDateCase>
{};

TEST_P(UpdateCheckerUpToDate, UserCheckSaysSoAndLaunchCheckStaysSilent)
{
    bundle.shortVersion = QString::fromLatin1(GetParam().installed);
    serve(Route::reply(200, feed(QString::fromLatin1(GetParam().published))));
    auto checker = makeChecker();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended());
    EXPECT_TRUE(alerts.shown.isEmpty());

    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, QList<Alert>{upToDate(QString::fromLatin1(GetParam().installed))});
    EXPECT_EQ(server.requestCount(kFeedPath), 2);
}

INSTANTIATE_TEST_SUITE_P(EqualOrLower, UpdateCheckerUpToDate,
                         ::testing::Values(UpToDateCase{"1.4.1", "1.4.1"}, UpToDateCase{"1.4.1", "1.4.0"},
                                           UpToDateCase{"1.10", "1.9"}, UpToDateCase{"2.0.1", "2.0"},
                                           UpToDateCase{"1.4.1", "1.04.01"}));

TEST_F(UpdateCheckerTest, TenIsNewerThanNine)
{
    bundle.shortVersion = QStringLiteral("1.9");
    serve(Route::reply(200, feed("1.10")));
    auto checker = makeChecker();
    checker->checkForUpdatesAtLaunch();
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    ASSERT_EQ(alerts.shown.size(), 2);
    for (const Alert& shown : alerts.shown) {
        EXPECT_EQ(shown.messageText, "Orvanta 1.10 is Available");
    }
}

class UpdateCheckerBadDownloadAddress : public UpdateCheckerTest, public ::testing::WithParamInterface<const char*>
{};

TEST_P(UpdateCheckerBadDownloadAddress, DownloadClosesTheDialogAndOpensNothing)
{
    serve(Route::reply(200, feed("1.5.0", QString::fromUtf8(GetParam()))));
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    ASSERT_EQ(alerts.shown.size(), 2) << "the dialogs come all the same";
    EXPECT_TRUE(workspace.opened.isEmpty());
}

INSTANTIATE_TEST_SUITE_P(NotAWebAddress, UpdateCheckerBadDownloadAddress,
                         ::testing::Values("not a valid address", "", "https://exa mple.com/download",
                                           "file:///etc/passwd", "javascript:alert(1)", "/downloads/orvanta.tar.gz",
                                           "https://"));

TEST_F(UpdateCheckerTest, AnHttpDownloadAddressIsOpened)
{
    serve(Route::reply(200, feed("1.5.0", "http://orvanta.example/get")));
    auto checker = makeChecker();
    checker->checkForUpdates();
    ASSERT_TRUE(ended());
    EXPECT_EQ(workspace.opened, QList<QUrl>{QUrl("http://orvanta.example/get")});
}

TEST_F(UpdateCheckerTest, UserDialogsAreTranslatedAndTheLaunchDialogIsNot)
{
    SpanishTexts spanish;
    auto checker = makeChecker(spanish);

    serve(Route::reply(200, feed("1.5.0")));
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(1));
    EXPECT_TRUE(spanish.asked->isEmpty()) << "the launch check looks nothing up";
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));

    serve(Route::reply(200, feed("1.4.1")));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(3));

    serve(Route::reply(200, "{}"));
    checker->checkForUpdates();
    ASSERT_TRUE(ended(4));

    const QList<Alert> expected = {
        {"Orvanta 1.5.0 is Available", kNotes, {"Download Update", "Later"}},
        {"Orvanta 1.5.0 está Disponible", kNotes, {"Descargar", "Más tarde"}},
        {"¡Estás al día!", "La versión 1.4.1 es la última versión.", {"OK"}},
        {"Error al Buscar Actualizaciones",
         "No se pudo buscar actualizaciones. Por favor, inténtelo de nuevo más tarde.",
         {"OK"}},
    };
    EXPECT_EQ(alerts.shown, expected);
    EXPECT_EQ(workspace.opened.size(), 2);
}

TEST_F(UpdateCheckerTest, TwoChecksAtOnceEachShowTheirOwnDialog)
{
    // The server answers only once both requests are waiting, so the checks must overlap.
    Route route = Route::reply(200, feed("1.5.0"));
    route.holdUntilRequests = 2;
    serve(route);
    auto checker = makeChecker(SpanishTexts{});
    checker->checkForUpdatesAtLaunch();
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));

    ASSERT_EQ(alerts.shown.size(), 2);
    QStringList firstButtons;
    for (const Alert& shown : alerts.shown) {
        firstButtons.append(shown.buttons.value(0));
    }
    firstButtons.sort();
    EXPECT_EQ(firstButtons, (QStringList{"Descargar", "Download Update"}));
    EXPECT_EQ(workspace.opened.size(), 2);
}

TEST_F(UpdateCheckerTest, TwoUserChecksAtOnceShowTwoDialogs)
{
    Route route = Route::reply(200, feed("1.4.1"));
    route.holdUntilRequests = 2;
    serve(route);
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdates();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, (QList<Alert>{upToDate("1.4.1"), upToDate("1.4.1")}));
}

TEST_F(UpdateCheckerTest, AServerThatNeverAnswersEndsInAFailureAfterTheTimeout)
{
    useTimeout(400ms);
    serve(Route::silent());
    auto checker = makeChecker();
    QElapsedTimer elapsed;
    elapsed.start();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_GE(elapsed.elapsed(), 350);
    EXPECT_LT(elapsed.elapsed(), 10'000);
    EXPECT_EQ(server.requestCount(kFeedPath), 2);
    EXPECT_EQ(alerts.shown, QList<Alert>{kFailure});
}

TEST_F(UpdateCheckerTest, AnUnreachableServerIsAFailure)
{
    server.close();
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(ended(2));
    EXPECT_EQ(alerts.shown, QList<Alert>{kFailure});
}

TEST_F(UpdateCheckerTest, AFeedAddressThatIsNoAddressEndsWithoutASign)
{
    auto checker = makeChecker();
    checker->setFeedUrl(QUrl());
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    testing::spinFor(100ms);
    EXPECT_TRUE(http->requests.isEmpty());
    EXPECT_TRUE(alerts.shown.isEmpty());
}

TEST_F(UpdateCheckerTest, ACheckerGoneBeforeTheAnswerShowsNothing)
{
    Route route = Route::reply(200, feed("1.5.0"));
    route.delay = 200ms;
    serve(route);
    auto checker = makeChecker();
    checker->checkForUpdates();
    checker->checkForUpdatesAtLaunch();
    ASSERT_TRUE(waitUntil([&] { return server.requestCount(kFeedPath) == 2; }, 10s));
    checker.reset();
    ASSERT_TRUE(ended(2));
    EXPECT_TRUE(alerts.shown.isEmpty());
}

TEST_F(UpdateCheckerTest, TheDefaultFeedIsOnTheConfiguredSite)
{
    const QUrl site(websiteAddress());
    const QUrl feedUrl = UpdateChecker::defaultFeedUrl();
    EXPECT_TRUE(feedUrl.isValid());
    EXPECT_EQ(feedUrl.scheme(), site.scheme());
    EXPECT_EQ(feedUrl.host(), site.host());
    EXPECT_EQ(feedUrl.path(), site.path() + "/downloads/orvanta-latest.json");
    EXPECT_EQ(QUrl(privacyPolicyAddress()).path(), site.path() + "/privacy/orvanta.html");
    EXPECT_EQ(QUrl(termsOfUseAddress()).path(), site.path() + "/terms/orvanta.html");
    EXPECT_TRUE(QUrl(donationAddress()).isValid());
    EXPECT_EQ(makeChecker()->feedUrl(), server.url(kFeedPath));
    EXPECT_EQ(UpdateChecker().feedUrl(), feedUrl);
}

TEST(UpdateSharedChecker, TranslatesThroughTheRegisteredFunction)
{
    // The shared checker keeps the services it was created over for the rest of the process,
    // so they live as long.
    static sim::SimulatedHttpClient canned;
    static CountingHttpClient http(canned);
    static sim::SimulatedAlerts alerts;
    static sim::SimulatedBundleInfo bundle;
    auto& current = platform::PlatformServices::current();
    const platform::PlatformServices saved = current;
    current.http = &http;
    current.alerts = &alerts;
    current.bundle = &bundle;

    UpdateChecker& shared = UpdateChecker::shared();
    current = saved;
    EXPECT_EQ(&shared, &UpdateChecker::shared());
    EXPECT_EQ(shared.feedUrl(), UpdateChecker::defaultFeedUrl());
    canned.responses.insert(shared.feedUrl().toString(), platform::HttpResponse{"not json", 200, {}});
    alerts.shown.clear();
    const int before = http.finishedCount();

    // Registered after the shared checker exists: it still applies.
    UpdateChecker::setSharedTranslator(SpanishTexts{});
    shared.checkForUpdates();
    ASSERT_TRUE(waitUntil([&] { return http.finishedCount() == before + 1; }, 10s));
    UpdateChecker::setSharedTranslator({});
    shared.checkForUpdates();
    ASSERT_TRUE(waitUntil([&] { return http.finishedCount() == before + 2; }, 10s));

    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_EQ(alerts.shown[0].messageText, "Error al Buscar Actualizaciones");
    EXPECT_EQ(alerts.shown[1], kFailure);
}

} // namespace
} // namespace orvanta::update
