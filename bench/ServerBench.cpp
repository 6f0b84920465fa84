// Measurements against private PulseAudio and PipeWire servers: how exactly the members of a
// stacked device are offset, the longest silence a live delay change causes, how long turning
// sync on takes next to loading the same modules by hand, and catalogue reads over 64 sinks.
// Prints one Markdown table per measurement.

#include "support/OffsetMeter.h"
#include "support/SoundServer.h"

#include "PulseAudioHardware.h"
#include "audio/AudioWrapper.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
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
        auto connection = std::make_unique<pulse::PulseConnection>();
        if (!connection->waitUntilReady(std::chrono::seconds(5))) {
            return false;
        }
        hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
        audio = std::make_unique<audio::AudioWrapper>(*hardware, [](std::string_view) {});
        return true;
    }

    SoundServer server;
    std::unique_ptr<pulse::PulseAudioHardware> hardware;
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
            // Alternate which member declares the delay, so both directions are covered.
            const bool secondary = run % 2 == 0;
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
        syncOnTime(session);
        catalogueReads(session);
    }
    return 0;
}
