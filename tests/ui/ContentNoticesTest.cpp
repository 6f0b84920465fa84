// What the main window says about the sound system and the volume keys: the live status line,
// the notice that simulated devices are not real, and the banner's reason and button.

#include "MainWindowContent.h"

#include "services/SimulatedSoundSystemStatus.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLabel>

namespace orvanta::testing {
namespace {

TEST_F(MainWindowContent, TheBannerSaysWhyAndOffersTheButtonOnlyWhereItLeadsSomewhere)
{
    using Obstacle = platform::AccessibilityTrust::Obstacle;
    auto* text = child<QLabel>(&view(), "bannerText");
    auto* button = child<QAbstractButton>(&view(), "openSystemSettingsButton");

    // Keys held elsewhere on a desktop whose shortcut settings are unknown: the reason, no steps.
    trust.canPrompt = false;
    view().redraw();
    EXPECT_EQ(text->text(), "Another program is using the volume keys, often the desktop's own volume control.");
    EXPECT_FALSE(shown(button));

    trust.blockedBy = Obstacle::SessionGivesNoKeys;
    view().redraw();
    EXPECT_THAT(text->text().toStdString(), ::testing::HasSubstr("Wayland"));
    EXPECT_FALSE(shown(button));

    trust.blockedBy = Obstacle::DesktopKeysUnknown;
    lang.setCurrentLanguage("Deutsch");
    EXPECT_THAT(text->text().toStdString(), ::testing::HasSubstr("Lautstärketasten"));
    EXPECT_FALSE(shown(button));
}

TEST_F(MainWindowContent, TheSoundSystemLineFollowsTheConnectionAsItChanges)
{
    using State = platform::SoundSystemStatus::State;
    sim::SimulatedSoundSystemStatus status(State::Connecting);
    auto withStatus = services();
    withStatus.soundSystem = &status;
    ui::ContentView withLine(lang, *appState, withStatus);
    auto* line = child<QLabel>(&withLine, "soundSystemLabel");
    EXPECT_TRUE(shown(line));
    EXPECT_EQ(line->text(), "Sound system: connecting…");
    EXPECT_FALSE(shown(child<QWidget>(&withLine, "simulatedNotice")));

    status.setState(State::NotAnswering);
    EXPECT_EQ(line->text(), "Sound system: not answering. Orvanta connects as soon as it does.");

    // The server's devices arrive with the connection: the list is read again at once.
    sim.system.addDevice(outputDevice("Late Arrival", "late"));
    status.setState(State::Connected);
    EXPECT_EQ(line->text(), "Sound system: connected.");
    EXPECT_EQ(appState->devices().size(), 3u);

    lang.setCurrentLanguage("Español");
    EXPECT_EQ(line->text(), "Sistema de sonido: conectado.");
}

TEST_F(MainWindowContent, TheSimulatedSoundSystemSaysItsDevicesAreNotReal)
{
    sim::SimulatedSoundSystemStatus status;
    auto withStatus = services();
    withStatus.soundSystem = &status;
    ui::ContentView withLine(lang, *appState, withStatus);
    EXPECT_FALSE(shown(child<QLabel>(&withLine, "soundSystemLabel")));
    EXPECT_TRUE(shown(child<QWidget>(&withLine, "simulatedNotice")));
    EXPECT_THAT(child<QLabel>(&withLine, "simulatedText")->text().toStdString(),
                ::testing::StartsWith("Simulated sound system: these devices are not real"));
    lang.setCurrentLanguage("日本語");
    EXPECT_THAT(child<QLabel>(&withLine, "simulatedText")->text().toStdString(),
                ::testing::StartsWith("シミュレートされたサウンドシステム"));
    EXPECT_FALSE(shown(child<QLabel>(&view(), "soundSystemLabel"))); // without a status: nothing
}

} // namespace
} // namespace orvanta::testing
