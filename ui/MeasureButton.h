#pragma once

// "Measure with microphone…" in the balance section: shown while sync is on and the sound
// system can measure (PipeWire, with the stacked device hosted by Orvanta); opens the
// measuring dialog.

#include <QPushButton>

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

class MeasureButton : public QPushButton
{
    Q_OBJECT

public:
    // Without a measurement the button never shows.
    MeasureButton(i18n::LanguageManager& lang, state::AppState& appState, services::DelayMeasurement* measurement,
                  QWidget* parent = nullptr);

    void redraw();
    void openDialog();

private:
    i18n::LanguageManager& lang;
    state::AppState& appState;
    services::DelayMeasurement* measurement;
};

} // namespace orvanta::ui
