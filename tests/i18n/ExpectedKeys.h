#pragma once

// The keys of the string tables as the interface is meant to have them: every key in table
// order, whether the English table holds it, and whether the other 22 tables translate it.

#include <QString>
#include <QStringView>

#include <array>

namespace orvanta::testing {

struct ExpectedKey
{
    QStringView key;
    bool inEnglishTable;
    bool translated;
};

inline constexpr std::array<ExpectedKey, 78> kExpectedKeys{{
    {u"Audio Outputs", false, true},
    {u"Refresh", false, true},
    {u"Primary Speaker", false, true},
    {u"Secondary Speaker", false, true},
    {u"Select...", false, true},
    {u"Enable Sync", false, true},
    {u"Hardware Balance", false, true},
    {u"Permission Required", false, true},
    {u"Open System Settings", false, true},
    {u"instruction_text", true, true},
    {u"NOTES:", false, true},
    {u"WARNING: Sound plays through SELECTED speakers even if headphones are plugged in.", false, true},
    {u"• Keep app running to use volume keys.", false, true},
    {u"• Volume keys adjust all speakers together.", false, true},
    {u"Support the Developer", false, true},
    {u"Check for Updates...", true, true},
    {u"You are up to date!", true, true},
    {u"Version %@ is the latest version.", true, true},
    {u"New Version Available", true, true},
    {u"Version %@ is available for download.", true, true},
    {u"Download", true, true},
    {u"Later", true, true},
    {u"OK", true, true},
    {u"Bluetooth Audio Latency", true, true},
    {u"Bluetooth device detected: ", true, true},
    {u"Open Main Window", true, true},
    {u"Launch at Login", true, true},
    {u"Quit", true, true},
    {u"Select two different devices", true, true},
    {u"Update Check Failed", true, true},
    {u"Could not check for updates. Please try again later.", true, true},
    {u"is Available", true, true},
    {u"No Latency", true, true},
    {u"Delay", true, true},
    {u"Privacy Policy", true, true},
    {u"Terms of Use", true, true},
    {u"Bluetooth Delay", true, true},
    {u"Treat as Bluetooth speaker", true, true},
    {u"Reset", true, true},
    {u"Decrease by %d ms", true, true},
    {u"Increase by %d ms", true, true},
    {u"Detect new devices", true, true},
    {u"delay_note", true, true},
    {u"Audio Sync Error", true, false},
    {u"Failed to create audio sync. Error code: ", true, false},
    {u"Volume Control Warning", true, false},
    {u"Volume control not supported: ", true, false},
    {u"keys_taken_reason", true, true},
    {u"keys_taken_text", true, true},
    {u"keys_wayland_text", true, true},
    {u"Changes are not being saved: the settings file cannot be written.", true, true},
    {u"status_connected", true, true},
    {u"status_connecting", true, true},
    {u"status_not_answering", true, true},
    {u"simulated_text", true, true},
    {u"keys_unhandled_text", true, true},
    {u"Orvanta keeps running", true, true},
    {u"keeps_running_text", true, true},
    {u"Restore sync at start", true, true},
    {u"Language", true, true},
    {u"Volume of %@", true, true},
    {u"Bluetooth delay of %@", true, true},
    {u"Measure with microphone…", true, true},
    {u"Measure the delay", true, true},
    {u"Microphone", true, true},
    {u"Place the microphone where you listen and keep the room quiet.", true, true},
    {u"Start", true, true},
    {u"Apply", true, true},
    {u"Cancel", true, true},
    {u"%@ ms", true, true},
    {u"Spread of the repeats: %@ ms", true, true},
    {u"No microphone found.", true, true},
    {u"Too quiet: the microphone hardly heard the test sounds. Turn the speakers up or "
     u"bring the microphone closer.",
     true, true},
    {u"Too noisy: the test sounds were lost in the noise. Keep the room quiet and try again.", true, true},
    {u"No sound from %@. Check that this speaker is on and turned up.", true, true},
    {u"The repeats disagree by %@ ms, more than 5 ms. Keep the room quiet and try again.", true, true},
    {u"The measurement could not run: the microphone or a speaker is not available.", true, true},
    {u"The difference is %@ ms, more than the longest delay of 600 ms: Apply sets 600 ms.", true, true},
}};

// The keys that are names rather than English texts, and the English text of each.
inline constexpr QStringView kInstructionKey = u"instruction_text";
inline constexpr QStringView kDelayNoteKey = u"delay_note";
inline constexpr QStringView kKeysTakenReasonKey = u"keys_taken_reason";
inline constexpr QStringView kKeysTakenKey = u"keys_taken_text";
inline constexpr QStringView kKeysWaylandKey = u"keys_wayland_text";
inline constexpr QStringView kStatusConnectedKey = u"status_connected";
inline constexpr QStringView kStatusConnectingKey = u"status_connecting";
inline constexpr QStringView kStatusNotAnsweringKey = u"status_not_answering";
inline constexpr QStringView kSimulatedKey = u"simulated_text";
inline constexpr QStringView kKeysUnhandledKey = u"keys_unhandled_text";
inline constexpr QStringView kKeepsRunningKey = u"keeps_running_text";

inline constexpr QStringView kEnglishInstructions =
    u"1. Click button below.\n2. Find 'Orvanta' in the list.\n3. Turn the switch ON.";
inline constexpr QStringView kEnglishDelayNote =
    u"Tip: Bluetooth delay can vary with distance from the speaker. Adjust the slider until both speakers sound in "
    u"sync — your setting is saved automatically and reapplied next time.";
inline constexpr QStringView kEnglishKeysTakenReason =
    u"Another program is using the volume keys, often the desktop's own volume control.";
inline constexpr QStringView kEnglishKeysTaken =
    u"1. Click the button below.\n2. Remove the shortcuts for Volume Up and Volume Down.\n3. Orvanta takes the keys "
    u"within a second.";
inline constexpr QStringView kEnglishKeysWayland =
    u"This desktop session (Wayland) does not let programs take the volume keys. Use the sliders, or log in with an "
    u"X11 session to use the keys.";

inline constexpr QStringView kStatusConnectedEnglish = u"Sound system: connected.";
inline constexpr QStringView kStatusConnectingEnglish = u"Sound system: connecting…";
inline constexpr QStringView kStatusNotAnsweringEnglish =
    u"Sound system: not answering. Orvanta connects as soon as it does.";
inline constexpr QStringView kSimulatedEnglish =
    u"Simulated sound system: these devices are not real and nothing plays through them. Start PulseAudio or PipeWire, "
    u"then start Orvanta again.";
inline constexpr QStringView ksUnhandledEnglish =
    u"Orvanta cannot take the volume keys in this session and cannot tell whether your desktop handles them. If they "
    u"do nothing, set them in your desktop's keyboard settings to raise and lower the volume of the default output: "
    u"while sync is on, they then move both speakers together.";
inline constexpr QStringView kKeepsRunningEnglish =
    u"Sync and the volume keys go on working while the window is closed. This desktop shows no tray icon: to open the "
    u"window again, start Orvanta again. To quit, choose Quit in the window's Orvanta menu.";

struct NamedText
{
    QStringView key;
    QStringView english;
};

inline constexpr std::array<NamedText, 11> kNamedTexts{{
    {kInstructionKey, kEnglishInstructions},
    {kDelayNoteKey, kEnglishDelayNote},
    {kKeysTakenReasonKey, kEnglishKeysTakenReason},
    {kKeysTakenKey, kEnglishKeysTaken},
    {kKeysWaylandKey, kEnglishKeysWayland},
    {kStatusConnectedKey, kStatusConnectedEnglish},
    {kStatusConnectingKey, kStatusConnectingEnglish},
    {kStatusNotAnsweringKey, kStatusNotAnsweringEnglish},
    {kSimulatedKey, kSimulatedEnglish},
    {kKeysUnhandledKey, ksUnhandledEnglish},
    {kKeepsRunningKey, kKeepsRunningEnglish},
}};

// What English shows for a key: the named text for a name, else the key itself.
inline QString englishTextOf(QStringView key)
{
    for (const auto& named : kNamedTexts) {
        if (named.key == key) {
            return named.english.toString();
        }
    }
    return key.toString();
}

} // namespace orvanta::testing
