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
    Shell()
    {
        platformServices.http = &http;
        platformServices.alerts = &alerts;
        platformServices.workspace = &workspace;
        platformServices.bundle = &bundle;
        updates = std::make_unique<update::UpdateChecker>([this](const QString& key) { return lang.translate(key); },
                                                          platformServices, QUrl(feed));
    }

    ~Shell() override
    {
        app.reset();
        drainEvents();
    }

    ui::OrvantaApp& make(bool trayAvailable = true)
    {
        app = std::make_unique<ui::OrvantaApp>(
            lang, *appState,
            ui::ShellServices{services(), *updates, [trayAvailable] { return trayAvailable; }, [this] { ++quits; }});
        return *app;
    }

    QAction* mainWindowAction(const char* name)
    {
        EXPECT_NE(app->mainWindow(), nullptr);
        return app->mainWindow() ? child<QAction>(app->mainWindow()->menuBar(), name) : nullptr;
    }

    const QString feed = QStringLiteral("https://updates.test/downloads/orvanta-latest.json");
    sim::SimulatedHttpClient http;
    services::PlatformServices platformServices;
    std::unique_ptr<update::UpdateChecker> updates;
    std::unique_ptr<ui::OrvantaApp> app;
    int quits = 0;
};

TEST_F(Shell, StartOpensTheWindowAndTheTrayIconThenChecksForUpdatesSilentlyBothMenusCheckAndFollowTheLanguage)
{
    EXPECT_EQ(make().mainWindow(), nullptr); // nothing is opened before start()
    app->start();
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
    ui::MainWindow* window = app->mainWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "Orvanta");
    EXPECT_EQ(window->objectName(), "main");
    EXPECT_TRUE(app->trayIcon()->systemTrayIcon()->isVisible());
    EXPECT_TRUE(http.requests.isEmpty()); // the launch check runs once the loop runs
    drainEvents();
    EXPECT_THAT(http.requests, ElementsAre(QUrl(feed)));
    // The launch check fails without a sign; start-up chose no device and started no sync.
    QTest::qWait(200);
    drainEvents();
    EXPECT_TRUE(alerts.shown.isEmpty());
    EXPECT_FALSE(appState->selectedDevice1() || appState->isQuellonOn());

    QAction* inMenu = mainWindowAction("checkForUpdatesAction");
    EXPECT_EQ(inMenu->text(), "Check for Updates...");
    inMenu->trigger();
    ASSERT_TRUE(runUntil([this] { return alerts.shown.size() == 1; }));
    EXPECT_EQ(alerts.shown[0].messageText, "Update Check Failed");
    QAction* inTray = app->trayIcon()->checkForUpdatesAction();
    EXPECT_TRUE(app->trayIcon()->contextMenu()->actions().contains(inTray));
    inTray->trigger();
    ASSERT_TRUE(runUntil([this] { return alerts.shown.size() == 2; }));
    EXPECT_EQ(http.requests.size(), 3);

    // A language change retitles the commands but not the window, and sets the direction.
    lang.setCurrentLanguage(QStringLiteral("Español"));
    const QString translated = lang.translate("Check for Updates...");
    ASSERT_NE(translated, "Check for Updates...");
    EXPECT_EQ(mainWindowAction("checkForUpdatesAction")->text(), translated);
    EXPECT_EQ(app->trayIcon()->checkForUpdatesAction()->text(), translated);
    EXPECT_EQ(mainWindowAction("quitAction")->text(), lang.translate("Quit"));
    EXPECT_EQ(app->mainWindow()->windowTitle(), "Orvanta");
    EXPECT_EQ(QApplication::layoutDirection(), Qt::LeftToRight);

    lang.setCurrentLanguage(QStringLiteral("עברית"));
    EXPECT_EQ(QApplication::layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(app->mainWindow()->layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(app->mainWindow()->content()->layoutDirection(), Qt::RightToLeft);
    lang.setCurrentLanguage(QStringLiteral("English"));
    EXPECT_EQ(QApplication::layoutDirection(), Qt::LeftToRight);
}

TEST_F(Shell, TheTraySymbolFollowsSyncTheIconOpensThePanelAsAFramelessPopUpAndBothMenusQuit)
{
    make().start();
    ui::TrayIcon* tray = app->trayIcon();
    const auto icon = [tray] { return tray->systemTrayIcon()->icon().pixmap(22).toImage(); };
    EXPECT_EQ(tray->currentSymbol(), "speaker.wave.2");
    const QImage offIcon = icon();
    selectBoth();
    appState->enableSync();
    EXPECT_EQ(tray->currentSymbol(), "speaker.wave.2.fill");
    EXPECT_NE(icon(), offIcon);
    appState->disableSync();
    EXPECT_EQ(tray->currentSymbol(), "speaker.wave.2");
    EXPECT_EQ(icon(), offIcon);

    QWidget* popup = tray->panelWindow();
    EXPECT_FALSE(popup->isVisible());
    tray->togglePanel();
    EXPECT_TRUE(popup->isVisible());
    EXPECT_TRUE(popup->windowFlags().testFlag(Qt::Popup));
    EXPECT_TRUE(popup->windowFlags().testFlag(Qt::FramelessWindowHint));
    tray->togglePanel();
    EXPECT_FALSE(popup->isVisible());
    // Open Main Window in the panel closes the panel and shows the window.
    QTest::qWait(350);
    tray->togglePanel();
    ASSERT_TRUE(popup->isVisible());
    tray->panel()->openMainWindow();
    EXPECT_FALSE(popup->isVisible());
    EXPECT_TRUE(app->mainWindow()->isVisible());

    const auto actions = tray->contextMenu()->actions();
    const auto quit = std::find_if(actions.begin(), actions.end(),
                                   [](QAction* action) { return action->objectName() == "quitAction"; });
    ASSERT_NE(quit, actions.end());
    (*quit)->trigger();
    EXPECT_EQ(quits, 1);
    mainWindowAction("quitAction")->trigger();
    EXPECT_EQ(quits, 2);
}

TEST_F(Shell, WithoutATrayTheApplicationMenuOffersLaunchAtLogin)
{
    make(true).start();
    EXPECT_EQ(app->mainWindow()->menuBar()->findChild<QAction*>("launchAtLoginAction"), nullptr);
    app.reset();
    make(false).start();
    QAction* login = mainWindowAction("launchAtLoginAction");
    ASSERT_NE(login, nullptr);
    EXPECT_FALSE(login->isChecked());
    login->trigger();
    EXPECT_TRUE(appState->launchAtLogin());
    EXPECT_EQ(loginItems.registerCalls, 1);
    appState->setLaunchAtLogin(false);
    EXPECT_FALSE(login->isChecked());
}

TEST_F(Shell, ClosingTheWindowKeepsTheProgramSayingSoOnceOnlyWithoutATrayAndASecondLaunchBringsItBackOrOpensOne)
{
    make().start();
    QPointer<ui::MainWindow> window = app->mainWindow();
    window->showMinimized();
    app->showMainWindow();
    EXPECT_EQ(app->mainWindow(), window);
    EXPECT_FALSE(window->isMinimized());
    window->close();
    drainEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(window.isNull());
    EXPECT_TRUE(alerts.shown.isEmpty());
    app->showMainWindow();
    ASSERT_NE(app->mainWindow(), nullptr);
    EXPECT_TRUE(app->mainWindow()->isVisible());

    app.reset();
    make(false).start();
    lang.setCurrentLanguage("Español");
    for (int close = 0; close < 2; ++close) {
        app->showMainWindow();
        ASSERT_NE(app->mainWindow(), nullptr);
        app->mainWindow()->close();
        drainEvents();
    }
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Orvanta sigue en ejecución");
    EXPECT_THAT(alerts.shown[0].informativeText.toStdString(), ::testing::HasSubstr("inicie Orvanta de nuevo"));
    EXPECT_EQ(quits, 0);
}

TEST_F(Shell, TheWindowComesBackWhereItWasIfThatIsOnAScreen)
{
    auto withSettings = services();
    withSettings.userDefaults = &memoryDefaults;
    QPointer<ui::MainWindow> first = new ui::MainWindow(lang, *appState, withSettings);
    first->show();
    first->move(123, 45);
    drainEvents();
    first->close(); // deletes it
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
    const QVariantMap stored = memoryDefaults.value(ui::MainWindow::kPositionKey).toMap();
    EXPECT_EQ(QPoint(stored.value("x").toInt(), stored.value("y").toInt()), QPoint(123, 45));
    EXPECT_EQ(ui::MainWindow(lang, *appState, withSettings).pos(), QPoint(123, 45));
    memoryDefaults.setValue(ui::MainWindow::kPositionKey, QVariantMap{{"x", -5000}, {"y", -5000}});
    EXPECT_NE(ui::MainWindow(lang, *appState, withSettings).pos(), QPoint(-5000, -5000));
}

TEST(PanelPlacement, CentresUnderAnIconAtTheTopAndAboveOneAtTheBottomInsideTheScreen)
{
    const QRect screen(0, 0, 1920, 1080);
    const QSize panel(280, 400);
    EXPECT_EQ(ui::TrayIcon::panelPosition(QRect(1000, 0, 24, 24), panel, screen), QPoint(871, 28));
    EXPECT_EQ(ui::TrayIcon::panelPosition(QRect(1000, 1056, 24, 24), panel, screen), QPoint(871, 652));
    // An icon in a corner: the panel is kept on the screen.
    EXPECT_EQ(ui::TrayIcon::panelPosition(QRect(1900, 0, 20, 20), panel, screen), QPoint(1640, 24));
    EXPECT_EQ(ui::TrayIcon::panelPosition(QRect(0, 1060, 20, 20), panel, screen), QPoint(0, 656));
}

} // namespace
} // namespace orvanta::testing
