#include "MeasureDialog.h"

#include "i18n/LanguageManager.h"
#include "services/DelayMeasurement.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

namespace orvanta::ui {

using measure::MeasurementStatus;

namespace {

QString milliseconds(double value)
{
    return QString::number(value, 'f', 1);
}

QLabel* plainLabel(const QString& objectName, QWidget* parent, bool wrap = false)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wrap);
    return label;
}

} // namespace

MeasureDialog::MeasureDialog(i18n::LanguageManager& languageManager, state::AppState& state,
                             services::DelayMeasurement& delayMeasurement, QWidget* parent)
    : QDialog(parent), lang(languageManager), appState(state), measurement(delayMeasurement),
      speakerUIDs(delayMeasurement.speakerUIDs())
{
    build();
    fillMicrophones();
    connect(&lang, &i18n::LanguageManager::currentLanguageChanged, this, &MeasureDialog::redraw);
    // Without sync there is no stacked device left to measure.
    connect(&appState, &state::AppState::isQuellonOnChanged, this, [this] {
        if (!appState.isQuellonOn()) {
            reject();
        }
    });
    redraw();
}

MeasureDialog::~MeasureDialog()
{
    measurement.cancel();
}

QString MeasureDialog::text(const char* key) const
{
    return lang.translate(QString::fromUtf8(key));
}

void MeasureDialog::build()
{
    auto* column = new QVBoxLayout(this);
    column->setSpacing(10);
    microphoneTitle = plainLabel(QStringLiteral("microphoneTitle"), this);
    microphonePicker = new QComboBox(this);
    microphonePicker->setObjectName(QStringLiteral("microphonePicker"));
    instruction = plainLabel(QStringLiteral("measureInstruction"), this, true);
    startButton = new QPushButton(this);
    startButton->setObjectName(QStringLiteral("startButton"));
    connect(startButton, &QPushButton::clicked, this, &MeasureDialog::startMeasuring);
    progress = new QProgressBar(this);
    progress->setObjectName(QStringLiteral("measureProgress"));
    progress->setRange(0, 100);
    progress->setTextVisible(false);

    auto* results = new QGridLayout();
    for (std::size_t member = 0; member < speakerNames.size(); ++member) {
        speakerNames[member] = plainLabel(QStringLiteral("speakerName%1").arg(member), this);
        speakerValues[member] = plainLabel(QStringLiteral("speakerLateness%1").arg(member), this);
        speakerValues[member]->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
        results->addWidget(speakerNames[member], static_cast<int>(member), 0);
        results->addWidget(speakerValues[member], static_cast<int>(member), 1);
    }
    spreadLabel = plainLabel(QStringLiteral("spreadLabel"), this);
    messageLabel = plainLabel(QStringLiteral("measureMessage"), this, true);

    auto* buttons = new QHBoxLayout();
    applyButton = new QPushButton(this);
    applyButton->setObjectName(QStringLiteral("applyButton"));
    applyButton->setDefault(true);
    connect(applyButton, &QPushButton::clicked, this, &MeasureDialog::applyResult);
    cancelButton = new QPushButton(this);
    cancelButton->setObjectName(QStringLiteral("cancelButton"));
    connect(cancelButton, &QPushButton::clicked, this, &MeasureDialog::reject);
    buttons->addStretch(1);
    buttons->addWidget(applyButton);
    buttons->addWidget(cancelButton);

    column->addWidget(microphoneTitle);
    column->addWidget(microphonePicker);
    column->addWidget(instruction);
    column->addWidget(startButton, 0, Qt::AlignLeading);
    column->addWidget(progress);
    column->addLayout(results);
    column->addWidget(spreadLabel);
    column->addWidget(messageLabel);
    column->addLayout(buttons);
    setMinimumWidth(380);
}

void MeasureDialog::fillMicrophones()
{
    for (const auto& microphone : measurement.microphones()) {
        microphonePicker->addItem(QString::fromStdString(microphone.description),
                                  QString::fromStdString(microphone.name));
    }
}

QString MeasureDialog::speakerName(std::size_t member) const
{
    const std::string uid = member < speakerUIDs.size() ? speakerUIDs[member] : std::string();
    for (const auto& device : {appState.selectedDevice1(), appState.selectedDevice2()}) {
        if (device && device->uid == uid) {
            return QString::fromStdString(device->name);
        }
    }
    return QString::fromStdString(uid);
}

QString MeasureDialog::message() const
{
    if (microphonePicker->count() == 0) {
        return text("No microphone found.");
    }
    if (!lastOutcome) {
        return {};
    }
    switch (lastOutcome->status) {
    case MeasurementStatus::Measured:
        return delays && delays->beyondRange
                   ? text("The difference is %@ ms, more than the longest delay of 600 ms: Apply sets 600 ms.")
                         .replace(QStringLiteral("%@"), milliseconds(delays->differenceMs))
                   : QString();
    case MeasurementStatus::TooQuiet:
        return text("Too quiet: the microphone hardly heard the test sounds. Turn the speakers up or bring the "
                    "microphone closer.");
    case MeasurementStatus::TooNoisy:
        return text("Too noisy: the test sounds were lost in the noise. Keep the room quiet and try again.");
    case MeasurementStatus::NoSignal:
        return text("No sound from %@. Check that this speaker is on and turned up.")
            .replace(QStringLiteral("%@"), speakerName(lastOutcome->silentMember));
    case MeasurementStatus::RepeatsDisagree:
        return text("The repeats disagree by %@ ms, more than 5 ms. Keep the room quiet and try again.")
            .replace(QStringLiteral("%@"), milliseconds(lastOutcome->spreadMs));
    case MeasurementStatus::Failed:
        return text("The measurement could not run: the microphone or a speaker is not available.");
    case MeasurementStatus::Cancelled:
        break;
    }
    return {};
}

void MeasureDialog::redraw()
{
    setLayoutDirection(lang.layoutDirection());
    setWindowTitle(text("Measure the delay"));
    microphoneTitle->setText(text("Microphone"));
    instruction->setText(text("Place the microphone where you listen and keep the room quiet."));
    startButton->setText(text("Start"));
    applyButton->setText(text("Apply"));
    cancelButton->setText(text("Cancel"));

    const bool running = measurement.running();
    const bool measured = lastOutcome && lastOutcome->status == MeasurementStatus::Measured;
    microphonePicker->setEnabled(!running);
    startButton->setEnabled(!running && microphonePicker->count() > 0);
    progress->setVisible(running);
    for (std::size_t member = 0; member < speakerNames.size(); ++member) {
        speakerNames[member]->setText(speakerName(member));
        speakerNames[member]->setVisible(measured);
        speakerValues[member]->setText(
            measured ? text("%@ ms").replace(QStringLiteral("%@"), milliseconds(lastOutcome->latenessMs[member]))
                     : QString());
        speakerValues[member]->setVisible(measured);
    }
    const bool hasSpread = lastOutcome && (measured || lastOutcome->status == MeasurementStatus::RepeatsDisagree);
    spreadLabel->setText(
        hasSpread
            ? text("Spread of the repeats: %@ ms").replace(QStringLiteral("%@"), milliseconds(lastOutcome->spreadMs))
            : QString());
    spreadLabel->setVisible(hasSpread);
    messageLabel->setText(message());
    messageLabel->setVisible(!messageLabel->text().isEmpty());
    applyButton->setEnabled(measured && !running);
}

void MeasureDialog::startMeasuring()
{
    if (measurement.running() || microphonePicker->count() == 0) {
        return;
    }
    lastOutcome.reset();
    delays.reset();
    progress->setValue(0);
    QPointer<MeasureDialog> self(this);
    measurement.start(
        microphonePicker->currentData().toString().toStdString(),
        [self](double fraction) {
            if (self) {
                self->showProgress(fraction);
            }
        },
        [self](const measure::MeasurementOutcome& outcome) {
            if (self) {
                self->finished(outcome);
            }
        });
    redraw();
}

void MeasureDialog::showProgress(double fraction)
{
    progress->setValue(static_cast<int>(fraction * 100.0));
}

void MeasureDialog::finished(const measure::MeasurementOutcome& outcome)
{
    lastOutcome = outcome;
    if (outcome.status == MeasurementStatus::Measured) {
        delays = state::measuredDelays(speakerUIDs, outcome);
    }
    redraw();
}

void MeasureDialog::applyResult()
{
    if (!delays) {
        return;
    }
    state::applyMeasuredDelays(appState, *delays);
    accept();
}

void MeasureDialog::reject()
{
    measurement.cancel();
    QDialog::reject();
}

} // namespace orvanta::ui
