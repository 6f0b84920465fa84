// The volume keys on a real X display, pressed with xdotool, and the trust that follows whether
// another client holds them; and the program quitting while it holds them.

#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include "x11/X11AccessibilityTrust.h"
#include "x11/X11EventTap.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QTemporaryDir>

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

// Another client holding the volume keys while the object lives.
class Holder
{
public:
    Holder()
    {
        process.start(ORVANTA_GRAB_HOLDER, QStringList{});
        process.waitForReadyRead(5000);
        said = process.readAllStandardOutput();
    }
    ~Holder()
    {
        process.closeWriteChannel();
        process.waitForFinished(3000);
    }
    QByteArray said; // "held", or "refused" when another client has the keys

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

TEST_F(VolumeKeys, AnotherClientHoldingTheKeysMeansNoTrustUntilItLetsGoUnlessTheSoundServerHasThem)
{
    auto& app = startWithX11();
    EXPECT_TRUE(app.isTrusted());
    selectBoth();

    auto holder = std::make_unique<Holder>();
    ASSERT_EQ(holder->said, "held\n");
    ASSERT_TRUE(runUntil([&] { return !app.isTrusted(); }, std::chrono::milliseconds(2500)));
    EXPECT_EQ(x11Trust.obstacle(), services::AccessibilityTrust::Obstacle::KeysHeldByAnotherProgram);
    // With the sound server, the desktop's volume handler moves the default output, our stacked device.
    EXPECT_TRUE(
        x11::X11AccessibilityTrust(keys, x11::X11AccessibilityTrust::Sound::Server, "GNOME").isProcessTrusted());

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
    // Each key down then moves both devices by one step.
    press("XF86AudioRaiseVolume");
    ASSERT_TRUE(runUntil([&] { return app.volume1() == 0.5625f; }));
    press("XF86AudioLowerVolume");
    press("XF86AudioLowerVolume");
    ASSERT_TRUE(runUntil([&] { return app.volume1() == 0.4375f; }));
    EXPECT_EQ(app.volume2(), 0.4375f);
}

TEST(VolumeKeysWithoutDisplay, NoX11MeansNoTapAndTrustOnlyWhereTheDesktopHandlesTheKeys)
{
    using Obstacle = services::AccessibilityTrust::Obstacle;
    using Sound = x11::X11AccessibilityTrust::Sound;
    x11::X11VolumeKeys keys(nullptr);
    x11::X11EventTap taps(keys);
    EXPECT_EQ(taps.create(services::kSystemDefinedEventMask, [](const services::TapEvent& e) { return e; }), nullptr);

    // The desktop's keys never reach the simulated devices.
    for (const auto& [sound, desktop, obstacle] : {std::tuple{Sound::Server, "ubuntu:GNOME", Obstacle::None},
                                                   {Sound::Server, "sway", Obstacle::DesktopKeysUnknown},
                                                   {Sound::Simulated, "GNOME", Obstacle::SessionGivesNoKeys}}) {
        x11::X11AccessibilityTrust trust(keys, sound, desktop);
        EXPECT_EQ(trust.isProcessTrusted(), obstacle == Obstacle::None) << desktop;
        EXPECT_EQ(trust.obstacle(), obstacle) << desktop;
    }
}

TEST(Quit, WithSyncOnAndTheVolumeKeysGrabbedTheProgramEndsCleanly)
{
    // Sync comes back at start on two built-in simulated devices, and the keys are grabbed.
    QTemporaryDir home;
    ASSERT_TRUE(QDir(home.path()).mkpath("config/orvanta") && QDir(home.path()).mkpath("runtime"));
    QFile::setPermissions(home.filePath("runtime"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile settings(home.filePath("config/orvanta/settings.json"));
    ASSERT_TRUE(settings.open(QIODevice::WriteOnly) && settings.write(R"({"restoreSyncAtStart": true,
        "restoreSyncDevices": {"primary": "alsa_output.pci-0000_00_1f.3.analog-stereo",
                               "secondary": "bluez_output.A4_77_58_0C_11_2E.1"}})") > 0 &&
                settings.flush());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_RUNTIME_DIR", home.filePath("runtime"));
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("ORVANTA_AUDIO", "simulated");
    environment.remove("XDG_SESSION_TYPE");
    // A session bus of its own: without one, libdbus leaves a buffer at exit that is no leak of ours.
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
    EXPECT_TRUE(program.exitStatus() == QProcess::NormalExit && program.exitCode() == 0 &&
                !errors.contains("Sanitizer") && !errors.contains("runtime error:"))
        << errors.toStdString();
}

} // namespace
} // namespace orvanta::testing
