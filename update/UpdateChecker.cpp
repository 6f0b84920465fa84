#include "UpdateChecker.h"

#include "FeedParser.h"
#include "SiteAddresses.h"
#include "StringFormat.h"
#include "VersionComparison.h"

#include "services/Alerts.h"
#include "services/BundleInfo.h"
#include "services/HttpClient.h"
#include "services/Workspace.h"

#include <QPointer>

namespace orvanta::update {
namespace {

const QString kProductName = QStringLiteral("Orvanta");

// The feed in a response: only a body that arrived without a transfer error counts. The HTTP
// status plays no part.
std::optional<Feed> readFeed(const services::HttpResponse& response)
{
    if (!response.error.isEmpty()) {
        return std::nullopt;
    }
    return parseFeed(response.body);
}

} // namespace

UpdateChecker::UpdateChecker(Translate translate, const services::PlatformServices& services, QUrl feedUrl)
    : translator(std::move(translate)), http(services.http), alerts(services.alerts), workspace(services.workspace),
      bundle(services.bundle), feed(std::move(feedUrl))
{}

QUrl UpdateChecker::defaultFeedUrl()
{
    return QUrl(feedAddress());
}

QString UpdateChecker::installedVersion() const
{
    const std::optional<QString> version = bundle != nullptr ? bundle->shortVersionString() : std::nullopt;
    return version.value_or(QStringLiteral("0"));
}

void UpdateChecker::checkForUpdates()
{
    // The user asked: every outcome is shown, a failure too.
    fetchFeed([](QPointer<UpdateChecker> checker, const QString& installed, std::optional<Feed> latest) {
        return services::HttpClient::Continuation([checker, installed, latest] {
            if (checker.isNull()) {
                return;
            }
            if (latest) {
                checker->showUpdateResult(latest->version, installed, latest->releaseNotes, latest->downloadUrl);
            } else {
                checker->showUpdateFailure();
            }
        });
    });
}

void UpdateChecker::checkForUpdatesAtLaunch()
{
    // At launch only a newer version is shown: failures and up-to-date feeds end without a sign.
    fetchFeed([](QPointer<UpdateChecker> checker, const QString& installed, std::optional<Feed> latest) {
        if (!latest || !isNewerVersion(latest->version, installed)) {
            return services::HttpClient::Continuation();
        }
        return services::HttpClient::Continuation([checker, latest] {
            if (!checker.isNull()) {
                checker->showUpdateAvailable(latest->version, latest->releaseNotes, latest->downloadUrl);
            }
        });
    });
}

void UpdateChecker::fetchFeed(FeedHandler handler)
{
    if (!feed.isValid() || http == nullptr) {
        return;
    }
    http->getInBackground(feed, [handler = std::move(handler), checker = QPointer<UpdateChecker>(this),
                                 installed = installedVersion()](const services::HttpResponse& response) {
        // A worker thread: the feed is read here, its outcome shown on the main thread.
        return handler(checker, installed, readFeed(response));
    });
}

void UpdateChecker::showUpdateResult(const QString& latestVersion, const QString& installedVersion,
                                     const QString& releaseNotes, const QString& downloadAddress)
{
    if (isNewerVersion(latestVersion, installedVersion)) {
        const QString message = kProductName + u' ' + latestVersion + u' ' + translate(QStringLiteral("is Available"));
        const int choice = runAlert(message, releaseNotes,
                                    {translate(QStringLiteral("Download")), translate(QStringLiteral("Later"))});
        if (choice == 0) {
            openDownloadAddress(downloadAddress);
        }
        return;
    }
    runAlert(translate(QStringLiteral("You are up to date!")),
             formatWithString(translate(QStringLiteral("Version %@ is the latest version.")), installedVersion),
             {translate(QStringLiteral("OK"))});
}

void UpdateChecker::showUpdateFailure()
{
    runAlert(translate(QStringLiteral("Update Check Failed")),
             translate(QStringLiteral("Could not check for updates. Please try again later.")),
             {translate(QStringLiteral("OK"))});
}

void UpdateChecker::showUpdateAvailable(const QString& latestVersion, const QString& releaseNotes,
                                        const QString& downloadAddress)
{
    // The launch dialog is fixed English in every interface language.
    const QString message = kProductName + u' ' + latestVersion + QStringLiteral(" is Available");
    const int choice = runAlert(message, releaseNotes, {QStringLiteral("Download Update"), QStringLiteral("Later")});
    if (choice == 0) {
        openDownloadAddress(downloadAddress);
    }
}

QString UpdateChecker::translate(const QString& key) const
{
    return translator ? translator(key) : key;
}

int UpdateChecker::runAlert(const QString& messageText, const QString& informativeText, const QStringList& buttons)
{
    if (alerts == nullptr) {
        return -1;
    }
    return alerts->runModal(services::Alert{messageText, informativeText, buttons});
}

void UpdateChecker::openDownloadAddress(const QString& address)
{
    // The address comes from the network: only a well-formed web address goes to the browser.
    const QUrl url(address, QUrl::StrictMode);
    const QString scheme = url.scheme();
    if (!url.isValid() || url.host().isEmpty() ||
        (scheme != QLatin1String("http") && scheme != QLatin1String("https"))) {
        return;
    }
    if (workspace != nullptr) {
        workspace->openUrl(url);
    }
}

} // namespace orvanta::update
