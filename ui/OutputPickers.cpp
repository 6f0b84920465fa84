#include "OutputPickers.h"

#include "SoundSystemNotice.h"
#include "Symbols.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QSignalBlocker>
#include <QToolButton>

#include <algorithm>

namespace orvanta::ui {

OutputPickers::OutputPickers(i18n::LanguageManager& languageManager, state::AppState& state,
                             services::SoundSystemStatus* soundSystemStatus, QWidget* parent)
    : QGroupBox(parent), lang(languageManager), appState(state)
{
    setObjectName(QStringLiteral("audioOutputs"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(10, 8, 10, 10);
    column->setSpacing(5);

    auto* titleRow = new QHBoxLayout();
    title = makeTextLabel(TextStyle::Headline, QStringLiteral("outputsTitle"), this);
    refreshButton =
        makeCommandButton(QStringLiteral("arrow.clockwise"), Tint::Primary, QStringLiteral("refreshButton"), this);
    refreshButton->setFont(fontFor(TextStyle::Caption, font()));
    const int refreshSymbol = symbolSize(TextStyle::Caption, font());
    refreshButton->setIconSize(QSize(refreshSymbol, refreshSymbol));
    connect(refreshButton, &QToolButton::clicked, this, &OutputPickers::refreshRequested);
    titleRow->addWidget(title);
    titleRow->addStretch(1);
    titleRow->addWidget(refreshButton);
    column->addLayout(titleRow);
    column->addSpacing(5);
    soundSystem = new SoundSystemNotice(lang, soundSystemStatus, this);
    column->addWidget(soundSystem->notice());

    QFont boldCaption = fontFor(TextStyle::Caption, font());
    boldCaption.setBold(true);
    primaryTitle = makeTextLabel(TextStyle::Caption, QStringLiteral("primaryTitle"), this);
    primaryTitle->setFont(boldCaption);
    primaryPicker = new QComboBox(this);
    primaryPicker->setObjectName(QStringLiteral("primaryPicker"));
    secondaryTitle = makeTextLabel(TextStyle::Caption, QStringLiteral("secondaryTitle"), this);
    secondaryTitle->setFont(boldCaption);
    secondaryPicker = new QComboBox(this);
    secondaryPicker->setObjectName(QStringLiteral("secondaryPicker"));
    for (QComboBox* picker : {primaryPicker, secondaryPicker}) {
        picker->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        picker->setMinimumContentsLength(12);
        picker->setIconSize(QSize(14, 14));
        connect(picker, &QComboBox::activated, this, [this, picker](int index) { choose(picker, index); });
    }
    column->addWidget(primaryTitle);
    column->addWidget(primaryPicker);
    column->addSpacing(3);
    column->addWidget(secondaryTitle);
    column->addWidget(secondaryPicker);
    column->addSpacing(2);
    column->addWidget(soundSystem->line());
    // A picker is read out by the label above it.
    primaryTitle->setBuddy(primaryPicker);
    secondaryTitle->setBuddy(secondaryPicker);
}

void OutputPickers::redraw()
{
    soundSystem->redraw();
    title->setText(lang.translate(QStringLiteral("Audio Outputs")));
    refreshButton->setText(lang.translate(QStringLiteral("Refresh")));
    refreshButton->setToolTip(lang.translate(QStringLiteral("Detect new devices")));
    primaryTitle->setText(lang.translate(QStringLiteral("Primary Speaker")));
    secondaryTitle->setText(lang.translate(QStringLiteral("Secondary Speaker")));
    primaryPicker->setAccessibleName(primaryTitle->text());
    secondaryPicker->setAccessibleName(secondaryTitle->text());

    // The entries are rebuilt only when the list or the language changed, so that a redraw while
    // a picker is open leaves it alone.
    if (pickerDevices != appState.devices() || pickerLanguage != lang.currentLanguage() ||
        primaryPicker->count() == 0) {
        pickerDevices = appState.devices();
        pickerLanguage = lang.currentLanguage();
        fillPicker(primaryPicker);
        fillPicker(secondaryPicker);
    }
    showSelection(primaryPicker, appState.selectedDevice1());
    showSelection(secondaryPicker, appState.selectedDevice2());
}

void OutputPickers::fillPicker(QComboBox* picker)
{
    const QSignalBlocker quiet(picker);
    picker->clear();
    picker->addItem(lang.translate(QStringLiteral("Select...")));
    const QIcon bluetooth = symbolIcon(QStringLiteral("wave.3.right.circle.fill"), Tint::Blue);
    for (const auto& device : pickerDevices) {
        // Only the device's own report counts here, not the user's mark.
        if (device.isBluetooth) {
            picker->addItem(bluetooth, QString::fromStdString(device.name));
        } else {
            picker->addItem(QString::fromStdString(device.name));
        }
    }
}

void OutputPickers::showSelection(QComboBox* picker, const state::OptionalDevice& selected)
{
    int index = 0;
    if (selected) {
        // A selected device that is no longer listed matches no entry; the selection stays.
        const auto found = std::find(pickerDevices.begin(), pickerDevices.end(), *selected);
        index = found == pickerDevices.end() ? -1 : static_cast<int>(found - pickerDevices.begin()) + 1;
    }
    const QSignalBlocker quiet(picker);
    picker->setCurrentIndex(index);
}

void OutputPickers::choose(QComboBox* picker, int index)
{
    state::OptionalDevice chosen;
    if (index > 0 && static_cast<std::size_t>(index) <= pickerDevices.size()) {
        chosen = pickerDevices[static_cast<std::size_t>(index - 1)];
    }
    if (picker == primaryPicker) {
        appState.setSelectedDevice1(std::move(chosen));
    } else {
        appState.setSelectedDevice2(std::move(chosen));
    }
}

} // namespace orvanta::ui
