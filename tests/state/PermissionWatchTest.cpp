#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

class PermissionWatch : public ::testing::Test, protected StateFixture
{};

TEST_F(PermissionWatch, StartsWithTheLiveValueAndNoticesEveryChangeWithinTheNextPolls)
{
    trust.trusted = true;
    EXPECT_TRUE(start().isTrusted());
    trust.trusted = false;
    auto& app = start();
    ASSERT_FALSE(app.isTrusted());
    trust.trusted = true;
    ASSERT_TRUE(runUntil([&] { return app.isTrusted(); }, std::chrono::milliseconds(2500)));

    trust.trusted = false; // withdrawn later: noticed as well
    ASSERT_TRUE(runUntil([&] { return !app.isTrusted(); }, std::chrono::milliseconds(2500)));
}

TEST_F(PermissionWatch, EveryTickAnnouncesTheFlagEvenWhenUnchanged)
{
    auto& app = start();
    int announcements = 0;
    QObject::connect(&app, &state::AppState::isTrustedChanged, [&] { ++announcements; });
    ASSERT_TRUE(runUntil([&] { return announcements >= 2; }, std::chrono::milliseconds(3500)));
    EXPECT_FALSE(app.isTrusted());
}

TEST_F(PermissionWatch, RestartingThePollReplacesTheOldOne)
{
    auto& app = start();
    app.startPermissionTimer();
    app.startPermissionTimer();
    const int before = trust.queries;
    ASSERT_TRUE(runUntil([&] { return trust.queries > before; }, std::chrono::milliseconds(2500)));
    drainEvents();
    EXPECT_EQ(trust.queries, before + 1); // one live timer, not three
}

} // namespace
} // namespace orvanta::testing
