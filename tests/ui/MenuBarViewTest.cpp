// The tray panel: the switch, the speakers, the two settings and Quit.

#include "UiFixture.h"

namespace orvanta::testing {
namespace {

class Panel : public ::testing::Test, public UiFixture
{
protected:
    Panel() : panel(*appState, lang, {}, [this] { ++quits; }) {}

    QWidget* control(const char* name) { return child<QWidget>(&panel, name); }

    int quits = 0;
    ui::MenuBarView panel;
};

TEST_F(Panel, TheSwitchNeedsTwoDifferentDevicesAndTurnsSyncOnAndOffWithTheDotAndTheSpeakers)
{
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(kSpeakers);
    EXPECT_FALSE(shown(control("syncSwitch")));
    appState->setSelectedDevice2(kBluetooth);
    EXPECT_FALSE(shown(control("speakers")));
    click(control("syncSwitch"));
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_TRUE(child<ui::StatusDot>(&panel, "statusDot")->isOn());
    EXPECT_TRUE(shown(control("speakers")));

    // An invalid selection hides the switch, but the speakers stay while sync is on.
    appState->setSelectedDevice2(std::nullopt);
    EXPECT_FALSE(shown(control("syncSwitch")));
    appState->setSelectedDevice2(kBluetooth);
    click(control("syncSwitch"));
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(shown(control("speakers")));
}

TEST_F(Panel, LaunchAtLoginAndRestoreSyncAtStartAreStoredAndQuitLeavesSyncOn)
{
    click(control("launchAtLoginCheckbox"));
    EXPECT_TRUE(appState->launchAtLogin());

    selectBoth();
    appState->enableSync();
    click(child<QAbstractButton>(&panel, "restoreSyncCheckbox"));
    EXPECT_TRUE(memoryDefaults.value(state::AppState::kRestoreSyncKey).toBool());

    click(control("quitButton"));
    EXPECT_EQ(quits, 1);
    EXPECT_NE(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
}

} // namespace
} // namespace orvanta::testing
