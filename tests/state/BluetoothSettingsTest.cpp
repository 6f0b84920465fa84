#include "support/StateFixture.h"

#include "desktop/JsonFileUserDefaults.h"
#include "state/PersistedMaps.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

const audio::AudioDeviceOption kWired{"Wired", "wired", false};

class BluetoothSettings : public ::testing::Test, protected StateFixture
{
protected:
    QVariantMap stored(const char* key) const { return memoryDefaults.values.value(key).toMap(); }
};

TEST_F(BluetoothSettings, DelaysAreClampedAndStoredWholeAndApplyOnlyToADeviceCountedAsBluetooth)
{
    auto& app = start();
    app.setBluetoothDelay(-5, kBluetooth);
    EXPECT_EQ(stored("bluetoothDelaysByUID"), (QVariantMap{{"bt", 0}})); // Reset keeps an entry of 0
    app.setBluetoothDelay(601, kBluetooth);
    app.setBluetoothDelay(200, kWired);
    app.setBluetoothDelay(100, std::nullopt);
    EXPECT_EQ(stored("bluetoothDelaysByUID"), (QVariantMap{{"bt", 600}, {"wired", 200}}));
    EXPECT_EQ(memoryDefaults.writes, 3);
    EXPECT_EQ(std::tuple(app.effectiveDelay(kBluetooth), app.effectiveDelay(kWired), app.storedDelay(kWired),
                         app.effectiveDelay(std::nullopt)),
              std::tuple(600, 0, 200, 0));
    app.setManualBluetoothOverride(true, kWired);
    EXPECT_EQ(app.effectiveDelay(kWired), 200);
    app.setManualBluetoothOverride(false, kBluetooth); // a device's own report outweighs the mark
    app.setManualBluetoothOverride(false, kWired);
    EXPECT_TRUE(app.countsAsBluetooth(kBluetooth) && !app.countsAsBluetooth(kWired));
    EXPECT_EQ(stored("manualBluetoothByUID"), (QVariantMap{{"bt", false}, {"wired", false}}));
}

TEST_F(BluetoothSettings, ChangesWhileOffAreOnlyStoredForTheNextSyncAndWhileOnApplyAtOnce)
{
    auto& app = start();
    selectBoth();
    sim.reset();
    app.setBluetoothDelay(90, kBluetooth);
    EXPECT_THAT(sim.calls(), IsEmpty());
    app.enableSync();
    EXPECT_THAT(sim.printed.lines.front(), ::testing::EndsWith("latency1=0ms latency2=90ms"));

    sim.reset();
    app.setBluetoothDelay(150, kBluetooth);
    app.setBluetoothDelay(80, kSpeakers); // not Bluetooth, not marked: its live delay is 0
    app.setManualBluetoothOverride(true, kSpeakers);
    app.setManualBluetoothOverride(false, kSpeakers);
    EXPECT_THAT(sim.printed.lines, ElementsAre("⏱️ Real-time latency set on bt: 150ms (6615.0 frames)",
                                               "⏱️ Real-time latency set on spk: 0ms (0.0 frames)",
                                               "⏱️ Real-time latency set on spk: 80ms (3840.0 frames)",
                                               "⏱️ Real-time latency set on spk: 0ms (0.0 frames)"));
}

TEST(StoredMaps, ValuesOfTheWrongKindOrOutsideTheLimitsMakeTheStoredMapUnusable)
{
    EXPECT_EQ(state::delaysFromStored(QVariantMap{{"a", 0}, {"b", 600}, {"c", 200.0}}),
              (state::DelayMap{{"a", 0}, {"b", 600}, {"c", 200}}));
    for (const auto& bad : {QVariant("150"), QVariant(true), QVariant(1e12), QVariant(QVariantList{}), QVariant(601),
                            QVariant(-1), QVariant(2000000000), QVariant(601.0), QVariant(12.5)}) {
        EXPECT_FALSE(state::delaysFromStored(QVariantMap{{"a", 100}, {"x", bad}})) << bad.toString().toStdString();
    }
    EXPECT_FALSE(state::overridesFromStored(QVariantMap{{"x", 1}}));
    EXPECT_FALSE(state::delaysFromStored(QVariant(5)));
}

TEST_F(BluetoothSettings, StoredMapsLoadWholeOrNotAtAllAndAnUnusableOneIsLeftUntilTheNextChangeAcrossARestart)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("settings.json");
    const QByteArray written = R"({"bluetoothDelaysByUID": {"bt": 150, "other": 2000000000},
                                   "manualBluetoothByUID": {"spk": false}})";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.write(written);
    file.close();
    {
        desktop::JsonFileUserDefaults defaults(path);
        auto& app = start(&defaults);
        EXPECT_TRUE(app.bluetoothDelays().empty());
        EXPECT_EQ(app.manualBluetoothOverrides(), (state::OverrideMap{{"spk", false}}));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll(), written);
        file.close();
        app.setBluetoothDelay(175, kBluetooth);
        app.setManualBluetoothOverride(true, kWired);
        appState.reset();
    }
    desktop::JsonFileUserDefaults reopened(path);
    auto& app = start(&reopened);
    EXPECT_EQ(app.bluetoothDelays(), (state::DelayMap{{"bt", 175}}));
    EXPECT_EQ(app.manualBluetoothOverrides(), (state::OverrideMap{{"spk", false}, {"wired", true}}));
}

} // namespace
} // namespace orvanta::testing
