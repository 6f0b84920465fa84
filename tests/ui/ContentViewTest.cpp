// The main window's column: pickers, sync switch and alerts, banner, status lines, language.

#include "UiFixture.h"

namespace orvanta::testing {
namespace {

using ::testing::HasSubstr;

TEST_F(MainWindowContent, PickersOfferEveryDeviceAndSyncNeedsTwoBuildsTheStackedDeviceShowsTheBalanceAndWarns)
{
    view().syncOn(); // without a valid selection: the sync error, and nothing changes
    drainEvents();
    EXPECT_FALSE(appState->isQuellonOn());
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].informativeText, "Select two different devices");
    alerts.shown.clear();

    auto* primary = child<QComboBox>(&view(), "primaryPicker");
    EXPECT_EQ(primary->itemText(2), "BT Speaker");
    auto* syncSwitch = child<QAbstractButton>(&view(), "syncSwitch");
    pickBoth(1, 1);
    EXPECT_FALSE(syncSwitch->isEnabled());
    pickBoth(1, 2);

    turnSyncOn();
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_TRUE(shown(block("balanceSection")));
    EXPECT_TRUE(shown(block("delayNote")));
    EXPECT_EQ(alerts.shown.size(), 1);

    turnSyncOn(); // the same switch, now on
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(shown(block("balanceSection")));
    EXPECT_EQ(alerts.shown.size(), 1);

    pickBoth(2, 1); // the Bluetooth speaker first: the delay note shows all the same
    turnSyncOn();
    EXPECT_TRUE(shown(block("delayNote")));
}

TEST_F(MainWindowContent, BothWarningsFollowOneSyncOnOneAfterTheOtherWithTitlesInTheInterfaceLanguage)
{
    sim.system.addDevice(outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI));
    sim.system.addDevice(outputDevice("Radio", "radio", hal::kAudioDeviceTransportTypeBluetooth));
    view().refreshDevices();
    lang.setCurrentLanguage(QStringLiteral("Deutsch"));
    pickBoth(3, 4);
    turnSyncOn();
    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_EQ(alerts.shown[0].messageText, lang.translate("Volume Control Warning"));
    EXPECT_EQ(alerts.shown[1].messageText, lang.translate("Bluetooth Audio Latency"));
}

TEST_F(MainWindowContent, RefreshAndEachAppearanceReadTheDevicesAgainAndKeepTheSelections)
{
    pickBoth(1, 2);
    sim.system.removeDevice("bt");
    click(child<QAbstractButton>(&view(), "refreshButton"));
    EXPECT_EQ(appState->devices(), (state::DeviceList{kSpeakers}));
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);
    EXPECT_EQ(child<QComboBox>(&view(), "secondaryPicker")->currentIndex(), -1);

    sim.system.addDevice(outputDevice("Late Arrival", "late"));
    view().show();
    EXPECT_EQ(appState->devices().size(), 2u);
}

TEST_F(MainWindowContent, TheBannerShowsUntilTrustedSaysWhyOffersTheButtonOnlyWhereItLeadsAndTrustStartsTheKeys)
{
    using Obstacle = services::AccessibilityTrust::Obstacle;
    auto* text = child<QLabel>(&view(), "bannerText");
    auto* button = child<QAbstractButton>(&view(), "openSystemSettingsButton");
    click(button);
    EXPECT_EQ(trust.prompts, 1);

    trust.canPrompt = false;
    trust.blockedBy = Obstacle::SessionGivesNoKeys;
    view().redraw();
    EXPECT_THAT(text->text().toStdString(), HasSubstr("Wayland"));
    EXPECT_FALSE(shown(button));

    trust.trusted = true;
    ASSERT_TRUE(runUntil([this] { return appState->isTrusted(); }));
    EXPECT_FALSE(shown(block("permissionBanner")));
    EXPECT_FALSE(mediaKeys.hasTap()); // sync is off
    // Withdrawn, then granted again while sync is on without the keys: the key tap starts.
    trust.trusted = false;
    ASSERT_TRUE(runUntil([this] { return !appState->isTrusted(); }));
    taps.allowed = false;
    pickBoth(1, 2);
    turnSyncOn();
    taps.allowed = true;
    trust.trusted = true;
    EXPECT_TRUE(runUntil([this] { return mediaKeys.hasTap(); }));
}

TEST_F(MainWindowContent, TheSoundSystemLineFollowsTheConnection)
{
    using State = services::SoundSystemStatus::State;
    sim::SimulatedSoundSystemStatus status(State::Connecting);
    auto other = services();
    other.soundSystem = &status;
    ui::ContentView withLine(lang, *appState, other);
    auto* line = child<QLabel>(&withLine, "soundSystemLabel");
    EXPECT_EQ(line->text(), "Sound system: connecting…");

    // The server's devices arrive with the connection: the list is read again at once.
    sim.system.addDevice(outputDevice("Late Arrival", "late"));
    status.setState(State::Connected);
    EXPECT_EQ(line->text(), "Sound system: connected.");
    EXPECT_EQ(appState->devices().size(), 3u);
}

TEST_F(MainWindowContent, TheSettingsNoticeShowsWhileWritesFailInTheCurrentLanguage)
{
    QWidget* notice = block("settingsSaveNotice");
    memoryDefaults.failWrites = true;
    lang.setCurrentLanguage(QStringLiteral("Deutsch"));
    EXPECT_TRUE(shown(notice));
    EXPECT_EQ(child<QLabel>(&view(), "settingsSaveNoticeText")->text(),
              "Änderungen werden nicht gespeichert: Die Einstellungsdatei kann nicht geschrieben werden.");
    memoryDefaults.failWrites = false;
    appState->setManualBluetoothOverride(true, kSpeakers);
    EXPECT_FALSE(shown(notice));
}

} // namespace
} // namespace orvanta::testing
