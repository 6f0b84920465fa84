// The tray panel: the switch or the request for two devices, the speakers while sync is on, the
// two settings, Quit, and Open Main Window, which brings back the window there is or opens one.

#include "UiFixture.h"

#include <QPointer>

namespace orvanta::testing {
namespace {

class Panel : public ::testing::Test, public UiFixture
{
protected:
    Panel()
        : panel(
              *appState, lang, [this] { openNewWindow(); }, [this] { ++quits; })
    {}

    ~Panel() override { delete window.data(); }

    void openNewWindow()
    {
        ++opened;
        window = new ui::MainWindow(lang, *appState, services());
        window->show();
    }

    QWidget* control(const char* name) { return child<QWidget>(&panel, name); }
    void openMainWindow() { click(control("openMainWindowButton")); }

    int opened = 0;
    int quits = 0;
    QPointer<ui::MainWindow> window;
    ui::MenuBarView panel;
};

TEST_F(Panel, TheSwitchNeedsTwoDifferentDevicesAndTurnsSyncOnAndOffWithTheDotAndTheSpeakersWarningOfNothing)
{
    EXPECT_EQ(child<QLabel>(&panel, "syncCaption")->text(), "Select two different devices");
    EXPECT_FALSE(shown(control("syncSwitch")));
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(kSpeakers);
    EXPECT_FALSE(shown(control("syncSwitch")));
    appState->setSelectedDevice2(kBluetooth);
    EXPECT_FALSE(shown(control("syncCaption")));
    EXPECT_FALSE(shown(control("speakers")));
    click(control("syncSwitch"));
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_TRUE(child<ui::StatusDot>(&panel, "statusDot")->isOn());
    EXPECT_TRUE(shown(control("speakers")));
    drainEvents();
    EXPECT_TRUE(alerts.shown.isEmpty());

    // An invalid selection hides the switch, but the speakers stay while sync is on.
    appState->setSelectedDevice2(std::nullopt);
    EXPECT_FALSE(shown(control("syncSwitch")));
    EXPECT_EQ(child<QLabel>(control("secondarySpeaker"), "nameLabel")->text(), "Secondary Speaker");
    appState->setSelectedDevice2(kBluetooth);
    click(control("syncSwitch"));
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(shown(control("speakers")));
}

TEST_F(Panel, ALongDeviceNameIsCutToOneLine)
{
    const std::string longName(200, 'W');
    sim.system.addDevice(outputDevice(longName, "long"));
    appState->setDevices(sim.audio.getOutputDevices());
    appState->setSelectedDevice1(device("long"));
    appState->setSelectedDevice2(kBluetooth);
    appState->enableSync();
    panel.show();
    drainEvents();
    auto* name = child<ui::ElidedLabel>(control("primarySpeaker"), "nameLabel");
    EXPECT_EQ(name->fullText(), QString::fromStdString(longName));
    EXPECT_TRUE(name->text().endsWith(QChar(0x2026)));
    EXPECT_LE(name->height(), name->fontMetrics().height() + 4);
}

TEST_F(Panel, LaunchAtLoginAndRestoreSyncAtStartAreStoredWhereTheyBelongAndQuitLeavesSyncOn)
{
    auto* login = child<QAbstractButton>(&panel, "launchAtLoginCheckbox");
    click(login);
    EXPECT_TRUE(appState->launchAtLogin());
    EXPECT_EQ(loginItems.registerCalls, 1);
    click(login);
    EXPECT_EQ(loginItems.unregisterCalls, 1);

    auto* restore = child<QAbstractButton>(&panel, "restoreSyncCheckbox");
    EXPECT_GT(restore->y(), login->y());
    selectBoth();
    appState->enableSync();
    click(restore);
    EXPECT_TRUE(memoryDefaults.value(state::AppState::kRestoreSyncKey).toBool());
    EXPECT_EQ(memoryDefaults.value(state::AppState::kRestoreDevicesKey).toMap().value("primary").toString(), "spk");

    click(control("quitButton"));
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_NE(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
}

TEST_F(Panel, OpenMainWindowReusesAWindowByItsTitleBringsItToTheFrontOrOpensOneAndReplacesAClosedOne)
{
    panel.show();
    {
        QWidget titled;
        titled.setWindowTitle(QStringLiteral("Orvanta"));
        openMainWindow();
        EXPECT_EQ(opened, 0);
        EXPECT_TRUE(titled.isVisible());
    }
    openMainWindow();
    EXPECT_EQ(opened, 1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    window->showMinimized();
    drainEvents();
    openMainWindow();
    EXPECT_EQ(opened, 1);
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));

    QPointer<ui::MainWindow> first = window;
    first->close();
    openMainWindow();
    EXPECT_EQ(opened, 2);
    EXPECT_NE(window.data(), first.data());
    drainEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

TEST_F(Panel, AnotherLanguageRetitlesThePanelButNotItsName)
{
    selectBoth();
    appState->enableSync();
    lang.setCurrentLanguage(QStringLiteral("Español"));
    EXPECT_EQ(child<QAbstractButton>(&panel, "openMainWindowButton")->text(), "Abrir Ventana Principal");
    using Row = std::pair<const char*, const char*>;
    for (const auto& [name, text] : {Row{"syncSwitch", "Enable Sync"},
                                     Row{"restoreSyncCheckbox", "Restore sync at start"}, Row{"quitButton", "Quit"}}) {
        EXPECT_EQ(child<QAbstractButton>(&panel, name)->text(), lang.translate(text)) << name;
    }
    EXPECT_EQ(child<QLabel>(&panel, "productName")->text(), "Orvanta");
    lang.setCurrentLanguage(QStringLiteral("العربية"));
    EXPECT_EQ(panel.layoutDirection(), Qt::RightToLeft);
}

} // namespace
} // namespace orvanta::testing
