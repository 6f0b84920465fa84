#pragma once

// What the views use besides AppState and the language manager: the audio layer for the main
// window's three direct questions, the volume-key tap, the permission prompt, dialogs, the
// browser, the build's version and the microphone measurement. main() hands in the process's
// own; tests hand in simulated ones.

#include <QString>

namespace orvanta::audio {
class AudioWrapper;
}
namespace orvanta::state {
class MediaKeyManager;
}
namespace orvanta::services {
class AccessibilityTrust;
class Alerts;
class BundleInfo;
class SoundSystemStatus;
class UserDefaults;
class DelayMeasurement;
class Workspace;
} // namespace orvanta::services

namespace orvanta::ui {

struct ViewServices
{
    audio::AudioWrapper& audio;
    state::MediaKeyManager& mediaKeys;
    services::AccessibilityTrust& trust;
    services::Alerts& alerts;
    services::Workspace& workspace;
    services::BundleInfo* bundle = nullptr;             // no version label without it
    services::SoundSystemStatus* soundSystem = nullptr; // no sound-system line without it
    services::UserDefaults* userDefaults = nullptr;     // where the window keeps its place, if anywhere
    // Measuring the delay with a microphone, where the sound system allows it.
    services::DelayMeasurement* measurement = nullptr;
};

} // namespace orvanta::ui
