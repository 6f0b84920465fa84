// The volume keys with a real sound server on a real X display: while sync is on, a desktop
// that handles the keys itself changes the default output, which is the stacked device, and both
// members get louder or quieter together; where nothing else has the keys, Orvanta's own grab
// moves both. Loudness is measured on what the members play.

#include "support/EventLoop.h"
#include "support/LevelMeter.h"
#include "support/OffsetMeter.h"
#include "support/SoundServer.h"

#include "PulseAudioHardware.h"
#include "X11AccessibilityTrust.h"
#include "X11EventTap.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "services/MemoryLoginItems.h"
#include "services/MemoryUserDefaults.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QProcess>

#include <memory>

namespace orvanta::testing {
namespace {

xcb_connection_t* qtConnection()
{
    auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native ? native->connection() : nullptr;
}

void press(const QString& key)
{
    QProcess xdotool;
    xdotool.start("xdotool", {"key", "--clearmodifiers", key});
    ASSERT_TRUE(xdotool.waitForFinished(5000));
    ASSERT_EQ(xdotool.exitCode(), 0);
}

// The stand-in desktop: holds the keys while the object lives; counts the steps it made.
class DesktopHandler
{
public:
    DesktopHandler()
    {
        process.start(ORVANTA_DESKTOP_HANDLER, QStringList{});
        process.waitForReadyRead(5000);
        output = process.readAllStandardOutput();
        held = output.startsWith("held");
    }
    ~DesktopHandler()
    {
        process.closeWriteChannel();
        process.waitForFinished(3000);
    }
    int steps()
    {
        output += process.readAllStandardOutput();
        return static_cast<int>(output.count("step"));
    }
    bool held = false;

private:
    QProcess process;
    QByteArray output;
};

class DesktopVolumeKeys : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(keys.hasDisplay());
        ASSERT_TRUE(server.start()) << "PulseAudio did not start";
        ASSERT_TRUE(loadMeterRig(server));
        auto connection = std::make_unique<pulse::PulseConnection>();
        ASSERT_TRUE(connection->waitUntilReady(std::chrono::seconds(5)));
        hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
        audio = std::make_unique<audio::AudioWrapper>(*hardware, printed.log());
        ASSERT_TRUE(runUntil([this] { return audio->getOutputDevices().size() == 4; })); // hw, mA, mB, ref
        mediaKeys = std::make_unique<state::MediaKeyManager>(taps, printed.log());
        appState = std::make_unique<state::AppState>(
            state::AppStateServices{*audio, defaults, loginItems, trust, *mediaKeys, printed.log()});
    }

    void TearDown() override
    {
        appState.reset();
        mediaKeys.reset();
        keys.ungrab();
    }

    void syncBothMembers()
    {
        for (const auto& device : appState->devices()) {
            if (device.uid == "mA") {
                appState->setSelectedDevice1(device);
            } else if (device.uid == "mB") {
                appState->setSelectedDevice2(device);
            }
        }
        appState->enableSync();
        ASSERT_TRUE(appState->isQuellonOn());
    }

    QString stackedVolume() const { return server.pactl({"get-sink-volume", "com.quellon.stacked"}); }

    SoundServer server{SoundServer::Kind::PulseAudio};
    core::CollectedLines printed;
    std::unique_ptr<pulse::PulseAudioHardware> hardware;
    std::unique_ptr<audio::AudioWrapper> audio;
    x11::X11VolumeKeys keys{qtConnection()};
    x11::X11EventTap taps{keys};
    x11::X11AccessibilityTrust trust{keys, x11::X11AccessibilityTrust::Sound::Server, QStringLiteral("GNOME")};
    sim::MemoryUserDefaults defaults;
    sim::MemoryLoginItems loginItems;
    std::unique_ptr<state::MediaKeyManager> mediaKeys;
    std::unique_ptr<state::AppState> appState;
};

TEST_F(DesktopVolumeKeys, TheDesktopsOwnKeysMoveBothSpeakersTogether)
{
    DesktopHandler desktop;
    ASSERT_TRUE(desktop.held);
    syncBothMembers();
    // The desktop has the keys, and they reach the stacked device: no banner, no grab of ours.
    EXPECT_TRUE(appState->isTrusted());
    EXPECT_FALSE(mediaKeys->hasTap());

    const auto before = measureMemberLevels(server);
    ASSERT_TRUE(before);
    const QString volumeBefore = stackedVolume();
    press("XF86AudioLowerVolume");
    press("XF86AudioLowerVolume");
    ASSERT_TRUE(runUntil([&] { return desktop.steps() == 2; }));
    EXPECT_NE(stackedVolume(), volumeBefore);
    const auto after = measureMemberLevels(server);
    ASSERT_TRUE(after);

    // 100 % to 80 % on the desktop's scale: both members about half as loud, by the same factor.
    const double primaryRatio = after->primary / before->primary;
    const double secondaryRatio = after->secondary / before->secondary;
    RecordProperty("primaryRatio", std::to_string(primaryRatio));
    RecordProperty("secondaryRatio", std::to_string(secondaryRatio));
    EXPECT_LT(primaryRatio, 0.75);
    EXPECT_GT(primaryRatio, 0.3);
    EXPECT_NEAR(secondaryRatio, primaryRatio, 0.1 * primaryRatio);
    // Each speaker's own level is left as it was.
    EXPECT_EQ(appState->volume1(), 0.5f);
    EXPECT_EQ(appState->volume2(), 0.5f);
}

TEST_F(DesktopVolumeKeys, WhereNothingElseHasTheKeysOrvantasGrabMovesBothSpeakers)
{
    syncBothMembers();
    EXPECT_TRUE(appState->isTrusted());
    ASSERT_TRUE(mediaKeys->hasTap());

    const auto before = measureMemberLevels(server);
    ASSERT_TRUE(before);
    press("XF86AudioRaiseVolume");
    press("XF86AudioRaiseVolume");
    ASSERT_TRUE(runUntil([&] { return appState->volume1() == 0.625f; }));
    EXPECT_EQ(appState->volume2(), 0.625f);
    const auto after = measureMemberLevels(server);
    ASSERT_TRUE(after);

    const double primaryRatio = after->primary / before->primary;
    const double secondaryRatio = after->secondary / before->secondary;
    RecordProperty("primaryRatio", std::to_string(primaryRatio));
    RecordProperty("secondaryRatio", std::to_string(secondaryRatio));
    EXPECT_GT(primaryRatio, 1.2);
    EXPECT_NEAR(secondaryRatio, primaryRatio, 0.1 * primaryRatio);
}

} // namespace
} // namespace orvanta::testing
