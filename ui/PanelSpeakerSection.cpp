#include "PanelSpeakerSection.h"

#include "Symbols.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QToolButton>

#include <cmath>

namespace orvanta::ui {

PanelSpeakerSection::PanelSpeakerSection(state::AppState& state, i18n::LanguageManager& languageManager, Speaker which,
                                         QWidget* parent)
    : QWidget(parent), appState(state), lang(languageManager), speaker(which)
{
    setObjectName(which == Speaker::Primary ? QStringLiteral("primarySection") : QStringLiteral("secondarySection"));
    const QFont base = font();
    const QFont caption2 = fontFor(TextStyle::Caption2, base);
    const QFontMetrics caption2Metrics(caption2);
    const int symbol = symbolSize(TextStyle::Caption2, base);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);

    auto* nameRow = new QHBoxLayout();
    nameRow->setSpacing(4);
    bluetoothMark = new SymbolView(QStringLiteral("wave.3.right.circle.fill"), Tint::Blue, symbol, this);
    bluetoothMark->setObjectName(QStringLiteral("bluetoothMark"));
    nameLabel = new ElidedLabel(this);
    nameLabel->setObjectName(QStringLiteral("nameLabel"));
    nameLabel->setFont(caption2);
    applyTint(nameLabel, Tint::Secondary);
    nameRow->addWidget(bluetoothMark);
    nameRow->addWidget(nameLabel, 1);
    column->addLayout(nameRow);

    auto* volumeRow = new QHBoxLayout();
    volumeRow->setSpacing(6);
    auto* speakerSymbol = new SymbolView(QStringLiteral("speaker.fill"), Tint::Secondary, symbol, this);
    volumeSlider = makeVolumeSlider(appState, speaker, this);
    percentLabel = new QLabel(this);
    percentLabel->setObjectName(QStringLiteral("percentLabel"));
    percentLabel->setFont(caption2);
    percentLabel->setMinimumWidth(widestNumberWidth(caption2Metrics, 3, QStringLiteral("%")));
    alignByLayout(percentLabel, Qt::AlignTrailing | Qt::AlignVCenter);
    applyTint(percentLabel, Tint::Secondary);
    volumeRow->addWidget(speakerSymbol);
    volumeRow->addWidget(volumeSlider, 1);
    volumeRow->addWidget(percentLabel);
    column->addLayout(volumeRow);

    delayControls = new QWidget(this);
    delayControls->setObjectName(QStringLiteral("delayControls"));
    auto* delayRow = new QHBoxLayout(delayControls);
    delayRow->setContentsMargins(0, 2, 0, 0);
    delayRow->setSpacing(4);
    // Made in the order they stand, which is the order Tab goes through them.
    decreaseButton = stepButton(QStringLiteral("minus.circle.fill"), QStringLiteral("decreaseButton"), symbol);
    delaySlider = new DirectSlider(delayControls);
    delaySlider->setObjectName(QStringLiteral("delaySlider"));
    // Positions are steps of 5 ms, so the slider moves from one multiple of 5 to the next.
    delaySlider->setRange(0, kMaximumDelay / kDelayStep);
    delaySlider->setSingleStep(1);
    delaySlider->setPageStep(10);
    increaseButton = stepButton(QStringLiteral("plus.circle.fill"), QStringLiteral("increaseButton"), symbol);
    delayLabel = new QLabel(delayControls);
    delayLabel->setObjectName(QStringLiteral("delayLabel"));
    delayLabel->setFont(caption2);
    delayLabel->setMinimumWidth(widestNumberWidth(caption2Metrics, 3, QStringLiteral(" ms")));
    alignByLayout(delayLabel, Qt::AlignTrailing | Qt::AlignVCenter);
    applyTint(delayLabel, Tint::Secondary);
    delayRow->addWidget(decreaseButton);
    delayRow->addWidget(delaySlider, 1);
    delayRow->addWidget(increaseButton);
    delayRow->addWidget(delayLabel);
    column->addWidget(delayControls);

    connect(decreaseButton, &QToolButton::clicked, this,
            [this] { appState.setBluetoothDelay(current() - kDelayStep, device()); });
    connect(increaseButton, &QToolButton::clicked, this,
            [this] { appState.setBluetoothDelay(current() + kDelayStep, device()); });
    connect(delaySlider, &QSlider::valueChanged, this, [this](int position) {
        appState.setBluetoothDelay(roundedDelay(static_cast<double>(position * kDelayStep)), device());
    });
}

void PanelSpeakerSection::redraw(const QString& title)
{
    const state::OptionalDevice& shown = device();
    const bool treated = isTreatedAsBluetooth(shown, appState.manualBluetoothOverrides());
    bluetoothMark->setVisible(treated);
    const QString name = shown ? QString::fromStdString(shown->name) : title;
    nameLabel->setFullText(name);
    const float volume = speakerVolume(appState, speaker);
    showVolume(volumeSlider, volume);
    volumeSlider->setAccessibleName(volumeSliderName(lang, shown, speaker));
    percentLabel->setText(QString::number(volumePercent(volume)) + u'%');

    const int delay = current();
    delayLabel->setText(QString::number(delay) + QStringLiteral(" ms"));
    if (!delaySlider->isSliderDown()) {
        const QSignalBlocker quiet(delaySlider);
        delaySlider->setValue(static_cast<int>(std::lround(delay / static_cast<double>(kDelayStep))));
    }
    delaySlider->setAccessibleName(delaySliderName(lang, name));
    // The buttons show only a symbol: their help text is also what a screen reader says.
    decreaseButton->setToolTip(formatWithInteger(lang.translate(QStringLiteral("Decrease by %d ms")), kDelayStep));
    increaseButton->setToolTip(formatWithInteger(lang.translate(QStringLiteral("Increase by %d ms")), kDelayStep));
    decreaseButton->setAccessibleName(decreaseButton->toolTip());
    increaseButton->setAccessibleName(increaseButton->toolTip());
    delayControls->setVisible(shown && treated);
}

QToolButton* PanelSpeakerSection::stepButton(const QString& symbol, const QString& name, int size)
{
    auto* button = new QToolButton(delayControls);
    button->setObjectName(name);
    button->setIcon(symbolIcon(symbol, Tint::Accent));
    button->setIconSize(QSize(size, size));
    button->setAutoRaise(true);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

const state::OptionalDevice& PanelSpeakerSection::device() const
{
    return selectedDevice(appState, speaker);
}

int PanelSpeakerSection::current() const
{
    return storedDelay(device(), appState.bluetoothDelays());
}

} // namespace orvanta::ui
