// The microphone measurement against a simulated room on a private PipeWire: the speakers mA
// and mB reach the room through loopbacks of 20 ms and 190 ms with noise in the room, and the
// room's monitor is the microphone. The room's truth is taken from click onsets; then twenty
// measurements in a row, each timed from Start to its outcome on the main thread.

#include "support/SimulatedRoom.h"

#include "app/AudioBackend.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "pipewire/MicrophoneMeasurement.h"
#include "pipewire/PipeWireAudioHardware.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <vector>

namespace {

using namespace orvanta;

constexpr int kRuns = 20;
constexpr int kHoldBackMs = 300;

bool runUntil(const std::function<bool()>& done, qint64 boundMs)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > boundMs) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

int fail(const char* what)
{
    std::fprintf(stderr, "measurement bench: %s\n", what);
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    testing::SoundServer server(testing::SoundServer::Kind::PipeWire);
    testing::SimulatedRoom room(server);
    if (!server.start() || !room.build(20, 190)) {
        return fail("no private PipeWire with the room");
    }
    ::setenv("ORVANTA_AUDIO", "auto", 1);
    auto backend = app::chooseAudioBackend();
    auto* hardware = dynamic_cast<pipewire::PipeWireAudioHardware*>(backend.hardware.get());
    if (!hardware) {
        return fail("not on PipeWire");
    }
    core::CollectedLines printed;
    audio::AudioWrapper audio(*backend.hardware, printed.log());
    runUntil([&] { return audio.getOutputDevices().size() >= 3; }, 5000);
    if (audio.createStackedDevice("mA", "mB", 0, kHoldBackMs) != hal::noErr) {
        return fail("no stacked device");
    }
    QElapsedTimer settle;
    settle.start();
    runUntil([&] { return settle.elapsed() > 2000; }, 3000);
    const auto primaryLater = room.clickLatenessMs(kHoldBackMs);
    if (!primaryLater) {
        return fail("no clicks heard in the room");
    }
    const double truth = -*primaryLater;

    pipewire::MicrophoneMeasurement measurement(*hardware);
    std::vector<double> errors;
    std::vector<double> seconds;
    int turnedDown = 0;
    for (int run = 0; run < kRuns; ++run) {
        std::optional<measure::MeasurementOutcome> outcome;
        QElapsedTimer clock;
        clock.start();
        measurement.start(testing::kRoomMicrophone.toStdString(), {},
                          [&](const measure::MeasurementOutcome& o) { outcome = o; });
        if (!runUntil([&] { return outcome.has_value(); }, 30000)) {
            return fail("a measurement did not end");
        }
        seconds.push_back(static_cast<double>(clock.elapsed()) / 1000.0);
        if (outcome->status != measure::MeasurementStatus::Measured) {
            ++turnedDown;
            continue;
        }
        errors.push_back(std::abs(outcome->latenessMs[1] - outcome->latenessMs[0] - truth));
    }
    std::printf("Microphone measurement, simulated room (loopbacks 20 ms / 190 ms, noise), %d runs\n", kRuns);
    std::printf("room's truth from click onsets: secondary later by %.3f ms\n", truth);
    if (!errors.empty()) {
        std::printf("error: median %.3f ms, worst %.3f ms (%zu measured, %d turned down)\n", median(errors),
                    *std::max_element(errors.begin(), errors.end()), errors.size(), turnedDown);
    }
    std::printf("time from Start to result: median %.2f s, worst %.2f s\n", median(seconds),
                *std::max_element(seconds.begin(), seconds.end()));
    return 0;
}
