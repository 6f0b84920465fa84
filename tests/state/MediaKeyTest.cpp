#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using platform::TapEvent;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TapEvent mediaKey(qint64 keyCode, qint64 state, qint64 flags = 0)
{
    return {platform::kSystemDefinedEventType, (keyCode << 16) | (state << 8) | flags, true};
}

constexpr qint64 kDown = 0x0A;
constexpr qint64 kUp = 0x0B;
constexpr qint64 kMute = 7;

class MediaKeys : public ::testing::Test, protected StateFixture
{
protected:
    std::vector<float> steps;

    void SetUp() override
    {
        QObject::connect(&mediaKeys, &state::MediaKeyManager::masterVolumeStep,
                         [this](float step) { steps.push_back(step); });
        mediaKeys.start();
    }
};

TEST_F(MediaKeys, VolumeKeyDownsAreDroppedAndAnnouncedAsStepsAfterTheTapReturns)
{
    EXPECT_FALSE(taps.inject(mediaKey(0, kDown)));
    EXPECT_FALSE(taps.inject(mediaKey(1, kDown, 1))); // a repeat counts as a press
    EXPECT_THAT(steps, IsEmpty());                    // posted, not called from inside the tap
    drainEvents();
    EXPECT_THAT(steps, ElementsAre(0.0625f, -0.0625f));
    EXPECT_THAT(taps.passedOn, IsEmpty());
}

TEST_F(MediaKeys, EverythingElsePassesOnUntouched)
{
    const std::vector<TapEvent> others{mediaKey(0, kUp),
                                       mediaKey(1, kUp),
                                       mediaKey(kMute, kDown),
                                       {13, (0 << 16) | (kDown << 8), true}, // not system-defined
                                       {platform::kSystemDefinedEventType, 0x0A00, false}};
    for (const auto& event : others) {
        EXPECT_TRUE(taps.inject(event));
    }
    EXPECT_EQ(taps.passedOn, others);
    drainEvents();
    EXPECT_THAT(steps, IsEmpty());
}

TEST(MediaKeyStart, WithoutPermissionPrintsTheFailureAndKeepsNoTap)
{
    StateFixture fixture;
    fixture.taps.allowed = false;
    fixture.mediaKeys.start();
    EXPECT_FALSE(fixture.mediaKeys.hasTap());
    EXPECT_THAT(fixture.sim.printed.lines,
                ElementsAre("❌ Failed to create Event Tap. Check Accessibility Permissions."));

    fixture.taps.allowed = true; // trust arrives: the next start succeeds, and one after it reuses the tap
    fixture.mediaKeys.start();
    fixture.mediaKeys.start();
    EXPECT_TRUE(fixture.mediaKeys.hasTap());
    EXPECT_EQ(fixture.taps.created, 1);
}

TEST(MediaKeyVolume, EightPressesDownFromHalfReachSilenceAndStayThereAlsoAfterSyncIsOff)
{
    StateFixture fixture;
    auto& app = fixture.start();
    fixture.selectBoth();
    app.enableSync();
    fixture.sim.reset();
    for (int press = 0; press < 10; ++press) {
        fixture.taps.inject(mediaKey(1, kDown));
        drainEvents();
        if (press == 7) {
            EXPECT_EQ(app.volume1(), 0.0f);
        }
    }
    EXPECT_EQ(app.volume1(), 0.0f);
    EXPECT_EQ(app.volume2(), 0.0f);
    EXPECT_EQ(fixture.sim.system.device(fixture.sim.idOf("spk"))->spec.virtualMainVolume.level, 0.0f);
    EXPECT_EQ(fixture.sim.system.device(fixture.sim.idOf("bt"))->spec.channelVolumes[1].level, 0.0f);

    // The keys keep working after sync is off.
    app.disableSync();
    fixture.taps.inject(mediaKey(0, kDown));
    drainEvents();
    EXPECT_EQ(app.volume1(), 0.0625f);
    EXPECT_EQ(fixture.sim.printed.lines.back(), "✅ Volume set via VolumeScalar for bt: 0.0625");
}

} // namespace
} // namespace orvanta::testing
