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
    ASSERT_EQ(primary->count(), 3);
    EXPECT_EQ(primary->itemText(2), "BT Speaker");
    auto* syncSwitch = child<QAbstractButton>(&view(), "syncSwitch");
    pickBoth(1, 1);
    EXPECT_FALSE(syncSwitch->isEnabled());
    pickBoth(1, 2);
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);
    EXPECT_FALSE(shown(block("balanceSection")));

    turnSyncOn();
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_TRUE(shown(block("balanceSection")));
    EXPECT_TRUE(shown(block("delayNote")));
    EXPECT_EQ(alerts.shown.size(), 1);

    turnSyncOn(); // the same switch, now on
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(shown(block("balanceSection")));
    EXPECT_EQ(alerts.shown.size(), 1);
    pick(primary, 0);
    EXPECT_EQ(appState->selectedDevice1(), std::nullopt);
    EXPECT_FALSE(syncSwitch->isEnabled());
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
    // The message is composed in English in every language.
    EXPECT_THAT(alerts.shown[1].informativeText.toStdString(), HasSubstr("Bluetooth device detected: Radio"));
}

TEST_F(MainWindowContent, TheDelayNoteFollowsEitherSelectedDeviceCountingAsBluetooth)
{
    sim.system.addDevice(withHardwareVolume(outputDevice("Desk", "desk")));
    view().refreshDevices();
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(device("desk"));
    turnSyncOn();
    EXPECT_FALSE(shown(block("delayNote")));
    click(child<QAbstractButton>(block("secondarySpeaker"), "bluetoothCheckbox"));
    EXPECT_TRUE(shown(block("delayNote")));
    appState->setManualBluetoothOverride(false, device("desk"));
    appState->setSelectedDevice1(kBluetooth);
    EXPECT_TRUE(shown(block("delayNote")));
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
    EXPECT_FALSE(shown(child<QWidget>(&withLine, "simulatedNotice")));

    // The server's devices arrive with the connection: the list is read again at once.
    sim.system.addDevice(outputDevice("Late Arrival", "late"));
    status.setState(State::Connected);
    EXPECT_EQ(line->text(), "Sound system: connected.");
    EXPECT_EQ(appState->devices().size(), 3u);
    status.setState(State::Simulated);
    EXPECT_FALSE(shown(line));
    EXPECT_TRUE(shown(child<QWidget>(&withLine, "simulatedNotice")));
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
    appState->setManualBluetoothOverride(true, device("spk"));
    EXPECT_FALSE(shown(notice));
}

QHash<const QObject*, QString> visibleTexts(const QWidget& root)
{
    QHash<const QObject*, QString> texts;
    for (const QLabel* label : root.findChildren<QLabel*>()) {
        if (shown(label) && !label->text().isEmpty()) {
            texts.insert(label, label->text());
        }
    }
    for (const QAbstractButton* button : root.findChildren<QAbstractButton*>()) {
        if (shown(button)) {
            texts.insert(button, button->text() + u'|' + button->toolTip());
        }
    }
    for (const QComboBox* picker : root.findChildren<QComboBox*>()) {
        texts.insert(picker, picker->itemText(0));
    }
    return texts;
}

TEST_F(MainWindowContent, AnotherLanguageRetitlesEverythingButNamesAndNumbers)
{
    sim.system.addDevice(withHardwareVolume(outputDevice("Desk", "desk")));
    view().refreshDevices();
    appState->setSelectedDevice1(device("desk"));
    appState->setSelectedDevice2(kBluetooth);
    appState->setBluetoothDelay(120, kBluetooth);
    turnSyncOn();
    view().show();
    const auto before = visibleTexts(view());
    pick(child<QComboBox>(&view(), "languagePicker"), 1);
    ASSERT_EQ(lang.currentLanguage(), "Español");

    const auto after = visibleTexts(view());
    const QStringList fixed{"Orvanta", "•", "v1.0.0", "Desk", "BT Speaker", "0 ms", "120 ms", "Español", "English"};
    int compared = 0;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        const bool same = fixed.contains(it.value());
        compared += same ? 0 : 1;
        EXPECT_EQ(after.value(it.key()) == it.value(), same) << it.key()->objectName().toStdString();
    }
    EXPECT_GE(compared, 20);
}

} // namespace
} // namespace orvanta::testing
