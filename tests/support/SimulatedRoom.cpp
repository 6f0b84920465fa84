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
    const std::array<std::pair<const char*, int>, 2> speakers{{{"mA", primaryMs}, {"mB", secondaryMs}}};
    for (std::size_t i = 0; i < speakers.size(); ++i) {
        loopbacks[i] =
            server.loadModule("module-loopback", {QString("source=%1.monitor").arg(speakers[i].first), "sink=room",
                                                  QString("latency_msec=%1").arg(speakers[i].second),
                                                  "source_dont_move=true", "sink_dont_move=true"});
        if (loopbacks[i] < 0) {
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

bool SimulatedRoom::silence(int speaker)
{
    const auto index = loopbacks.at(static_cast<std::size_t>(speaker));
    return index >= 0 && !server.pactl({"unload-module", QString::number(index)}).isNull();
}

} // namespace orvanta::testing
