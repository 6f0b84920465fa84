#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using services::TapEvent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr qint64 kDown = 0x0A;
constexpr qint64 kUp = 0x0B;

TapEvent mediaKey(qint64 keyCode, qint64 state, qint64 flags = 0)
{
    return {services::kSystemDefinedEventType, (keyCode << 16) | (state << 8) | flags, true};
}

class MediaKeys : public ::testing::Test, protected StateFixture
{};

TEST_F(MediaKeys, OnlyVolumeKeyDownsAreDroppedAndAnnouncedAsStepsAfterTheTapReturns)
{
    std::vector<float> steps;
    QObject::connect(&mediaKeys, &state::MediaKeyManager::masterVolumeStep, [&](float step) { steps.push_back(step); });
    mediaKeys.start();
    const std::vector<TapEvent> others{mediaKey(0, kUp),
                                       mediaKey(1, kUp),
                                       mediaKey(7, kDown),                   // mute
                                       {13, (0 << 16) | (kDown << 8), true}, // not system-defined
                                       {services::kSystemDefinedEventType, 0x0A00, false}};
    EXPECT_FALSE(taps.inject(mediaKey(0, kDown)));
    EXPECT_FALSE(taps.inject(mediaKey(1, kDown, 1))); // a repeat counts as a press
    for (const auto& event : others) {
        EXPECT_TRUE(taps.inject(event));
    }
    EXPECT_THAT(steps, IsEmpty()); // posted, not called from inside the tap
    EXPECT_EQ(taps.passedOn, others);
    drainEvents();
    EXPECT_THAT(steps, ElementsAre(0.0625f, -0.0625f));
}

TEST_F(MediaKeys, VolumeKeysStepBothVolumesEachClampedSeparatelyWithSyncOnAndAfterItIsOff)
{
    auto& app = start();
    selectBoth();
    app.setVolume2(0.75f);
    app.enableSync();
    for (int press = 1; press <= 10; ++press) {
        taps.inject(mediaKey(1, kDown));
        drainEvents();
        EXPECT_EQ(app.volume1() == 0.0f, press >= 8) << press; // eight presses from half reach silence
    }
    EXPECT_EQ(app.volume2(), 0.125f);
    EXPECT_EQ(sim.system.device(sim.idOf("bt"))->spec.channelVolumes[1].level, 0.125f);

    app.disableSync();
    app.setVolume1(0.95f);
    taps.inject(mediaKey(0, kDown));
    drainEvents();
    EXPECT_EQ(std::pair(app.volume1(), app.volume2()), std::pair(1.0f, 0.1875f));
    EXPECT_EQ(sim.printed.lines.back(), "✅ Volume set via VolumeScalar for bt: 0.1875");
}

} // namespace
} // namespace orvanta::testing
