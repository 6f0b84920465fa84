// One speaker in the main window and the tray panel: Bluetooth mark, check box, volume, delay;
// and the rules for the numbers they show.

#include "UiFixture.h"

#include "ui/SpeakerSection.h"
#include "ui/TickSlider.h"
#include "ui/ViewRules.h"

#include <QToolButton>

namespace orvanta::testing {
namespace {

using Place = ui::SpeakerSection::Place;

class SpeakerSection : public ::testing::Test, public UiFixture
{
protected:
    SpeakerSection()
    {
        selectBoth();
        appState->enableSync();
        sim.reset();
    }

    // The section of the speaker, made on first use.
    ui::SpeakerSection& section(ui::Speaker speaker = ui::Speaker::Secondary, Place place = Place::Window)
    {
        auto& made = sections[{speaker, place}];
        if (!made) {
            made = std::make_unique<ui::SpeakerSection>(lang, *appState, speaker, place);
            made->resize(300, made->sizeHint().height());
        }
        return *made;
    }

    int volumeLines() const
    {
        return static_cast<int>(std::count_if(sim.printed.lines.begin(), sim.printed.lines.end(),
                                              [](const auto& line) { return line.rfind("✅ Volume set via", 0) == 0; }));
    }
    QString shownDelay() { return child<QLabel>(&section(), "delayLabel")->text(); }
    QToolButton* button(const char* name, Place place = Place::Window)
    {
        return child<QToolButton>(&section(ui::Speaker::Secondary, place), name);
    }
    int stored() { return appState->bluetoothDelays().count("bt") ? appState->bluetoothDelays().at("bt") : -1; }

    std::map<std::pair<ui::Speaker, Place>, std::unique_ptr<ui::SpeakerSection>> sections;
};

TEST_F(SpeakerSection, ABluetoothSpeakerHasItsMarkAndDelayAWiredOneTheCheckBoxThatMarksIt)
{
    ui::SpeakerSection& bluetooth = section(ui::Speaker::Secondary);
    EXPECT_TRUE(shown(child<QWidget>(&bluetooth, "bluetoothMark")));
    EXPECT_FALSE(shown(child<QWidget>(&bluetooth, "bluetoothCheckbox")));

    ui::SpeakerSection& wired = section(ui::Speaker::Primary);
    ui::SpeakerSection& wiredInPanel = section(ui::Speaker::Primary, Place::Panel);
    auto* checkbox = child<QAbstractButton>(&wired, "bluetoothCheckbox");
    EXPECT_FALSE(shown(child<QWidget>(&wired, "delayControls")));
    click(checkbox);
    EXPECT_EQ(appState->manualBluetoothOverrides(), (state::OverrideMap{{"spk", true}}));
    EXPECT_TRUE(shown(child<QWidget>(&wiredInPanel, "delayControls")));
    click(child<QAbstractButton>(&wired, "increaseButton")); // only possible where shown
    click(checkbox);
    EXPECT_FALSE(shown(child<QWidget>(&wiredInPanel, "delayControls")));
    EXPECT_EQ(appState->bluetoothDelays().at("spk"), 5); // the delay is kept for a later mark
}

TEST_F(SpeakerSection, StepsOfFiveReachTheRunningDeviceAndBothPlacesAndResetShowsOnlyAwayFromZero)
{
    EXPECT_FALSE(shown(button("resetButton")));
    click(button("increaseButton"));
    EXPECT_EQ(sim.printed.lines.back(), "⏱️ Real-time latency set on bt: 5ms (221.0 frames)"); // applied live
    click(button("increaseButton", Place::Panel));
    EXPECT_EQ(shownDelay(), "10 ms");
    click(button("resetButton"));
    EXPECT_EQ(stored(), 0);
    EXPECT_FALSE(shown(button("resetButton")));
}

TEST_F(SpeakerSection, TheWindowsSliderStoresWholeMillisecondsAnywhereOnTheTrackAndLeavesTheKnobUnderThePointer)
{
    section().show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&section()));
    auto* track = child<ui::TickSlider>(&section(), "delaySlider");
    const QPoint end(track->width() * 2 / 5 + 3, track->height() / 2);
    QTest::mousePress(track, Qt::LeftButton, {}, QPoint(4, end.y()));
    QTest::mouseMove(track, QPoint(track->width() / 3, end.y()));
    QTest::mouseMove(track, end);
    QTest::mouseRelease(track, Qt::LeftButton, {}, end);
    EXPECT_GT(stored(), 150);
    EXPECT_LT(stored(), 300);

    dragSlider(track, {5000, 12340});
    EXPECT_EQ(shownDelay(), "123 ms");
    // Within the dead band: the knob stays under the pointer, not snapped to 123.
    EXPECT_DOUBLE_EQ(track->doubleValue(), 123.4);
    dragSlider(track, {12350});
    EXPECT_EQ(stored(), 124);
    EXPECT_DOUBLE_EQ(track->doubleValue(), 123.5);
    // The step buttons move from the value shown, not to the next multiple of five.
    click(button("decreaseButton"));
    EXPECT_EQ(stored(), 119);
    // A change made elsewhere moves the knob.
    appState->setBluetoothDelay(301, kBluetooth);
    EXPECT_DOUBLE_EQ(track->doubleValue(), 301.0);
}

TEST_F(SpeakerSection, TheVolumeSliderWritesEveryMoveButReachesTheDevicesOnlyAtTheStartAndEndOfAnEdit)
{
    auto* slider = child<QSlider>(&section(ui::Speaker::Primary), "volumeSlider");
    dragSlider(slider, {600, 700, 800});
    EXPECT_FLOAT_EQ(appState->volume1(), 0.8f);
    EXPECT_EQ(volumeLines(), 4); // both devices, at the press and at the release
    EXPECT_THAT(sim.printed.lines, ::testing::Contains(::testing::HasSubstr("for spk: 0.8")));

    sim.reset();
    QTest::keyClick(slider, Qt::Key_Left);
    EXPECT_FLOAT_EQ(appState->volume1(), 0.79f);
    EXPECT_EQ(volumeLines(), 2);

    sim.reset();
    section(ui::Speaker::Primary).show();
    QTest::mouseClick(slider, Qt::LeftButton, {}, QPoint(slider->width() / 4, slider->height() / 2));
    EXPECT_LT(appState->volume1(), 0.5f);
    EXPECT_EQ(volumeLines(), 4);
}

TEST_F(SpeakerSection, ThePanelsDelaySliderMovesInStepsOfFiveAndItsVolumeIsAPercentageWithTheFractionDropped)
{
    auto* panelSlider = child<QSlider>(&section(ui::Speaker::Secondary, Place::Panel), "delaySlider");
    dragSlider(panelSlider, {10, 24});
    EXPECT_EQ(stored(), 120);
    appState->setBluetoothDelay(600, kBluetooth);
    EXPECT_EQ(panelSlider->value(), panelSlider->maximum());

    appState->setVolume1(0.999f);
    EXPECT_EQ(child<QLabel>(&section(ui::Speaker::Primary, Place::Panel), "percentLabel")->text(), "99%");
}

TEST(ViewRules, OneIntegerIsFilledIntoATranslatedFormat)
{
    EXPECT_EQ(ui::formatWithInteger("Decrease by %d ms", 5), "Decrease by 5 ms");
    EXPECT_EQ(ui::formatWithInteger("減らす %1$d ms", 5), "減らす 5 ms");
    EXPECT_EQ(ui::formatWithInteger("%lld ms", 125), "125 ms");
    EXPECT_EQ(ui::formatWithInteger("100%% and %d", 5), "100% and 5");
    EXPECT_EQ(ui::formatWithInteger("%d and %d", 5), "5 and %d");
}

} // namespace
} // namespace orvanta::testing
