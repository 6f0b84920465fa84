// The microphone measurement in the main window: the button in the balance section only where
// the sound system can measure and while sync is on; the dialog with its microphones, its
// progress, each speaker's lateness and the spread, the reasons a run is turned down, and
// Apply, which sets both delays through AppState.

#include "UiFixture.h"

#include "services/DelayMeasurement.h"
#include "ui/ContentView.h"
#include "ui/MeasureButton.h"
#include "ui/MeasureDialog.h"

#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace orvanta::testing {
namespace {

using measure::MeasurementOutcome;
using measure::MeasurementStatus;

// Answers at once with a given outcome, as the platform would after a run.
class CannedMeasurement final : public platform::DelayMeasurement
{
public:
    bool canMeasure() const override { return true; }
    std::vector<platform::Microphone> microphones() const override { return listed; }
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

    std::vector<platform::Microphone> listed{{"usb.mic", "USB Microphone"}, {"laptop.mic", "Built-in Microphone"}};
    std::string startedWith;
    Progress pendingProgress;
    Done pendingDone;
    int cancels = 0;
};

MeasurementOutcome measured(double primaryMs, double secondaryMs)
{
    MeasurementOutcome outcome;
    outcome.status = MeasurementStatus::Measured;
    outcome.latenessMs = {primaryMs, secondaryMs};
    outcome.spreadMs = 0.8;
    return outcome;
}

class MeasureWithMicrophone : public ::testing::Test, public UiFixture
{
protected:
    void syncOn()
    {
        selectBoth();
        appState->enableSync();
        ASSERT_TRUE(appState->isQuellonOn());
    }

    ui::ViewServices servicesWith(platform::DelayMeasurement* delayMeasurement)
    {
        auto withMeasurement = services();
        withMeasurement.measurement = delayMeasurement;
        return withMeasurement;
    }

    ui::MeasureDialog& dialog()
    {
        if (!measureDialog) {
            measureDialog = std::make_unique<ui::MeasureDialog>(lang, *appState, measurement);
        }
        return *measureDialog;
    }

    QString textOf(const char* name) { return child<QLabel>(&dialog(), name)->text(); }

    CannedMeasurement measurement;
    std::unique_ptr<ui::MeasureDialog> measureDialog;
};

TEST_F(MeasureWithMicrophone, TheButtonIsThereOnlyWhileSyncIsOnAndTheSoundSystemCanMeasure)
{
    ui::ContentView without(lang, *appState, services());
    ui::ContentView with(lang, *appState, servicesWith(&measurement));
    auto* button = child<ui::MeasureButton>(&with, "measureButton");
    ASSERT_NE(button, nullptr);
    EXPECT_FALSE(shown(button));

    syncOn();
    EXPECT_TRUE(shown(button));
    EXPECT_EQ(button->text(), QStringLiteral("Measure with microphone…"));
    EXPECT_FALSE(shown(child<ui::MeasureButton>(&without, "measureButton")));

    appState->disableSync();
    EXPECT_FALSE(shown(button));
}

TEST_F(MeasureWithMicrophone, TheDialogOffersTheMicrophonesDefaultFirstAndStartsWithTheChosenOne)
{
    syncOn();
    auto* picker = child<QComboBox>(&dialog(), "microphonePicker");
    ASSERT_EQ(picker->count(), 2);
    EXPECT_EQ(picker->itemText(0), QStringLiteral("USB Microphone"));
    EXPECT_EQ(textOf("measureInstruction"),
              QStringLiteral("Place the microphone where you listen and keep the room quiet."));
    picker->setCurrentIndex(1);
    child<QPushButton>(&dialog(), "startButton")->click();
    EXPECT_EQ(measurement.startedWith, "laptop.mic");
    EXPECT_FALSE(child<QPushButton>(&dialog(), "startButton")->isEnabled());
    EXPECT_FALSE(child<QPushButton>(&dialog(), "applyButton")->isEnabled());
    EXPECT_TRUE(shown(child<QProgressBar>(&dialog(), "measureProgress")));
}

TEST_F(MeasureWithMicrophone, AResultShowsEachSpeakerAndTheSpreadAndApplySetsBothDelays)
{
    syncOn();
    appState->setBluetoothDelay(40, kSpeakers);
    dialog().startMeasuring();
    measurement.finish(measured(0.0, 152.4));
    EXPECT_EQ(child<QProgressBar>(&dialog(), "measureProgress")->value(), 50);
    EXPECT_EQ(textOf("speakerName0"), QStringLiteral("Speakers"));
    EXPECT_EQ(textOf("speakerLateness0"), QStringLiteral("0.0 ms"));
    EXPECT_EQ(textOf("speakerName1"), QStringLiteral("BT Speaker"));
    EXPECT_EQ(textOf("speakerLateness1"), QStringLiteral("152.4 ms"));
    EXPECT_EQ(textOf("spreadLabel"), QStringLiteral("Spread of the repeats: 0.8 ms"));
    ASSERT_TRUE(child<QPushButton>(&dialog(), "applyButton")->isEnabled());

    sim.reset();
    child<QPushButton>(&dialog(), "applyButton")->click();
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 152);
    EXPECT_EQ(appState->bluetoothDelays().at("spk"), 0);
    EXPECT_EQ(memoryDefaults.value(QString::fromLatin1(state::AppState::kBluetoothDelaysKey)).toMap().value("bt"),
              QVariant(152));
    // Applied live, like any other change of a delay.
    EXPECT_FALSE(sim.printed.lines.empty());
}

TEST_F(MeasureWithMicrophone, ALaterWiredSpeakerIsMarkedAsBluetoothAndABeyondTheLongestDelayIsAppliedAsTheLongest)
{
    syncOn();
    dialog().startMeasuring();
    measurement.finish(measured(85.0, 0.0));
    child<QPushButton>(&dialog(), "applyButton")->click();
    EXPECT_EQ(appState->effectiveDelay(appState->selectedDevice1()), 85);
    EXPECT_TRUE(appState->manualBluetoothOverrides().at("spk"));

    dialog().startMeasuring();
    measurement.finish(measured(0.0, 650.0));
    EXPECT_EQ(textOf("measureMessage"),
              QStringLiteral("The difference is 650.0 ms, more than the longest delay of 600 ms: Apply sets 600 ms."));
    child<QPushButton>(&dialog(), "applyButton")->click();
    EXPECT_EQ(appState->bluetoothDelays().at("bt"), 600);
}

TEST_F(MeasureWithMicrophone, ARunTurnedDownOrNoMicrophoneSaysWhyAndOffersNoApply)
{
    syncOn();
    const std::vector<std::pair<MeasurementOutcome, QString>> rows{
        {[] {
             MeasurementOutcome o;
             o.status = MeasurementStatus::NoSignal;
             o.silentMember = 1;
             return o;
         }(),
         QStringLiteral("No sound from BT Speaker. Check that this speaker is on and turned up.")},
        {[] {
             MeasurementOutcome o;
             o.status = MeasurementStatus::TooQuiet;
             return o;
         }(),
         QStringLiteral("Too quiet: the microphone hardly heard the test sounds. Turn the speakers up or bring the "
                        "microphone closer.")},
        {[] {
             MeasurementOutcome o;
             o.status = MeasurementStatus::RepeatsDisagree;
             o.spreadMs = 7.26;
             return o;
         }(),
         QStringLiteral("The repeats disagree by 7.3 ms, more than 5 ms. Keep the room quiet and try again.")},
    };
    for (const auto& [outcome, message] : rows) {
        dialog().startMeasuring();
        measurement.finish(outcome);
        EXPECT_EQ(textOf("measureMessage"), message);
        EXPECT_FALSE(child<QPushButton>(&dialog(), "applyButton")->isEnabled());
        EXPECT_TRUE(child<QPushButton>(&dialog(), "startButton")->isEnabled());
    }
    measurement.listed.clear();
    measureDialog.reset();
    EXPECT_EQ(textOf("measureMessage"), QStringLiteral("No microphone found."));
    EXPECT_FALSE(child<QPushButton>(&dialog(), "startButton")->isEnabled());
}

TEST_F(MeasureWithMicrophone, SyncGoingOffOrCancelStopsTheRunAndClosesTheDialog)
{
    syncOn();
    dialog().show();
    dialog().startMeasuring();
    appState->disableSync();
    EXPECT_GE(measurement.cancels, 1);
    EXPECT_FALSE(dialog().isVisible());
}

TEST_F(MeasureWithMicrophone, ArabicLaysTheDialogOutRightToLeftInItsOwnWords)
{
    syncOn();
    lang.setCurrentLanguage(QStringLiteral("العربية"));
    EXPECT_EQ(dialog().layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(child<QPushButton>(&dialog(), "startButton")->text(), QStringLiteral("ابدأ"));
    EXPECT_EQ(dialog().windowTitle(), QStringLiteral("قياس التأخير"));
}

} // namespace
} // namespace orvanta::testing
