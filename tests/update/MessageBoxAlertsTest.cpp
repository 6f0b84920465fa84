// The real dialogs under Qt's offscreen platform.

#include "update/UpdateChecker.h"

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
#include <QElapsedTimer>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

using namespace std::chrono_literals;

namespace orvanta::desktop {
namespace {

// What a box shows: texts, buttons, default and escape buttons, modality, and the labels' format.
QStringList describe(QMessageBox* box)
{
    QStringList seen{box->text(), box->informativeText()};
    for (QAbstractButton* button : box->buttons()) {
        seen.append(button->text());
    }
    seen.append("default " + (box->defaultButton() ? box->defaultButton()->text() : QString()));
    seen.append("escape " + (box->escapeButton() ? box->escapeButton()->text() : QString()));
    seen.append(box->windowModality() == Qt::ApplicationModal ? "application modal" : "not modal");
    for (const char* name : {"qt_msgbox_label", "qt_msgbox_informativelabel"}) {
        seen.append(box->findChild<QLabel*>(name)->textFormat() == Qt::PlainText ? "plain" : "markup");
    }
    return seen;
}

// Both checks at once, the server's markup shown as plain text; closing a dialog chooses Later.
TEST(UpdateMessageBoxAlerts, TwoChecksAtOnceEachShowTheirOwnDialog)
{
    testing::LoopbackServer server;
    auto route = testing::Route::reply(200, R"({"version":"1.5.0","download_url":"https://orvanta.example/get",)"
                                            R"("release_notes":"<a href='https://elsewhere.example'>Notes</a>"})");
    route.holdUntilRequests = 2; // the server answers only once both requests are waiting
    server.setRoute("/feed.json", route);
    NetworkHttpClient network{HttpLimits{10s}};
    testing::CountingHttpClient http(network);
    MessageBoxAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.4.1")};
    update::UpdateChecker checker(
        {}, services::PlatformServices{.http = &http, .alerts = &alerts, .workspace = &workspace, .bundle = &bundle},
        server.url("/feed.json"));

    // Each dialog is described and answered once; one still open after 10 s is closed, so a failing test cannot hang.
    QList<QStringList> seen;
    QElapsedTimer clock;
    clock.start();
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
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
                seen.append(describe(box));
                QPushButton* choice = box->defaultButton();
                choice->text() == "Download" ? choice->click() : static_cast<void>(box->close());
            }
        }
    });
    poll.start(10);
    checker.checkForUpdatesAtLaunch();
    checker.checkForUpdates();
    ASSERT_TRUE(testing::runUntil([&] { return http.finishedCount() == 2; }, 20s));
    std::sort(seen.begin(), seen.end());
    const QString notes = "<a href='https://elsewhere.example'>Notes</a>";
    EXPECT_EQ(seen,
              (QList<QStringList>{{"Orvanta 1.5.0 is Available", notes, "Download", "Later", "default Download",
                                   "escape Later", "application modal", "plain", "plain"},
                                  {"Orvanta 1.5.0 is Available", notes, "Download Update", "Later",
                                   "default Download Update", "escape Later", "application modal", "plain", "plain"}}));
    EXPECT_EQ(workspace.opened, QList<QUrl>{QUrl("https://orvanta.example/get")});
}

} // namespace
} // namespace orvanta::desktop
