// The reader the table checks rely on: it must keep order and repeats, and refuse what is no
// flat object of strings.

#include "OrderedJsonObject.h"
#include "QtPrinters.h"

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

TEST(OrderedJsonObject, KeepsMembersInFileOrderWithRepeats)
{
    const auto members = readOrderedJsonObject(R"({ "b": "1", "a": "2", "b": "3" })");
    ASSERT_TRUE(members);
    const QList<JsonMember> expected{{"b", "1"}, {"a", "2"}, {"b", "3"}};
    EXPECT_EQ(*members, expected);
}

TEST(OrderedJsonObject, DecodesEscapes)
{
    const auto members = readOrderedJsonObject(R"({"say \"hi\"": "1.\n2. \u00e9 \\"})");
    ASSERT_TRUE(members);
    ASSERT_EQ(members->size(), 1);
    EXPECT_EQ(members->at(0).first, QStringLiteral("say \"hi\""));
    EXPECT_EQ(members->at(0).second, QStringLiteral("1.\n2. é \\"));
}

TEST(OrderedJsonObject, ReadsAnEmptyObject)
{
    const auto members = readOrderedJsonObject("  {\n}\n");
    ASSERT_TRUE(members);
    EXPECT_TRUE(members->isEmpty());
}

TEST(OrderedJsonObject, RefusesWhatIsNoFlatObjectOfStrings)
{
    EXPECT_FALSE(readOrderedJsonObject(R"(["a", "b"])"));
    EXPECT_FALSE(readOrderedJsonObject(R"({"a": 1})"));
    EXPECT_FALSE(readOrderedJsonObject(R"({"a": "b",})"));
    EXPECT_FALSE(readOrderedJsonObject(R"({"a": "b"} trailing)"));
    EXPECT_FALSE(readOrderedJsonObject(R"({"a" "b"})"));
    EXPECT_FALSE(readOrderedJsonObject(R"({"a": "unterminated})"));
}

} // namespace
} // namespace orvanta::testing
