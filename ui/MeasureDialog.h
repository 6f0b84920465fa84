#pragma once

// The dialog that measures the speakers' delay with a microphone: which microphone (the sound
// system's default first), what to do, Start, the progress, then each speaker's lateness in ms
// and the spread of the repeats, or why the run was turned down. Apply sets the later speaker's
// delay to the difference and the other's to 0 through AppState; Cancel stops a running
// measurement and closes. The measurement runs off the main thread; this dialog only starts it
// and shows what comes back. Sync going off closes it.

#include "measure/MeasurementOutcome.h"
#include "state/AppState.h"
#include "state/MeasuredDelays.h"

#include <QDialog>

#include <array>
#include <optional>

class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class DelayMeasurement;
}

namespace orvanta::ui {

class MeasureDialog : public QDialog
{
    Q_OBJECT

public:
    MeasureDialog(i18n::LanguageManager& lang, state::AppState& appState, services::DelayMeasurement& measurement,
                  QWidget* parent = nullptr);
    ~MeasureDialog() override;

    void startMeasuring();
    void applyResult();
    // What the last run found, once one has ended.
    const std::optional<measure::MeasurementOutcome>& outcome() const { return lastOutcome; }

protected:
    void reject() override;

private:
    void build();
    void redraw();
    void fillMicrophones();
    void showProgress(double fraction);
    void finished(const measure::MeasurementOutcome& outcome);
    QString speakerName(std::size_t member) const;
    QString message() const;
    QString text(const char* key) const;

    i18n::LanguageManager& lang;
    state::AppState& appState;
    services::DelayMeasurement& measurement;
    std::vector<std::string> speakerUIDs;
    std::optional<measure::MeasurementOutcome> lastOutcome;
    std::optional<state::MeasuredDelays> delays;

    QLabel* microphoneTitle = nullptr;
    QComboBox* microphonePicker = nullptr;
    QLabel* instruction = nullptr;
    QPushButton* startButton = nullptr;
    QProgressBar* progress = nullptr;
    std::array<QLabel*, 2> speakerNames{};
    std::array<QLabel*, 2> speakerValues{};
    QLabel* spreadLabel = nullptr;
    QLabel* messageLabel = nullptr;
    QPushButton* applyButton = nullptr;
    QPushButton* cancelButton = nullptr;
};

} // namespace orvanta::ui
