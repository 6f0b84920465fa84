// The main window on a 1366x768 laptop at 100 % and 125 % text stays on screen and scrolls the rest.

#include "UiFixture.h"

#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace orvanta::testing {
namespace {

using LaptopScreen = ScaledViews;

TEST_P(LaptopScreen, TheWindowFitsTheScreenInEveryStateAndTheRestScrolls)
{
    const QRect available = QGuiApplication::primaryScreen()->availableGeometry();
    ASSERT_EQ(available.size(), QSize(1366, 720));
    sim::SimulatedSoundSystemStatus status; // with the simulated notice, the outputs' tallest form
    auto withStatus = services();
    withStatus.soundSystem = &status;
    ui::MainWindow window(lang, *appState, withStatus);
    window.show();

    const auto check = [&](const std::string& state) {
        drainEvents();
        EXPECT_TRUE(available.contains(window.frameGeometry())) << state;
        // What does not fit is reachable: scrolled to the end, the version label is in view.
        QScrollBar* bar = window.scrollArea()->verticalScrollBar();
        bar->setValue(bar->maximum());
        const QWidget* version = child<QWidget>(window.content(), "versionLabel");
        const QPoint bottom = version->mapTo(window.scrollArea()->viewport(), QPoint(0, version->height()));
        EXPECT_LE(bottom.y(), window.scrollArea()->viewport()->height()) << state;
        bar->setValue(0);
    };
    check("syncOff");
    syncTwoBluetoothSpeakers();
    lang.setCurrentLanguage("Кыргызча");
    check("twoBluetoothKyrgyz");
}

INSTANTIATE_TEST_SUITE_P(TextSizes, LaptopScreen, ::testing::Values(1.0, 1.25));

} // namespace
} // namespace orvanta::testing
