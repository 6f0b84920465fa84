#include "MenuBarView.h"

#include "RedrawOnChanges.h"

#include "MainWindowLookup.h"
#include "SpeakerBlock.h"
#include "Symbols.h"
#include "ToggleSwitch.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QToolButton>

#include <cmath>

namespace orvanta::ui {

// One speaker in the panel: name, volume with its percentage, and for a device that counts as
// Bluetooth a delay row that moves in steps of 5 ms.
class PanelSpeakerSection : public QWidget
{
public:
    static constexpr int kDelayStep = 5;
    static constexpr int kMaximumDelay = 600;

    PanelSpeakerSection(state::AppState& state, i18n::LanguageManager& languageManager, Speaker which, QWidget* parent)
        : QWidget(parent), appState(state), lang(languageManager), speaker(which)
    {
        setObjectName(which == Speaker::Primary ? QStringLiteral("primarySection")
                                                : QStringLiteral("secondarySection"));
        const QFont base = font();
        const QFont caption2 = fontFor(TextStyle::Caption2, base);
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
        percentLabel->setFixedWidth(32);
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
        decreaseButton = stepButton(QStringLiteral("minus.circle.fill"), QStringLiteral("decreaseButton"), symbol);
        increaseButton = stepButton(QStringLiteral("plus.circle.fill"), QStringLiteral("increaseButton"), symbol);
        delaySlider = new DirectSlider(delayControls);
        delaySlider->setObjectName(QStringLiteral("delaySlider"));
        // Positions are steps of 5 ms, so the slider moves from one multiple of 5 to the next.
        delaySlider->setRange(0, kMaximumDelay / kDelayStep);
        delaySlider->setSingleStep(1);
        delaySlider->setPageStep(10);
        delayLabel = new QLabel(delayControls);
        delayLabel->setObjectName(QStringLiteral("delayLabel"));
        QFont digits = caption2;
        delayLabel->setFont(digits);
        delayLabel->setFixedWidth(48);
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

    void redraw(const QString& title)
    {
        const state::OptionalDevice& shown = device();
        const bool treated = isTreatedAsBluetooth(shown, appState.manualBluetoothOverrides());
        bluetoothMark->setVisible(treated);
        nameLabel->setFullText(shown ? QString::fromStdString(shown->name) : title);
        const float volume = speakerVolume(appState, speaker);
        showVolume(volumeSlider, volume);
        percentLabel->setText(QString::number(volumePercent(volume)) + u'%');

        const int delay = current();
        delayLabel->setText(QString::number(delay) + QStringLiteral(" ms"));
        if (!delaySlider->isSliderDown()) {
            const QSignalBlocker quiet(delaySlider);
            delaySlider->setValue(static_cast<int>(std::lround(delay / static_cast<double>(kDelayStep))));
        }
        delayControls->setVisible(shown && treated);
    }

private:
    QToolButton* stepButton(const QString& symbol, const QString& name, int size)
    {
        auto* button = new QToolButton(delayControls);
        button->setObjectName(name);
        button->setIcon(symbolIcon(symbol, Tint::Accent));
        button->setIconSize(QSize(size, size));
        button->setAutoRaise(true);
        button->setCursor(Qt::PointingHandCursor);
        return button;
    }

    const state::OptionalDevice& device() const { return selectedDevice(appState, speaker); }
    int current() const { return storedDelay(device(), appState.bluetoothDelays()); }

    state::AppState& appState;
    i18n::LanguageManager& lang;
    Speaker speaker;
    SymbolView* bluetoothMark = nullptr;
    ElidedLabel* nameLabel = nullptr;
    DirectSlider* volumeSlider = nullptr;
    QLabel* percentLabel = nullptr;
    QWidget* delayControls = nullptr;
    QToolButton* decreaseButton = nullptr;
    QToolButton* increaseButton = nullptr;
    DirectSlider* delaySlider = nullptr;
    QLabel* delayLabel = nullptr;
};

namespace {

QToolButton* makeCommandButton(const QString& symbol, Tint tint, const QString& objectName, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(objectName);
    button->setIcon(symbolIcon(symbol, tint));
    const int size = symbolSize(TextStyle::Body, parent->font()) - 2;
    button->setIconSize(QSize(size, size));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    button->setCursor(Qt::PointingHandCursor);
    return button;
}

} // namespace

MenuBarView::MenuBarView(state::AppState& state, i18n::LanguageManager& languageManager, OpenWindowAction openAction,
                         QuitAction quitAction, QWidget* parent)
    : QWidget(parent), appState(state), lang(languageManager), openWindow(std::move(openAction)),
      quit(std::move(quitAction))
{
    setObjectName(QStringLiteral("panel"));
    setFixedWidth(kWidth);
    const QFont base = font();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 12, 12, 12);
    column->setSpacing(8);

    auto* header = new QHBoxLayout();
    header->setContentsMargins(0, 0, 0, 4);
    auto* icon = new AppIconView(24, 5, false, this);
    icon->setObjectName(QStringLiteral("headerIcon"));
    auto* name = new QLabel(QStringLiteral("Orvanta"), this);
    name->setObjectName(QStringLiteral("productName"));
    name->setFont(fontFor(TextStyle::Headline, base));
    statusDot = new StatusDot(this);
    statusDot->setObjectName(QStringLiteral("statusDot"));
    header->addWidget(icon);
    header->addWidget(name);
    header->addStretch(1);
    header->addWidget(statusDot);
    column->addLayout(header);
    column->addWidget(makeDivider(this));

    syncSwitch = new ToggleSwitch(ToggleSwitch::Size::Small, this);
    syncSwitch->setObjectName(QStringLiteral("syncSwitch"));
    syncSwitch->setFont(fontFor(TextStyle::Caption, base));
    connect(syncSwitch, &ToggleSwitch::clicked, this, [this](bool checked) {
        if (checked) {
            appState.enableSync();
        } else {
            appState.disableSync();
        }
        redraw();
    });
    syncCaption = new QLabel(this);
    syncCaption->setObjectName(QStringLiteral("syncCaption"));
    syncCaption->setFont(fontFor(TextStyle::Caption, base));
    syncCaption->setWordWrap(true);
    alignByLayout(syncCaption, Qt::AlignLeading | Qt::AlignVCenter);
    applyTint(syncCaption, Tint::Secondary);
    column->addWidget(syncSwitch);
    column->addWidget(syncCaption);

    speakers = new QWidget(this);
    speakers->setObjectName(QStringLiteral("speakers"));
    auto* speakerColumn = new QVBoxLayout(speakers);
    speakerColumn->setContentsMargins(0, 0, 0, 0);
    speakerColumn->setSpacing(8);
    primarySection = new PanelSpeakerSection(appState, lang, Speaker::Primary, speakers);
    secondarySection = new PanelSpeakerSection(appState, lang, Speaker::Secondary, speakers);
    speakerColumn->addWidget(makeDivider(speakers));
    speakerColumn->addWidget(primarySection);
    speakerColumn->addWidget(makeDivider(speakers));
    speakerColumn->addWidget(secondarySection);
    column->addWidget(speakers);
    column->addWidget(makeDivider(this));

    openButton =
        makeCommandButton(QStringLiteral("macwindow"), Tint::Primary, QStringLiteral("openMainWindowButton"), this);
    connect(openButton, &QToolButton::clicked, this, &MenuBarView::openMainWindow);
    launchAtLogin = new QCheckBox(this);
    launchAtLogin->setObjectName(QStringLiteral("launchAtLoginCheckbox"));
    launchAtLogin->setFont(fontFor(TextStyle::Caption, base));
    connect(launchAtLogin, &QCheckBox::clicked, this, [this](bool checked) { appState.setLaunchAtLogin(checked); });
    column->addWidget(openButton, 0, Qt::AlignLeading);
    column->addWidget(launchAtLogin, 0, Qt::AlignLeading);
    column->addWidget(makeDivider(this));

    quitButton = makeCommandButton(QStringLiteral("power"), Tint::Red, QStringLiteral("quitButton"), this);
    applyTint(quitButton, Tint::Red);
    connect(quitButton, &QToolButton::clicked, this, [this] {
        // No confirmation and no clean-up: a stacked device stays until the next start removes it.
        if (quit) {
            quit();
        } else {
            QCoreApplication::quit();
        }
    });
    column->addWidget(quitButton, 0, Qt::AlignLeading);

    redrawOnChanges(appState, lang, this, &MenuBarView::redraw);
    redraw();
}

void MenuBarView::redraw()
{
    setLayoutDirection(lang.layoutDirection());
    const bool on = appState.isQuellonOn();
    statusDot->setOn(on);

    const bool canSync = appState.canEnableSync();
    syncSwitch->setText(lang.translate(QStringLiteral("Enable Sync")));
    syncSwitch->setChecked(on);
    syncSwitch->setVisible(canSync);
    syncCaption->setText(lang.translate(QStringLiteral("Select two different devices")));
    syncCaption->setVisible(!canSync);

    speakers->setVisible(on);
    primarySection->redraw(lang.translate(QStringLiteral("Primary Speaker")));
    secondarySection->redraw(lang.translate(QStringLiteral("Secondary Speaker")));

    openButton->setText(lang.translate(QStringLiteral("Open Main Window")));
    launchAtLogin->setText(lang.translate(QStringLiteral("Launch at Login")));
    {
        const QSignalBlocker quiet(launchAtLogin);
        launchAtLogin->setChecked(appState.launchAtLogin());
    }
    quitButton->setText(lang.translate(QStringLiteral("Quit")));
    if (isWindow()) {
        adjustSize();
    }
}

QSize MenuBarView::sizeHint() const
{
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(kWidth) : layout()->totalSizeHint().height();
    return {kWidth, height};
}

void MenuBarView::openMainWindow()
{
    ui::openMainWindow(openWindow);
    emit mainWindowShown();
}

} // namespace orvanta::ui
