#pragma once

// A room on a private sound server, for measuring with a microphone: two speakers, the sinks
// "mA" and "mB", each heard in the sink "room" through a loopback with its own latency, with
// noise playing in the room all along. The room's monitor ("room.monitor") is the microphone.
// What the room hears is more than the loopbacks' latencies: the sound system may add a cycle
// on one speaker's way, as real devices add their own; clickLatenessMs() tells the truth.

#include "support/OffsetMeter.h"
#include "support/SoundServer.h"

#include <array>
#include <memory>
#include <optional>

namespace orvanta::testing {

inline const QString kRoomMicrophone = QStringLiteral("room.monitor");

class SimulatedRoom
{
public:
    explicit SimulatedRoom(const SoundServer& soundServer) : server(soundServer) {}

    // Loads the sinks, one loopback per speaker with these latencies (ms), and starts the noise.
    bool build(int primaryMs, int secondaryMs);
    // The room no longer hears a speaker (0 primary, 1 secondary).
    bool silence(int speaker);
    // How much later the room hears the primary speaker than the secondary one, found without
    // the measurement under test: a click played into the stacked device, whose primary member
    // is held back by holdBackMs (enough to hear the secondary's click first, and apart), timed
    // by its onsets in the room.
    std::optional<double> clickLatenessMs(int holdBackMs) const;

private:
    const SoundServer& server;
    std::array<long long, 2> loopbacks{-1, -1};
    std::unique_ptr<Player> noise;
};

} // namespace orvanta::testing
