#pragma once

// A private sound server with the audio layer over the backend the program chooses for it (the
// loopback design on PulseAudio, the hosted node on PipeWire).

#include "support/EventLoop.h"
#include "support/SoundServer.h"

#include "app/AudioBackend.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "pipewire/PipeWireAudioHardware.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>

namespace orvanta::testing {

struct ServerFixture
{
    // Starts the server, runs load() on it, and connects once the catalogue lists `devices` outputs.
    void startServer(SoundServer::Kind kind, std::size_t devices, const std::function<void()>& load)
    {
        server = std::make_unique<SoundServer>(kind);
        ASSERT_TRUE(server->start()) << SoundServer::name(kind) << " did not start";
        ASSERT_NO_FATAL_FAILURE(load());
        ::setenv("ORVANTA_AUDIO", "auto", 1);
        backend = app::chooseAudioBackend();
        ASSERT_EQ(backend.description, std::string("Using ") + SoundServer::name(kind));
        node = dynamic_cast<pipewire::PipeWireAudioHardware*>(backend.hardware.get());
        audio = std::make_unique<audio::AudioWrapper>(*backend.hardware, printed.log());
        ASSERT_TRUE(eventually([this, devices] { return audio->getOutputDevices().size() >= devices; }));
    }

    std::unique_ptr<SoundServer> server;
    core::CollectedLines printed;
    app::AudioBackend backend;
    pipewire::PipeWireAudioHardware* node = nullptr; // on PipeWire
    std::unique_ptr<audio::AudioWrapper> audio;
};

} // namespace orvanta::testing
