// Orvanta's entry point: one instance per session, the sound system and the platform services
// chosen once, then the application shell with its main window and tray icon. Every shared object
// is made here, handed to whoever needs it, and torn down here before the application object.

#include "AudioBackend.h"
#include "DelayMeasurementChoice.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "desktop/BuildBundleInfo.h"
#include "desktop/DesktopWorkspace.h"
#include "desktop/JsonFileUserDefaults.h"
#include "desktop/MessageBoxAlerts.h"
#include "desktop/NetworkHttpClient.h"
#include "desktop/PulseSoundSystemStatus.h"
#include "desktop/XdgAutostartLoginItems.h"
#include "i18n/LanguageManager.h"
#include "services/PlatformServices.h"
#include "sim/SimulatedAudioHardware.h"
#include "sim/SimulatedSoundSystemStatus.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"
#include "ui/OrvantaApp.h"
#include "ui/SingleInstance.h"
#include "update/UpdateChecker.h"
#include "x11/X11AccessibilityTrust.h"
#include "x11/X11EventTap.h"

#include <QApplication>
#include <QGuiApplication>

#include <cstdio>

#ifndef ORVANTA_VERSION
#define ORVANTA_VERSION ""
#endif

int main(int argc, char** argv)
{
    using namespace orvanta;
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("orvanta"));
    QApplication::setApplicationDisplayName(QStringLiteral("Orvanta"));
    QApplication::setApplicationVersion(QStringLiteral(ORVANTA_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("orvanta"));

    // A second launch shows the running instance's window and ends here.
    ui::SingleInstance instance;
    switch (instance.claim()) {
    case ui::SingleInstance::Claim::First:
        break;
    case ui::SingleInstance::Claim::Notified:
        std::printf("Orvanta is already running: its window was brought to the front.\n");
        return 0;
    case ui::SingleInstance::Claim::Silent:
        std::fprintf(stderr, "orvanta: another instance holds %s but does not answer\n",
                     qPrintable(instance.lockPath()));
        return 1;
    }

    auto backend = app::chooseAudioBackend();
    if (!backend.hardware) {
        std::fprintf(stderr, "orvanta: %s\n", backend.error.c_str());
        return 2;
    }
    std::printf("%s\n", backend.description.c_str());
    std::fflush(stdout);
    audio::AudioWrapper audioLayer(*backend.hardware, core::standardOutputLog());

    desktop::JsonFileUserDefaults userDefaults;
    desktop::XdgAutostartLoginItems loginItems(desktop::XdgAutostartLoginItems::defaultEntryPath(),
                                               QCoreApplication::applicationFilePath());
    // The sound server's connection, followed live; the simulated system says it is one.
    std::unique_ptr<services::SoundSystemStatus> soundStatus;
    if (backend.connection) {
        soundStatus = std::make_unique<desktop::PulseSoundSystemStatus>(*backend.connection,
                                                                        QString::fromStdString(backend.serverName));
    } else {
        const bool simulated = dynamic_cast<sim::SimulatedAudioHardware*>(backend.hardware.get()) != nullptr;
        soundStatus = std::make_unique<sim::SimulatedSoundSystemStatus>(
            simulated ? services::SoundSystemStatus::State::Simulated : services::SoundSystemStatus::State::Connected);
    }
    // The volume keys are grabbed on an X11 display. In a Wayland session (even through
    // XWayland) the desktop has them; they reach the stacked device when it handles them.
    auto* x11Native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    const bool waylandSession = qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
    x11::X11VolumeKeys volumeKeys(x11Native && !waylandSession ? x11Native->connection() : nullptr);
    const bool onServer = soundStatus->state() != services::SoundSystemStatus::State::Simulated;
    x11::X11AccessibilityTrust trust(
        volumeKeys, onServer ? x11::X11AccessibilityTrust::Sound::Server : x11::X11AccessibilityTrust::Sound::Simulated,
        qEnvironmentVariable("XDG_CURRENT_DESKTOP"));
    x11::X11EventTap eventTap(volumeKeys);
    desktop::NetworkHttpClient http;
    desktop::MessageBoxAlerts alerts;
    desktop::DesktopWorkspace workspace;
    desktop::BuildBundleInfo bundle(QStringLiteral(ORVANTA_VERSION));

    const services::PlatformServices services{&userDefaults, &loginItems, &trust,     &eventTap,
                                              &http,         &alerts,     &workspace, &bundle};
    state::MediaKeyManager mediaKeys(eventTap, core::standardOutputLog());
    // The tap must not outlive the display it grabs on.
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &mediaKeys, &state::MediaKeyManager::stop);

    // Between the sound system and the shell: it goes after the windows that use it, before what it uses.
    const auto measurement = app::delayMeasurementFor(*backend.hardware);
    i18n::LanguageManager lang(userDefaults);
    state::AppState appState({audioLayer, userDefaults, loginItems, trust, mediaKeys, core::standardOutputLog()});
    update::UpdateChecker updates([&lang](const QString& key) { return lang.translate(key); }, services);
    ui::ViewServices views{audioLayer, mediaKeys,         trust,         alerts,           workspace,
                           &bundle,    soundStatus.get(), &userDefaults, measurement.get()};
    ui::OrvantaApp shell(lang, appState, ui::ShellServices{views, updates, {}, {}});
    QObject::connect(&instance, &ui::SingleInstance::activationRequested, &shell, &ui::OrvantaApp::showMainWindow);
    shell.start();
    return QApplication::exec();
}
