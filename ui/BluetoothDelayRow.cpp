#include "BluetoothDelayRow.h"

#include "SpeakerBlock.h"
#include "Symbols.h"
#include "TickSlider.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace orvanta::ui {
namespace {

QToolButton* makeSymbolButton(const QString& symbol, Tint tint, int size, const QString& objectName, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setIcon(symbolIcon(symbol, tint));
    button->setIconSize(QSize(size, size));
    button->setAutoRaise(true);
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

} // namespace

BluetoothDelayRow::BluetoothDelayRow(i18n::LanguageManager& languageManager, state::AppState& state,
                                     audio::AudioDeviceOption device, QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state), tuned(std::move(device))
{
    setObjectName(QStringLiteral("delayRow"));
    build();
    connect(&appState, &state::AppState::bluetoothDelaysChanged, this, &BluetoothDelayRow::redraw);
    connect(&lang, &i18n::LanguageManager::currentLanguageChanged, this, &BluetoothDelayRow::redraw);
    redraw();
}

void BluetoothDelayRow::build()
{
    const QFont base = font();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 2, 0, 0);
    column->setSpacing(4);

    auto* first = new QHBoxLayout();
    first->setSpacing(6);
    symbol = new SymbolView(QStringLiteral("wave.3.right.circle.fill"), Tint::Blue,
                            symbolSize(TextStyle::Caption, base), this);
    title = new QLabel(this);
    title->setObjectName(QStringLiteral("delayTitle"));
    QFont titleFont = fontFor(TextStyle::Caption, base);
    titleFont.setBold(true);
    title->setFont(titleFont);
    valueLabel = new QLabel(this);
    valueLabel->setObjectName(QStringLiteral("delayLabel"));
    QFont digits = fontFor(TextStyle::Caption, base);
    valueLabel->setFont(digits);
    applyTint(valueLabel, Tint::Secondary);
    resetButton = makeSymbolButton(QStringLiteral("arrow.counterclockwise"), Tint::Secondary,
                                   symbolSize(TextStyle::Caption2, base), QStringLiteral("resetButton"), this);
    first->addWidget(symbol);
    first->addWidget(title);
    first->addStretch(1);
    first->addWidget(valueLabel);
    first->addWidget(resetButton);
    column->addLayout(first);

    auto* second = new QHBoxLayout();
    second->setSpacing(6);
    const int stepSize = symbolSize(TextStyle::Title3, base);
    // Made in the order they stand, which is the order Tab goes through them.
    decreaseButton = makeSymbolButton(QStringLiteral("minus.circle.fill"), Tint::Accent, stepSize,
                                      QStringLiteral("decreaseButton"), this);
    slider = new TickSlider(TickSliderModel{}, this);
    slider->setObjectName(QStringLiteral("tickSlider"));
    increaseButton = makeSymbolButton(QStringLiteral("plus.circle.fill"), Tint::Accent, stepSize,
                                      QStringLiteral("increaseButton"), this);
    second->addWidget(decreaseButton);
    second->addWidget(slider, 1);
    second->addWidget(increaseButton);
    column->addLayout(second);

    // Each step starts from the value shown at the moment of the press; AppState clamps.
    connect(resetButton, &QToolButton::clicked, this, [this] { appState.setBluetoothDelay(0, tuned); });
    connect(decreaseButton, &QToolButton::clicked, this,
            [this] { appState.setBluetoothDelay(currentDelay() - kStep, tuned); });
    connect(increaseButton, &QToolButton::clicked, this,
            [this] { appState.setBluetoothDelay(currentDelay() + kStep, tuned); });
}

void BluetoothDelayRow::setDevice(audio::AudioDeviceOption device)
{
    tuned = std::move(device);
    redraw();
}

int BluetoothDelayRow::currentDelay() const
{
    return storedDelay(tuned, appState.bluetoothDelays());
}

void BluetoothDelayRow::redraw()
{
    const int current = currentDelay();
    title->setText(lang.translate(QStringLiteral("Bluetooth Delay")));
    valueLabel->setText(QString::asprintf("%lld ms", static_cast<long long>(current)));
    resetButton->setToolTip(lang.translate(QStringLiteral("Reset")));
    resetButton->setVisible(current != 0);
    decreaseButton->setToolTip(formatWithInteger(lang.translate(QStringLiteral("Decrease by %d ms")), kStep));
    increaseButton->setToolTip(formatWithInteger(lang.translate(QStringLiteral("Increase by %d ms")), kStep));
    // The buttons show only a symbol; screen readers read their help text.
    resetButton->setAccessibleName(resetButton->toolTip());
    decreaseButton->setAccessibleName(decreaseButton->toolTip());
    increaseButton->setAccessibleName(increaseButton->toolTip());
    slider->setAccessibleName(delaySliderName(lang, QString::fromStdString(tuned.name)));

    // A fresh binding each time, over the device this row tunes now.
    TickSliderModel model;
    model.value.get = [this] { return static_cast<double>(currentDelay()); };
    model.value.set = [this](double value) { appState.setBluetoothDelay(roundedDelay(value), tuned); };
    model.minimum = 0.0;
    model.maximum = kMaximum;
    model.numberOfTicks = kNumberOfTicks;
    model.onChanged = [](double) {};
    slider->updateFrom(std::move(model));
}

} // namespace orvanta::ui
