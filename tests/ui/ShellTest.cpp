#include "UiFixture.h"

#include "services/PlatformServices.h"
#include "sim/SimulatedHttpClient.h"
#include "ui/OrvantaApp.h"
#include "ui/TrayIcon.h"
#include "update/UpdateChecker.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QSystemTrayIcon>

#include <memory>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;

class Shell : public ::testing::Test, public UiFixture
{
protected:
    ~Shell() override
    {
        app.reset();
        drainEvents();
    }

    ui::OrvantaApp& make(bool trayAvailable = true)
    {
        app = std::make_unique<ui::OrvantaApp>(
            lang, *appState,
            ui::ShellServices{services(), updates, [trayAvailable] { return trayAvailable; }, [this] { ++quits; }});
        return *app;
    }

    QAction* mainWindowAction(const char* name) { return child<QAction>(app->mainWindow()->menuBar(), name); }

    const QString feed = QStringLiteral("https://updates.test/downloads/orvanta-latest.json");
    sim::SimulatedHttpClient http;
    services::PlatformServices platformServices{
        .http = &http, .alerts = &alerts, .workspace = &workspace, .bundle = &bundle};
    update::UpdateChecker updates{[this](const QString& key) { return lang.translate(key); }, platformServices,
                                  QUrl(feed)};
    std::unique_ptr<ui::OrvantaApp> app;
    int quits = 0;
};

TEST_F(Shell, StartOpensTheWindowAndTheTrayIconThenChecksForUpdatesSilentlyBothMenusCheckAndFollowTheLanguage)
{
    make().start();
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
    EXPECT_TRUE(app->mainWindow()->isVisible());
    EXPECT_TRUE(app->trayIcon()->systemTrayIcon()->isVisible());
    drainEvents();
    EXPECT_THAT(http.requests, ElementsAre(QUrl(feed)));
    // The launch check fails without a sign; start-up chose no device and started no sync.
    QTest::qWait(200);
    drainEvents();
    EXPECT_TRUE(alerts.shown.isEmpty());
    EXPECT_FALSE(appState->selectedDevice1() || appState->isQuellonOn());

    mainWindowAction("checkForUpdatesAction")->trigger();
    ASSERT_TRUE(runUntil([this] { return alerts.shown.size() == 1; }));
    EXPECT_EQ(alerts.shown[0].messageText, "Update Check Failed");
    QAction* inTray = app->trayIcon()->checkForUpdatesAction();
    inTray->trigger();
    ASSERT_TRUE(runUntil([this] { return alerts.shown.size() == 2; }));

    // A language change retitles the commands and sets the direction.
    lang.setCurrentLanguage(QStringLiteral("עברית"));
    EXPECT_EQ(inTray->text(), lang.translate("Check for Updates..."));
    EXPECT_EQ(app->mainWindow()->content()->layoutDirection(), Qt::RightToLeft);
    lang.setCurrentLanguage(QStringLiteral("English"));
    EXPECT_EQ(QApplication::layoutDirection(), Qt::LeftToRight);
}

TEST_F(Shell, TheTrayIconFollowsSyncAndOpensThePanelWhichOpensTheWindowAndBothMenusQuit)
{
    make().start();
    ui::TrayIcon* tray = app->trayIcon();
    const auto icon = [tray] { return tray->systemTrayIcon()->icon().pixmap(22).toImage(); };
    const QImage offIcon = icon();
    selectBoth();
    appState->enableSync();
    EXPECT_NE(icon(), offIcon);
    appState->disableSync();
    EXPECT_EQ(icon(), offIcon);

    // Open Main Window in the panel closes the panel and shows the window.
    QWidget* popup = tray->panelWindow();
    tray->togglePanel();
    EXPECT_TRUE(popup->isVisible());
    tray->panel()->openMainWindow();
    EXPECT_FALSE(popup->isVisible());
    EXPECT_TRUE(app->mainWindow()->isVisible());

    child<QAction>(tray->contextMenu(), "quitAction")->trigger();
    EXPECT_EQ(quits, 1);
    mainWindowAction("quitAction")->trigger();
    EXPECT_EQ(quits, 2);
}

TEST_F(Shell, ClosingTheWindowKeepsTheProgramSayingSoOnceOnlyWithoutATrayAndASecondLaunchBringsItBackOrOpensOne)
{
    make().start();
    QPointer<ui::MainWindow> window = app->mainWindow();
    window->showMinimized();
    app->showMainWindow();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    window->close();
    drainEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
    EXPECT_TRUE(alerts.shown.isEmpty());
    app->showMainWindow();
    EXPECT_TRUE(app->mainWindow()->isVisible());

    app.reset();
    make(false).start();
    lang.setCurrentLanguage("Español");
    for (int close = 0; close < 2; ++close) {
        app->showMainWindow();
        app->mainWindow()->close();
        drainEvents();
    }
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Orvanta sigue en ejecución");
    EXPECT_EQ(quits, 0);
}

TEST_F(Shell, TheWindowComesBackWhereItWasIfThatIsOnAScreen)
{
    auto withSettings = services();
    withSettings.userDefaults = &memoryDefaults;
    QPointer<ui::MainWindow> first = new ui::MainWindow(lang, *appState, withSettings);
    first->show();
    first->move(123, 0);
    drainEvents();
    first->close(); // deletes it
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(ui::MainWindow(lang, *appState, withSettings).pos(), QPoint(123, 0));
    memoryDefaults.setValue(ui::MainWindow::kPositionKey, QVariantMap{{"x", -5000}, {"y", -5000}});
    EXPECT_NE(ui::MainWindow(lang, *appState, withSettings).pos(), QPoint(-5000, -5000));
}

} // namespace
} // namespace orvanta::testing
