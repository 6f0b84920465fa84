#include "sim/SimStateFile.h"

#include "hal/PropertyTable.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <tuple>

namespace orvanta::sim {
namespace {

using namespace orvanta::hal;

QJsonObject readState(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QJsonDocument::fromJson(file.readAll()).object();
}

TEST(SimStateFile, MirrorsEveryChangeAndAnUnwritablePathIsAnError)
{
    DeviceSpec speakers, bluetooth;
    speakers.name = speakers.uid = "spk";
    speakers.virtualMainVolume = {true, true, 0.5f};
    bluetooth.name = bluetooth.uid = "bt";
    SimulatedAudioHardware system({{speakers, bluetooth}, {}, {}});
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    std::string error;
    EXPECT_FALSE(watchStateInFile(system, "/nonexistent-dir/state.json", error));
    EXPECT_EQ(error.rfind("/nonexistent-dir/state.json: cannot write the simulated state", 0), 0u) << error;
    ASSERT_TRUE(watchStateInFile(system, path.toStdString(), error)) << error;
    EXPECT_EQ(readState(path)["defaultOutput"].toString(), "spk");

    Float32 level = 0.25f;
    ASSERT_EQ(system.setPropertyData(2, kVirtualMainVolume.address(), 0, nullptr, sizeof level, &level), noErr);
    auto state = readState(path);
    EXPECT_EQ(state["devices"][0]["volumes"]["virtualMain"].toDouble(), 0.25);

    // A member that is not there has no active sub-device.
    AudioObjectID aggregate = 0;
    const auto member = [](const char* uid) {
        return PropertyList::dictionary(
            {{"uid", PropertyList::string(uid)}, {"latency-out", PropertyList::uint32(6615)}});
    };
    const auto composition =
        PropertyList::dictionary({{"uid", PropertyList::string("stacked")},
                                  {"subdevices", PropertyList::array({member("gone"), member("bt")})}});
    ASSERT_EQ(system.createAggregateDevice(composition, aggregate), noErr);
    ASSERT_EQ(system.setPropertyData(1, kDefaultOutputDevice.address(), 0, nullptr, sizeof aggregate, &aggregate),
              noErr);
    state = readState(path);
    EXPECT_EQ(state["defaultOutput"].toString(), "stacked");
    const auto active = state["aggregates"][0]["activeSubDevices"].toArray();
    EXPECT_EQ(std::tuple(active.size(), active[0]["uid"].toString(), active[0]["extraLatencyFrames"].toDouble()),
              std::tuple(1, QString("bt"), 6615.0));

    ASSERT_EQ(system.destroyAggregateDevice(aggregate), noErr);
    EXPECT_TRUE(readState(path)["aggregates"].toArray().isEmpty());
}

} // namespace
} // namespace orvanta::sim
