#pragma once

// The warnings shown once sync came on: which of the two selected devices play with Bluetooth's
// latency, and which have no volume control of their own. Each device is asked afresh of the
// audio layer, not by the catalogue's flag or the user's mark. The texts are English keys; the
// view translates them.

#include <QString>

#include <vector>

namespace orvanta::audio {
class AudioWrapper;
}

namespace orvanta::state {

class AppState;

struct SyncWarning
{
    enum class Kind
    {
        Volume,
        Bluetooth,
    };
    Kind kind;
    QString title;
    QString message;

    bool operator==(const SyncWarning&) const = default;
};

class SyncWarnings
{
public:
    explicit SyncWarnings(audio::AudioWrapper& audio) : audioLayer(audio) {}

    // After Enable Sync: the volume warning (only while sync is on), then the Bluetooth warning,
    // each when at least one selected device calls for it. Nothing when a device is missing.
    std::vector<SyncWarning> afterEnableSync(const AppState& appState) const;

private:
    audio::AudioWrapper& audioLayer;
};

} // namespace orvanta::state
