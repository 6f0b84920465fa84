#include "ContentView.h"

#include "BalanceSection.h"
#include "ContentFooter.h"
#include "OutputPickers.h"
#include "PermissionBanner.h"
#include "RedrawOnChanges.h"
#include "SettingsSaveNotice.h"
#include "Symbols.h"
#include "ToggleSwitch.h"
#include "Widgets.h"
#include "audio/AudioWrapper.h"
#include "i18n/LanguageManager.h"
#include "services/Alerts.h"
#include "services/SoundSystemStatus.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"
#include "state/SyncWarnings.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>

namespace orvanta::ui {

ContentView::ContentView(i18n::LanguageManager& languageManager, state::AppState& state, ViewServices viewServices,
                         QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state), services(std::move(viewServices))
{
    lastTrusted = appState.isTrusted();
    setFixedWidth(kWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(20);
    column->addWidget(buildHeader());
    banner = new PermissionBanner(lang, services.trust, this);
    column->addWidget(banner);
    column->addWidget(new SettingsSaveNotice(lang, appState, this));
    outputs = new OutputPickers(lang, appState, services.soundSystem, this);
    connect(outputs, &OutputPickers::refreshRequested, this, &ContentView::refreshDevices);
    column->addWidget(outputs);

    syncSwitch = new ToggleSwitch(ToggleSwitch::Size::Regular, this);
    syncSwitch->setObjectName(QStringLiteral("syncSwitch"));
    connect(syncSwitch, &ToggleSwitch::clicked, this, [this](bool checked) {
        if (checked) {
            syncOn();
        } else {
            syncOff();
        }
        redraw();
    });
    column->addWidget(syncSwitch);
    column->addWidget(makeDivider(this));
    balance = new BalanceSection(lang, appState, services.measurement, this);
    column->addWidget(balance);
    footer = new ContentFooter(lang, services.workspace, services.bundle, this);
    column->addWidget(footer);

    // Any announced change redraws the whole column, as a declarative view would.
    redrawOnChanges(appState, lang, this, &ContentView::redraw);
    connect(&appState, &state::AppState::isTrustedChanged, this, &ContentView::trustChanged);
    if (services.soundSystem != nullptr) {
        connect(services.soundSystem, &services::SoundSystemStatus::stateChanged, this,
                &ContentView::soundSystemChanged);
    }
    redraw();
}

QWidget* ContentView::buildHeader()
{
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("header"));
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 5);
    row->setSpacing(12);
    auto* icon = new AppIconView(45, 10, true, header);
    icon->setObjectName(QStringLiteral("headerIcon"));
    auto* name = makeTextLabel(TextStyle::Title, QStringLiteral("productName"), header);
    QFont bold = name->font();
    bold.setBold(true);
    name->setFont(bold);
    name->setText(QStringLiteral("Orvanta"));
    languagePicker = new QComboBox(header);
    languagePicker->setObjectName(QStringLiteral("languagePicker"));
    // As wide as its longest language name ("Bahasa Indonesia") needs, at any text size.
    languagePicker->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    languagePicker->addItems(lang.languages());
    connect(languagePicker, &QComboBox::activated, this,
            [this](int index) { lang.setCurrentLanguage(languagePicker->itemText(index)); });
    row->addWidget(icon);
    row->addWidget(name);
    row->addStretch(1);
    row->addWidget(languagePicker);
    return header;
}

void ContentView::redraw()
{
    setLayoutDirection(lang.layoutDirection());
    {
        const QSignalBlocker quiet(languagePicker);
        languagePicker->setCurrentIndex(static_cast<int>(lang.languages().indexOf(lang.currentLanguage())));
    }
    languagePicker->setAccessibleName(lang.translate(QStringLiteral("Language")));
    banner->setVisible(!appState.isTrusted());
    banner->redraw();
    outputs->redraw();

    syncSwitch->setText(lang.translate(QStringLiteral("Enable Sync")));
    syncSwitch->setChecked(appState.isQuellonOn());
    syncSwitch->setEnabled(appState.canEnableSync());

    balance->setVisible(appState.isQuellonOn());
    balance->redraw();
    footer->redraw();
    updateGeometry();
}

void ContentView::refreshDevices()
{
    appState.setDevices(services.audio.getOutputDevices());
}

void ContentView::syncOn()
{
    if (!appState.canEnableSync()) {
        pendingAlerts[ErrorAlert] =
            Alert{QStringLiteral("Audio Sync Error"), lang.translate(QStringLiteral("Select two different devices"))};
        scheduleAlerts();
        return;
    }
    appState.enableSync();
    for (const auto& warning : state::SyncWarnings(services.audio).afterEnableSync(appState)) {
        const AlertSlot slot = warning.kind == state::SyncWarning::Kind::Bluetooth ? BluetoothAlert : VolumeAlert;
        pendingAlerts[slot] = Alert{warning.title, lang.translate(warning.message)};
    }
    scheduleAlerts();
}

void ContentView::syncOff()
{
    appState.disableSync();
}

bool ContentView::hasPendingAlerts() const
{
    return std::any_of(pendingAlerts.begin(), pendingAlerts.end(), [](const auto& alert) { return alert.has_value(); });
}

void ContentView::trustChanged()
{
    // The poll announces the flag every second; only a change to true starts the key tap.
    const bool trusted = appState.isTrusted();
    if (trusted && !lastTrusted && appState.isQuellonOn()) {
        services.mediaKeys.start();
    }
    lastTrusted = trusted;
    if (banner->isHidden() != trusted) {
        banner->setVisible(!trusted);
    }
    if (!trusted) {
        banner->redraw();
    }
}

void ContentView::soundSystemChanged()
{
    // The server's devices arrive with the connection; the pickers list them at once.
    if (services.soundSystem->state() == services::SoundSystemStatus::State::Connected) {
        refreshDevices();
    }
}

void ContentView::scheduleAlerts()
{
    if (hasPendingAlerts() && !presenting) {
        QTimer::singleShot(0, this, &ContentView::presentAlerts);
    }
}

void ContentView::presentAlerts()
{
    if (presenting) {
        return;
    }
    presenting = true;
    const QStringList ok{lang.translate(QStringLiteral("OK"))};
    // One at a time, in slot order; each is cleared when it is dismissed.
    for (auto next = pendingAlerts.begin(); next != pendingAlerts.end();) {
        if (!next->has_value()) {
            ++next;
            continue;
        }
        const Alert alert = **next;
        services.alerts.runModal({lang.translate(alert.title), alert.message, ok});
        next->reset();
        next = pendingAlerts.begin();
    }
    presenting = false;
}

int ContentView::heightForWidth(int width) const
{
    return layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : layout()->totalSizeHint().height();
}

QSize ContentView::sizeHint() const
{
    return {kWidth, heightForWidth(kWidth)};
}

void ContentView::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    // Each appearance reads the device list again.
    refreshDevices();
}

void ContentView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateGeometry();
    }
}

} // namespace orvanta::ui
