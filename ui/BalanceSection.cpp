#include "BalanceSection.h"

#include "MeasureButton.h"
#include "SpeakerSection.h"
#include "Symbols.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QBoxLayout>

namespace orvanta::ui {

BalanceSection::BalanceSection(i18n::LanguageManager& languageManager, state::AppState& state,
                               services::DelayMeasurement* measurement, QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state)
{
    setObjectName(QStringLiteral("balanceSection"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 0, 16, 0);
    column->setSpacing(18);
    title = makeTextLabel(TextStyle::Headline, QStringLiteral("balanceTitle"), this);
    auto* primary = new SpeakerSection(lang, appState, Speaker::Primary, SpeakerSection::Place::Window, this);
    auto* secondary = new SpeakerSection(lang, appState, Speaker::Secondary, SpeakerSection::Place::Window, this);

    delayNote = new RoundedPanel(Tint::Blue, 0.08, 6, this);
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

    column->addWidget(title);
    column->addWidget(primary);
    column->addWidget(secondary);
    column->addWidget(delayNote);
    column->addWidget(new MeasureButton(lang, appState, measurement, this), 0, Qt::AlignLeading);
}

void BalanceSection::redraw()
{
    title->setText(lang.translate(QStringLiteral("Hardware Balance")));
    delayNote->setVisible(appState.countsAsBluetooth(appState.selectedDevice1()) ||
                          appState.countsAsBluetooth(appState.selectedDevice2()));
    delayNoteText->setText(lang.translate(QStringLiteral("delay_note")));
}

} // namespace orvanta::ui
