#include "ContentView.h"

#include "MeasureButton.h"
#include "RedrawOnChanges.h"

#include "FooterButtons.h"
#include "PermissionBanner.h"
#include "SettingsSaveNotice.h"
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
    auto* name = makeTextLabel(TextStyle::Title, QStringLiteral("productName"), header);
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
    outputsTitle = makeTextLabel(TextStyle::Headline, QStringLiteral("outputsTitle"), group);
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

    primaryTitle = makeTextLabel(TextStyle::Caption, QStringLiteral("primaryTitle"), group);
    primaryTitle->setFont(bold(primaryTitle->font()));
    primaryPicker = new QComboBox(group);
    primaryPicker->setObjectName(QStringLiteral("primaryPicker"));
    secondaryTitle = makeTextLabel(TextStyle::Caption, QStringLiteral("secondaryTitle"), group);
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
    balanceTitle = makeTextLabel(TextStyle::Headline, QStringLiteral("balanceTitle"), balance);
    primaryBlock = new SpeakerBlock(lang, appState, Speaker::Primary, balance);
    secondaryBlock = new SpeakerBlock(lang, appState, Speaker::Secondary, balance);

    delayNote = new RoundedPanel(Tint::Blue, 0.08, 6, balance);
    delayNote->setObjectName(QStringLiteral("delayNote"));
    auto* noteRow = new QHBoxLayout(delayNote);
    noteRow->setContentsMargins(8, 8, 8, 8);
    noteRow->setSpacing(6);
    auto* info = new SymbolView(QStringLiteral("info.circle.fill"), Tint::Blue, symbolSize(TextStyle::Caption, font()),
                                delayNote);
    delayNoteText = makeTextLabel(TextStyle::Caption2, QStringLiteral("delayNoteText"), delayNote, true);
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
