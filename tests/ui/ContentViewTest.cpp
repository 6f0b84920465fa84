#include "MainWindowContent.h"

#include "ui/ContentView.h"
#include "ui/SpeakerBlock.h"
#include "update/SiteAddresses.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QSet>
#include <QSlider>

#include <memory>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const QString kBluetoothTail =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumeTail = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

TEST_F(MainWindowContent, HasAFixedWidthOf420)
{
    EXPECT_EQ(view().minimumWidth(), 420);
    EXPECT_EQ(view().maximumWidth(), 420);
    EXPECT_EQ(child<QLabel>(&view(), "productName")->text(), "Orvanta");
}

TEST_F(MainWindowContent, PickersOfferSelectThenEveryDeviceWithTheBluetoothMarkOnlyForBluetoothDevices)
{
    auto* primary = child<QComboBox>(&view(), "primaryPicker");
    ASSERT_EQ(primary->count(), 3);
    EXPECT_EQ(primary->itemText(0), "Select...");
    EXPECT_EQ(primary->itemText(1), "Speakers");
    EXPECT_EQ(primary->itemText(2), "BT Speaker");
    EXPECT_TRUE(primary->itemIcon(1).isNull());
    EXPECT_FALSE(primary->itemIcon(2).isNull());
    EXPECT_EQ(primary->currentIndex(), 0);

    pickBoth(1, 2);
    EXPECT_EQ(appState->selectedDevice1(), kSpeakers);
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);
    pick(child<QComboBox>(&view(), "primaryPicker"), 0);
    EXPECT_EQ(appState->selectedDevice1(), std::nullopt);
}

TEST_F(MainWindowContent, SwitchIsGreyedOutWithoutTwoDifferentDevicesAndTheBalanceSectionIsAbsent)
{
    auto* syncSwitch = child<QAbstractButton>(&view(), "syncSwitch");
    EXPECT_FALSE(syncSwitch->isEnabled());
    pickBoth(1, 0);
    EXPECT_FALSE(syncSwitch->isEnabled());
    pickBoth(1, 1);
    EXPECT_FALSE(syncSwitch->isEnabled());
    EXPECT_FALSE(shown(block("balanceSection")));
    pickBoth(1, 2);
    EXPECT_TRUE(syncSwitch->isEnabled());
    EXPECT_FALSE(shown(block("balanceSection")));
}

TEST_F(MainWindowContent, SyncOnBuildsTheStackedDeviceShowsTheBalanceAndWarnsOfTheBluetoothSpeaker)
{
    pickBoth(1, 2);
    turnSyncOn();

    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_NE(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
    EXPECT_TRUE(child<QAbstractButton>(&view(), "syncSwitch")->isChecked());
    EXPECT_TRUE(shown(block("balanceSection")));
    // Asked of the audio layer afresh; both devices have a hardware volume, so no volume warning.
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Bluetooth Audio Latency");
    EXPECT_EQ(alerts.shown[0].informativeText, "Bluetooth device detected: BT Speaker" + kBluetoothTail);
    EXPECT_EQ(alerts.shown[0].buttons, QStringList{"OK"});
}

TEST_F(MainWindowContent, SyncOffRaisesNoAlertAndDestroysTheStackedDevice)
{
    pickBoth(1, 2);
    turnSyncOn();
    alerts.shown.clear();

    click(child<QAbstractButton>(&view(), "syncSwitch"));
    drainEvents();

    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_EQ(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
    EXPECT_FALSE(child<QAbstractButton>(&view(), "syncSwitch")->isChecked());
    EXPECT_FALSE(shown(block("balanceSection")));
    EXPECT_THAT(alerts.shown, IsEmpty());
}

TEST_F(MainWindowContent, SyncOnWithoutAValidSelectionShowsTheSyncErrorAndChangesNothing)
{
    view().syncOn();
    drainEvents();

    EXPECT_FALSE(appState->isQuellonOn());
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Audio Sync Error");
    EXPECT_EQ(alerts.shown[0].informativeText, "Select two different devices");
    EXPECT_THAT(sim.calls({"create"}), IsEmpty());
}

TEST_F(MainWindowContent, ABluetoothSpeakerShowsItsMarkAndDelayRowButNoCheckbox)
{
    pickBoth(1, 2);
    turnSyncOn();
    QWidget* bluetooth = block("secondarySpeaker");
    EXPECT_TRUE(shown(child<QWidget>(bluetooth, "bluetoothMark")));
    EXPECT_TRUE(shown(child<QWidget>(bluetooth, "delayRow")));
    EXPECT_FALSE(shown(child<QWidget>(bluetooth, "bluetoothCheckbox")));
    EXPECT_EQ(child<QLabel>(bluetooth, "nameLabel")->text(), "BT Speaker");

    QWidget* wired = block("primarySpeaker");
    EXPECT_FALSE(shown(child<QWidget>(wired, "bluetoothMark")));
    EXPECT_FALSE(shown(child<QWidget>(wired, "delayRow")));
    EXPECT_TRUE(shown(child<QWidget>(wired, "bluetoothCheckbox")));
    EXPECT_TRUE(shown(block("delayNote")));
}

TEST_F(MainWindowContent, TickingTreatAsBluetoothMarksTheDeviceAndShowsItsDelayRow)
{
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(kSpeakers);
    // The same device twice cannot sync; use a second wired device.
    sim.system.addDevice(withHardwareVolume(outputDevice("Desk", "desk")));
    view().refreshDevices();
    appState->setSelectedDevice2(device("desk"));
    turnSyncOn();
    ASSERT_TRUE(appState->isQuellonOn());
    EXPECT_FALSE(shown(block("delayNote")));

    QWidget* wired = block("primarySpeaker");
    auto* checkbox = child<QAbstractButton>(wired, "bluetoothCheckbox");
    EXPECT_FALSE(checkbox->isChecked());
    click(checkbox);

    EXPECT_EQ(appState->manualBluetoothOverrides(), (state::OverrideMap{{"spk", true}}));
    EXPECT_TRUE(checkbox->isChecked());
    EXPECT_TRUE(shown(child<QWidget>(wired, "bluetoothMark")));
    EXPECT_TRUE(shown(child<QWidget>(wired, "delayRow")));
    EXPECT_TRUE(shown(block("delayNote")));

    click(checkbox);
    EXPECT_EQ(appState->manualBluetoothOverrides(), (state::OverrideMap{{"spk", false}}));
    EXPECT_FALSE(shown(child<QWidget>(wired, "bluetoothMark")));
    EXPECT_FALSE(shown(child<QWidget>(wired, "delayRow")));
    EXPECT_FALSE(shown(block("delayNote")));
}

TEST_F(MainWindowContent, DelayNoteFollowsEitherSelectedDeviceBeingTreatedAsBluetooth)
{
    sim.system.addDevice(withHardwareVolume(outputDevice("Desk", "desk")));
    view().refreshDevices();
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(device("desk"));
    turnSyncOn();
    EXPECT_FALSE(shown(block("delayNote")));
    appState->setManualBluetoothOverride(true, device("desk"));
    EXPECT_TRUE(shown(block("delayNote")));
    appState->setManualBluetoothOverride(false, device("desk"));
    appState->setManualBluetoothOverride(true, kSpeakers);
    EXPECT_TRUE(shown(block("delayNote")));
    appState->setSelectedDevice1(kBluetooth);
    appState->setManualBluetoothOverride(false, kSpeakers);
    EXPECT_TRUE(shown(block("delayNote")));
}

TEST_F(MainWindowContent, TheVolumeSliderWritesEveryMoveButReachesTheDevicesOnlyAtTheStartAndEndOfAnEdit)
{
    pickBoth(1, 2);
    turnSyncOn();
    sim.reset();
    auto* slider = child<QSlider>(block("primarySpeaker"), "volumeSlider");
    EXPECT_EQ(slider->value(), 500);

    dragSlider(slider, {600, 700, 800});
    EXPECT_FLOAT_EQ(appState->volume1(), 0.8f);
    EXPECT_EQ(volumeLines(), 4); // both devices, at the press and at the release
    EXPECT_THAT(sim.printed.lines, ::testing::Contains(::testing::HasSubstr("for spk: 0.8")));

    sim.reset();
    QTest::keyClick(slider, Qt::Key_Left);
    EXPECT_FLOAT_EQ(appState->volume1(), 0.79f);
    EXPECT_EQ(volumeLines(), 2);

    sim.reset();
    view().show();
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(slider->width() / 4, slider->height() / 2));
    EXPECT_LT(appState->volume1(), 0.5f);
    EXPECT_EQ(volumeLines(), 4);
}

TEST_F(MainWindowContent, RefreshReadsTheDevicesAgainAndKeepsTheSelections)
{
    pickBoth(1, 2);
    sim.system.removeDevice("bt");
    click(child<QAbstractButton>(&view(), "refreshButton"));

    EXPECT_EQ(appState->devices(), (state::DeviceList{kSpeakers}));
    auto* secondary = child<QComboBox>(&view(), "secondaryPicker");
    EXPECT_EQ(secondary->count(), 2);
    EXPECT_EQ(child<QComboBox>(&view(), "primaryPicker")->count(), 2);
    EXPECT_EQ(appState->selectedDevice1(), kSpeakers);
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);
    EXPECT_EQ(secondary->currentIndex(), -1);
    EXPECT_EQ(child<QAbstractButton>(&view(), "refreshButton")->toolTip(), "Detect new devices");
}

TEST_F(MainWindowContent, ShowingTheContentReadsTheDevicesAgain)
{
    view();
    sim.system.addDevice(outputDevice("Late Arrival", "late"));
    EXPECT_EQ(appState->devices().size(), 2u);
    view().show();
    ASSERT_EQ(appState->devices().size(), 3u);
    EXPECT_EQ(appState->devices()[2].name, "Late Arrival");
}

TEST_F(MainWindowContent, PermissionBannerShowsUntilTrustedAndItsButtonAsksForTrust)
{
    QWidget* banner = block("permissionBanner");
    EXPECT_TRUE(shown(banner));
    click(child<QAbstractButton>(&view(), "openSystemSettingsButton"));
    EXPECT_EQ(trust.prompts, 1);
    EXPECT_EQ(child<QLabel>(&view(), "bannerText")->text(),
              lang.translate("keys_taken_reason") + "\n" + lang.translate("keys_taken_text"));

    trust.trusted = true;
    ASSERT_TRUE(runUntil([this] { return appState->isTrusted(); }));
    EXPECT_FALSE(shown(banner));
}

TEST_F(MainWindowContent, GrantingTrustWhileSyncIsOnStartsTheVolumeKeyTap)
{
    taps.allowed = false;
    pickBoth(1, 2);
    turnSyncOn();
    ASSERT_TRUE(appState->isQuellonOn());
    ASSERT_FALSE(mediaKeys.hasTap());

    taps.allowed = true;
    trust.trusted = true;
    ASSERT_TRUE(runUntil([this] { return appState->isTrusted(); }));
    EXPECT_TRUE(mediaKeys.hasTap());
    EXPECT_EQ(taps.created, 1);
}

TEST_F(MainWindowContent, GrantingTrustWhileSyncIsOffStartsNoTap)
{
    view();
    trust.trusted = true;
    ASSERT_TRUE(runUntil([this] { return appState->isTrusted(); }));
    EXPECT_FALSE(mediaKeys.hasTap());
    EXPECT_EQ(taps.created, 0);
}

TEST_F(MainWindowContent, SupportAndLinksOpenTheirPages)
{
    view().show();
    click(child<QAbstractButton>(&view(), "supportButton"));
    click(child<QAbstractButton>(&view(), "privacyLink"));
    click(child<QAbstractButton>(&view(), "termsLink"));
    EXPECT_THAT(workspace.opened, ElementsAre(QUrl(update::donationAddress()), QUrl(update::privacyPolicyAddress()),
                                              QUrl(update::termsOfUseAddress())));
    EXPECT_TRUE(update::privacyPolicyAddress().endsWith("/privacy/orvanta.html"));
    EXPECT_TRUE(update::termsOfUseAddress().endsWith("/terms/orvanta.html"));
}

TEST_F(MainWindowContent, VersionLabelShowsTheBuildsVersionOrNothing)
{
    EXPECT_EQ(child<QLabel>(&view(), "versionLabel")->text(), "v1.0.0");
    EXPECT_TRUE(shown(child<QLabel>(&view(), "versionLabel")));

    auto withoutVersion = services();
    withoutVersion.bundle = nullptr;
    ui::ContentView bare(lang, *appState, withoutVersion);
    EXPECT_FALSE(shown(child<QLabel>(&bare, "versionLabel")));
}

// Every text the content shows, by widget.
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

TEST_F(MainWindowContent, ChoosingAnotherLanguageRetitlesEverythingButTheNameTheDotAndTheVersion)
{
    sim.system.addDevice(withHardwareVolume(outputDevice("Desk", "desk")));
    view().refreshDevices();
    appState->setSelectedDevice1(device("desk"));
    appState->setSelectedDevice2(kBluetooth);
    appState->setBluetoothDelay(120, kBluetooth);
    turnSyncOn();
    const auto before = visibleTexts(view());

    pick(child<QComboBox>(&view(), "languagePicker"), 1);
    ASSERT_EQ(lang.currentLanguage(), "Español");

    const auto after = visibleTexts(view());
    const QSet<QString> fixed{"Orvanta", "•", "v1.0.0", "Desk", "BT Speaker", "0 ms", "120 ms", "Español", "English"};
    int compared = 0;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        const QString name = it.key()->objectName();
        if (fixed.contains(it.value())) {
            EXPECT_EQ(after.value(it.key()), it.value()) << name.toStdString();
            continue;
        }
        ++compared;
        EXPECT_NE(after.value(it.key()), it.value()) << name.toStdString() << ": " << it.value().toStdString();
    }
    EXPECT_GE(compared, 20);
    EXPECT_EQ(child<QAbstractButton>(&view(), "syncSwitch")->text(), "Activar Sincronización");
}

TEST_F(MainWindowContent, HebrewLaysTheContentOutRightToLeft)
{
    view().show();
    EXPECT_EQ(view().layoutDirection(), Qt::LeftToRight);
    const auto xOf = [this](const char* name) {
        QWidget* widget = child<QWidget>(&view(), name);
        return widget->mapTo(&view(), QPoint(0, 0)).x();
    };
    EXPECT_LT(xOf("productName"), xOf("languagePicker"));

    lang.setCurrentLanguage(QStringLiteral("עברית"));
    drainEvents();
    EXPECT_EQ(view().layoutDirection(), Qt::RightToLeft);
    EXPECT_GT(xOf("productName"), xOf("languagePicker"));

    lang.setCurrentLanguage(QStringLiteral("English"));
    drainEvents();
    EXPECT_EQ(view().layoutDirection(), Qt::LeftToRight);
}

class NamedBluetoothDevices : public MainWindowContent
{
protected:
    NamedBluetoothDevices()
        : MainWindowContent({withHardwareVolume(outputDevice("Speakers", "spk")),
                             withHardwareVolume(outputDevice("A", "a", hal::kAudioDeviceTransportTypeBluetooth)),
                             withHardwareVolume(outputDevice("B", "b", hal::kAudioDeviceTransportTypeBluetoothLE))})
    {}
};

TEST_F(NamedBluetoothDevices, TwoBluetoothSpeakersAreNamedInOrder)
{
    pickBoth(2, 3);
    turnSyncOn();
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].informativeText, "Bluetooth device detected: A, B" + kBluetoothTail);
}

TEST_F(NamedBluetoothDevices, OnlyTheSecondarySpeakerIsNamedWhenOnlyItIsBluetooth)
{
    pickBoth(1, 3);
    turnSyncOn();
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].informativeText, "Bluetooth device detected: B" + kBluetoothTail);
}

TEST_F(NamedBluetoothDevices, TheBluetoothWarningIsComposedInEnglishInEveryLanguage)
{
    lang.setCurrentLanguage(QStringLiteral("Deutsch"));
    pickBoth(1, 2);
    turnSyncOn();
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, lang.translate("Bluetooth Audio Latency"));
    EXPECT_NE(alerts.shown[0].messageText, "Bluetooth Audio Latency");
    EXPECT_EQ(alerts.shown[0].informativeText, "Bluetooth device detected: A" + kBluetoothTail);
}

class DevicesWithoutVolume : public MainWindowContent
{
protected:
    DevicesWithoutVolume()
        : MainWindowContent({outputDevice("Wired A", "wa"),
                             outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI),
                             outputDevice("Radio", "radio", hal::kAudioDeviceTransportTypeBluetooth)})
    {}
};

TEST_F(DevicesWithoutVolume, SyncOnWarnsOfEveryDeviceWithoutHardwareVolume)
{
    pickBoth(1, 2);
    turnSyncOn();
    ASSERT_TRUE(appState->isQuellonOn());
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Volume Control Warning");
    EXPECT_EQ(alerts.shown[0].informativeText, "Volume control not supported: Wired A, HDMI" + kVolumeTail);
}

TEST_F(DevicesWithoutVolume, AFailedSyncKeepsTheSwitchOffAndWarnsOnlyOfBluetooth)
{
    sim.system.addFailure(
        std::nullopt,
        sim::FailureRule{sim::CallKind::CreateAggregateDevice, {}, {}, {}, hal::kAudioHardwareUnspecifiedError});
    pickBoth(1, 3);
    turnSyncOn();

    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(child<QAbstractButton>(&view(), "syncSwitch")->isChecked());
    EXPECT_FALSE(shown(block("balanceSection")));
    ASSERT_EQ(alerts.shown.size(), 1);
    EXPECT_EQ(alerts.shown[0].messageText, "Bluetooth Audio Latency");
    EXPECT_EQ(alerts.shown[0].informativeText, "Bluetooth device detected: Radio" + kBluetoothTail);
}

TEST_F(DevicesWithoutVolume, BothWarningsCanFollowOneSyncOn)
{
    pickBoth(2, 3);
    turnSyncOn();
    ASSERT_EQ(alerts.shown.size(), 2);
    EXPECT_EQ(alerts.shown[0].messageText, "Volume Control Warning");
    EXPECT_EQ(alerts.shown[0].informativeText, "Volume control not supported: HDMI, Radio" + kVolumeTail);
    EXPECT_EQ(alerts.shown[1].messageText, "Bluetooth Audio Latency");
    EXPECT_FALSE(view().hasPendingAlerts());
}

} // namespace
} // namespace orvanta::testing
