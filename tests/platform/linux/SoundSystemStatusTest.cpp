// The sound-system status over a real connection: a server that is not there yet, then starts, then
// goes away; retries at a silent server stay "not answering".

#include "support/EventLoop.h"
#include "support/SoundServer.h"

#include "desktop/PulseSoundSystemStatus.h"

#include <gtest/gtest.h>

#include <QSignalSpy>

namespace orvanta::testing {
namespace {

using Status = services::SoundSystemStatus::State;
using desktop::PulseSoundSystemStatus;

TEST(SoundSystemStatus, FollowsAServerThatStartsLateAndGoesAway)
{
    SoundServer server(SoundServer::Kind::PulseAudio); // points this process at it, not started yet
    pulse::PulseConnection connection;
    PulseSoundSystemStatus status(connection, QStringLiteral("PulseAudio"));
    QSignalSpy changes(&status, &services::SoundSystemStatus::stateChanged);
    ASSERT_TRUE(runUntil([&] { return status.state() == Status::NotAnswering; }));

    // Several retries pass without a word: the line does not flicker.
    const auto announced = changes.count();
    runUntil([] { return false; }, std::chrono::milliseconds(2500));
    EXPECT_EQ(changes.count(), announced);
    EXPECT_EQ(status.state(), Status::NotAnswering);

    ASSERT_TRUE(server.start());
    ASSERT_TRUE(runUntil([&] { return status.state() == Status::Connected; }, std::chrono::seconds(10)));

    server.kill();
    ASSERT_TRUE(runUntil([&] { return status.state() == Status::NotAnswering; }, std::chrono::seconds(10)));
}

} // namespace
} // namespace orvanta::testing
