#include "SimulatedRoom.h"

#include <QProcess>

#include <random>

namespace orvanta::testing {
namespace {

// Steady noise, about 40 dB below the test sounds' level, long enough for any one test; a test
// that runs longer measures in the quiet.
Samples roomNoise()
{
    Samples samples(static_cast<std::size_t>(60.0 * kMeterRate) * 2);
    std::mt19937 random(3);
    std::normal_distribution<float> noise(0.0f, 0.003f);
    for (auto& sample : samples) {
        sample = noise(random);
    }
    return samples;
}

} // namespace

bool SimulatedRoom::build(int primaryMs, int secondaryMs)
{
    // A loopback re-times itself when the graph's cycle length changes (a recorder that joins
    // may shorten it); one fixed cycle keeps the room's latencies what they were asked to be.
    if (QProcess::execute("pw-metadata", {"-n", "settings", "0", "clock.force-quantum", "1024"}) != 0) {
        return false;
    }
    for (const char* sink : {"mA", "mB", "room"}) {
        if (server.loadModule("module-null-sink", {QString("sink_name=") + sink, "rate=48000", "channels=2"}) < 0) {
            return false;
        }
    }
    for (const auto& [speaker, latencyMs] : {std::pair{"mA", primaryMs}, std::pair{"mB", secondaryMs}}) {
        if (server.loadModule("module-loopback", {QString("source=%1.monitor").arg(speaker), "sink=room",
                                                  QString("latency_msec=%1").arg(latencyMs), "source_dont_move=true",
                                                  "sink_dont_move=true"}) < 0) {
            return false;
        }
    }
    noise = std::make_unique<Player>(server, roomNoise(), "room");
    return noise->started();
}

std::optional<double> SimulatedRoom::clickLatenessMs(int holdBackMs) const
{
    Recorder recorder(server, kRoomMicrophone, 1);
    Player player(server, clickTrack(1.0, {0.3}));
    const bool played = recorder.started() && player.waitUntilDone();
    // The two clicks are apart by the hold-back: 50 ms of quiet before each is enough.
    const auto onsets = clickOnsets(recorder.stop(holdBackMs + 1000), 0, 1, kMeterRate / 20);
    if (!played || onsets.size() != 2) {
        return std::nullopt;
    }
    return static_cast<double>(onsets[1] - onsets[0]) * 1000.0 / kMeterRate - holdBackMs;
}

} // namespace orvanta::testing
