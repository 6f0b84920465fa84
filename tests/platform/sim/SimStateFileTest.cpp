#include "sim/SimStateFile.h"

#include "hal/PropertyTable.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace orvanta::sim {
namespace {

using namespace orvanta::hal;

QJsonObject readState(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QJsonDocument::fromJson(file.readAll()).object();
}

SystemSpec twoDevices()
{
    DeviceSpec speakers;
    speakers.name = speakers.uid = "spk";
    speakers.virtualMainVolume = {true, true, 0.5f};
    DeviceSpec bluetooth;
    bluetooth.name = bluetooth.uid = "bt";
    bluetooth.transportType = kAudioDeviceTransportTypeBluetooth;
    bluetooth.channelVolumes = {{true, true, 0.5f}, {true, true, 0.5f}};
    return {{speakers, bluetooth}, {}, {}};
}

TEST(SimStateFile, MirrorsEveryChangeAtomicallyAndAnUnwritablePathIsAnError)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    SimulatedAudioHardware system(twoDevices());
    std::string error;
    EXPECT_FALSE(watchStateInFile(system, "/nonexistent-dir/state.json", error));
    EXPECT_EQ(error.rfind("/nonexistent-dir/state.json: cannot write the simulated state", 0), 0u) << error;
    ASSERT_TRUE(watchStateInFile(system, path.toStdString(), error)) << error;

    auto state = readState(path);
    EXPECT_EQ(state["defaultOutput"].toString(), "spk");
    EXPECT_EQ(state["devices"].toArray().size(), 2);
    EXPECT_TRUE(state["aggregates"].toArray().isEmpty());

    Float32 level = 0.25f;
    ASSERT_EQ(system.setPropertyData(2, kVirtualMainVolume.address(), 0, nullptr, sizeof level, &level), noErr);
    state = readState(path);
    EXPECT_EQ(state["devices"][0]["volumes"]["virtualMain"].toDouble(), 0.25);
    EXPECT_TRUE(state["devices"][1]["volumes"]["virtualMain"].isNull());

    AudioObjectID aggregate = 0;
    const auto composition = PropertyList::dictionary(
        {{"uid", PropertyList::string("stacked")},
         {"subdevices", PropertyList::array({PropertyList::dictionary(
                            {{"uid", PropertyList::string("bt")}, {"latency-out", PropertyList::uint32(6615)}})})}});
    ASSERT_EQ(system.createAggregateDevice(composition, aggregate), noErr);
    ASSERT_EQ(system.setPropertyData(1, kDefaultOutputDevice.address(), 0, nullptr, sizeof aggregate, &aggregate),
              noErr);
    state = readState(path);
    EXPECT_EQ(state["defaultOutput"].toString(), "stacked");
    const auto stacked = state["aggregates"][0];
    EXPECT_EQ(stacked["composition"]["subdevices"][0]["latency-out"].toInt(), 6615);
    EXPECT_EQ(stacked["activeSubDevices"][0]["uid"].toString(), "bt");
    EXPECT_EQ(stacked["activeSubDevices"][0]["extraLatencyFrames"].toDouble(), 6615.0);

    ASSERT_EQ(system.destroyAggregateDevice(aggregate), noErr);
    state = readState(path);
    EXPECT_TRUE(state["aggregates"].toArray().isEmpty());
    EXPECT_EQ(state["defaultOutput"].toString(), "spk");

    // Nothing but the state file is left behind: every write went through a renamed temporary.
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"state.json"});
}

} // namespace
} // namespace orvanta::sim
