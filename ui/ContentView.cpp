#include "ContentView.h"

#include "MeasureButton.h"
#include "RedrawOnChanges.h"

#include "SettingsSaveNotice.h"
#include "SpeakerBlock.h"
#include "Symbols.h"
#include "ToggleSwitch.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "audio/AudioWrapper.h"
#include "i18n/LanguageManager.h"
#include "services/AccessibilityTrust.h"
#include "services/Alerts.h"
#include "services/BundleInfo.h"
#include "services/Workspace.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"
#include "update/SiteAddresses.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolButton>
#include <QUrl>

#include <algorithm>

namespace orvanta::ui {
namespace {

const QString kProductName = QStringLiteral("Orvanta");
const QString kBluetoothPrefix = QStringLiteral("Bluetooth device detected: ");
const QString kBluetoothRemainder =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumePrefix = QStringLiteral("Volume control not supported: ");
const QString kVolumeRemainder = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

QLabel* makeLabel(TextStyle style, const QString& objectName, QWidget* parent, bool wrap = false)
{
    auto* label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setFont(fontFor(style, parent->font()));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wrap);
    alignByLayout(label, Qt::AlignLeading | Qt::AlignVCenter);
    return label;
}

QFont bold(QFont font)
{
    font.setBold(true);
    return font;
}

// The support button: a symbol and a text, centred on a lightly tinted rounded rectangle that is
// all of it clickable.
class SupportButton final : public QPushButton
{
public:
    explicit SupportButton(QWidget* parent) : QPushButton(parent)
    {
        setFlat(true);
        setCursor(Qt::PointingHandCursor);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        QFont medium = font();
        medium.setWeight(QFont::Medium);
        setFont(medium);
    }

    QSize sizeHint() const override
    {
        const QFontMetrics metrics(font());
        const int symbol = metrics.height();
        return {symbol + 6 + metrics.horizontalAdvance(text()) + 16, std::max(symbol, metrics.height()) + 16};
    }
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor fill = tintColor(Tint::Secondary, palette());
        fill.setAlphaF(isDown() ? 0.2f : (underMouse() ? 0.15f : 0.1f));
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), 8, 8);
        if (hasFocus()) {
            painter.setPen(QPen(tintColor(Tint::Accent, palette()), 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), 8, 8);
        }

        const QFontMetrics metrics(font());
        const int symbol = metrics.height();
        const QString shown = metrics.elidedText(text(), Qt::ElideRight, std::max(0, width() - symbol - 6 - 16));
        const int textWidth = metrics.horizontalAdvance(shown) + 1;
        const int contentWidth = symbol + 6 + textWidth;
        const int left = (width() - contentWidth) / 2;
        const bool rtl = layoutDirection() == Qt::RightToLeft;
        const QRect symbolRect(rtl ? left + textWidth + 6 : left, (height() - symbol) / 2, symbol, symbol);
        const QRect textRect(rtl ? left : left + symbol + 6, 0, textWidth, height());
        painter.drawPixmap(symbolRect, symbolPixmap(QStringLiteral("cup.and.saucer.fill"),
                                                    tintColor(Tint::Primary, palette()), symbol, devicePixelRatioF()));
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(textRect, static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine, shown);
    }

    void enterEvent(QEnterEvent* event) override
    {
        QPushButton::enterEvent(event);
        update();
    }
    void leaveEvent(QEvent* event) override
    {
        QPushButton::leaveEvent(event);
        update();
    }
};

// A text that opens a web page, drawn like a link.
class LinkButton final : public QPushButton
{
public:
    explicit LinkButton(QWidget* parent) : QPushButton(parent)
    {
        setFlat(true);
        setCursor(Qt::PointingHandCursor);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setFont(fontFor(TextStyle::Small, parent->font()));
    }

    QSize sizeHint() const override
    {
        const QFontMetrics metrics(font());
        return {metrics.horizontalAdvance(text()) + 2, metrics.height() + 2};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        QFont shown = font();
        shown.setUnderline(underMouse() || hasFocus());
        painter.setFont(shown);
        painter.setPen(isDark(palette()) ? tintColor(Tint::Blue, palette()).lighter(115)
                                         : palette().color(QPalette::Link));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
    void enterEvent(QEnterEvent* event) override
    {
        QPushButton::enterEvent(event);
        update();
    }
    void leaveEvent(QEvent* event) override
    {
        QPushButton::leaveEvent(event);
        update();
    }
};

QString joinedNames(const std::vector<std::string>& names)
{
    QStringList list;
    for (const auto& name : names) {
        list.append(QString::fromStdString(name));
    }
    return list.join(QStringLiteral(", "));
}

} // namespace

ContentView::ContentView(i18n::LanguageManager& languageManager, state::AppState& state, ViewServices viewServices,
                         QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state), services(std::move(viewServices))
{
    lastTrusted = appState.isTrusted();
    setFixedWidth(kWidth);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    build();

    // Any announced change redraws the whole column, as a declarative view would.
    redrawOnChanges(appState, lang, this, &ContentView::redraw);
    connect(&appState, &state::AppState::isTrustedChanged, this, &ContentView::trustChanged);
    redraw();
}

void ContentView::build()
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(20);
    column->addWidget(buildHeader());
    column->addWidget(buildBanner());
    column->addWidget(new SettingsSaveNotice(lang, appState, this));
    column->addWidget(buildOutputs());

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
    column->addWidget(buildBalance());
    column->addWidget(buildNotes());
    column->addWidget(buildFooter());
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
    auto* name = makeLabel(TextStyle::Title, QStringLiteral("productName"), header);
    name->setFont(bold(name->font()));
    name->setText(kProductName);
    languagePicker = new QComboBox(header);
    languagePicker->setObjectName(QStringLiteral("languagePicker"));
    languagePicker->setFixedWidth(120);
    languagePicker->addItems(lang.languages());
    connect(languagePicker, &QComboBox::activated, this,
            [this](int index) { lang.setCurrentLanguage(languagePicker->itemText(index)); });
    row->addWidget(icon);
    row->addWidget(name);
    row->addStretch(1);
    row->addWidget(languagePicker);
    return header;
}

QWidget* ContentView::buildBanner()
{
    // The banner is inset by 5 on both sides, within the column's own margins.
    auto* outer = new QWidget(this);
    auto* outerLayout = new QHBoxLayout(outer);
    outerLayout->setContentsMargins(5, 0, 5, 0);
    banner = new RoundedPanel(Tint::Red, 0.85, 10, outer);
    banner->setObjectName(QStringLiteral("permissionBanner"));
    outerLayout->addWidget(banner);

    auto* row = new QHBoxLayout(banner);
    row->setContentsMargins(12, 12, 12, 12);
    row->setSpacing(10);
    auto* shield =
        new SymbolView(QStringLiteral("lock.shield.fill"), Tint::White, symbolSize(TextStyle::Title2, font()), banner);
    row->addWidget(shield, 0, Qt::AlignTop);

    auto* texts = new QVBoxLayout();
    texts->setSpacing(4);
    bannerTitle = makeLabel(TextStyle::Headline, QStringLiteral("bannerTitle"), banner);
    applyTint(bannerTitle, Tint::White);
    bannerText = makeLabel(TextStyle::Caption, QStringLiteral("bannerText"), banner, true);
    QPalette textColors = bannerText->palette();
    textColors.setColor(QPalette::WindowText, QColor(255, 255, 255, 242));
    bannerText->setPalette(textColors);
    settingsButton = new QPushButton(banner);
    settingsButton->setObjectName(QStringLiteral("openSystemSettingsButton"));
    settingsButton->setFont(fontFor(TextStyle::Caption, font()));
    settingsButton->setCursor(Qt::PointingHandCursor);
    settingsButton->setStyleSheet(
        QStringLiteral("QPushButton { background: #ffffff; color: #000000; border: none; border-radius: 5px;"
                       " padding: 3px 10px; }"
                       "QPushButton:hover { background: #f0f0f0; }"
                       "QPushButton:pressed { background: #dcdcdc; }"));
    connect(settingsButton, &QPushButton::clicked, this, [this] { services.trust.promptForTrust(); });
    texts->addWidget(bannerTitle);
    texts->addWidget(bannerText);
    texts->addSpacing(4);
    texts->addWidget(settingsButton, 0, Qt::AlignLeading);
    row->addLayout(texts, 1);
    return outer;
}

QWidget* ContentView::buildOutputs()
{
    auto* group = new QGroupBox(this);
    group->setObjectName(QStringLiteral("audioOutputs"));
    auto* column = new QVBoxLayout(group);
    column->setContentsMargins(10, 8, 10, 10);
    column->setSpacing(5);

    auto* titleRow = new QHBoxLayout();
    outputsTitle = makeLabel(TextStyle::Headline, QStringLiteral("outputsTitle"), group);
    refreshButton = new QToolButton(group);
    refreshButton->setObjectName(QStringLiteral("refreshButton"));
    refreshButton->setAutoRaise(true);
    refreshButton->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    refreshButton->setIcon(symbolIcon(QStringLiteral("arrow.clockwise"), Tint::Primary));
    refreshButton->setFont(fontFor(TextStyle::Caption, font()));
    const int refreshSymbol = symbolSize(TextStyle::Caption, font());
    refreshButton->setIconSize(QSize(refreshSymbol, refreshSymbol));
    refreshButton->setCursor(Qt::PointingHandCursor);
    connect(refreshButton, &QToolButton::clicked, this, &ContentView::refreshDevices);
    titleRow->addWidget(outputsTitle);
    titleRow->addStretch(1);
    titleRow->addWidget(refreshButton);
    column->addLayout(titleRow);
    column->addSpacing(5);

    primaryTitle = makeLabel(TextStyle::Caption, QStringLiteral("primaryTitle"), group);
    primaryTitle->setFont(bold(primaryTitle->font()));
    primaryPicker = new QComboBox(group);
    primaryPicker->setObjectName(QStringLiteral("primaryPicker"));
    secondaryTitle = makeLabel(TextStyle::Caption, QStringLiteral("secondaryTitle"), group);
    secondaryTitle->setFont(bold(secondaryTitle->font()));
    secondaryPicker = new QComboBox(group);
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

    soundSystemLabel = makeLabel(TextStyle::Caption2, QStringLiteral("soundSystemLabel"), group, true);
    applyTint(soundSystemLabel, Tint::Secondary);
    soundSystemLabel->setText(services.soundSystem);
    soundSystemLabel->setVisible(!services.soundSystem.isEmpty());
    column->addSpacing(2);
    column->addWidget(soundSystemLabel);
    return group;
}

QWidget* ContentView::buildBalance()
{
    balance = new QWidget(this);
    balance->setObjectName(QStringLiteral("balanceSection"));
    auto* column = new QVBoxLayout(balance);
    column->setContentsMargins(16, 0, 16, 0);
    column->setSpacing(18);
    balanceTitle = makeLabel(TextStyle::Headline, QStringLiteral("balanceTitle"), balance);
    primaryBlock = new SpeakerBlock(lang, appState, Speaker::Primary, balance);
    secondaryBlock = new SpeakerBlock(lang, appState, Speaker::Secondary, balance);

    delayNote = new RoundedPanel(Tint::Blue, 0.08, 6, balance);
    delayNote->setObjectName(QStringLiteral("delayNote"));
    auto* noteRow = new QHBoxLayout(delayNote);
    noteRow->setContentsMargins(8, 8, 8, 8);
    noteRow->setSpacing(6);
    auto* info = new SymbolView(QStringLiteral("info.circle.fill"), Tint::Blue, symbolSize(TextStyle::Caption, font()),
                                delayNote);
    delayNoteText = makeLabel(TextStyle::Caption2, QStringLiteral("delayNoteText"), delayNote, true);
    applyTint(delayNoteText, Tint::Secondary);
    noteRow->addWidget(info, 0, Qt::AlignTop);
    noteRow->addWidget(delayNoteText, 1);

    column->addWidget(balanceTitle);
    column->addWidget(primaryBlock);
    column->addWidget(secondaryBlock);
    column->addWidget(delayNote);
    column->addWidget(new MeasureButton(lang, appState, services.measurement, balance), 0, Qt::AlignLeading);
    return balance;
}

QWidget* ContentView::buildNotes()
{
    auto* notes = new QWidget(this);
    notes->setObjectName(QStringLiteral("notes"));
    auto* column = new QVBoxLayout(notes);
    column->setContentsMargins(0, 5, 0, 0);
    column->setSpacing(6);
    notesTitle = makeLabel(TextStyle::Caption, QStringLiteral("notesTitle"), notes);
    notesTitle->setFont(bold(notesTitle->font()));
    applyTint(notesTitle, Tint::Gray);

    auto* warningRow = new QHBoxLayout();
    warningRow->setSpacing(6);
    auto* triangle = new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), Tint::Yellow,
                                    symbolSize(TextStyle::Caption, font()), notes);
    warningText = makeLabel(TextStyle::Caption2, QStringLiteral("warningText"), notes, true);
    warningRow->addWidget(triangle, 0, Qt::AlignTop);
    warningRow->addWidget(warningText, 1);

    keepRunningText = makeLabel(TextStyle::Caption2, QStringLiteral("keepRunningText"), notes, true);
    applyTint(keepRunningText, Tint::Gray);
    volumeKeysText = makeLabel(TextStyle::Caption2, QStringLiteral("volumeKeysText"), notes, true);
    applyTint(volumeKeysText, Tint::Gray);

    column->addWidget(notesTitle);
    column->addLayout(warningRow);
    column->addWidget(keepRunningText);
    column->addWidget(volumeKeysText);
    return notes;
}

QWidget* ContentView::buildFooter()
{
    auto* footer = new QWidget(this);
    auto* column = new QVBoxLayout(footer);
    column->setContentsMargins(0, 5, 0, 0);
    column->setSpacing(0);

    supportButton = new SupportButton(footer);
    supportButton->setObjectName(QStringLiteral("supportButton"));
    connect(supportButton, &QPushButton::clicked, this, [this] { openAddress(update::donationAddress()); });
    column->addWidget(supportButton);
    column->addSpacing(20 + 2);

    auto* links = new QHBoxLayout();
    links->setSpacing(10);
    privacyLink = new LinkButton(footer);
    privacyLink->setObjectName(QStringLiteral("privacyLink"));
    connect(privacyLink, &QPushButton::clicked, this, [this] { openAddress(update::privacyPolicyAddress()); });
    auto* dot = makeLabel(TextStyle::Small, QStringLiteral("linkSeparator"), footer);
    dot->setText(QStringLiteral("•"));
    applyTint(dot, Tint::Secondary);
    termsLink = new LinkButton(footer);
    termsLink->setObjectName(QStringLiteral("termsLink"));
    connect(termsLink, &QPushButton::clicked, this, [this] { openAddress(update::termsOfUseAddress()); });
    links->addStretch(1);
    links->addWidget(privacyLink);
    links->addWidget(dot);
    links->addWidget(termsLink);
    links->addStretch(1);
    column->addLayout(links);

    versionLabel = makeLabel(TextStyle::Tiny, QStringLiteral("versionLabel"), footer);
    alignByLayout(versionLabel, Qt::AlignCenter);
    applyTint(versionLabel, Tint::Secondary);
    const std::optional<QString> version =
        services.bundle != nullptr ? services.bundle->shortVersionString() : std::nullopt;
    versionLabel->setText(version ? QStringLiteral("v") + *version : QString());
    versionLabel->setVisible(version.has_value());
    column->addSpacing(20 + 2);
    column->addWidget(versionLabel);
    return footer;
}

void ContentView::redraw()
{
    setLayoutDirection(lang.layoutDirection());
    const auto tr = [this](const char* key) { return lang.translate(QString::fromUtf8(key)); };

    {
        const QSignalBlocker quiet(languagePicker);
        languagePicker->setCurrentIndex(static_cast<int>(lang.languages().indexOf(lang.currentLanguage())));
    }

    banner->parentWidget()->setVisible(!appState.isTrusted());
    bannerTitle->setText(tr("Permission Required"));
    // On X11 the keys are held by another program until the user frees them; a session without
    // X11 cannot give them to any program, which is worth saying plainly.
    if (QGuiApplication::platformName() == QStringLiteral("xcb")) {
        bannerText->setText(tr("keys_taken_reason") + u'\n' + tr("keys_taken_text"));
    } else {
        bannerText->setText(tr("keys_wayland_text"));
    }
    settingsButton->setText(tr("Open System Settings"));

    outputsTitle->setText(tr("Audio Outputs"));
    refreshButton->setText(tr("Refresh"));
    refreshButton->setToolTip(tr("Detect new devices"));
    primaryTitle->setText(tr("Primary Speaker"));
    secondaryTitle->setText(tr("Secondary Speaker"));
    redrawPickers();

    syncSwitch->setText(tr("Enable Sync"));
    syncSwitch->setChecked(appState.isQuellonOn());
    syncSwitch->setEnabled(appState.canEnableSync());

    balance->setVisible(appState.isQuellonOn());
    balanceTitle->setText(tr("Hardware Balance"));
    primaryBlock->redraw();
    secondaryBlock->redraw();
    const auto& overrides = appState.manualBluetoothOverrides();
    delayNote->setVisible(isTreatedAsBluetooth(appState.selectedDevice1(), overrides) ||
                          isTreatedAsBluetooth(appState.selectedDevice2(), overrides));
    delayNoteText->setText(tr("delay_note"));

    notesTitle->setText(tr("NOTES:"));
    warningText->setText(tr("WARNING: Sound plays through SELECTED speakers even if headphones are plugged in."));
    keepRunningText->setText(tr("• Keep app running to use volume keys."));
    volumeKeysText->setText(tr("• Volume keys adjust all speakers together."));

    supportButton->setText(tr("Support the Developer"));
    supportButton->updateGeometry();
    privacyLink->setText(tr("Privacy Policy"));
    privacyLink->updateGeometry();
    termsLink->setText(tr("Terms of Use"));
    termsLink->updateGeometry();

    updateGeometry();
}

void ContentView::redrawPickers()
{
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

void ContentView::fillPicker(QComboBox* picker)
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

void ContentView::showSelection(QComboBox* picker, const state::OptionalDevice& selected)
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

void ContentView::choose(QComboBox* picker, int index)
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

void ContentView::refreshDevices()
{
    appState.setDevices(services.audio.getOutputDevices());
}

void ContentView::syncOn()
{
    if (!appState.canEnableSync()) {
        errorMessage = lang.translate(QStringLiteral("Select two different devices"));
        showErrorAlert = true;
        scheduleAlerts();
        return;
    }
    appState.enableSync();

    const auto& primary = appState.selectedDevice1();
    const auto& secondary = appState.selectedDevice2();
    if (primary && secondary) {
        // Asked afresh of the audio layer: neither the catalogue's flag nor the user's mark.
        std::vector<std::string> bluetoothNames;
        for (const auto* device : {&*primary, &*secondary}) {
            if (services.audio.isBluetoothDevice(device->uid)) {
                bluetoothNames.push_back(device->name);
            }
        }
        if (!bluetoothNames.empty()) {
            bluetoothWarningMessage =
                lang.translate(kBluetoothPrefix + joinedNames(bluetoothNames) + kBluetoothRemainder);
            showBluetoothWarning = true;
        }

        std::vector<std::string> softwareOnly;
        for (const auto* device : {&*primary, &*secondary}) {
            if (!services.audio.supportsHardwareVolume(device->uid)) {
                softwareOnly.push_back(device->name);
            }
        }
        if (!softwareOnly.empty() && appState.isQuellonOn()) {
            volumeWarningMessage = lang.translate(kVolumePrefix + joinedNames(softwareOnly) + kVolumeRemainder);
            showVolumeWarning = true;
        }
    }
    scheduleAlerts();
}

void ContentView::syncOff()
{
    appState.disableSync();
}

void ContentView::trustChanged()
{
    // The poll announces the flag every second; only a change to true starts the key tap.
    const bool trusted = appState.isTrusted();
    if (trusted && !lastTrusted && appState.isQuellonOn()) {
        services.mediaKeys.start();
    }
    lastTrusted = trusted;
    QWidget* bannerArea = banner->parentWidget();
    if (bannerArea->isHidden() != trusted) {
        bannerArea->setVisible(!trusted);
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
    // One at a time; each flag is cleared when its alert is dismissed.
    while (hasPendingAlerts()) {
        if (showErrorAlert) {
            services.alerts.runModal({lang.translate(QStringLiteral("Audio Sync Error")), errorMessage, ok});
            showErrorAlert = false;
        } else if (showVolumeWarning) {
            services.alerts.runModal(
                {lang.translate(QStringLiteral("Volume Control Warning")), volumeWarningMessage, ok});
            showVolumeWarning = false;
        } else if (showBluetoothWarning) {
            services.alerts.runModal(
                {lang.translate(QStringLiteral("Bluetooth Audio Latency")), bluetoothWarningMessage, ok});
            showBluetoothWarning = false;
        }
    }
    presenting = false;
}

void ContentView::openAddress(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        return;
    }
    services.workspace.openUrl(url);
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
