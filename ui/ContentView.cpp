#include "ContentView.h"

#include "RedrawOnChanges.h"

#include "FooterButtons.h"
#include "PermissionBanner.h"
#include "SoundSystemNotice.h"
#include "SpeakerBlock.h"
#include "Symbols.h"
#include "ToggleSwitch.h"
#include "ViewRules.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "services/BundleInfo.h"
#include "services/SoundSystemStatus.h"
#include "state/AppState.h"
#include "update/SiteAddresses.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QToolButton>

#include <algorithm>

namespace orvanta::ui {
namespace {

const QString kProductName = QStringLiteral("Orvanta");

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
    if (services.soundSystem != nullptr) {
        connect(services.soundSystem, &platform::SoundSystemStatus::stateChanged, this,
                &ContentView::soundSystemChanged);
    }
    redraw();
}

void ContentView::build()
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(20);
    column->addWidget(buildHeader());
    banner = new PermissionBanner(lang, services.trust, this);
    column->addWidget(banner);
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
    soundSystem = new SoundSystemNotice(lang, services.soundSystem, group);
    column->addWidget(soundSystem->notice());

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

    column->addSpacing(2);
    column->addWidget(soundSystem->line());
    // A picker is read out by the label above it.
    primaryTitle->setBuddy(primaryPicker);
    secondaryTitle->setBuddy(secondaryPicker);
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

    banner->setVisible(!appState.isTrusted());
    banner->redraw();
    languagePicker->setAccessibleName(tr("Language"));
    soundSystem->redraw();

    outputsTitle->setText(tr("Audio Outputs"));
    refreshButton->setText(tr("Refresh"));
    refreshButton->setToolTip(tr("Detect new devices"));
    primaryTitle->setText(tr("Primary Speaker"));
    secondaryTitle->setText(tr("Secondary Speaker"));
    primaryPicker->setAccessibleName(primaryTitle->text());
    secondaryPicker->setAccessibleName(secondaryTitle->text());
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
