#pragma once

// One speaker in the tray panel: its name, its volume with the percentage, and for a device
// that counts as Bluetooth a delay row (minus, slider, plus, the value) that moves in steps of
// 5 ms. The percentage and the value are as wide as their widest value needs in the current
// font, so no digit is ever cut.

#include "SpeakerBlock.h"

#include <QWidget>

class QLabel;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}

namespace orvanta::ui {

class DirectSlider;
class ElidedLabel;
class SymbolView;

class PanelSpeakerSection : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kDelayStep = 5;
    static constexpr int kMaximumDelay = 600;

    PanelSpeakerSection(state::AppState& appState, i18n::LanguageManager& lang, Speaker speaker,
                        QWidget* parent = nullptr);

    // title: the section's text when no device is selected.
    void redraw(const QString& title);

private:
    QToolButton* stepButton(const QString& symbol, const QString& name, int size);
    const state::OptionalDevice& device() const;
    int current() const;

    state::AppState& appState;
    i18n::LanguageManager& lang;
    Speaker speaker;
    SymbolView* bluetoothMark = nullptr;
    ElidedLabel* nameLabel = nullptr;
    DirectSlider* volumeSlider = nullptr;
    QLabel* percentLabel = nullptr;
    QWidget* delayControls = nullptr;
    QToolButton* decreaseButton = nullptr;
    QToolButton* increaseButton = nullptr;
    DirectSlider* delaySlider = nullptr;
    QLabel* delayLabel = nullptr;
};

} // namespace orvanta::ui
