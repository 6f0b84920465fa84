#include "sim/DeviceDescription.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <fstream>
#include <variant>

namespace orvanta::sim {
namespace {

std::string errorOf(const std::string& json)
{
    const auto result = parseDeviceDescription(json, "devices.json");
    const auto* error = std::get_if<std::string>(&result);
    return error ? *error : std::string("(no error)");
}

TEST(DeviceDescription, ReadsEveryField)
{
    const auto result = parseDeviceDescription(R"({
        "defaultOutput": "bt",
        "failures": [{"call": "createAggregateDevice", "status": 1852797029}],
        "devices": [
          {"name": "Speakers", "uid": "spk", "id": 40, "transport": "bltn", "sampleRate": 48000,
           "virtualMainVolume": {"writable": false, "level": 0.25}},
          {"name": "BT", "uid": "bt", "transport": "blue", "sampleRate": 44100, "inputStreams": 1,
           "channelVolumes": [{}, {"writable": false}], "mainVolume": {},
           "failures": [{"call": "getPropertyData", "selector": "nsrt", "scope": "glob", "element": 0,
                         "status": -50}]}
        ]})",
                                               "devices.json");
    ASSERT_TRUE(std::holds_alternative<SystemSpec>(result)) << std::get<std::string>(result);
    const auto& spec = std::get<SystemSpec>(result);
    ASSERT_EQ(spec.devices.size(), 2u);
    EXPECT_EQ(spec.defaultOutputUID, "bt");
    ASSERT_EQ(spec.failures.size(), 1u);
    EXPECT_EQ(spec.failures[0].call, CallKind::CreateAggregateDevice);
    EXPECT_EQ(spec.failures[0].status, 1852797029);

    const auto& speakers = spec.devices[0];
    EXPECT_EQ(speakers.id, 40u);
    EXPECT_EQ(speakers.transportType, hal::kAudioDeviceTransportTypeBuiltIn);
    EXPECT_TRUE(speakers.virtualMainVolume.present);
    EXPECT_FALSE(speakers.virtualMainVolume.writable);
    EXPECT_EQ(speakers.virtualMainVolume.level, 0.25f);
    EXPECT_EQ(speakers.outputStreams, 1u);

    const auto& bt = spec.devices[1];
    EXPECT_EQ(bt.nominalSampleRate, 44100.0);
    EXPECT_EQ(bt.inputStreams, 1u);
    ASSERT_EQ(bt.channelVolumes.size(), 2u);
    EXPECT_TRUE(bt.channelVolumes[0].writable);
    EXPECT_FALSE(bt.channelVolumes[1].writable);
    EXPECT_TRUE(bt.mainVolume.present);
    EXPECT_FALSE(bt.virtualMainVolume.present);
    ASSERT_EQ(bt.failures.size(), 1u);
    EXPECT_EQ(bt.failures[0].selector, hal::kAudioDevicePropertyNominalSampleRate);
    EXPECT_EQ(bt.failures[0].status, -50);
}

TEST(DeviceDescription, MalformedInputGivesOneLineNamingFileAndProblem)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"{\"devices\": [", "devices.json: invalid JSON at line 1, column 14: "},
        {"[]", "devices.json: expected a JSON object at the top level"},
        {R"({"devices": {}})", "devices.json: top level.devices: expected an array"},
        {R"({"devices": [{"uid": "x"}]})", "devices.json: devices[0].name: expected a string"},
        {R"({"devices": [{"name": "x", "uid": "x", "transport": "bluetooth"}]})",
         "devices.json: devices[0].transport: expected a four-character code such as \"blue\", got \"bluetooth\""},
        {R"({"devices": [{"name": "x", "uid": "x", "sampleRate": "fast"}]})",
         "devices.json: devices[0].sampleRate: expected a number"},
        {R"({"devices": [{"name": "x", "uid": "x", "outputStreams": -1}]})",
         "devices.json: devices[0].outputStreams: expected a whole number in range"},
        {R"({"devices": [{"name": "x", "uid": "x", "virtualMainVolume": {"level": 2}}]})",
         "devices.json: devices[0].virtualMainVolume.level: expected a number from 0 to 1"},
        {R"({"devices": [{"name": "x", "uid": "x", "failures": [{"call": "explode", "status": 1}]}]})",
         "devices.json: devices[0].failures[0].call: unknown call \"explode\""},
        {R"({"devices": [{"name": "x", "uid": "x", "colour": "red"}]})",
         "devices.json: devices[0]: unknown member \"colour\""},
        {R"({"devices": [{"name": "a", "uid": "a", "id": 7}, {"name": "b", "uid": "b", "id": 7}]})",
         "devices.json: devices[1].id: ID 7 is used twice"},
        {R"({"devices": [{"name": "a", "uid": "a", "id": 1}]})",
         "devices.json: devices[0].id: IDs 0 and 1 are taken by the system"},
    };
    for (const auto& [json, expected] : cases) {
        const auto error = errorOf(json);
        EXPECT_EQ(error.rfind(expected, 0), 0u) << json << "\n  gave: " << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
}

TEST(DeviceDescription, UnreadableFileIsAnErrorNamingIt)
{
    const auto result = loadDeviceDescription("/nonexistent/devices.json");
    ASSERT_TRUE(std::holds_alternative<std::string>(result));
    EXPECT_EQ(std::get<std::string>(result).rfind("/nonexistent/devices.json: cannot read the device description", 0),
              0u);
}

TEST(DeviceDescription, LoadsFromAFile)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("devices.json").toStdString();
    std::ofstream(path) << R"({"devices": [{"name": "Only", "uid": "only"}]})";
    const auto result = loadDeviceDescription(path);
    ASSERT_TRUE(std::holds_alternative<SystemSpec>(result));
    EXPECT_EQ(std::get<SystemSpec>(result).devices.at(0).uid, "only");
}

TEST(DeviceDescription, BuiltInSetHasTheSixKindsOfDevice)
{
    const auto spec = builtinDeviceDescription();
    ASSERT_EQ(spec.devices.size(), 6u);
    const auto& speakers = spec.devices[0];
    EXPECT_EQ(speakers.nominalSampleRate, 48000.0);
    EXPECT_TRUE(speakers.virtualMainVolume.present);
    const auto& bluetooth = spec.devices[1];
    EXPECT_EQ(bluetooth.transportType, hal::kAudioDeviceTransportTypeBluetooth);
    EXPECT_EQ(bluetooth.nominalSampleRate, 44100.0);
    EXPECT_FALSE(bluetooth.virtualMainVolume.present);
    EXPECT_EQ(bluetooth.channelVolumes.size(), 2u);
    EXPECT_EQ(spec.devices[2].transportType, hal::kAudioDeviceTransportTypeBluetoothLE);
    EXPECT_EQ(spec.devices[3].inputStreams, 1u);
    EXPECT_EQ(spec.devices[4].outputStreams, 0u);
    const auto& hdmi = spec.devices[5];
    EXPECT_FALSE(hdmi.virtualMainVolume.present || hdmi.mainVolume.present || !hdmi.channelVolumes.empty());
}

} // namespace
} // namespace orvanta::sim
