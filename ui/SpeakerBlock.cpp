#include "SpeakerBlock.h"

#include "BluetoothDelayRow.h"
#include "Symbols.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "update/StringFormat.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QSignalBlocker>

#include <cmath>

namespace orvanta::ui {
namespace {

constexpr int kVolumeSteps = 1000;

QString labelKey(Speaker speaker)
{
    return speaker == Speaker::Primary ? QStringLiteral("Primary Speaker") : QStringLiteral("Secondary Speaker");
}

} // namespace

const state::OptionalDevice& selectedDevice(const state::AppState& appState, Speaker speaker)
{
    return speaker == Speaker::Primary ? appState.selectedDevice1() : appState.selectedDevice2();
}

float speakerVolume(const state::AppState& appState, Speaker speaker)
{
    return speaker == Speaker::Primary ? appState.volume1() : appState.volume2();
}

void setSpeakerVolume(state::AppState& appState, Speaker speaker, float volume)
{
    if (speaker == Speaker::Primary) {
        appState.setVolume1(volume);
    } else {
        appState.setVolume2(volume);
    }
}

DirectSlider* makeVolumeSlider(state::AppState& appState, Speaker speaker, QWidget* parent)
{
    auto* slider = new DirectSlider(parent);
    slider->setObjectName(QStringLiteral("volumeSlider"));
    slider->setRange(0, kVolumeSteps);
    slider->setSingleStep(kVolumeSteps / 100);
    slider->setPageStep(kVolumeSteps / 10);
    slider->setTracking(true);
    showVolume(slider, speakerVolume(appState, speaker));
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

QString volumeSliderName(const i18n::LanguageManager& lang, const state::OptionalDevice& device, Speaker speaker)
{
    const QString name = device ? QString::fromStdString(device->name) : lang.translate(labelKey(speaker));
    return update::formatWithString(lang.translate(QStringLiteral("Volume of %@")), name);
}

QString delaySliderName(const i18n::LanguageManager& lang, const QString& deviceName)
{
    return update::formatWithString(lang.translate(QStringLiteral("Bluetooth delay of %@")), deviceName);
}

void showVolume(DirectSlider* slider, float volume)
{
    // The volume under the user's pointer is the slider's own; it is left alone during a drag.
    if (slider->isSliderDown()) {
        return;
    }
    const QSignalBlocker quiet(slider);
    slider->setValue(static_cast<int>(std::lround(volume * static_cast<float>(kVolumeSteps))));
}

SpeakerBlock::SpeakerBlock(i18n::LanguageManager& languageManager, state::AppState& state, Speaker which,
                           QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state), speaker(which)
{
    setObjectName(which == Speaker::Primary ? QStringLiteral("primarySpeaker") : QStringLiteral("secondarySpeaker"));
    const QFont base = font();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);

    auto* nameRow = new QHBoxLayout();
    nameRow->setSpacing(4);
    bluetoothMark = new SymbolView(QStringLiteral("wave.3.right.circle.fill"), Tint::Blue,
                                   symbolSize(TextStyle::Caption2, base), this);
    bluetoothMark->setObjectName(QStringLiteral("bluetoothMark"));
    nameLabel = new ElidedLabel(this);
    nameLabel->setObjectName(QStringLiteral("nameLabel"));
    nameLabel->setFont(fontFor(TextStyle::Caption2, base));
    applyTint(nameLabel, Tint::Secondary);
    nameRow->addWidget(bluetoothMark);
    nameRow->addWidget(nameLabel, 1);
    column->addLayout(nameRow);

    volumeSlider = makeVolumeSlider(appState, speaker, this);
    column->addWidget(volumeSlider);

    bluetoothCheckbox = new QCheckBox(this);
    bluetoothCheckbox->setObjectName(QStringLiteral("bluetoothCheckbox"));
    bluetoothCheckbox->setFont(fontFor(TextStyle::Caption2, base));
    column->addWidget(bluetoothCheckbox, 0, Qt::AlignLeading);
    connect(bluetoothCheckbox, &QCheckBox::clicked, this,
            [this](bool checked) { appState.setManualBluetoothOverride(checked, selectedDevice(appState, speaker)); });

    delayRow = new BluetoothDelayRow(lang, appState, audio::AudioDeviceOption{}, this);
    column->addWidget(delayRow);
    redraw();
}

void SpeakerBlock::redraw()
{
    const state::OptionalDevice& device = selectedDevice(appState, speaker);
    const bool treated = isTreatedAsBluetooth(device, appState.manualBluetoothOverrides());

    bluetoothMark->setVisible(treated);
    nameLabel->setFullText(device ? QString::fromStdString(device->name) : lang.translate(labelKey(speaker)));
    showVolume(volumeSlider, speakerVolume(appState, speaker));
    volumeSlider->setAccessibleName(volumeSliderName(lang, device, speaker));

    const bool offerCheckbox = device && !device->isBluetooth;
    bluetoothCheckbox->setText(lang.translate(QStringLiteral("Treat as Bluetooth speaker")));
    if (offerCheckbox) {
        const auto& overrides = appState.manualBluetoothOverrides();
        const auto entry = overrides.find(device->uid);
        const QSignalBlocker quiet(bluetoothCheckbox);
        bluetoothCheckbox->setChecked(entry != overrides.end() && entry->second);
    }
    bluetoothCheckbox->setVisible(offerCheckbox);

    if (device && treated) {
        if (delayRow->device() != *device) {
            delayRow->setDevice(*device);
        } else {
            delayRow->redraw();
        }
    }
    delayRow->setVisible(device && treated);
}

} // namespace orvanta::ui
