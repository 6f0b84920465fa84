#include "UiFixture.h"

#include "ui/ContentView.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/Widgets.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPointer>
#include <QSlider>

#include <memory>

namespace orvanta::testing {
namespace {

class Panel : public ::testing::Test, public UiFixture
{
protected:
    Panel()
        : panel(
              *appState, lang, [this] { openNewWindow(); }, [this] { ++quits; })
    {}

    ~Panel() override
    {
        if (window) {
            delete window.data();
        }
    }

    void openNewWindow()
    {
        ++opened;
        window = new ui::MainWindow(lang, *appState, services());
        window->show();
    }

    QWidget* section(const char* name) { return child<QWidget>(&panel, name); }
    QString percent(const char* name) { return child<QLabel>(section(name), "percentLabel")->text(); }

    int opened = 0;
    int quits = 0;
    QPointer<ui::MainWindow> window;
    ui::MenuBarView panel;
};

TEST_F(Panel, IsTwoHundredEightyWideWithTheHeaderAndAGrayDotWhileSyncIsOff)
{
    EXPECT_EQ(panel.minimumWidth(), 280);
    EXPECT_EQ(panel.maximumWidth(), 280);
    EXPECT_EQ(child<QLabel>(&panel, "productName")->text(), "Orvanta");
    EXPECT_FALSE(child<ui::StatusDot>(&panel, "statusDot")->isOn());
}

TEST_F(Panel, WithoutTwoDifferentDevicesItAsksForThemInPlaceOfTheSwitch)
{
    EXPECT_TRUE(shown(child<QLabel>(&panel, "syncCaption")));
    EXPECT_EQ(child<QLabel>(&panel, "syncCaption")->text(), "Select two different devices");
    EXPECT_FALSE(shown(child<QWidget>(&panel, "syncSwitch")));
    appState->setSelectedDevice1(kSpeakers);
    appState->setSelectedDevice2(kSpeakers);
    EXPECT_FALSE(shown(child<QWidget>(&panel, "syncSwitch")));
    appState->setSelectedDevice2(kBluetooth);
    EXPECT_TRUE(shown(child<QWidget>(&panel, "syncSwitch")));
    EXPECT_FALSE(shown(child<QLabel>(&panel, "syncCaption")));
}

TEST_F(Panel, TheSwitchTurnsSyncOnAndOffAndTheSpeakersFollow)
{
    selectBoth();
    EXPECT_FALSE(shown(child<QWidget>(&panel, "speakers")));
    click(child<QAbstractButton>(&panel, "syncSwitch"));
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_TRUE(child<ui::StatusDot>(&panel, "statusDot")->isOn());
    EXPECT_TRUE(shown(child<QWidget>(&panel, "speakers")));
    drainEvents();
    EXPECT_TRUE(alerts.shown.isEmpty()); // the panel warns of nothing

    click(child<QAbstractButton>(&panel, "syncSwitch"));
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(shown(child<QWidget>(&panel, "speakers")));
}

TEST_F(Panel, TheSwitchHidesWhenTheSelectionBecomesInvalidButTheSpeakersStayWhileSyncIsOn)
{
    selectBoth();
    appState->enableSync();
    appState->setSelectedDevice2(std::nullopt);
    EXPECT_FALSE(shown(child<QWidget>(&panel, "syncSwitch")));
    EXPECT_TRUE(shown(child<QWidget>(&panel, "speakers")));
    EXPECT_EQ(child<QLabel>(section("secondarySection"), "nameLabel")->text(), "Secondary Speaker");
}

TEST_F(Panel, VolumePercentagesDropTheFraction)
{
    selectBoth();
    appState->enableSync();
    appState->setVolume1(0.999f);
    EXPECT_EQ(percent("primarySection"), "99%");
    appState->setVolume1(1.0f);
    EXPECT_EQ(percent("primarySection"), "100%");
    appState->setVolume1(0.0f);
    EXPECT_EQ(percent("primarySection"), "0%");
    appState->setVolume2(0.505f);
    EXPECT_EQ(percent("secondarySection"), "50%");
}

TEST_F(Panel, TheVolumeSliderWritesTheVolumeAndPushesItAtTheStartAndEndOfADrag)
{
    selectBoth();
    appState->enableSync();
    sim.reset();
    dragSlider(child<QSlider>(section("secondarySection"), "volumeSlider"), {600, 250});
    EXPECT_FLOAT_EQ(appState->volume2(), 0.25f);
    EXPECT_EQ(percent("secondarySection"), "25%");
    EXPECT_EQ(volumeLines(), 4);
}

TEST_F(Panel, TheDelayRowStepsByFiveWithinItsBounds)
{
    selectBoth();
    appState->enableSync();
    QWidget* bluetooth = section("secondarySection");
    EXPECT_TRUE(shown(child<QWidget>(bluetooth, "delayControls")));
    EXPECT_FALSE(shown(child<QWidget>(section("primarySection"), "delayControls")));
    EXPECT_EQ(child<QLabel>(bluetooth, "delayLabel")->text(), "0 ms");

    click(child<QAbstractButton>(bluetooth, "decreaseButton"));
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 0);
    click(child<QAbstractButton>(bluetooth, "increaseButton"));
    click(child<QAbstractButton>(bluetooth, "increaseButton"));
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 10);
    EXPECT_EQ(child<QLabel>(bluetooth, "delayLabel")->text(), "10 ms");

    auto* slider = child<QSlider>(bluetooth, "delaySlider");
    dragSlider(slider, {10, 24});
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 120);
    EXPECT_EQ(child<QLabel>(bluetooth, "delayLabel")->text(), "120 ms");

    appState->setBluetoothDelay(600, kBluetooth);
    EXPECT_EQ(slider->value(), slider->maximum());
    click(child<QAbstractButton>(bluetooth, "increaseButton"));
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 600);
}

TEST_F(Panel, AMarkedWiredDeviceGetsTheMarkAndDelayRowAndLosesThemWithTheMarkButKeepsItsDelay)
{
    selectBoth();
    appState->enableSync();
    QWidget* wired = section("primarySection");
    EXPECT_FALSE(shown(child<QWidget>(wired, "bluetoothMark")));
    appState->setManualBluetoothOverride(true, kSpeakers);
    EXPECT_TRUE(shown(child<QWidget>(wired, "bluetoothMark")));
    EXPECT_TRUE(shown(child<QWidget>(wired, "delayControls")));
    click(child<QAbstractButton>(wired, "increaseButton"));
    appState->setManualBluetoothOverride(false, kSpeakers);
    EXPECT_FALSE(shown(child<QWidget>(wired, "bluetoothMark")));
    EXPECT_FALSE(shown(child<QWidget>(wired, "delayControls")));
    EXPECT_EQ(appState->bluetoothDelays().at("spk"), 5);
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
    auto* name = child<ui::ElidedLabel>(section("primarySection"), "nameLabel");
    EXPECT_EQ(name->fullText(), QString::fromStdString(longName));
    EXPECT_TRUE(name->text().endsWith(QChar(0x2026)));
    EXPECT_LE(name->height(), name->fontMetrics().height() + 4);
    EXPECT_EQ(panel.width(), 280);
}

TEST_F(Panel, LaunchAtLoginRegistersTheLoginItem)
{
    auto* checkbox = child<QAbstractButton>(&panel, "launchAtLoginCheckbox");
    EXPECT_FALSE(checkbox->isChecked());
    click(checkbox);
    EXPECT_TRUE(appState->launchAtLogin());
    EXPECT_EQ(loginItems.registerCalls, 1);
    click(checkbox);
    EXPECT_FALSE(appState->launchAtLogin());
    EXPECT_EQ(loginItems.unregisterCalls, 1);
}

TEST_F(Panel, RestoreSyncAtStartSitsUnderLaunchAtLoginAndIsStored)
{
    auto* login = child<QAbstractButton>(&panel, "launchAtLoginCheckbox");
    auto* restore = child<QAbstractButton>(&panel, "restoreSyncCheckbox");
    EXPECT_EQ(restore->text(), "Restore sync at start");
    EXPECT_GT(restore->y(), login->y());
    EXPECT_FALSE(restore->isChecked());
    selectBoth();
    appState->enableSync();
    click(restore);
    EXPECT_TRUE(appState->restoreSyncAtStart());
    EXPECT_TRUE(memoryDefaults.value(state::AppState::kRestoreSyncKey).toBool());
    EXPECT_EQ(memoryDefaults.value(state::AppState::kRestoreDevicesKey).toMap().value("primary").toString(), "spk");
    lang.setCurrentLanguage("Français");
    EXPECT_EQ(restore->text(), "Rétablir la synchronisation au démarrage");
}

TEST_F(Panel, QuitEndsTheProgramWithoutTurningSyncOff)
{
    selectBoth();
    appState->enableSync();
    click(child<QAbstractButton>(&panel, "quitButton"));
    EXPECT_EQ(quits, 1);
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_NE(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
}

TEST_F(Panel, OpenMainWindowOpensANewOneWhenThereIsNone)
{
    panel.show();
    click(child<QAbstractButton>(&panel, "openMainWindowButton"));
    EXPECT_EQ(opened, 1);
    ASSERT_TRUE(window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->windowTitle(), "Orvanta");
    EXPECT_EQ(window->objectName(), "main");
}

TEST_F(Panel, OpenMainWindowBringsTheExistingWindowToTheFront)
{
    openNewWindow();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    QWidget other;
    other.setWindowTitle(QStringLiteral("Another program"));
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    window->showMinimized();
    drainEvents();

    panel.show();
    click(child<QAbstractButton>(&panel, "openMainWindowButton"));
    EXPECT_EQ(opened, 1);
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
    EXPECT_EQ(QApplication::activeWindow(), window.data());
}

TEST_F(Panel, OpenMainWindowReusesAWindowByItsTitleAlone)
{
    QWidget titled;
    titled.setWindowTitle(QStringLiteral("Orvanta"));
    click(child<QAbstractButton>(&panel, "openMainWindowButton"));
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(titled.isVisible());
}

TEST_F(Panel, AClosedMainWindowIsNotReusedButReplaced)
{
    openNewWindow();
    QPointer<ui::MainWindow> first = window;
    first->close();
    click(child<QAbstractButton>(&panel, "openMainWindowButton"));
    EXPECT_EQ(opened, 2);
    EXPECT_NE(window.data(), first.data());
    EXPECT_TRUE(window->isVisible());
    drainEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(first.isNull());
}

TEST_F(Panel, ChoosingAnotherLanguageRetitlesThePanelButNotItsName)
{
    selectBoth();
    appState->enableSync();
    lang.setCurrentLanguage(QStringLiteral("Español"));
    EXPECT_EQ(child<QAbstractButton>(&panel, "openMainWindowButton")->text(), "Abrir Ventana Principal");
    EXPECT_EQ(child<QAbstractButton>(&panel, "syncSwitch")->text(), lang.translate("Enable Sync"));
    EXPECT_EQ(child<QAbstractButton>(&panel, "launchAtLoginCheckbox")->text(), lang.translate("Launch at Login"));
    EXPECT_EQ(child<QAbstractButton>(&panel, "quitButton")->text(), lang.translate("Quit"));
    EXPECT_NE(lang.translate("Quit"), "Quit");
    EXPECT_EQ(child<QLabel>(&panel, "productName")->text(), "Orvanta");

    lang.setCurrentLanguage(QStringLiteral("العربية"));
    EXPECT_EQ(panel.layoutDirection(), Qt::RightToLeft);
}

} // namespace
} // namespace orvanta::testing
