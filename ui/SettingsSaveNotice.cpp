#include "SettingsSaveNotice.h"

#include "Symbols.h"
#include "Theme.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QHBoxLayout>
#include <QLabel>

namespace orvanta::ui {

SettingsSaveNotice::SettingsSaveNotice(i18n::LanguageManager& languageManager, state::AppState& state, QWidget* parent)
    : QWidget(parent), lang(languageManager), appState(state)
{
    setObjectName(QStringLiteral("settingsSaveNotice"));
    auto* outer = new QHBoxLayout(this);
    outer->setContentsMargins(5, 0, 5, 0);
    auto* panel = new RoundedPanel(Tint::Yellow, 0.25, 10, this);
    outer->addWidget(panel);
    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(10, 8, 10, 8);
    row->setSpacing(8);
    row->addWidget(new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), Tint::Yellow,
                                  symbolSize(TextStyle::Caption, font()), panel),
                   0, Qt::AlignTop);
    text = new QLabel(panel);
    text->setObjectName(QStringLiteral("settingsSaveNoticeText"));
    text->setFont(fontFor(TextStyle::Caption, font()));
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    row->addWidget(text, 1);

    connect(&appState, &state::AppState::settingsSavedChanged, this, &SettingsSaveNotice::redraw);
    connect(&lang, &i18n::LanguageManager::currentLanguageChanged, this, &SettingsSaveNotice::redraw);
    redraw();
}

void SettingsSaveNotice::redraw()
{
    text->setText(lang.translate(QString::fromUtf8(kTextKey)));
    setVisible(!appState.settingsSaved());
}

} // namespace orvanta::ui
