#include "support/StateFixture.h"

#include "JsonFileUserDefaults.h"
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
    QVariantMap storedDelays() const { return memoryDefaults.values.value("bluetoothDelaysByUID").toMap(); }
};

TEST_F(BluetoothSettings, DelaysAreClampedAndStoredWhole)
{
    auto& app = start();
    app.setBluetoothDelay(-5, kBluetooth);
    EXPECT_EQ(app.bluetoothDelays().at("bt"), 0);
    app.setBluetoothDelay(601, kBluetooth);
    EXPECT_EQ(app.bluetoothDelays().at("bt"), 600);
    app.setBluetoothDelay(600, kSpeakers);
    EXPECT_EQ(storedDelays(), (QVariantMap{{"bt", 600}, {"spk", 600}}));
    app.setBluetoothDelay(0, kBluetooth); // Reset keeps an entry of 0
    EXPECT_EQ(storedDelays(), (QVariantMap{{"bt", 0}, {"spk", 600}}));
    app.setBluetoothDelay(100, std::nullopt);
    EXPECT_EQ(memoryDefaults.writes, 4);
}

TEST_F(BluetoothSettings, ADeviceCountsAsBluetoothByItsReportOrTheMarkAndOnlyThenItsDelayApplies)
{
    auto& app = start();
    EXPECT_TRUE(app.countsAsBluetooth(kBluetooth));
    EXPECT_FALSE(app.countsAsBluetooth(kWired));
    EXPECT_FALSE(app.countsAsBluetooth(std::nullopt));
    EXPECT_EQ(app.effectiveDelay(kBluetooth), 0);
    EXPECT_EQ(app.effectiveDelay(std::nullopt), 0);
    app.setBluetoothDelay(120, kBluetooth);
    app.setBluetoothDelay(200, kWired);
    EXPECT_EQ(app.effectiveDelay(kBluetooth), 120);
    EXPECT_EQ(app.effectiveDelay(kWired), 0);
    EXPECT_EQ(app.storedDelay(kWired), 200);
    app.setManualBluetoothOverride(true, kWired);
    EXPECT_TRUE(app.countsAsBluetooth(kWired));
    EXPECT_EQ(app.effectiveDelay(kWired), 200);
    app.setManualBluetoothOverride(false, kBluetooth); // a device's own report outweighs the mark
    EXPECT_TRUE(app.countsAsBluetooth(kBluetooth));
    app.setManualBluetoothOverride(false, kWired);
    EXPECT_EQ(app.effectiveDelay(kWired), 0);
    EXPECT_EQ(memoryDefaults.values.value("manualBluetoothByUID").toMap(),
              (QVariantMap{{"bt", false}, {"wired", false}}));
}

TEST_F(BluetoothSettings, ChangesWhileOffAreOnlyStoredAndUsedAtTheNextSync)
{
    auto& app = start();
    selectBoth();
    sim.reset();
    app.setBluetoothDelay(90, kBluetooth);
    EXPECT_THAT(sim.calls(), IsEmpty());
    app.enableSync();
    EXPECT_THAT(sim.printed.lines.front(), ::testing::EndsWith("latency1=0ms latency2=90ms"));
}

TEST_F(BluetoothSettings, ChangesWhileOnApplyAtOnce)
{
    auto& app = start();
    selectBoth();
    app.enableSync();
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

TEST_F(BluetoothSettings, StoredMapsLoadWholeOrNotAtAll)
{
    memoryDefaults.values["bluetoothDelaysByUID"] = QVariantMap{{"bt", 150}, {"odd", 12.5}};
    memoryDefaults.values["manualBluetoothByUID"] = QVariantMap{{"wired", true}, {"spk", false}};
    auto& app = start();
    EXPECT_TRUE(app.bluetoothDelays().empty());
    EXPECT_EQ(app.manualBluetoothOverrides(), (state::OverrideMap{{"spk", false}, {"wired", true}}));
    EXPECT_EQ(memoryDefaults.writes, 0); // the unusable dictionary is left as it was...

    app.setBluetoothDelay(40, kBluetooth); // ...until the next change replaces it
    EXPECT_EQ(storedDelays(), (QVariantMap{{"bt", 40}}));
}

TEST(StoredMaps, ValuesOfTheWrongKindOrOutsideTheLimitsMakeTheStoredMapUnusable)
{
    EXPECT_EQ(state::delaysFromStored(QVariantMap{{"a", 0}, {"b", 600}, {"c", 200.0}}),
              (state::DelayMap{{"a", 0}, {"b", 600}, {"c", 200}}));
    for (const auto& bad : {QVariant("150"), QVariant(true), QVariant(1e12), QVariant(QVariantList{}), QVariant(601),
                            QVariant(-1), QVariant(2000000000), QVariant(601.0)}) {
        EXPECT_FALSE(state::delaysFromStored(QVariantMap{{"a", 100}, {"x", bad}})) << bad.toString().toStdString();
    }
    EXPECT_FALSE(state::overridesFromStored(QVariantMap{{"x", 1}}));
    EXPECT_FALSE(state::delaysFromStored(QVariant(5)));
}

TEST_F(BluetoothSettings, SurviveARestartInTheSettingsFileWhereAnUnusableMapIsReplacedAtTheNextChange)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("settings.json");
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"bluetoothDelaysByUID": {"bt": 150, "other": 2000000000}})");
    }
    {
        linux_platform::JsonFileUserDefaults file(path);
        auto& app = start(&file);
        EXPECT_TRUE(app.bluetoothDelays().empty());
        app.setBluetoothDelay(175, kBluetooth);
        app.setManualBluetoothOverride(true, kWired);
        appState.reset();
    }
    linux_platform::JsonFileUserDefaults reopened(path);
    auto& app = start(&reopened);
    EXPECT_EQ(app.bluetoothDelays(), (state::DelayMap{{"bt", 175}}));
    EXPECT_EQ(app.manualBluetoothOverrides(), (state::OverrideMap{{"wired", true}}));
}

} // namespace
} // namespace orvanta::testing
