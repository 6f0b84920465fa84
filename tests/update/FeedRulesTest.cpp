// The update check's pure rules: reading the feed, comparing versions, filling in texts.

#include "update/FeedParser.h"
#include "update/StringFormat.h"
#include "update/VersionComparison.h"

#include "support/Printers.h"

#include <gtest/gtest.h>

namespace orvanta::update {
namespace {

using enum ComparisonResult;

TEST(UpdateFeedParser, ReadsTheThreeStringMembersWhateverElseTheObjectHoldsAndBoundsTheVersion)
{
    EXPECT_EQ(parseFeed(R"({"version":"1.4.2","download_url":"https://orvanta.example/get","release_notes":"Fixes."})"),
              (Feed{"1.4.2", "https://orvanta.example/get", "Fixes."}));
    EXPECT_EQ(parseFeed(" \n{ \"release_notes\" : \"Line one\\nLine \\\"two\\\" \\u00e9\", \"channel\": \"stable\",\n"
                        "\"download_url\": \"https://orvanta.example/get?a=1&b=2\", \"version\": \"2.0\" }\n"),
              (Feed{"2.0", "https://orvanta.example/get?a=1&b=2", QStringLiteral("Line one\nLine \"two\" \u00e9")}));
    // A version is bounded in length.
    const auto feedWithVersion = [](const QByteArray& version) {
        return parseFeed(R"({"version":")" + version + R"(","download_url":"u","release_notes":"n"})");
    };
    const QByteArray longest = QByteArray("1.") + QByteArray(kMaxVersionLength - 2, '9');
    EXPECT_EQ(feedWithVersion(longest), (Feed{longest, "u", "n"}));
    EXPECT_FALSE(feedWithVersion(longest + "9").has_value());
}

TEST(UpdateFeedParser, RejectsUnusableDocuments)
{
    for (const char* document :
         {// A member of another type, even an unused one.
          R"({"version":"1.4.2","download_url":"u","release_notes":"n","size":1048576})",
          R"({"version":142,"download_url":"u","release_notes":"n"})",
          // A required member missing, or not a JSON object.
          R"({"version":"1","download_url":"u"})", R"([{"version":"1","download_url":"u","release_notes":"n"}])",
          R"({"version":"1.4.2","download_url":"u","release_notes":"n"} trailing)"}) {
        EXPECT_FALSE(parseFeed(document).has_value()) << document;
    }
}

// Digit runs compare by value, even past any machine integer; everything else as characters,
// where '.' < '0'..'9' < 'a'.
TEST(UpdateVersionComparison, OrdersLikeAPersonReadsVersions)
{
    for (const char* row :
         {"1.10 > 1.9", "1.4.2 = 1.4.2", "2.0 > 2", "1.4.0 < 1.4.1", "1.01 = 1.1", "1 > ",
          "99999999999999999999999 < 100000000000000000000000", "1.4-beta > 1.4", "a > B", "1.a > 1.1", "1.. < 1.1"}) {
        const QStringList parts = QString::fromUtf8(row).split(u' ');
        const auto expected = static_cast<ComparisonResult>(QStringLiteral("<=>").indexOf(parts[1]) - 1);
        EXPECT_EQ(compareNumerically(parts[0], parts[2]), expected) << row;
        EXPECT_EQ(compareNumerically(parts[2], parts[0]), static_cast<ComparisonResult>(-static_cast<int>(expected)))
            << row;
    }
}

// A device name that itself holds a placeholder or a percent sign is shown as it is.
TEST(UpdateStringFormat, PutsTheArgumentInPlaceOfThePlaceholderOnce)
{
    EXPECT_EQ(formatWithString("Volume of %@", "50% %@ %d"), "Volume of 50% %@ %d");
}

} // namespace
} // namespace orvanta::update
