// The main window on a 1366x768 laptop, at 100 % and 125 % text: in every state it stays on the
// screen, its column keeps its 420 pixels, and what does not fit is reached by scrolling.

#include "UiFixture.h"

#include <QMenuBar>
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
        const int decorations = window.frameGeometry().height() - window.height();
        const int wanted = window.content()->height() + window.menuBar()->height();
        RecordProperty(state + "ContentHeight", wanted);
        RecordProperty(state + "WindowHeight", window.height());
        EXPECT_LE(window.frameGeometry().bottom(), available.bottom()) << state;
        EXPECT_GE(window.frameGeometry().top(), available.top()) << state;
        EXPECT_EQ(window.content()->width(), 420) << state;
        QScrollBar* bar = window.scrollArea()->verticalScrollBar();
        if (wanted + decorations <= available.height()) {
            EXPECT_EQ(window.height(), wanted) << state;
            EXPECT_FALSE(bar->isVisible()) << state;
            return;
        }
        // What does not fit is reachable: scrolled to the end, the version label is in view.
        ASSERT_TRUE(bar->isVisible()) << state;
        EXPECT_EQ(window.width(), 420 + bar->width()) << state;
        bar->setValue(bar->maximum());
        const QWidget* version = child<QWidget>(window.content(), "versionLabel");
        const QPoint bottom = version->mapTo(window.scrollArea()->viewport(), QPoint(0, version->height()));
        EXPECT_LE(bottom.y(), window.scrollArea()->viewport()->height()) << state;
        bar->setValue(0);
    };

    check("syncOff");
    appState->setSelectedDevice1(device("spk"));
    appState->setSelectedDevice2(device("bt"));
    appState->enableSync();
    check("oneBluetooth");
    appState->disableSync();
    syncTwoBluetoothSpeakers();
    check("twoBluetooth");
    lang.setCurrentLanguage("Кыргызча");
    check("twoBluetoothKyrgyz");
    appState->disableSync();
    check("syncOffAgain");
}

INSTANTIATE_TEST_SUITE_P(TextSizes, LaptopScreen, ::testing::Values(1.0, 1.25));

} // namespace
} // namespace orvanta::testing
