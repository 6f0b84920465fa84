// A device description comes from outside: whatever it holds, reading it ends quickly, with a
// description of bounded size or one printable line.

#include "sim/DeviceDescription.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <variant>

#include <sys/stat.h>

namespace orvanta::sim {
namespace {

std::string errorOf(const std::string& json, const std::string& source = "devices.json")
{
    const auto result = parseDeviceDescription(json, source);
    const auto* error = std::get_if<std::string>(&result);
    return error ? *error : std::string("(no error)");
}

std::string loadErrorOf(const std::string& path)
{
    const auto result = loadDeviceDescription(path);
    const auto* error = std::get_if<std::string>(&result);
    return error ? *error : std::string("(no error)");
}

// The description of one device with the given extra members.
std::string oneDevice(const std::string& members)
{
    return R"({"devices": [{"name": "x", "uid": "x")" + (members.empty() ? "" : ", " + members) + "}]}";
}

std::string repeated(const std::string& item, long long count)
{
    std::string list;
    for (long long i = 0; i < count; ++i) {
        list += (i ? "," : "") + item;
    }
    return "[" + list + "]";
}

TEST(BoundedDescription, StreamCountsHaveALimit)
{
    EXPECT_EQ(errorOf(oneDevice(R"("outputStreams": 4294967295)")),
              "devices.json: devices[0].outputStreams: more than 64");
    EXPECT_EQ(errorOf(oneDevice(R"("inputStreams": 65)")), "devices.json: devices[0].inputStreams: more than 64");
    const auto most = parseDeviceDescription(oneDevice(R"("outputStreams": 64, "inputStreams": 64)"), "d");
    ASSERT_TRUE(std::holds_alternative<SystemSpec>(most)) << std::get<std::string>(most);
    EXPECT_EQ(std::get<SystemSpec>(most).devices[0].outputStreams, kMaxDescriptionStreams);
}

TEST(BoundedDescription, ListsHaveALimit)
{
    const std::string device = R"({"name": "x", "uid": "x"})";
    EXPECT_EQ(errorOf(R"({"devices": )" + repeated(device, kMaxDescriptionDevices + 1) + "}"),
              "devices.json: top level.devices: more than 256 entries");
    EXPECT_TRUE(std::holds_alternative<SystemSpec>(
        parseDeviceDescription(R"({"devices": )" + repeated(device, kMaxDescriptionDevices) + "}", "d")));
    EXPECT_EQ(errorOf(oneDevice(R"("channelVolumes": )" + repeated("{}", kMaxDescriptionChannels + 1))),
              "devices.json: devices[0].channelVolumes: more than 64 entries");
    const std::string rule = R"({"call": "hasProperty", "status": 1})";
    EXPECT_EQ(errorOf(R"({"failures": )" + repeated(rule, kMaxDescriptionFailureRules + 1) + "}"),
              "devices.json: top level.failures: more than 256 entries");
}

TEST(BoundedDescription, StringsHaveALimit)
{
    const std::string longest(kMaxDescriptionTextBytes, 'n');
    EXPECT_TRUE(std::holds_alternative<SystemSpec>(
        parseDeviceDescription(R"({"devices": [{"name": ")" + longest + R"(", "uid": "x"}]})", "d")));
    EXPECT_EQ(errorOf(R"({"devices": [{"name": ")" + longest + R"(n", "uid": "x"}]})"),
              "devices.json: devices[0].name: longer than 1024 bytes");
}

TEST(BoundedDescription, TheDocumentHasASizeLimit)
{
    const std::string padded = R"({"devices": [], "defaultOutput": ")" + std::string(kMaxDescriptionBytes, ' ') + "\"}";
    EXPECT_EQ(errorOf(padded), "devices.json: larger than 1048576 bytes");

    QTemporaryDir dir;
    const std::string path = dir.filePath("large.json").toStdString();
    std::ofstream(path) << padded;
    EXPECT_EQ(loadErrorOf(path), path + ": cannot read the device description: larger than 1048576 bytes");
}

TEST(BoundedDescription, OnlyARegularFileIsRead)
{
    EXPECT_EQ(loadErrorOf("/dev/zero"), "/dev/zero: cannot read the device description: not a regular file");
    QTemporaryDir dir;
    EXPECT_EQ(loadErrorOf(dir.path().toStdString()),
              dir.path().toStdString() + ": cannot read the device description: not a regular file");
    // A FIFO with no writer would block a plain open() forever.
    const std::string fifo = dir.filePath("devices.fifo").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(loadErrorOf(fifo), fifo + ": cannot read the device description: not a regular file");
}

TEST(BoundedDescription, ControlCharactersFromTheDocumentAreEscapedInTheLine)
{
    EXPECT_EQ(errorOf(oneDevice(R"("a\nb\u001b[31m": 1)")),
              R"(devices.json: devices[0]: unknown member "a\nb\x1b[31m")");
    EXPECT_EQ(errorOf(oneDevice(R"("transport": "\u009b2J\t")")),
              R"(devices.json: devices[0].transport: expected a four-character code such as "blue", got "\u009b2J\t")");
    EXPECT_EQ(errorOf(R"({"devices": [{"name": "x", "uid": "x", "failures": [{"call": "x\r\u0007", "status": 1}]}]})"),
              R"(devices.json: devices[0].failures[0].call: unknown call "x\r\x07")");
    EXPECT_EQ(errorOf("[]", "new\nline\x1b.json"), R"(new\nline\x1b.json: expected a JSON object at the top level)");
}

TEST(BoundedDescription, ALongTextFromTheDocumentIsCutInTheLine)
{
    const std::string error = errorOf(oneDevice("\"" + std::string(100000, 'k') + "\": 1"));
    EXPECT_EQ(error, "devices.json: devices[0]: unknown member \"" + std::string(80, 'k') + "...\"");
    // Cut at a character boundary: "e" and then two-byte characters, so byte 80 is inside one.
    std::string accents;
    for (int i = 0; i < 200; ++i) {
        accents += "\xc3\xa9";
    }
    std::string expected = "e";
    for (int i = 0; i < 39; ++i) {
        expected += "\xc3\xa9";
    }
    EXPECT_EQ(errorOf(oneDevice(R"("transport": "e)" + accents + "\"")),
              "devices.json: devices[0].transport: expected a four-character code such as \"blue\", got \"" + expected +
                  "...\"");
}

} // namespace
} // namespace orvanta::sim
