#pragma once

// The main window's "Audio Outputs" group: its title with the Refresh button, what the sound
// system is doing, and the two device pickers ("Select..." and one entry per listed device, with
// the Bluetooth mark for a device that reports itself as Bluetooth). The user's choice is written
// to AppState; the selection shown is AppState's.

#include "state/AppState.h"

#include <QGroupBox>

class QComboBox;
class QLabel;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class SoundSystemStatus;
}

namespace orvanta::ui {

class SoundSystemNotice;

class OutputPickers : public QGroupBox
{
    Q_OBJECT

public:
    OutputPickers(i18n::LanguageManager& lang, state::AppState& appState, services::SoundSystemStatus* soundSystem,
                  QWidget* parent = nullptr);

    void redraw();

signals:
    // The user asked for the device list to be read again.
    void refreshRequested();

private:
    void fillPicker(QComboBox* picker);
    void showSelection(QComboBox* picker, const state::OptionalDevice& selected);
    void choose(QComboBox* picker, int index);

    i18n::LanguageManager& lang;
    state::AppState& appState;

    // Presentation only: what the pickers were last filled from.
    state::DeviceList pickerDevices;
    QString pickerLanguage;

    QLabel* title = nullptr;
    QToolButton* refreshButton = nullptr;
    SoundSystemNotice* soundSystem = nullptr;
    QLabel* primaryTitle = nullptr;
    QLabel* secondaryTitle = nullptr;
    QComboBox* primaryPicker = nullptr;
    QComboBox* secondaryPicker = nullptr;
};

} // namespace orvanta::ui
