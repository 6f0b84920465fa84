// The volume keys on a real X display: pressed with xdotool, taken by the tap, and moving both
// simulated devices; trust that follows whether another client holds the keys; and the program
// itself quitting while it holds them.

#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include "x11/X11AccessibilityTrust.h"
#include "x11/X11EventTap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;

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

// Another client holding the volume keys while the object lives.
class Holder
{
public:
    Holder()
    {
        process.start(ORVANTA_GRAB_HOLDER, QStringList{});
        process.waitForReadyRead(5000);
        said = process.readAllStandardOutput();
        held = said.startsWith("held");
    }
    ~Holder() { release(); }
    void release()
    {
        process.closeWriteChannel();
        process.waitForFinished(3000);
    }
    QByteArray said; // "held", or "refused" when another client has the keys
    bool held = false;

private:
    QProcess process;
};

class VolumeKeys : public ::testing::Test, protected StateFixture
{
protected:
    x11::X11VolumeKeys keys{qtConnection()};
    x11::X11EventTap x11Taps{keys};
    // The simulated devices hear only this program's own grab.
    x11::X11AccessibilityTrust x11Trust{keys, x11::X11AccessibilityTrust::Sound::Simulated, QString()};
    std::unique_ptr<state::MediaKeyManager> x11MediaKeys;

    state::AppState& startWithX11()
    {
        x11MediaKeys = std::make_unique<state::MediaKeyManager>(x11Taps, sim.printed.log());
        appState = std::make_unique<state::AppState>(
            state::AppStateServices{sim.audio, memoryDefaults, loginItems, x11Trust, *x11MediaKeys, sim.printed.log()});
        return *appState;
    }

    void TearDown() override
    {
        appState.reset();
        x11MediaKeys.reset();
        keys.ungrab();
    }
};

TEST_F(VolumeKeys, EachKeyDownMovesBothDevicesByOneStep)
{
    ASSERT_TRUE(keys.hasDisplay());
    auto& app = startWithX11();
    selectBoth();
    app.enableSync();
    ASSERT_TRUE(x11MediaKeys->hasTap());

    press("XF86AudioRaiseVolume");
    ASSERT_TRUE(runUntil([&] { return app.volume1() == 0.5625f; }));
    press("XF86AudioLowerVolume");
    press("XF86AudioLowerVolume");
    ASSERT_TRUE(runUntil([&] { return app.volume1() == 0.4375f; }));
    EXPECT_EQ(app.volume2(), 0.4375f);
    EXPECT_EQ(sim.system.device(sim.idOf("spk"))->spec.virtualMainVolume.level, 0.4375f);
    EXPECT_EQ(sim.system.device(sim.idOf("bt"))->spec.channelVolumes[0].level, 0.4375f);
}

TEST_F(VolumeKeys, KeyDownsAreDroppedAndKeyUpsPassOn)
{
    std::vector<services::TapEvent> seen;
    std::vector<bool> passed;
    auto port = x11Taps.create(services::kSystemDefinedEventMask, [&](const services::TapEvent& event) {
        seen.push_back(event);
        const bool keyDown = (event.data1 & 0xFF00) == 0x0A00;
        passed.push_back(!keyDown);
        return keyDown ? std::nullopt : std::optional<services::TapEvent>(event);
    });
    ASSERT_TRUE(port);
    port->addToMainLoop();
    port->setEnabled(true);

    press("XF86AudioLowerVolume");
    press("a"); // not ours: never seen
    ASSERT_TRUE(runUntil([&] { return seen.size() >= 2; }));
    drainEvents();
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].data1, (1 << 16) | 0x0A00);
    EXPECT_EQ(seen[1].data1, (1 << 16) | 0x0B00);
    EXPECT_THAT(passed, ElementsAre(false, true));
}

TEST_F(VolumeKeys, AnotherClientHoldingTheKeysMeansNoTrustUntilItLetsGoUnlessTheSoundServerHasThem)
{
    auto& app = startWithX11();
    EXPECT_TRUE(app.isTrusted());
    selectBoth();

    auto holder = std::make_unique<Holder>();
    ASSERT_TRUE(holder->held);
    ASSERT_TRUE(runUntil([&] { return !app.isTrusted(); }, std::chrono::milliseconds(2500)));
    EXPECT_EQ(x11Trust.obstacle(), services::AccessibilityTrust::Obstacle::KeysHeldByAnotherProgram);
    // With the sound server, a desktop's volume handler changes the default output, which the
    // stacked device is: the keys are covered all the same.
    x11::X11AccessibilityTrust serverTrust(keys, x11::X11AccessibilityTrust::Sound::Server, QStringLiteral("GNOME"));
    EXPECT_TRUE(serverTrust.isProcessTrusted());
    EXPECT_EQ(serverTrust.obstacle(), services::AccessibilityTrust::Obstacle::None);

    // Sync comes on while the keys are taken: the tap cannot be made.
    app.enableSync();
    EXPECT_FALSE(x11MediaKeys->hasTap());
    EXPECT_EQ(sim.printed.lines.back(), "❌ Failed to create Event Tap. Check Accessibility Permissions.");

    // As the main window does: once trust returns while sync is on, start the tap.
    QObject::connect(&app, &state::AppState::isTrustedChanged, [&] {
        if (app.isTrusted() && app.isQuellonOn()) {
            x11MediaKeys->start();
        }
    });
    holder.reset();
    ASSERT_TRUE(runUntil([&] { return app.isTrusted(); }, std::chrono::milliseconds(2500)));
    ASSERT_TRUE(x11MediaKeys->hasTap());
    press("XF86AudioRaiseVolume");
    EXPECT_TRUE(runUntil([&] { return app.volume1() == 0.5625f; }));
}

TEST(VolumeKeysWithoutDisplay, NoX11MeansNoTapAndTrustOnlyWhereTheDesktopHandlesTheKeysWithItsOwnSettings)
{
    using Obstacle = services::AccessibilityTrust::Obstacle;
    using Sound = x11::X11AccessibilityTrust::Sound;
    x11::X11VolumeKeys keys(nullptr);
    x11::X11EventTap taps(keys);
    EXPECT_EQ(taps.create(services::kSystemDefinedEventMask, [](const services::TapEvent& e) { return e; }), nullptr);

    x11::X11AccessibilityTrust plasma(keys, Sound::Server, QStringLiteral("KDE"));
    EXPECT_TRUE(plasma.isProcessTrusted());
    x11::X11AccessibilityTrust sway(keys, Sound::Server, QStringLiteral("sway"));
    EXPECT_FALSE(sway.isProcessTrusted());
    EXPECT_EQ(sway.obstacle(), Obstacle::DesktopKeysUnknown);
    EXPECT_FALSE(sway.canPromptForTrust());
    // The desktop's keys never reach the simulated devices.
    x11::X11AccessibilityTrust simulated(keys, Sound::Simulated, QStringLiteral("GNOME"));
    EXPECT_FALSE(simulated.isProcessTrusted());
    EXPECT_EQ(simulated.obstacle(), Obstacle::SessionGivesNoKeys);
    EXPECT_FALSE(simulated.canPromptForTrust());

    // Each desktop opens its own keyboard settings, and the known ones handle the volume keys.
    EXPECT_EQ(x11::shortcutSettingsCommand("ubuntu:GNOME"), (QStringList{"gnome-control-center", "keyboard"}));
    EXPECT_EQ(x11::shortcutSettingsCommand("KDE"), (QStringList{"systemsettings", "kcm_keys"}));
    EXPECT_EQ(x11::shortcutSettingsCommand("XFCE"), QStringList{"xfce4-keyboard-settings"});
    EXPECT_TRUE(x11::shortcutSettingsCommand("").isEmpty());
    for (const char* desktop : {"ubuntu:GNOME", "KDE", "XFCE", "X-Cinnamon"}) {
        EXPECT_TRUE(x11::desktopHandlesVolumeKeys(desktop)) << desktop;
    }
    EXPECT_FALSE(x11::desktopHandlesVolumeKeys("sway"));
    EXPECT_FALSE(x11::desktopHandlesVolumeKeys(""));
}

TEST(Quit, WithSyncOnAndTheVolumeKeysGrabbedTheProgramEndsCleanly)
{
    // Sync comes back at start on two of the built-in simulated devices, and the keys are grabbed.
    QTemporaryDir home;
    ASSERT_TRUE(QDir(home.path()).mkpath("config/orvanta") && QDir(home.path()).mkpath("runtime"));
    QFile::setPermissions(home.filePath("runtime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile settings(home.filePath("config/orvanta/settings.json"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly) &&
                settings.write(R"({"restoreSyncAtStart": true, "restoreSyncDevices": {
        "primary": "alsa_output.pci-0000_00_1f.3.analog-stereo", "secondary": "bluez_output.A4_77_58_0C_11_2E.1"}})") >
                    0);
    settings.close();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", home.filePath("runtime"));
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("ORVANTA_AUDIO", "simulated");
    environment.remove("XDG_SESSION_TYPE");
    // With a session bus of its own, as in a desktop session: without one, Qt's D-Bus thread
    // leaves a buffer of libdbus behind at exit that is no leak of the program's.
    QProcess program;
    program.setProcessEnvironment(environment);
    program.start("dbus-run-session", {"--", QStringLiteral(ORVANTA_PROGRAM)});
    QByteArray output;
    ASSERT_TRUE(runUntil(
        [&] {
            output += program.readAllStandardOutput();
            return output.contains("Sync Device Created!") || program.state() == QProcess::NotRunning;
        },
        std::chrono::seconds(60)));
    ASSERT_TRUE(output.contains("Sync Device Created!")) << output.toStdString();
    // The keys are the program's: another client cannot have them.
    EXPECT_TRUE(runUntil([] { return Holder().said == "refused\n"; }, std::chrono::seconds(10)));

    // The main window's Quit shortcut, as a user would press it.
    QProcess::execute("xdotool", {"search", "--sync", "--onlyvisible", "--class", "orvanta", "windowfocus", "--sync"});
    press("ctrl+q");
    ASSERT_TRUE(runUntil([&] { return program.state() == QProcess::NotRunning; }, std::chrono::seconds(60)));
    const QByteArray errors = program.readAllStandardError();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << errors.toStdString();
    EXPECT_EQ(program.exitCode(), 0) << errors.toStdString();
    for (const char* report : {"AddressSanitizer", "LeakSanitizer", "runtime error:"}) {
        EXPECT_FALSE(errors.contains(report)) << errors.toStdString();
    }
}

} // namespace
} // namespace orvanta::testing
