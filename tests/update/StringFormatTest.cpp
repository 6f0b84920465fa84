#include "update/StringFormat.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

namespace orvanta::update {
namespace {

TEST(UpdateStringFormat, PutsTheArgumentInPlaceOfThePlaceholderAndLeavesOtherPercentSignsAlone)
{
    EXPECT_EQ(formatWithString("Version %@ is the latest version.", "1.4.2"), "Version 1.4.2 is the latest version.");
    EXPECT_EQ(formatWithString("Version %1$@.", "3"), "Version 3.");
    EXPECT_EQ(formatWithString("100%% sure about %@", "1.0"), "100% sure about 1.0");
    EXPECT_EQ(formatWithString("50% %d %", "1.0"), "50% %d %");
    // An argument that itself holds a placeholder is not filled in again.
    EXPECT_EQ(formatWithString("[%@]", "%@"), "[%@]");
}

} // namespace
} // namespace orvanta::update
