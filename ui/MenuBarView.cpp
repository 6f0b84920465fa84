#include "MenuBarView.h"

#include "RedrawOnChanges.h"

#include "MainWindowLookup.h"
#include "SpeakerSection.h"
#include "Symbols.h"
#include "ToggleSwitch.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QSignalBlocker>
#include <QToolButton>

#include <algorithm>

namespace orvanta::ui {

MenuBarView::MenuBarView(state::AppState& state, i18n::LanguageManager& languageManager, OpenWindowAction openAction,
                         QuitAction quitAction, QWidget* parent)
    : QWidget(parent), appState(state), lang(languageManager), openWindow(std::move(openAction)),
      quit(std::move(quitAction))
{
    setObjectName(QStringLiteral("panel"));
    // A screen reader names the panel after the program, like its window.
    setAccessibleName(QStringLiteral("Orvanta"));
    setMinimumWidth(kWidth);
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
    auto* primarySection = new SpeakerSection(lang, appState, Speaker::Primary, SpeakerSection::Place::Panel, speakers);
    auto* secondarySection =
        new SpeakerSection(lang, appState, Speaker::Secondary, SpeakerSection::Place::Panel, speakers);
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
    restoreSync = new QCheckBox(this);
    restoreSync->setObjectName(QStringLiteral("restoreSyncCheckbox"));
    restoreSync->setFont(fontFor(TextStyle::Caption, base));
    connect(restoreSync, &QCheckBox::clicked, this, [this](bool checked) { appState.setRestoreSyncAtStart(checked); });
    column->addWidget(openButton, 0, Qt::AlignLeading);
    column->addWidget(launchAtLogin, 0, Qt::AlignLeading);
    column->addWidget(restoreSync, 0, Qt::AlignLeading);
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

    openButton->setText(lang.translate(QStringLiteral("Open Main Window")));
    launchAtLogin->setText(lang.translate(QStringLiteral("Launch at Login")));
    {
        const QSignalBlocker quiet(launchAtLogin);
        launchAtLogin->setChecked(appState.launchAtLogin());
    }
    restoreSync->setText(lang.translate(QStringLiteral("Restore sync at start")));
    {
        const QSignalBlocker quiet(restoreSync);
        restoreSync->setChecked(appState.restoreSyncAtStart());
    }
    quitButton->setText(lang.translate(QStringLiteral("Quit")));
    if (isWindow()) {
        adjustSize();
    }
}

// kWidth wide, or wider where a language's one-line text needs more, so that none is cut.
QSize MenuBarView::sizeHint() const
{
    const int width = std::max(kWidth, layout()->totalMinimumSize().width());
    const int height =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : layout()->totalSizeHint().height();
    return {width, height};
}

void MenuBarView::focusFirstControl()
{
    for (QWidget* next = nextInFocusChain(); next != this && isAncestorOf(next); next = next->nextInFocusChain()) {
        if ((next->focusPolicy() & Qt::TabFocus) != 0 && next->isVisibleTo(this) && next->isEnabled()) {
            next->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void MenuBarView::openMainWindow()
{
    ui::openMainWindow(openWindow);
    emit mainWindowShown();
}

} // namespace orvanta::ui
