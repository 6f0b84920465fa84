#pragma once

// One speaker, as the main window's balance section and the tray panel show it: its name (with
// the Bluetooth mark while it counts as Bluetooth), its volume slider, and, while it counts as
// Bluetooth, its delay with step buttons of AppState::kDelayStepMs and a slider. It keeps nothing
// itself: everything is read from AppState whenever it or the language announces a change, and
// every change goes through AppState.
//
// The two places differ in a few details, chosen by Place:
//   Window  larger text; the "Treat as Bluetooth speaker" check box for a device that does not
//           report itself as Bluetooth; a delay title with a Reset button; a delay slider that
//           moves freely, with a mark every 50 ms.
//   Panel   small text; the volume as a percentage; a delay slider that moves in whole steps.

#include "state/AppState.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QSlider;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}

namespace orvanta::ui {

class DirectSlider;
class ElidedLabel;
class SymbolView;
class TickSlider;

enum class Speaker
{
    Primary,
    Secondary,
};

// Reading and writing the selection and volume of one of the two speakers.
const state::OptionalDevice& selectedDevice(const state::AppState& appState, Speaker speaker);
float speakerVolume(const state::AppState& appState, Speaker speaker);

class SpeakerSection : public QWidget
{
    Q_OBJECT

public:
    enum class Place
    {
        Window,
        Panel,
    };

    SpeakerSection(i18n::LanguageManager& lang, state::AppState& appState, Speaker speaker, Place place,
                   QWidget* parent = nullptr);

private:
    void redraw();
    QWidget* buildDelayControls(const QFont& text, int stepSymbol);
    void redrawDelay(const state::OptionalDevice& device, const QString& name);
    int delay() const;

    i18n::LanguageManager& lang;
    state::AppState& appState;
    Speaker speaker;
    Place place;

    SymbolView* bluetoothMark = nullptr;
    ElidedLabel* nameLabel = nullptr;
    DirectSlider* volumeSlider = nullptr;
    QLabel* percentLabel = nullptr;         // Panel only
    QCheckBox* bluetoothCheckbox = nullptr; // Window only
    QWidget* delayControls = nullptr;
    QLabel* delayTitle = nullptr;       // Window only
    QToolButton* resetButton = nullptr; // Window only
    TickSlider* tickSlider = nullptr;   // Window only
    DirectSlider* stepSlider = nullptr; // Panel only
    QLabel* delayLabel = nullptr;
    QToolButton* decreaseButton = nullptr;
    QToolButton* increaseButton = nullptr;
};

} // namespace orvanta::ui
