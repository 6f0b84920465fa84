#pragma once

// One speaker in the main window's balance section: its name (with the Bluetooth mark when it
// counts as Bluetooth), its volume slider, the "Treat as Bluetooth speaker" check box for a
// device that does not report itself as Bluetooth, and the delay row for one that counts as
// Bluetooth.

#include "state/AppState.h"

#include <QWidget>

class QCheckBox;

namespace orvanta::i18n {
class LanguageManager;
}

namespace orvanta::ui {

class BluetoothDelayRow;
class DirectSlider;
class ElidedLabel;
class SymbolView;

enum class Speaker
{
    Primary,
    Secondary,
};

// Reading and writing the selection and volume of one of the two speakers.
const state::OptionalDevice& selectedDevice(const state::AppState& appState, Speaker speaker);
float speakerVolume(const state::AppState& appState, Speaker speaker);
void setSpeakerVolume(state::AppState& appState, Speaker speaker, float volume);

// A volume slider over 0..1 that pushes the volumes to the devices when an edit begins and when
// it ends (a drag, a click on the track), and once for a step made with the keyboard or wheel.
// Every move writes the volume in AppState.
DirectSlider* makeVolumeSlider(state::AppState& appState, Speaker speaker, QWidget* parent);
void showVolume(DirectSlider* slider, float volume);

// What a screen reader calls a speaker's volume and delay sliders: "Volume of" and "Bluetooth
// delay of" the device's name, or of the speaker's label when no device is selected.
QString volumeSliderName(const i18n::LanguageManager& lang, const state::OptionalDevice& device, Speaker speaker);
QString delaySliderName(const i18n::LanguageManager& lang, const QString& deviceName);

class SpeakerBlock : public QWidget
{
    Q_OBJECT

public:
    SpeakerBlock(i18n::LanguageManager& lang, state::AppState& appState, Speaker speaker, QWidget* parent = nullptr);

    void redraw();

private:
    i18n::LanguageManager& lang;
    state::AppState& appState;
    Speaker speaker;

    SymbolView* bluetoothMark = nullptr;
    ElidedLabel* nameLabel = nullptr;
    DirectSlider* volumeSlider = nullptr;
    QCheckBox* bluetoothCheckbox = nullptr;
    BluetoothDelayRow* delayRow = nullptr;
};

} // namespace orvanta::ui
