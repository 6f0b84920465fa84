// The real dialogs and browser hand-off, under Qt's offscreen platform.

#include "update/UpdateChecker.h"

#include "desktop/DesktopWorkspace.h"
#include "desktop/MessageBoxAlerts.h"
#include "desktop/NetworkHttpClient.h"
#include "sim/SimulatedBundleInfo.h"
#include "sim/SimulatedWorkspace.h"

#include "CountingHttpClient.h"
#include "LoopbackServer.h"
#include "support/EventLoop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <functional>

using namespace std::chrono_literals;

namespace orvanta::desktop {
namespace {

// Calls act once on every message box that opens while it is alive. A box still open after the
// time limit is closed, so that a test that fails cannot hang in a modal loop.
class DialogWatcher
{
public:
    explicit DialogWatcher(std::function<void(QMessageBox*)> act)
    {
        QObject::connect(&poll, &QTimer::timeout, [this, act = std::move(act)] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                auto* box = qobject_cast<QMessageBox*>(widget);
                if (box == nullptr || !box->isVisible()) {
                    continue;
                }
                if (clock.hasExpired(10'000)) {
                    ADD_FAILURE() << "a dialog stayed open: " << box->text().toStdString();
                    box->close();
                } else if (!box->property("watched").toBool()) {
                    box->setProperty("watched", true);
                    act(box);
                }
            }
        });
        poll.start(10);
        clock.start();
    }

private:
    QTimer poll;
    QElapsedTimer clock;
};

QAbstractButton* buttonTitled(QMessageBox* box, const QString& title)
{
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == title) {
            return button;
        }
    }
    return nullptr;
}

// What a box shows: its texts, buttons, default and escape buttons, and whether it is modal.
QStringList describe(QMessageBox* box)
{
    QStringList seen{box->text(), box->informativeText()};
    for (QAbstractButton* button : box->buttons()) {
        seen.append(button->text());
    }
    seen.append("default " + (box->defaultButton() ? box->defaultButton()->text() : QString()));
    seen.append("escape " + (box->escapeButton() ? box->escapeButton()->text() : QString()));
    seen.append(box->windowModality() == Qt::ApplicationModal ? "application modal" : "not modal");
    return seen;
}

TEST(UpdateMessageBoxAlerts, ShowsTheAlertModallyAsPlainTextAndGivesTheChosenButton)
{
    MessageBoxAlerts alerts;
    QList<QStringList> seen;
    QString press; // the button to click; none: the window is closed
    DialogWatcher watcher([&](QMessageBox* box) {
        QStringList shown = describe(box);
        for (const char* name : {"qt_msgbox_label", "qt_msgbox_informativelabel"}) {
            shown.append(box->findChild<QLabel*>(name)->textFormat() == Qt::PlainText ? "plain" : "markup");
        }
        seen.append(shown);
        press.isEmpty() ? static_cast<void>(box->close()) : buttonTitled(box, press)->click();
    });
    press = "Later";
    EXPECT_EQ(alerts.runModal(
                  {"<i>Orvanta</i>", "<a href=\"https://elsewhere.example\">Notes</a>", {"Download Update", "Later"}}),
              1);
    EXPECT_EQ(seen.value(0),
              (QStringList{"<i>Orvanta</i>", "<a href=\"https://elsewhere.example\">Notes</a>", "Download Update",
                           "Later", "default Download Update", "escape Later", "application modal", "plain", "plain"}));
    press = "Descargar";
    EXPECT_EQ(alerts.runModal({"m", "i", {"Descargar", "Más tarde"}}), 0);
    press.clear(); // closing the window chooses the last button
    EXPECT_EQ(alerts.runModal({"m", "i", {"Download", "Later"}}), 1);
    EXPECT_EQ(alerts.runModal({"m", "i", {"OK"}}), 0);
}

TEST(UpdateMessageBoxAlerts, TwoChecksAtOnceEachShowTheirOwnDialog)
{
    testing::LoopbackServer server;
    auto route = testing::Route::reply(
        200, R"({"version":"1.5.0","download_url":"https://orvanta.example/get","release_notes":"Notes"})");
    route.holdUntilRequests = 2;
    server.setRoute("/feed.json", route);
    NetworkHttpClient network{HttpLimits{10s}};
    testing::CountingHttpClient http(network);
    MessageBoxAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.4.1")};
    update::UpdateChecker checker(
        {}, services::PlatformServices{.http = &http, .alerts = &alerts, .workspace = &workspace, .bundle = &bundle},
        server.url("/feed.json"));

    QList<QStringList> seen;
    DialogWatcher watcher([&](QMessageBox* box) {
        seen.append(describe(box));
        // Download from the user's dialog, Later on the launch dialog.
        QAbstractButton* download = buttonTitled(box, "Download");
        (download != nullptr ? download : buttonTitled(box, "Later"))->click();
    });
    checker.checkForUpdatesAtLaunch();
    checker.checkForUpdates();
    ASSERT_TRUE(testing::runUntil([&] { return http.finishedCount() == 2; }, 20s));
    std::sort(seen.begin(), seen.end());
    EXPECT_EQ(seen, (QList<QStringList>{{"Orvanta 1.5.0 is Available", "Notes", "Download", "Later", "default Download",
                                         "escape Later", "application modal"},
                                        {"Orvanta 1.5.0 is Available", "Notes", "Download Update", "Later",
                                         "default Download Update", "escape Later", "application modal"}}));
    EXPECT_EQ(workspace.opened, QList<QUrl>{QUrl("https://orvanta.example/get")});
}

class UrlRecorder : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public slots:
    void open(const QUrl& url) { urls.append(url); }
};

TEST(UpdateDesktopWorkspace, HandsTheAddressToTheDesktop)
{
    // A handler registered for the scheme stands in for the browser.
    UrlRecorder recorder;
    QDesktopServices::setUrlHandler("https", &recorder, "open");
    DesktopWorkspace workspace;
    EXPECT_TRUE(workspace.openUrl(QUrl("https://orvanta.example/get")));
    QDesktopServices::unsetUrlHandler("https");
    EXPECT_EQ(recorder.urls, QList<QUrl>{QUrl("https://orvanta.example/get")});
}

} // namespace
} // namespace orvanta::desktop

#include "MessageBoxAlertsTest.moc"
