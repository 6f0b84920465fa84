#pragma once

// The update check. Reads the small JSON feed on the maker's web site and compares the version it
// names with the installed one. Two checks share the request, the feed rules and the comparison:
// the one the user asks for ends in a dialog whatever happens, translated into the interface
// language; the one at launch stays silent unless a newer version is published, and then speaks
// fixed English. Nothing is downloaded or installed: the user is only offered to open the
// download address in the browser.
//
// Lives on the main thread. The request and the reading of the feed happen elsewhere; every
// dialog and every opened address happens back on the main thread. The checks keep no state:
// each is independent, two may run at once, and each shows its own dialog.

#include "FeedParser.h"

#include "services/HttpClient.h"
#include "services/PlatformServices.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <functional>
#include <optional>

namespace orvanta::update {

class UpdateChecker : public QObject
{
public:
    // The interface language's text for an English key.
    using Translate = std::function<QString(const QString& key)>;

    // Without translate, texts stay English. The network, dialogs, browser and version are
    // taken from services; the feed is the one on the configured web site unless feedUrl says
    // otherwise.
    UpdateChecker(Translate translate, const services::PlatformServices& services, QUrl feedUrl = defaultFeedUrl());

    static QUrl defaultFeedUrl();

    // The silent check made once at every launch.
    void checkForUpdatesAtLaunch();
    // The check the user asks for; every outcome ends in a dialog.
    void checkForUpdates();

    // The dialogs of the user's check: the result (newer, or up to date) and any failure.
    void showUpdateResult(const QString& latestVersion, const QString& installedVersion, const QString& releaseNotes,
                          const QString& downloadAddress);
    void showUpdateFailure();
    // The launch check's dialog, shown only when the feed names a newer version.
    void showUpdateAvailable(const QString& latestVersion, const QString& releaseNotes, const QString& downloadAddress);

    // The version this build carries, or "0" when it carries none.
    QString installedVersion() const;

    QUrl feedUrl() const { return feed; }
    void setFeedUrl(const QUrl& url) { feed = url; }

private:
    // Runs on the worker thread with the feed read from the response (none on any failure), and
    // returns what to do on the main thread.
    using FeedHandler = std::function<services::HttpClient::Continuation(
        QPointer<UpdateChecker> checker, const QString& installed, std::optional<Feed> latest)>;
    void fetchFeed(FeedHandler handler);

    QString translate(const QString& key) const;
    int runAlert(const QString& messageText, const QString& informativeText, const QStringList& buttons);
    void openDownloadAddress(const QString& address);

    Translate translator;
    services::HttpClient* http = nullptr;
    services::Alerts* alerts = nullptr;
    services::Workspace* workspace = nullptr;
    services::BundleInfo* bundle = nullptr;
    QUrl feed;
};

} // namespace orvanta::update
