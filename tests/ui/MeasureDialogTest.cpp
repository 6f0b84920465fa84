// The microphone measurement: its button, the dialog's run and results, and Apply.

#include "UiFixture.h"

#include "services/DelayMeasurement.h"
#include "ui/MeasureButton.h"
#include "ui/MeasureDialog.h"

#include <QProgressBar>
#include <QPushButton>

namespace orvanta::testing {
namespace {

using measure::MeasurementOutcome;
using measure::MeasurementStatus;

// Answers at once with a given outcome, as the platform would after a run.
class CannedMeasurement final : public services::DelayMeasurement
{
public:
    bool canMeasure() const override { return true; }
    std::vector<services::Microphone> microphones() const override { return listed; }
    std::vector<std::string> speakerUIDs() const override { return {"spk", "bt"}; }
    void start(const std::string& microphone, Progress progress, Done done) override
    {
        startedWith = microphone;
        pendingProgress = std::move(progress);
        pendingDone = std::move(done);
    }
    void cancel() override { ++cancels; }
    bool running() const override { return static_cast<bool>(pendingDone); }

    void finish(const MeasurementOutcome& outcome)
    {
        pendingProgress(0.5);
        std::exchange(pendingDone, nullptr)(outcome);
    }

    std::vector<services::Microphone> listed{{"usb.mic", "USB Microphone"}, {"laptop.mic", "Built-in Microphone"}};
    std::string startedWith;
    Progress pendingProgress;
    Done pendingDone;
    int cancels = 0;
};

// The secondary speaker (index 1) is the one not heard, should the status say so.
MeasurementOutcome outcome(MeasurementStatus status, std::array<double, 2> lateness = {}, double spread = 0.8)
{
    return {status, 1, lateness, spread, {}};
}

class MeasureWithMicrophone : public ::testing::Test, public UiFixture
{
protected:
    MeasureWithMicrophone()
    {
        selectBoth();
        appState->enableSync();
    }

    ui::MeasureDialog& dialog()
    {
        if (!measureDialog) {
            measureDialog = std::make_unique<ui::MeasureDialog>(lang, *appState, measurement);
        }
        return *measureDialog;
    }
    QString textOf(const char* name) { return child<QLabel>(&dialog(), name)->text(); }
    QPushButton* button(const char* name) { return child<QPushButton>(&dialog(), name); }
    void measure(const MeasurementOutcome& result)
    {
        dialog().startMeasuring();
        measurement.finish(result);
    }

    CannedMeasurement measurement;
    std::unique_ptr<ui::MeasureDialog> measureDialog;
};

TEST_F(MeasureWithMicrophone, TheButtonIsThereOnlyWhileSyncIsOnAndTheSoundSystemCanMeasure)
{
    auto withMeasurement = services();
    withMeasurement.measurement = &measurement;
    ui::ContentView with(lang, *appState, withMeasurement);
    auto* measureButton = child<ui::MeasureButton>(&with, "measureButton");
    EXPECT_TRUE(shown(measureButton));
    EXPECT_FALSE(shown(child<ui::MeasureButton>(&view(), "measureButton"))); // no measurement service
    appState->disableSync();
    EXPECT_FALSE(shown(measureButton));
}

TEST_F(MeasureWithMicrophone, TheDialogStartsWithTheChosenMicrophoneShowsTheResultAndApplySetsBothDelays)
{
    appState->setBluetoothDelay(40, kSpeakers);
    auto* picker = child<QComboBox>(&dialog(), "microphonePicker");
    picker->setCurrentIndex(1);
    button("startButton")->click();
    EXPECT_EQ(measurement.startedWith, "laptop.mic");
    EXPECT_FALSE(button("startButton")->isEnabled());

    measurement.finish(outcome(MeasurementStatus::Measured, {0.0, 152.4}));
    EXPECT_EQ(child<QProgressBar>(&dialog(), "measureProgress")->value(), 50);
    EXPECT_EQ(textOf("speakerLateness1"), QStringLiteral("152.4 ms"));
    EXPECT_EQ(textOf("spreadLabel"), QStringLiteral("Spread of the repeats: 0.8 ms"));
    button("applyButton")->click();
    EXPECT_EQ(appState->bluetoothDelays(), (state::DelayMap{{"bt", 152}, {"spk", 0}}));

    // A later wired speaker is marked as Bluetooth; beyond the longest delay, the longest is applied.
    measure(outcome(MeasurementStatus::Measured, {85.0, 0.0}));
    button("applyButton")->click();
    EXPECT_EQ(appState->effectiveDelay(appState->selectedDevice1()), 85);
    EXPECT_TRUE(appState->manualBluetoothOverrides().at("spk"));
    measure(outcome(MeasurementStatus::Measured, {0.0, 650.0}));
    EXPECT_EQ(textOf("measureMessage"),
              QStringLiteral("The difference is 650.0 ms, more than the longest delay of 600 ms: Apply sets 600 ms."));
    button("applyButton")->click();
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 600);
}

TEST_F(MeasureWithMicrophone, ARunTurnedDownOrNoMicrophoneSaysWhyAndOffersNoApply)
{
    for (const auto& [result, message] : std::initializer_list<std::pair<MeasurementOutcome, QString>>{
             {outcome(MeasurementStatus::NoSignal),
              QStringLiteral("No sound from BT Speaker. Check that this speaker is on and turned up.")},
             {outcome(MeasurementStatus::RepeatsDisagree, {}, 7.26),
              QStringLiteral("The repeats disagree by 7.3 ms, more than 5 ms. Keep the room quiet and try again.")}}) {
        measure(result);
        EXPECT_EQ(textOf("measureMessage"), message);
        EXPECT_FALSE(button("applyButton")->isEnabled());
        EXPECT_TRUE(button("startButton")->isEnabled());
    }
    measurement.listed.clear();
    measureDialog.reset();
    EXPECT_EQ(textOf("measureMessage"), QStringLiteral("No microphone found."));
    EXPECT_FALSE(button("startButton")->isEnabled());
}

TEST_F(MeasureWithMicrophone, SyncGoingOffStopsTheRunAndClosesTheDialog)
{
    dialog().show();
    dialog().startMeasuring();
    appState->disableSync();
    EXPECT_GE(measurement.cancels, 1);
    EXPECT_FALSE(dialog().isVisible());
}

} // namespace
} // namespace orvanta::testing
