// The real dialogs and browser hand-off, under Qt's offscreen platform.

#include "update/UpdateChecker.h"

#include "linux/DesktopWorkspace.h"
#include "linux/MessageBoxAlerts.h"
#include "linux/NetworkHttpClient.h"
#include "sim/services/SimulatedBundleInfo.h"
#include "sim/services/SimulatedWorkspace.h"

#include "support/CountingHttpClient.h"
#include "support/EventLoop.h"
#include "support/LoopbackServer.h"
#include "support/Printers.h"
#include "support/TestApplication.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDesktopServices>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <functional>

using namespace std::chrono_literals;

namespace orvanta::linux_platform {
namespace {

[[maybe_unused]] const auto* const environment =
    ::testing::AddGlobalTestEnvironment(new testing::ApplicationEnvironment<QApplication>);

QMessageBox* openMessageBox()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* box = qobject_cast<QMessageBox*>(widget); box != nullptr && box->isVisible()) {
            return box;
        }
    }
    return nullptr;
}

// Calls act once on every message box that opens while it is alive. A box still open after the
// time limit is closed, so that a test that fails cannot hang in a modal loop.
class DialogWatcher
{
public:
    explicit DialogWatcher(std::function<void(QMessageBox*)> onOpen) : act(std::move(onOpen))
    {
        QObject::connect(&poll, &QTimer::timeout, [this] {
            QMessageBox* box = openMessageBox();
            if (box == nullptr || box->property("watched").toBool()) {
                return;
            }
            box->setProperty("watched", true);
            this->act(box);
        });
        QObject::connect(&limit, &QTimer::timeout, [] {
            while (QMessageBox* box = openMessageBox()) {
                ADD_FAILURE() << "a dialog stayed open: " << box->text().toStdString();
                box->close();
            }
        });
        poll.start(10);
        limit.start(10'000);
    }

private:
    std::function<void(QMessageBox*)> act;
    QTimer poll;
    QTimer limit;
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

struct SeenBox
{
    QString text;
    QString informativeText;
    QStringList buttons;
    Qt::WindowModality modality = Qt::NonModal;
    QString defaultButton;
    QString escapeButton;
};

SeenBox describe(QMessageBox* box)
{
    SeenBox seen;
    seen.text = box->text();
    seen.informativeText = box->informativeText();
    for (QAbstractButton* button : box->buttons()) {
        seen.buttons.append(button->text());
    }
    seen.modality = box->windowModality();
    seen.defaultButton = box->defaultButton() != nullptr ? box->defaultButton()->text() : QString();
    seen.escapeButton = box->escapeButton() != nullptr ? box->escapeButton()->text() : QString();
    return seen;
}

TEST(UpdateMessageBoxAlerts, ShowsTheAlertModallyAndGivesTheChosenButton)
{
    MessageBoxAlerts alerts;
    std::optional<SeenBox> seen;
    DialogWatcher watcher([&](QMessageBox* box) {
        seen = describe(box);
        buttonTitled(box, "Later")->click();
    });
    const int choice = alerts.runModal({"Orvanta 1.5.0 is Available", "Notes", {"Download Update", "Later"}});
    ASSERT_TRUE(seen.has_value());
    EXPECT_EQ(choice, 1);
    EXPECT_EQ(seen->text, "Orvanta 1.5.0 is Available");
    EXPECT_EQ(seen->informativeText, "Notes");
    EXPECT_EQ(seen->buttons, (QStringList{"Download Update", "Later"}));
    EXPECT_EQ(seen->modality, Qt::ApplicationModal);
    EXPECT_EQ(seen->defaultButton, "Download Update");
    EXPECT_EQ(seen->escapeButton, "Later");
}

TEST(UpdateMessageBoxAlerts, TheFirstButtonIsIndexZero)
{
    MessageBoxAlerts alerts;
    DialogWatcher watcher([](QMessageBox* box) { buttonTitled(box, "Descargar")->click(); });
    EXPECT_EQ(alerts.runModal({"m", "i", {"Descargar", "Más tarde"}}), 0);
}

TEST(UpdateMessageBoxAlerts, ClosingTheWindowChoosesTheLastButton)
{
    MessageBoxAlerts alerts;
    DialogWatcher watcher([](QMessageBox* box) { box->close(); });
    EXPECT_EQ(alerts.runModal({"m", "i", {"Download", "Later"}}), 1);
    EXPECT_EQ(alerts.runModal({"m", "i", {"OK"}}), 0);
}

TEST(UpdateMessageBoxAlerts, ShowsTextsAsTheyAreNotAsMarkup)
{
    MessageBoxAlerts alerts;
    const QString notes = "<b>Bold</b> <a href=\"https://elsewhere.example\">link</a>";
    std::optional<Qt::TextFormat> messageFormat;
    std::optional<Qt::TextFormat> informativeFormat;
    QString informativeShown;
    DialogWatcher watcher([&](QMessageBox* box) {
        if (auto* label = box->findChild<QLabel*>("qt_msgbox_label")) {
            messageFormat = label->textFormat();
        }
        if (auto* label = box->findChild<QLabel*>("qt_msgbox_informativelabel")) {
            informativeFormat = label->textFormat();
            informativeShown = label->text();
        }
        box->close();
    });
    alerts.runModal({"<i>Orvanta</i>", notes, {"OK"}});
    EXPECT_EQ(messageFormat, Qt::PlainText);
    EXPECT_EQ(informativeFormat, Qt::PlainText);
    EXPECT_EQ(informativeShown, notes);
}

TEST(UpdateMessageBoxAlerts, TwoChecksAtOnceEachShowTheirOwnDialog)
{
    testing::LoopbackServer server;
    ASSERT_TRUE(server.listening());
    const QJsonObject feed{
        {"version", "1.5.0"}, {"download_url", "https://orvanta.example/get"}, {"release_notes", "Notes"}};
    auto route = testing::Route::reply(200, QJsonDocument(feed).toJson());
    route.holdUntilRequests = 2;
    server.setRoute("/downloads/orvanta-latest.json", route);

    NetworkHttpClient network{HttpLimits{10s}};
    testing::CountingHttpClient http(network);
    MessageBoxAlerts alerts;
    sim::SimulatedWorkspace workspace;
    sim::SimulatedBundleInfo bundle{QStringLiteral("1.4.1")};
    platform::PlatformServices services;
    services.http = &http;
    services.alerts = &alerts;
    services.workspace = &workspace;
    services.bundle = &bundle;
    update::UpdateChecker checker({}, services, server.url("/downloads/orvanta-latest.json"));

    QList<SeenBox> seen;
    DialogWatcher watcher([&](QMessageBox* box) {
        seen.append(describe(box));
        // Download from the user's dialog, Later on the launch dialog.
        QAbstractButton* download = buttonTitled(box, "Download");
        (download != nullptr ? download : buttonTitled(box, "Later"))->click();
    });
    checker.checkForUpdatesAtLaunch();
    checker.checkForUpdates();
    ASSERT_TRUE(testing::waitUntil([&] { return http.finishedCount() == 2; }, 20s));

    ASSERT_EQ(seen.size(), 2);
    QStringList firstButtons{seen[0].buttons.value(0), seen[1].buttons.value(0)};
    firstButtons.sort();
    EXPECT_EQ(firstButtons, (QStringList{"Download", "Download Update"}));
    for (const SeenBox& box : seen) {
        EXPECT_EQ(box.text, "Orvanta 1.5.0 is Available");
        EXPECT_EQ(box.informativeText, "Notes");
        EXPECT_EQ(box.modality, Qt::ApplicationModal);
    }
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
    EXPECT_TRUE(workspace.openUrl(QUrl("https://orvanta.example/downloads/orvanta-1.5.0.tar.gz")));
    QDesktopServices::unsetUrlHandler("https");
    EXPECT_EQ(recorder.urls, QList<QUrl>{QUrl("https://orvanta.example/downloads/orvanta-1.5.0.tar.gz")});
}

} // namespace
} // namespace orvanta::linux_platform

#include "MessageBoxAlertsTest.moc"
