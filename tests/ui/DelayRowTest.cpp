#include "UiFixture.h"

#include "ui/BluetoothDelayRow.h"
#include "ui/TickSlider.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QToolButton>

namespace orvanta::testing {
namespace {

class DelayRow : public ::testing::Test, public UiFixture
{
protected:
    DelayRow() : row(lang, *appState, kBluetooth) { row.resize(300, row.sizeHint().height()); }

    QString shownValue() { return child<QLabel>(&row, "delayLabel")->text(); }
    ui::TickSlider* slider() { return child<ui::TickSlider>(&row, "tickSlider"); }
    QToolButton* button(const char* name) { return child<QToolButton>(&row, name); }
    int stored() { return appState->bluetoothDelays().count("bt") ? appState->bluetoothDelays().at("bt") : -1; }

    ui::BluetoothDelayRow row;
};

TEST_F(DelayRow, ADeviceWithoutAStoredDelayShowsZeroNoResetAndTheKnobAtTheLeftEnd)
{
    EXPECT_EQ(shownValue(), "0 ms");
    EXPECT_FALSE(shown(button("resetButton")));
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 0.0);
    EXPECT_DOUBLE_EQ(slider()->minimumValue(), 0.0);
    EXPECT_DOUBLE_EQ(slider()->maximumValue(), 600.0);
    EXPECT_EQ(child<QLabel>(&row, "delayTitle")->text(), "Bluetooth Delay");
}

TEST_F(DelayRow, TheSliderHasThirteenMarksBelowItsTrackOneEvery50Milliseconds)
{
    EXPECT_EQ(slider()->numberOfTickMarks(), 13);
    EXPECT_EQ(slider()->tickPosition(), QSlider::TicksBelow);
    EXPECT_EQ(slider()->tickInterval(), 50 * ui::TickSlider::kStepsPerUnit);
    EXPECT_TRUE(slider()->hasTracking());
}

TEST_F(DelayRow, ThreeIncreasesGive15AndShowResetWhichReturnsToZero)
{
    for (int i = 0; i < 3; ++i) {
        click(button("increaseButton"));
    }
    EXPECT_EQ(stored(), 15);
    EXPECT_EQ(shownValue(), "15 ms");
    EXPECT_TRUE(shown(button("resetButton")));
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 15.0);

    click(button("resetButton"));
    EXPECT_EQ(stored(), 0);
    EXPECT_EQ(shownValue(), "0 ms");
    EXPECT_FALSE(shown(button("resetButton")));
}

TEST_F(DelayRow, TheBoundsHoldAtZeroAnd600)
{
    click(button("decreaseButton"));
    EXPECT_EQ(stored(), 0);
    appState->setBluetoothDelay(600, kBluetooth);
    click(button("increaseButton"));
    EXPECT_EQ(stored(), 600);
    EXPECT_EQ(shownValue(), "600 ms");
}

TEST_F(DelayRow, DraggingTo123Point4Stores123AndTo123Point5Stores124WithoutMovingTheKnob)
{
    dragSlider(slider(), {5000, 12340});
    EXPECT_EQ(stored(), 123);
    EXPECT_EQ(shownValue(), "123 ms");
    // Within the dead band: the knob stays under the pointer, not snapped to 123 or a mark.
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 123.4);

    dragSlider(slider(), {12350});
    EXPECT_EQ(stored(), 124);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 123.5);
}

TEST_F(DelayRow, StepButtonsMoveFromTheValueShownNotToTheNextMultipleOfFive)
{
    dragSlider(slider(), {12300});
    ASSERT_EQ(stored(), 123);
    click(button("decreaseButton"));
    EXPECT_EQ(stored(), 118);
    click(button("increaseButton"));
    click(button("increaseButton"));
    EXPECT_EQ(stored(), 128);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 128.0);
}

TEST_F(DelayRow, AChangeMadeElsewhereMovesTheKnob)
{
    appState->setBluetoothDelay(300, kBluetooth);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 300.0);
    EXPECT_EQ(shownValue(), "300 ms");
    // A change of half a millisecond or less is left to the knob.
    dragSlider(slider(), {30040});
    EXPECT_EQ(stored(), 300);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 300.4);
    appState->setBluetoothDelay(300, kBluetooth);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 300.4);
    appState->setBluetoothDelay(301, kBluetooth);
    EXPECT_DOUBLE_EQ(slider()->doubleValue(), 301.0);
}

TEST_F(DelayRow, DraggingWithThePointerStoresWholeMillisecondsAnywhereOnTheTrack)
{
    row.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&row));
    ui::TickSlider* track = slider();
    const QPoint start = QPoint(4, track->height() / 2);
    QTest::mousePress(track, Qt::LeftButton, {}, start);
    QTest::mouseMove(track, QPoint(track->width() / 3, track->height() / 2));
    QTest::mouseMove(track, QPoint(track->width() * 2 / 5 + 3, track->height() / 2));
    QTest::mouseRelease(track, Qt::LeftButton, {}, QPoint(track->width() * 2 / 5 + 3, track->height() / 2));

    const int delay = stored();
    EXPECT_GT(delay, 150);
    EXPECT_LT(delay, 300);
    EXPECT_LE(std::abs(track->doubleValue() - delay), 0.5);
    EXPECT_EQ(shownValue(), QString::number(delay) + " ms");
}

TEST_F(DelayRow, HelpTextsAreTheTranslatedFormatsWithFiveFilledIn)
{
    EXPECT_EQ(button("decreaseButton")->toolTip(), "Decrease by 5 ms");
    EXPECT_EQ(button("increaseButton")->toolTip(), "Increase by 5 ms");
    appState->setBluetoothDelay(10, kBluetooth);
    EXPECT_EQ(button("resetButton")->toolTip(), "Reset");

    lang.setCurrentLanguage(QStringLiteral("Español"));
    EXPECT_EQ(button("decreaseButton")->toolTip(), "Disminuir 5 ms");
    EXPECT_EQ(button("resetButton")->toolTip(), "Restablecer");
    EXPECT_EQ(child<QLabel>(&row, "delayTitle")->text(), lang.translate("Bluetooth Delay"));
    // The value's own format is not the language manager's.
    EXPECT_EQ(shownValue(), "10 ms");
}

TEST_F(DelayRow, TheSliderAlwaysWritesThroughTheCurrentBinding)
{
    sim.system.addDevice(outputDevice("Other", "other", hal::kAudioDeviceTransportTypeBluetooth));
    appState->setDevices(sim.audio.getOutputDevices());
    row.setDevice(*device("other"));
    dragSlider(slider(), {25000});
    EXPECT_EQ(appState->bluetoothDelays(), (state::DelayMap{{"other", 250}}));
}

TEST_F(DelayRow, WhileSyncIsOnTheDelayReachesTheRunningStackedDevice)
{
    selectBoth();
    appState->enableSync();
    sim.reset();
    click(button("increaseButton"));
    EXPECT_EQ(sim.printed.lines, (std::vector<std::string>{"⏱️ Real-time latency set on bt: 5ms (221.0 frames)"}));
}

TEST(TickSliderBridge, ProgrammaticUpdatesNeverReachTheBindingAndOnChangedFollowsTheWrite)
{
    double bound = 40.0;
    std::vector<std::string> events;
    ui::TickSliderModel model;
    model.value.get = [&bound] { return bound; };
    model.value.set = [&bound, &events](double value) {
        bound = value;
        events.push_back("set " + std::to_string(value));
    };
    model.minimum = 0;
    model.maximum = 100;
    model.numberOfTicks = 5;
    model.onChanged = [&events](double value) { events.push_back("changed " + std::to_string(value)); };
    ui::TickSlider slider(model);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 40.0);
    EXPECT_EQ(slider.tickInterval(), 25 * ui::TickSlider::kStepsPerUnit);

    bound = 70.0;
    model.maximum = 200;
    slider.updateFrom(model);
    EXPECT_DOUBLE_EQ(slider.doubleValue(), 70.0);
    EXPECT_DOUBLE_EQ(slider.maximumValue(), 200.0);
    EXPECT_TRUE(events.empty());

    slider.setSliderDown(true);
    slider.setSliderPosition(7250);
    slider.setSliderDown(false);
    EXPECT_EQ(events, (std::vector<std::string>{"set 72.500000", "changed 72.500000"}));
}

} // namespace
} // namespace orvanta::testing
