#include "update/FeedParser.h"

#include <gtest/gtest.h>

namespace orvanta::update {
namespace {

TEST(UpdateFeedParser, ReadsTheThreeStringMembersWhateverElseTheObjectHoldsAndBoundsTheVersion)
{
    EXPECT_EQ(parseFeed(R"({"version":"1.4.2","download_url":"https://orvanta.example/get","release_notes":"Fixes."})"),
              (Feed{"1.4.2", "https://orvanta.example/get", "Fixes."}));
    const auto feed =
        parseFeed(" \n{ \"release_notes\" : \"Line one\\nLine \\\"two\\\" \\u00e9\", \"channel\": \"stable\",\n"
                  "\"download_url\": \"https://orvanta.example/get?a=1&b=2\", \"version\": \"2.0\" }\n");
    ASSERT_TRUE(feed.has_value());
    EXPECT_EQ(*feed,
              (Feed{"2.0", "https://orvanta.example/get?a=1&b=2", QStringLiteral("Line one\nLine \"two\" \u00e9")}));
    EXPECT_EQ(parseFeed(R"({"version":"","download_url":"","release_notes":""})"), Feed{});
    // A version is bounded in length.
    const auto feedWithVersion = [](const QByteArray& version) {
        return parseFeed(R"({"version":")" + version + R"(","download_url":"u","release_notes":"n"})");
    };
    const QByteArray longest = QByteArray("1.") + QByteArray(kMaxVersionLength - 2, '9');
    ASSERT_TRUE(feedWithVersion(longest).has_value());
    EXPECT_EQ(feedWithVersion(longest)->version.size(), kMaxVersionLength);
    EXPECT_FALSE(feedWithVersion(longest + "9").has_value());
    EXPECT_FALSE(feedWithVersion(QByteArray(1 << 20, '7')).has_value());
}

class UpdateFeedParserRejects : public ::testing::TestWithParam<const char*>
{};

TEST_P(UpdateFeedParserRejects, Document)
{
    EXPECT_FALSE(parseFeed(QByteArray(GetParam())).has_value()) << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Unusable, UpdateFeedParserRejects,
                         ::testing::Values(
                             // A member of another type, even an unused one.
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n","size":1048576})",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n","beta":false})",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n","extra":null})",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n","mirrors":["a"]})",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n","meta":{"a":"b"}})",
                             R"({"version":142,"download_url":"u","release_notes":"n"})",
                             // A required member missing.
                             R"({"download_url":"u","release_notes":"n"})", R"({"version":"1","release_notes":"n"})",
                             R"({"version":"1","download_url":"u"})",
                             R"({"Version":"1","download_url":"u","release_notes":"n"})", "{}",
                             // Not a JSON object.
                             R"([{"version":"1","download_url":"u","release_notes":"n"}])", R"("1.4.2")", "null", "",
                             "<!DOCTYPE html><html><body>Not Found</body></html>",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n")",
                             R"({"version":"1.4.2","download_url":"u","release_notes":"n"} trailing)",
                             R"({'version':'1.4.2','download_url':'u','release_notes':'n'})"));

} // namespace
} // namespace orvanta::update
