// Whatever a device description holds, reading it ends with a bounded description or one printable line.

#include "sim/DeviceDescription.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <tuple>
#include <variant>

#include <sys/stat.h>

namespace orvanta::sim {
namespace {

std::string errorIn(const DescriptionResult& result)
{
    const auto* error = std::get_if<std::string>(&result);
    return error ? *error : std::string("(no error)");
}

std::string errorOf(const std::string& json, const std::string& source = "devices.json")
{
    return errorIn(parseDeviceDescription(json, source));
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

TEST(DeviceDescription, ReadsEveryFieldFromAFile)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("devices.json").toStdString();
    std::ofstream(path) << R"({"defaultOutput": "bt", "failures": [{"call": "createAggregateDevice", "status": 7}],
        "devices": [{"name": "S", "uid": "spk", "id": 40, "transport": "bltn", "virtualMainVolume": {"level": 0.25}},
          {"name": "BT", "uid": "bt", "sampleRate": 44100, "inputStreams": 1, "channelVolumes": [{}, {"writable": false}],
           "mainVolume": {}, "failures": [{"call": "getPropertyData", "selector": "nsrt", "status": -50}]}]})";
    const auto result = loadDeviceDescription(path);
    ASSERT_TRUE(std::holds_alternative<SystemSpec>(result)) << std::get<std::string>(result);
    const auto& spec = std::get<SystemSpec>(result);
    const auto& [speakers, bt] = std::tie(spec.devices.at(0), spec.devices.at(1));
    EXPECT_EQ(std::tuple(*spec.defaultOutputUID, spec.failures.at(0).call, spec.failures.at(0).status),
              std::tuple("bt", CallKind::CreateAggregateDevice, 7));
    EXPECT_EQ(std::tuple(speakers.id, speakers.transportType, speakers.virtualMainVolume.present,
                         speakers.virtualMainVolume.level),
              std::tuple(std::optional(40u), hal::kAudioDeviceTransportTypeBuiltIn, true, 0.25f));
    EXPECT_EQ(std::tuple(bt.nominalSampleRate, bt.inputStreams, bt.mainVolume.present, bt.virtualMainVolume.present,
                         bt.channelVolumes.size(), bt.channelVolumes.back().writable),
              std::tuple(44100.0, 1u, true, false, 2u, false));
    EXPECT_EQ(std::tuple(bt.failures.at(0).selector, bt.failures.at(0).status),
              std::tuple(std::optional(hal::kAudioDevicePropertyNominalSampleRate), -50));
}

TEST(DeviceDescription, EachProblemGivesOneLineNamingFileAndProblemAndEachLimitIsAllowed)
{
    const std::string device = R"({"name": "x", "uid": "x"})";
    const std::string rule = R"({"call": "hasProperty", "status": 1})";
    const std::string longest(kMaxDescriptionTextBytes, 'n');
    const std::string kTransport =
        "devices.json: devices[0].transport: expected a four-character code such as \"blue\", got ";
    std::string accents; // "e" and then two-byte characters, so that byte 80 is inside one
    std::string cutAccents;
    for (int i = 0; i < 200; ++i) {
        accents += "\xc3\xa9";
        cutAccents += i < 39 ? "\xc3\xa9" : "";
    }
    const std::vector<std::pair<std::string, std::string>> cases{
        {"{\"devices\": [", "devices.json: invalid JSON at line 1, column 14: "},
        {R"({"devices": [{"uid": "x"}]})", "devices.json: devices[0].name: expected a string"},
        {oneDevice(R"("transport": "bluetooth")"), kTransport + "\"bluetooth\""},
        {oneDevice(R"("outputStreams": -1)"),
         "devices.json: devices[0].outputStreams: expected a whole number in range"},
        {oneDevice(R"("virtualMainVolume": {"level": 2})"),
         "devices.json: devices[0].virtualMainVolume.level: expected a number from 0 to 1"},
        {oneDevice(R"("failures": [{"call": "explode", "status": 1}])"),
         "devices.json: devices[0].failures[0].call: unknown call \"explode\""},
        {oneDevice(R"("colour": "red")"), "devices.json: devices[0]: unknown member \"colour\""},
        {R"({"devices": [{"name": "a", "uid": "a", "id": 7}, {"name": "b", "uid": "b", "id": 7}]})",
         "devices.json: devices[1].id: ID 7 is used twice"},
        {R"({"devices": [{"name": "a", "uid": "a", "id": 1}]})",
         "devices.json: devices[0].id: IDs 0 and 1 are taken by the system"},
        {oneDevice(R"("outputStreams": 4294967295)"), "devices.json: devices[0].outputStreams: more than 64"},
        {oneDevice(R"("outputStreams": 64, "inputStreams": 64)"), "(no error)"},
        {R"({"devices": )" + repeated(device, kMaxDescriptionDevices + 1) + "}",
         "devices.json: top level.devices: more than 256 entries"},
        {R"({"devices": )" + repeated(device, kMaxDescriptionDevices) + "}", "(no error)"},
        {oneDevice(R"("channelVolumes": )" + repeated("{}", kMaxDescriptionChannels + 1)),
         "devices.json: devices[0].channelVolumes: more than 64 entries"},
        {R"({"failures": )" + repeated(rule, kMaxDescriptionFailureRules + 1) + "}",
         "devices.json: top level.failures: more than 256 entries"},
        {R"({"devices": [{"name": ")" + longest + R"(", "uid": "x"}]})", "(no error)"},
        {R"({"devices": [{"name": ")" + longest + R"(n", "uid": "x"}]})",
         "devices.json: devices[0].name: longer than 1024 bytes"},
        {oneDevice(R"("a\nb\u001b[31m": 1)"), R"(devices.json: devices[0]: unknown member "a\nb\x1b[31m")"},
        {oneDevice(R"("transport": "\u009b2J\t")"), kTransport + R"("\u009b2J\t")"},
        {oneDevice("\"" + std::string(100000, 'k') + "\": 1"),
         "devices.json: devices[0]: unknown member \"" + std::string(80, 'k') + "...\""},
        {oneDevice(R"("transport": "e)" + accents + "\""), kTransport + "\"e" + cutAccents + "...\""},
    };
    for (const auto& [json, expected] : cases) {
        const auto error = errorOf(json);
        EXPECT_EQ(expected.ends_with(": ") ? error.substr(0, expected.size()) : error, expected) << json.substr(0, 200);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_EQ(errorOf("[]", "new\nline\x1b.json"), R"(new\nline\x1b.json: expected a JSON object at the top level)");
}

TEST(DeviceDescription, OnlyARegularFileOfBoundedSizeIsRead)
{
    const std::string padded = R"({"devices": [], "defaultOutput": ")" + std::string(kMaxDescriptionBytes, ' ') + "\"}";
    EXPECT_EQ(errorOf(padded), "devices.json: larger than 1048576 bytes");
    QTemporaryDir dir;
    const std::string path = dir.filePath("large.json").toStdString();
    std::ofstream(path) << padded;
    EXPECT_EQ(errorIn(loadDeviceDescription(path)),
              path + ": cannot read the device description: larger than 1048576 bytes");
    EXPECT_EQ(errorIn(loadDeviceDescription("/nonexistent/devices.json"))
                  .rfind("/nonexistent/devices.json: cannot read the device description", 0),
              0u);
    // A FIFO with no writer would block a plain open() forever.
    const std::string fifo = dir.filePath("devices.fifo").toStdString();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    for (const std::string& special : {std::string("/dev/zero"), dir.path().toStdString(), fifo}) {
        EXPECT_EQ(errorIn(loadDeviceDescription(special)),
                  special + ": cannot read the device description: not a regular file");
    }
}

} // namespace
} // namespace orvanta::sim
