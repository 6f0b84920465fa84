#pragma once

// A room for measuring with a microphone: the speakers "mA" and "mB" heard in the sink "room", with
// noise, through loopbacks of their own latencies; "room.monitor" is the microphone. The sound system
// may add a cycle on one speaker's way, as real devices add their own: clickLatenessMs() tells the truth.

#include "support/OffsetMeter.h"
#include "support/SoundServer.h"

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
    // How much later the room hears the primary speaker than the secondary, from a click played into
    // the stacked device with the primary held back by holdBackMs (so that the two clicks come apart).
    std::optional<double> clickLatenessMs(int holdBackMs) const;

private:
    const SoundServer& server;
    std::unique_ptr<Player> noise;
};

} // namespace orvanta::testing
