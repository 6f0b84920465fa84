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

#include <functional>

using namespace std::chrono_literals;

namespace orvanta::desktop {
namespace {

// Calls act once on every message box that opens; closes one still open after 10 s, so that a
// failing test cannot hang in a modal loop.
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

    QList<QStringList> seen;
    DialogWatcher watcher([&](QMessageBox* box) {
        seen.append(describe(box));
        QAbstractButton* download = buttonTitled(box, "Download");
        download != nullptr ? download->click() : static_cast<void>(box->close());
    });
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
