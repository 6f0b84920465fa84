#pragma once

// The main window's "Hardware Balance" section, shown while sync is on: both speakers, the note
// on delays while either counts as Bluetooth, and the button that measures the delays.

#include <QWidget>

class QLabel;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class DelayMeasurement;
}
namespace orvanta::state {
class AppState;
}

namespace orvanta::ui {

class RoundedPanel;

class BalanceSection : public QWidget
{
    Q_OBJECT

public:
    BalanceSection(i18n::LanguageManager& lang, state::AppState& appState, services::DelayMeasurement* measurement,
                   QWidget* parent = nullptr);

    void redraw();

private:
    i18n::LanguageManager& lang;
    state::AppState& appState;
    QLabel* title = nullptr;
    RoundedPanel* delayNote = nullptr;
    QLabel* delayNoteText = nullptr;
};

} // namespace orvanta::ui
