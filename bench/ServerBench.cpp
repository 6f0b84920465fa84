// Measurements against private PulseAudio and PipeWire servers, with the backend chosen as the
// program chooses it (loopbacks on PulseAudio, the hosted node on PipeWire): how exactly the
// members of a stacked device are offset, the longest silence a live delay change causes, how
// long turning sync on takes next to loading modules by hand, catalogue reads over 64 sinks,
// and on PipeWire a minute of playback at a 256-frame cycle: missed cycles and the data
// thread's CPU time. Prints one Markdown table per measurement.

#include "support/OffsetMeter.h"
#include "support/SoundServer.h"

#include "app/AudioBackend.h"
#include "audio/AudioWrapper.h"
#include "pipewire/PipeWireAudioHardware.h"

#include <QFile>
#include <QProcess>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

using namespace orvanta;
using testing::SoundServer;

constexpr int kOffsetRuns = 10;
constexpr int kTimingRuns = 10;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

double worst(const std::vector<double>& values)
{
    return values.empty() ? 0.0 : *std::max_element(values.begin(), values.end());
}

struct Session
{
    explicit Session(SoundServer::Kind kind) : server(kind) {}

    bool open()
    {
        if (!server.start() || !testing::loadMeterRig(server)) {
            return false;
        }
        ::setenv("ORVANTA_AUDIO", "auto", 1);
        backend = app::chooseAudioBackend();
        if (!backend.connection) {
            return false;
        }
        std::printf("\n## %s: %s\n", SoundServer::name(server.kind()), backend.description.c_str());
        audio = std::make_unique<audio::AudioWrapper>(*backend.hardware, [](std::string_view) {});
        return true;
    }

    SoundServer server;
    app::AudioBackend backend;
    std::unique_ptr<audio::AudioWrapper> audio;
};

void offsets(Session& session)
{
    std::printf("\n### Offset error, %s (%d runs each)\n\n| delay (ms) | median error (ms) | worst error (ms) |\n"
                "|---|---|---|\n",
                SoundServer::name(session.server.kind()), kOffsetRuns);
    for (const int delay : {0, 5, 150, 600}) {
        std::vector<double> errors;
        for (int run = 0; run < kOffsetRuns; ++run) {
            // Alternate which member declares the delay, so both directions are covered; each
            // run builds the device anew and measures at once.
            const bool secondary = run % 2 == 0;
            session.audio->destroyOldStackedDevices();
            session.audio->createStackedDevice("mA", "mB", secondary ? 0 : delay, secondary ? delay : 0);
            if (const auto offset = testing::measureOffsetMs(session.server)) {
                errors.push_back(std::abs(*offset - (secondary ? delay : -delay)));
            }
        }
        std::printf("| %d | %.3f | %.3f |\n", delay, median(errors), worst(errors));
    }
}

void liveChangeSilence(Session& session)
{
    std::vector<double> silences;
    for (int run = 0; run < 4; ++run) {
        const int from = run % 2 == 0 ? 0 : 600;
        const int to = 600 - from;
        session.audio->destroyOldStackedDevices();
        session.audio->createStackedDevice("mA", "mB", 0, from);
        if (const auto silence = testing::longestSilenceMs(
                session.server, [&session, to] { session.audio->setRuntimeLatency("mB", to); })) {
            silences.push_back(*silence);
        }
    }
    std::printf("\n### Live change 0 <-> 600 ms, %s\n\n| runs | longest silence, median (ms) | worst (ms) |\n"
                "|---|---|---|\n| %zu | %.2f | %.2f |\n",
                SoundServer::name(session.server.kind()), silences.size(), median(silences), worst(silences));
}

double elapsedMs(const QElapsedTimer& clock)
{
    return static_cast<double>(clock.nsecsElapsed()) / 1e6;
}

void syncOnTime(Session& session)
{
    std::vector<double> ours;
    std::vector<double> byHand;
    for (int run = 0; run < kTimingRuns; ++run) {
        session.audio->destroyOldStackedDevices();
        QElapsedTimer clock;
        clock.start();
        session.audio->createStackedDevice("mA", "mB", 0, 150);
        ours.push_back(elapsedMs(clock));
        session.audio->destroyOldStackedDevices();

        clock.restart();
        session.server.loadModule("module-null-sink", {"sink_name=manual"});
        session.server.loadModule("module-loopback", {"source=manual.monitor", "sink=mA", "latency_msec=180"});
        session.server.loadModule("module-loopback", {"source=manual.monitor", "sink=mB", "latency_msec=30"});
        session.server.pactl({"set-default-sink", "manual"});
        // (the same null sink and loopbacks on either server: what a user would load by hand)
        byHand.push_back(elapsedMs(clock));
        session.server.pactl({"unload-module", "module-loopback"});
        session.server.pactl({"unload-module", "module-null-sink"});
        testing::loadMeterRig(session.server);
    }
    std::printf("\n### Sync on until default, %s (%d runs)\n\n| | median (ms) | worst (ms) |\n|---|---|---|\n"
                "| Orvanta (one connection, waits for each answer) | %.2f | %.2f |\n"
                "| pactl, one process per step | %.2f | %.2f |\n",
                SoundServer::name(session.server.kind()), kTimingRuns, median(ours), worst(ours), median(byHand),
                worst(byHand));
}

void catalogueReads(Session& session)
{
    for (int i = 0; i < 64; ++i) {
        session.server.loadModule("module-null-sink", {QString("sink_name=bench%1").arg(i)});
    }
    QThread::msleep(500);
    constexpr int kReads = 1000;
    QElapsedTimer clock;
    clock.start();
    std::size_t seen = 0;
    for (int i = 0; i < kReads; ++i) {
        seen += session.audio->getOutputDevices().size();
    }
    const double perRead = elapsedMs(clock) * 1000.0 / kReads;
    clock.restart();
    for (int i = 0; i < kReads; ++i) {
        session.audio->getNominalSampleRate("bench63");
    }
    const double perLookup = elapsedMs(clock) * 1000.0 / kReads;
    std::printf("\n### Catalogue over 64 sinks, %s\n\n| devices seen | catalogue read (us) | UID lookup of the last "
                "sink (us) |\n|---|---|---|\n| %zu | %.1f | %.1f |\n",
                SoundServer::name(session.server.kind()), seen / kReads, perRead, perLookup);
}

// CPU time, in ms, that one of this process's threads has used.
double threadCpuMs(long thread)
{
    QFile stat(QString("/proc/self/task/%1/stat").arg(thread));
    if (!stat.open(QIODevice::ReadOnly)) {
        return 0.0;
    }
    const auto fields = QString::fromUtf8(stat.readAll()).section(')', 1).split(' ', Qt::SkipEmptyParts);
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble(); // utime, stime
    return ticks * 1000.0 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

// A minute of a tone through the node at a 256-frame cycle: cycles the input missed, renders a
// member let pass, gaps heard, and the data thread's CPU time per second of sound.
void steadyPlayback(Session& session)
{
    auto* hosted = dynamic_cast<pipewire::PipeWireAudioHardware*>(session.backend.hardware.get());
    if (!hosted) {
        return;
    }
    QProcess quantum;
    quantum.start("pw-metadata", {"-n", "settings", "0", "clock.force-quantum", "256"});
    quantum.waitForFinished(5000);
    session.audio->destroyOldStackedDevices();
    session.audio->createStackedDevice("mA", "mB", 0, 150);
    constexpr double kSeconds = 60.0;
    const long dataThread = hosted->stackedNode()->dataThreadId();
    const double cpuBefore = threadCpuMs(dataThread);
    testing::Recorder recorder(session.server);
    testing::Player player(session.server, testing::toneTrack(kSeconds));
    player.waitUntilDone();
    const auto recording = recorder.stop(500);
    const double cpuMs = threadCpuMs(dataThread) - cpuBefore;
    const auto counts = hosted->stackedNode()->counts();
    const auto a = testing::checkTone(recording, testing::kMemberA);
    const auto b = testing::checkTone(recording, testing::kMemberB);
    std::printf("\n### %.0f s of playback at a 256-frame cycle, %s\n\n| cycles | short input cycles | "
                "member renders let pass | longest gap heard (ms) | data thread CPU (ms per s of sound) |\n"
                "|---|---|---|---|---|\n| %llu | %llu | %llu | %.2f | %.2f |\n",
                kSeconds, SoundServer::name(session.server.kind()), static_cast<unsigned long long>(counts.cycles),
                static_cast<unsigned long long>(counts.shortCycles),
                static_cast<unsigned long long>(counts.skippedRenders),
                a && b ? std::max(a->longestGapMs, b->longestGapMs) : -1.0, cpuMs / kSeconds);
    quantum.start("pw-metadata", {"-n", "settings", "0", "clock.force-quantum", "0"});
    quantum.waitForFinished(5000);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    for (const auto kind : {SoundServer::Kind::PulseAudio, SoundServer::Kind::PipeWire}) {
        Session session(kind);
        if (!session.open()) {
            std::fprintf(stderr, "%s did not start; skipped\n", SoundServer::name(kind));
            continue;
        }
        offsets(session);
        liveChangeSilence(session);
        steadyPlayback(session);
        syncOnTime(session);
        catalogueReads(session);
    }
    return 0;
}
