#include "SpeakerSection.h"

#include "RedrawOnChanges.h"
#include "Symbols.h"
#include "TickSlider.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "update/StringFormat.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QSignalBlocker>
#include <QToolButton>

#include <cmath>

namespace orvanta::ui {
namespace {

constexpr int kVolumeSteps = 1000;
constexpr int kNumberOfTicks = 13;
const QString kBluetoothSymbol = QStringLiteral("wave.3.right.circle.fill");

using state::AppState;

QString labelKey(Speaker speaker)
{
    return speaker == Speaker::Primary ? QStringLiteral("Primary Speaker") : QStringLiteral("Secondary Speaker");
}

void setSpeakerVolume(AppState& appState, Speaker speaker, float volume)
{
    if (speaker == Speaker::Primary) {
        appState.setVolume1(volume);
    } else {
        appState.setVolume2(volume);
    }
}

// The volume under the user's pointer is the slider's own; it is left alone during a drag.
void showPosition(QSlider* slider, int position)
{
    if (slider->isSliderDown()) {
        return;
    }
    const QSignalBlocker quiet(slider);
    slider->setValue(position);
}

// A volume slider over 0..1 that pushes the volumes to the devices when an edit begins and when
// it ends (a drag, a click on the track), and once for a step made with the keyboard or wheel.
// Every move writes the volume in AppState.
DirectSlider* makeVolumeSlider(AppState& appState, Speaker speaker, QWidget* parent)
{
    auto* slider = new DirectSlider(parent);
    slider->setObjectName(QStringLiteral("volumeSlider"));
    slider->setRange(0, kVolumeSteps);
    slider->setSingleStep(kVolumeSteps / 100);
    slider->setPageStep(kVolumeSteps / 10);
    slider->setTracking(true);
    QObject::connect(slider, &QSlider::valueChanged, slider, [&appState, speaker, slider](int position) {
        setSpeakerVolume(appState, speaker, static_cast<float>(position) / static_cast<float>(kVolumeSteps));
        // A step from the keyboard or the wheel is an edit that begins and ends at once.
        if (!slider->isSliderDown() && !slider->isHandlingPress()) {
            appState.applyVolumes();
        }
    });
    QObject::connect(slider, &QSlider::sliderPressed, slider, [&appState] { appState.applyVolumes(); });
    QObject::connect(slider, &QSlider::sliderReleased, slider, [&appState] { appState.applyVolumes(); });
    return slider;
}

} // namespace

const state::OptionalDevice& selectedDevice(const AppState& appState, Speaker speaker)
{
    return speaker == Speaker::Primary ? appState.selectedDevice1() : appState.selectedDevice2();
}

float speakerVolume(const AppState& appState, Speaker speaker)
{
    return speaker == Speaker::Primary ? appState.volume1() : appState.volume2();
}

SpeakerSection::SpeakerSection(i18n::LanguageManager& languageManager, AppState& state, Speaker which, Place where,
                               QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state), speaker(which), place(where)
{
    setObjectName(which == Speaker::Primary ? QStringLiteral("primarySpeaker") : QStringLiteral("secondarySpeaker"));
    const bool window = place == Place::Window;
    const QFont base = font();
    const QFont small = fontFor(TextStyle::Caption2, base);
    const int smallSymbol = symbolSize(TextStyle::Caption2, base);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(window ? 6 : 2);

    auto* nameRow = new QHBoxLayout();
    nameRow->setSpacing(4);
    bluetoothMark = new SymbolView(kBluetoothSymbol, Tint::Blue, smallSymbol, this);
    bluetoothMark->setObjectName(QStringLiteral("bluetoothMark"));
    nameLabel = new ElidedLabel(this);
    nameLabel->setObjectName(QStringLiteral("nameLabel"));
    nameLabel->setFont(small);
    applyTint(nameLabel, Tint::Secondary);
    nameRow->addWidget(bluetoothMark);
    nameRow->addWidget(nameLabel, 1);
    column->addLayout(nameRow);

    volumeSlider = makeVolumeSlider(appState, speaker, this);
    if (window) {
        column->addWidget(volumeSlider);
        bluetoothCheckbox = new QCheckBox(this);
        bluetoothCheckbox->setObjectName(QStringLiteral("bluetoothCheckbox"));
        bluetoothCheckbox->setFont(small);
        column->addWidget(bluetoothCheckbox, 0, Qt::AlignLeading);
        connect(bluetoothCheckbox, &QCheckBox::clicked, this, [this](bool checked) {
            appState.setManualBluetoothOverride(checked, selectedDevice(appState, speaker));
        });
    } else {
        auto* volumeRow = new QHBoxLayout();
        volumeRow->setSpacing(6);
        percentLabel = new QLabel(this);
        percentLabel->setObjectName(QStringLiteral("percentLabel"));
        percentLabel->setFont(small);
        percentLabel->setMinimumWidth(widestNumberWidth(QFontMetrics(small), 3, QStringLiteral("%")));
        alignByLayout(percentLabel, Qt::AlignTrailing | Qt::AlignVCenter);
        applyTint(percentLabel, Tint::Secondary);
        volumeRow->addWidget(new SymbolView(QStringLiteral("speaker.fill"), Tint::Secondary, smallSymbol, this));
        volumeRow->addWidget(volumeSlider, 1);
        volumeRow->addWidget(percentLabel);
        column->addLayout(volumeRow);
    }

    column->addWidget(window
                          ? buildDelayControls(fontFor(TextStyle::Caption, base), symbolSize(TextStyle::Title3, base))
                          : buildDelayControls(small, smallSymbol));
    redrawOnChanges(appState, lang, this, &SpeakerSection::redraw);
    redraw();
}

QWidget* SpeakerSection::buildDelayControls(const QFont& text, int stepSymbol)
{
    const bool window = place == Place::Window;
    delayControls = new QWidget(this);
    delayControls->setObjectName(QStringLiteral("delayControls"));
    auto* column = new QVBoxLayout(delayControls);
    column->setContentsMargins(0, 2, 0, 0);
    column->setSpacing(4);

    delayLabel = new QLabel(delayControls);
    delayLabel->setObjectName(QStringLiteral("delayLabel"));
    delayLabel->setFont(text);
    delayLabel->setMinimumWidth(widestNumberWidth(QFontMetrics(text), 3, QStringLiteral(" ms")));
    alignByLayout(delayLabel, Qt::AlignTrailing | Qt::AlignVCenter);
    applyTint(delayLabel, Tint::Secondary);

    if (window) {
        auto* titleRow = new QHBoxLayout();
        titleRow->setSpacing(6);
        delayTitle = new QLabel(delayControls);
        delayTitle->setObjectName(QStringLiteral("delayTitle"));
        QFont bold = text;
        bold.setBold(true);
        delayTitle->setFont(bold);
        resetButton =
            makeSymbolButton(QStringLiteral("arrow.counterclockwise"), Tint::Secondary,
                             symbolSize(TextStyle::Caption2, font()), QStringLiteral("resetButton"), delayControls);
        connect(resetButton, &QToolButton::clicked, this,
                [this] { appState.setBluetoothDelay(AppState::kMinDelayMs, selectedDevice(appState, speaker)); });
        titleRow->addWidget(
            new SymbolView(kBluetoothSymbol, Tint::Blue, symbolSize(TextStyle::Caption, font()), delayControls));
        titleRow->addWidget(delayTitle);
        titleRow->addStretch(1);
        titleRow->addWidget(delayLabel);
        titleRow->addWidget(resetButton);
        column->addLayout(titleRow);
    }

    auto* stepRow = new QHBoxLayout();
    stepRow->setSpacing(window ? 6 : 4);
    // Made in the order they stand, which is the order Tab goes through them.
    decreaseButton = makeSymbolButton(QStringLiteral("minus.circle.fill"), Tint::Accent, stepSymbol,
                                      QStringLiteral("decreaseButton"), delayControls);
    QSlider* slider = nullptr;
    if (window) {
        slider = tickSlider = new TickSlider(TickSliderModel{}, delayControls);
    } else {
        // Positions are whole steps, so the slider moves from one multiple of the step to the next.
        slider = stepSlider = new DirectSlider(delayControls);
        stepSlider->setRange(AppState::kMinDelayMs / AppState::kDelayStepMs,
                             AppState::kMaxDelayMs / AppState::kDelayStepMs);
        stepSlider->setSingleStep(1);
        stepSlider->setPageStep(10);
        connect(stepSlider, &QSlider::valueChanged, this, [this](int position) {
            appState.setBluetoothDelay(position * AppState::kDelayStepMs, selectedDevice(appState, speaker));
        });
    }
    slider->setObjectName(QStringLiteral("delaySlider"));
    increaseButton = makeSymbolButton(QStringLiteral("plus.circle.fill"), Tint::Accent, stepSymbol,
                                      QStringLiteral("increaseButton"), delayControls);
    stepRow->addWidget(decreaseButton);
    stepRow->addWidget(slider, 1);
    stepRow->addWidget(increaseButton);
    if (!window) {
        stepRow->addWidget(delayLabel);
    }
    column->addLayout(stepRow);

    // Each step starts from the value shown at the moment of the press; AppState clamps.
    connect(decreaseButton, &QToolButton::clicked, this, [this] {
        appState.setBluetoothDelay(delay() - AppState::kDelayStepMs, selectedDevice(appState, speaker));
    });
    connect(increaseButton, &QToolButton::clicked, this, [this] {
        appState.setBluetoothDelay(delay() + AppState::kDelayStepMs, selectedDevice(appState, speaker));
    });
    return delayControls;
}

int SpeakerSection::delay() const
{
    return appState.storedDelay(selectedDevice(appState, speaker));
}

void SpeakerSection::redraw()
{
    const state::OptionalDevice& device = selectedDevice(appState, speaker);
    const bool countsAsBluetooth = appState.countsAsBluetooth(device);
    const QString name = device ? QString::fromStdString(device->name) : lang.translate(labelKey(speaker));

    bluetoothMark->setVisible(countsAsBluetooth);
    nameLabel->setFullText(name);
    const float volume = speakerVolume(appState, speaker);
    showPosition(volumeSlider, static_cast<int>(std::lround(volume * static_cast<float>(kVolumeSteps))));
    volumeSlider->setAccessibleName(update::formatWithString(lang.translate(QStringLiteral("Volume of %@")), name));
    if (percentLabel != nullptr) {
        percentLabel->setText(QString::number(volumePercent(volume)) + u'%');
    }
    if (bluetoothCheckbox != nullptr) {
        const bool offerCheckbox = device && !device->isBluetooth;
        bluetoothCheckbox->setText(lang.translate(QStringLiteral("Treat as Bluetooth speaker")));
        if (offerCheckbox) {
            const QSignalBlocker quiet(bluetoothCheckbox);
            bluetoothCheckbox->setChecked(appState.isMarkedBluetooth(device));
        }
        bluetoothCheckbox->setVisible(offerCheckbox);
    }
    redrawDelay(device, name);
    delayControls->setVisible(countsAsBluetooth);
}

void SpeakerSection::redrawDelay(const state::OptionalDevice& device, const QString& name)
{
    const int current = delay();
    delayLabel->setText(QString::number(current) + QStringLiteral(" ms"));
    decreaseButton->setToolTip(
        formatWithInteger(lang.translate(QStringLiteral("Decrease by %d ms")), AppState::kDelayStepMs));
    increaseButton->setToolTip(
        formatWithInteger(lang.translate(QStringLiteral("Increase by %d ms")), AppState::kDelayStepMs));
    // The buttons show only a symbol; screen readers read their help text.
    decreaseButton->setAccessibleName(decreaseButton->toolTip());
    increaseButton->setAccessibleName(increaseButton->toolTip());
    const QString sliderName = update::formatWithString(lang.translate(QStringLiteral("Bluetooth delay of %@")), name);
    if (stepSlider != nullptr) {
        showPosition(stepSlider, static_cast<int>(std::lround(current / static_cast<double>(AppState::kDelayStepMs))));
        stepSlider->setAccessibleName(sliderName);
        return;
    }
    delayTitle->setText(lang.translate(QStringLiteral("Bluetooth Delay")));
    resetButton->setToolTip(lang.translate(QStringLiteral("Reset")));
    resetButton->setAccessibleName(resetButton->toolTip());
    resetButton->setVisible(current != 0);
    tickSlider->setAccessibleName(sliderName);
    // A fresh binding each time, over the device selected now.
    TickSliderModel model;
    model.value.get = [this] { return static_cast<double>(delay()); };
    model.value.set = [this, device](double value) { appState.setBluetoothDelay(roundedDelay(value), device); };
    model.minimum = AppState::kMinDelayMs;
    model.maximum = AppState::kMaxDelayMs;
    model.numberOfTicks = kNumberOfTicks;
    model.onChanged = [](double) {};
    tickSlider->updateFrom(std::move(model));
}

} // namespace orvanta::ui
