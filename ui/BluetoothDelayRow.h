#pragma once

// The delay control under a Bluetooth speaker in the main window: the stored delay of one
// device as "125 ms", a Reset button while it is not 0, step buttons of 5 ms and a slider with
// a mark every 50 ms. It keeps nothing itself: the delay is read from AppState on every redraw
// and every change goes through AppState::setBluetoothDelay, which clamps it to 0..600.

#include "audio/AudioDeviceOption.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::state {
class AppState;
}

namespace orvanta::ui {

class SymbolView;
class TickSlider;

class BluetoothDelayRow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kStep = 5;
    static constexpr double kMaximum = 600.0;
    static constexpr int kNumberOfTicks = 13;

    BluetoothDelayRow(i18n::LanguageManager& lang, state::AppState& appState, audio::AudioDeviceOption device,
                      QWidget* parent = nullptr);

    const audio::AudioDeviceOption& device() const { return tuned; }
    void setDevice(audio::AudioDeviceOption device);

    // The stored delay of the device, 0 when none is stored.
    int currentDelay() const;

    // Reads everything afresh from AppState and the language manager.
    void redraw();

private:
    void build();

    i18n::LanguageManager& lang;
    state::AppState& appState;
    audio::AudioDeviceOption tuned;

    SymbolView* symbol = nullptr;
    QLabel* title = nullptr;
    QLabel* valueLabel = nullptr;
    QToolButton* resetButton = nullptr;
    QToolButton* decreaseButton = nullptr;
    QToolButton* increaseButton = nullptr;
    TickSlider* slider = nullptr;
};

} // namespace orvanta::ui
