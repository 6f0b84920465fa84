#include "update/VersionComparison.h"

#include <gtest/gtest.h>

#include <QString>

namespace orvanta::update {
namespace {

using enum ComparisonResult;

struct Case
{
    const char* lhs;
    const char* rhs;
    ComparisonResult expected;
};

class UpdateVersionComparison : public ::testing::TestWithParam<Case>
{};

TEST_P(UpdateVersionComparison, OrdersLikeAPersonReadsVersions)
{
    const QString lhs = QString::fromUtf8(GetParam().lhs);
    const QString rhs = QString::fromUtf8(GetParam().rhs);
    EXPECT_EQ(compareNumerically(lhs, rhs), GetParam().expected) << GetParam().lhs << " vs " << GetParam().rhs;
    // The other way round gives the opposite answer.
    const auto reversed = static_cast<ComparisonResult>(-static_cast<int>(GetParam().expected));
    EXPECT_EQ(compareNumerically(rhs, lhs), reversed) << GetParam().rhs << " vs " << GetParam().lhs;
    EXPECT_EQ(isNewerVersion(lhs, rhs), GetParam().expected == OrderedDescending);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UpdateVersionComparison,
    ::testing::Values(
        // Digit runs compare by value, not character by character.
        Case{"1.10", "1.9", OrderedDescending}, Case{"1.4.2", "1.4.2", OrderedSame},
        Case{"1.4.10", "1.4.9", OrderedDescending}, Case{"10.0", "9.9.9", OrderedDescending},
        Case{"2.0.1", "2.0", OrderedDescending}, Case{"2.0", "2", OrderedDescending},
        Case{"1.4.0", "1.4.1", OrderedAscending}, Case{"007", "7", OrderedSame}, Case{"1.01", "1.1", OrderedSame},
        Case{"0", "000", OrderedSame}, Case{"0.0.1", "0", OrderedDescending}, Case{"", "", OrderedSame},
        Case{"1", "", OrderedDescending},
        // Runs longer than any machine integer.
        Case{"1.123456789012345678901234567890", "1.123456789012345678901234567889", OrderedDescending},
        Case{"99999999999999999999999", "100000000000000000000000", OrderedAscending},
        // Everything else compares character by character, case included.
        Case{"1.4b", "1.4a", OrderedDescending}, Case{"1.4-beta", "1.4", OrderedDescending},
        Case{"a", "B", OrderedDescending}, Case{"1.4 ", "1.4", OrderedDescending},
        // A digit against another character compares as characters: '.' < '0'..'9' < 'a'.
        Case{"1.a", "1.1", OrderedDescending}, Case{"1..", "1.1", OrderedAscending},
        Case{"v2", "10", OrderedDescending}, Case{"1.5", "1.x", OrderedAscending}, Case{"é", "e", OrderedDescending}));

} // namespace
} // namespace orvanta::update
