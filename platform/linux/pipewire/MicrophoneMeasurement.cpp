#include "MicrophoneMeasurement.h"

#include "MicrophoneRecorder.h"
#include "measure/MeasurementAnalysis.h"
#include "measure/MeasurementPlan.h"
#include "pulse/PulseObjects.h"
#include "services/BackgroundWork.h"
#include "services/MainQueue.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <utility>

namespace orvanta::pipewire {

using measure::MeasurementOutcome;
using measure::MeasurementStatus;

namespace {

// How long the microphone records before the sounds start.
constexpr std::size_t kSettleFrames = measure::kRate / 2;
// How long the worker waits for the main thread to start the sounds.
constexpr std::size_t kStartBoundFrames = 2 * measure::kRate;
// Progress is told about five times a second.
constexpr std::size_t kProgressStepFrames = measure::kRate / 5;
// A run that has not ended by then (a microphone that stopped delivering) is given up.
constexpr std::chrono::milliseconds kRunBound{20000};

MeasurementOutcome outcomeOf(MeasurementStatus status)
{
    MeasurementOutcome outcome;
    outcome.status = status;
    return outcome;
}

std::unique_ptr<ProbeScript> scriptFor(const std::vector<std::string>& uids)
{
    auto script = std::make_unique<ProbeScript>();
    for (std::size_t member = 0; member < measure::kMembers; ++member) {
        script->tracks.emplace_back(uids[member], measure::memberTrack(member));
    }
    return script;
}

} // namespace

// One measurement, shared by the main thread and the worker. Only the atomics cross threads;
// the rest is the main thread's.
struct MicrophoneMeasurement::Run
{
    MicrophoneMeasurement* owner = nullptr; // null once the owner has let go of it
    std::string microphone;
    std::vector<std::string> uids;
    Progress progress;
    Done done;
    std::unique_ptr<ProbeScript> script;
    StackedNode* node = nullptr; // the stacked device playing the script
    std::atomic<bool> playing{false};
    std::atomic<bool> stop{false};
    std::atomic<bool> lost{false}; // the stacked device went away before the sounds started
};

MicrophoneMeasurement::MicrophoneMeasurement(PipeWireAudioHardware& audioHardware) : hardware(audioHardware) {}

MicrophoneMeasurement::~MicrophoneMeasurement()
{
    if (current) {
        current->stop = true;
        stopPlaying(*current);
        current->owner = nullptr;
    }
}

bool MicrophoneMeasurement::canMeasure() const
{
    return speakerUIDs().size() == measure::kMembers;
}

std::vector<std::string> MicrophoneMeasurement::speakerUIDs() const
{
    const auto* node = std::as_const(hardware).stackedNode();
    return node ? node->memberUIDs() : std::vector<std::string>{};
}

std::vector<services::Microphone> MicrophoneMeasurement::microphones() const
{
    return hardware.connection().withMirror([](const pulse::PulseMirror& mirror) {
        std::vector<services::Microphone> found;
        for (const auto& [index, source] : mirror.sources) {
            if (source.isMonitor) {
                continue;
            }
            const services::Microphone microphone{source.name, source.description};
            if (source.name == mirror.defaultSourceName) {
                found.insert(found.begin(), microphone);
            } else {
                found.push_back(microphone);
            }
        }
        return found;
    });
}

void MicrophoneMeasurement::start(const std::string& microphone, Progress progress, Done done)
{
    if (current) {
        return;
    }
    const auto listed = microphones();
    const bool known = std::any_of(listed.begin(), listed.end(), [&](const auto& m) { return m.name == microphone; });
    // A monitor is not offered as a microphone but may be named; anything else must be there.
    const bool monitor = microphone.ends_with(".monitor");
    if (!canMeasure() || (!known && !monitor)) {
        services::postToMainQueue([done = std::move(done)] { done(outcomeOf(MeasurementStatus::Failed)); });
        return;
    }
    auto run = std::make_shared<Run>();
    run->owner = this;
    run->microphone = microphone;
    run->uids = speakerUIDs();
    run->progress = std::move(progress);
    run->done = std::move(done);
    run->script = scriptFor(run->uids);
    current = run;
    giveUpAfterBound(run);

    services::runInBackground([run]() -> std::function<void()> {
        const auto finishWith = [run](MeasurementOutcome outcome) {
            return [run, outcome = std::move(outcome)] {
                if (run->owner) {
                    run->owner->finish(run, outcome);
                }
            };
        };
        std::string error;
        auto recorder = MicrophoneRecorder::open(run->microphone, error);
        if (!recorder) {
            return finishWith(outcomeOf(MeasurementStatus::Failed));
        }
        // A recorder that joins may make the sound system re-time itself for a moment: let it.
        const std::atomic<bool> never{false};
        recorder->discardUntil(never, run->stop, kSettleFrames);
        services::postToMainQueue([run] {
            if (run->owner) {
                run->owner->play(*run);
            }
        });
        if (!recorder->discardUntil(run->playing, run->stop, kStartBoundFrames) || run->stop) {
            const bool failed = run->lost || !run->stop;
            return finishWith(outcomeOf(failed ? MeasurementStatus::Failed : MeasurementStatus::Cancelled));
        }
        std::size_t told = 0;
        bool ok = false;
        const auto recording = recorder->record(
            measure::kRecordingFrames, run->stop,
            [&](std::size_t frames) {
                if (frames - told < kProgressStepFrames) {
                    return;
                }
                told = frames;
                const double fraction = static_cast<double>(frames) / measure::kRecordingFrames;
                services::postToMainQueue([run, fraction] {
                    if (run->owner && run->progress) {
                        run->progress(fraction);
                    }
                });
            },
            ok);
        if (run->stop) {
            return finishWith(outcomeOf(MeasurementStatus::Cancelled));
        }
        return finishWith(ok ? measure::analyseRecording(recording) : outcomeOf(MeasurementStatus::Failed));
    });
}

void MicrophoneMeasurement::giveUpAfterBound(const std::shared_ptr<Run>& run)
{
    QTimer::singleShot(kRunBound, QCoreApplication::instance(), [weak = std::weak_ptr<Run>(run)] {
        const auto late = weak.lock();
        if (late && late->owner) {
            late->stop = true;
            late->owner->finish(late, outcomeOf(MeasurementStatus::Failed));
        }
    });
}

void MicrophoneMeasurement::cancel()
{
    if (current) {
        current->stop = true;
    }
}

// On the main thread, once the microphone records: the same stacked device, or none at all.
void MicrophoneMeasurement::play(Run& run)
{
    auto* node = hardware.stackedNode();
    if (run.stop || !node || node->memberUIDs() != run.uids) {
        run.lost = !run.stop;
        run.stop = true;
        return;
    }
    run.node = node;
    node->playProbe(run.script.get());
    run.playing = true;
}

void MicrophoneMeasurement::stopPlaying(Run& run)
{
    // A stacked device that was replaced has taken its data thread's use of the script along.
    if (run.node && hardware.stackedNode() == run.node) {
        run.node->stopProbe();
    }
    run.node = nullptr;
}

void MicrophoneMeasurement::finish(const std::shared_ptr<Run>& run, MeasurementOutcome outcome)
{
    const bool sameDevice = !run->node || hardware.stackedNode() == run->node;
    stopPlaying(*run);
    run->owner = nullptr;
    current.reset();
    if (!sameDevice && outcome.status != MeasurementStatus::Cancelled) {
        outcome = outcomeOf(MeasurementStatus::Failed);
    }
    if (run->done) {
        run->done(outcome);
    }
}

} // namespace orvanta::pipewire
