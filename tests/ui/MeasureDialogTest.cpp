// The microphone measurement in the main window: the button in the balance section only where
// the sound system can measure and while sync is on; the dialog with its microphones, its
// progress, each speaker's lateness and the spread, the reasons a run is turned down, and
// Apply, which sets both delays through AppState.

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

    // Ends the run that was started.
    void finish(const MeasurementOutcome& outcome)
    {
        pendingProgress(0.5);
        auto done = std::move(pendingDone);
        pendingDone = nullptr;
        done(outcome);
    }

    std::vector<services::Microphone> listed{{"usb.mic", "USB Microphone"}, {"laptop.mic", "Built-in Microphone"}};
    std::string startedWith;
    Progress pendingProgress;
    Done pendingDone;
    int cancels = 0;
};

// An outcome in which the secondary speaker is the one not heard, should the status say so.
MeasurementOutcome outcome(MeasurementStatus status, std::array<double, 2> latenessMs = {}, double spreadMs = 0.8)
{
    return {status, 1, latenessMs, spreadMs, {}};
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
    appState->disableSync();
    auto withMeasurement = services();
    withMeasurement.measurement = &measurement;
    ui::ContentView without(lang, *appState, services());
    ui::ContentView with(lang, *appState, withMeasurement);
    auto* measureButton = child<ui::MeasureButton>(&with, "measureButton");
    ASSERT_NE(measureButton, nullptr);
    EXPECT_FALSE(shown(measureButton));
    appState->enableSync();
    EXPECT_TRUE(shown(measureButton));
    EXPECT_EQ(measureButton->text(), QStringLiteral("Measure with microphone…"));
    EXPECT_FALSE(shown(child<ui::MeasureButton>(&without, "measureButton")));
    appState->disableSync();
    EXPECT_FALSE(shown(measureButton));
}

TEST_F(MeasureWithMicrophone, TheDialogStartsWithTheChosenMicrophoneShowsTheResultAndApplySetsBothDelays)
{
    appState->setBluetoothDelay(40, kSpeakers);
    auto* picker = child<QComboBox>(&dialog(), "microphonePicker");
    ASSERT_EQ(picker->count(), 2);
    EXPECT_EQ(picker->itemText(0), QStringLiteral("USB Microphone")); // the default first
    EXPECT_EQ(textOf("measureInstruction"),
              QStringLiteral("Place the microphone where you listen and keep the room quiet."));
    picker->setCurrentIndex(1);
    button("startButton")->click();
    EXPECT_EQ(measurement.startedWith, "laptop.mic");
    EXPECT_FALSE(button("startButton")->isEnabled());
    EXPECT_FALSE(button("applyButton")->isEnabled());
    EXPECT_TRUE(shown(child<QProgressBar>(&dialog(), "measureProgress")));

    measurement.finish(outcome(MeasurementStatus::Measured, {0.0, 152.4}));
    EXPECT_EQ(child<QProgressBar>(&dialog(), "measureProgress")->value(), 50);
    EXPECT_EQ(textOf("speakerName0"), QStringLiteral("Speakers"));
    EXPECT_EQ(textOf("speakerLateness0"), QStringLiteral("0.0 ms"));
    EXPECT_EQ(textOf("speakerName1"), QStringLiteral("BT Speaker"));
    EXPECT_EQ(textOf("speakerLateness1"), QStringLiteral("152.4 ms"));
    EXPECT_EQ(textOf("spreadLabel"), QStringLiteral("Spread of the repeats: 0.8 ms"));
    sim.reset();
    button("applyButton")->click();
    EXPECT_EQ(appState->bluetoothDelays(), (state::DelayMap{{"bt", 152}, {"spk", 0}}));
    EXPECT_EQ(memoryDefaults.value(QString::fromLatin1(state::AppState::kBluetoothDelaysKey)).toMap().value("bt"),
              QVariant(152));
    EXPECT_FALSE(sim.printed.lines.empty()); // applied live, like any other change of a delay

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
             {outcome(MeasurementStatus::TooQuiet),
              QStringLiteral("Too quiet: the microphone hardly heard the test sounds. Turn the speakers up or "
                             "bring the microphone closer.")},
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

TEST_F(MeasureWithMicrophone, SyncGoingOffStopsTheRunAndClosesTheDialogAndArabicLaysItOutRightToLeft)
{
    lang.setCurrentLanguage(QStringLiteral("العربية"));
    EXPECT_EQ(dialog().layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(button("startButton")->text(), QStringLiteral("ابدأ"));
    EXPECT_EQ(dialog().windowTitle(), QStringLiteral("قياس التأخير"));
    dialog().show();
    dialog().startMeasuring();
    appState->disableSync();
    EXPECT_GE(measurement.cancels, 1);
    EXPECT_FALSE(dialog().isVisible());
}

} // namespace
} // namespace orvanta::testing
