#include "SoundSystemNotice.h"

#include "Symbols.h"
#include "Widgets.h"
#include "i18n/LanguageManager.h"
#include "services/SoundSystemStatus.h"

#include <QBoxLayout>
#include <QLabel>

namespace orvanta::ui {
namespace {

using State = services::SoundSystemStatus::State;

QString statusKey(State state)
{
    switch (state) {
    case State::Connected:
        return QStringLiteral("status_connected");
    case State::Connecting:
        return QStringLiteral("status_connecting");
    case State::NotAnswering:
        return QStringLiteral("status_not_answering");
    case State::Simulated:
        break;
    }
    return QStringLiteral("simulated_text");
}

} // namespace

SoundSystemNotice::SoundSystemNotice(i18n::LanguageManager& languageManager, services::SoundSystemStatus* soundSystem,
                                     QWidget* parent)
    : QObject(parent), lang(languageManager), status(soundSystem)
{
    statusLine = new QLabel(parent);
    statusLine->setObjectName(QStringLiteral("soundSystemLabel"));
    statusLine->setFont(fontFor(TextStyle::Caption2, parent->font()));
    statusLine->setTextFormat(Qt::PlainText);
    statusLine->setWordWrap(true);
    alignByLayout(statusLine, Qt::AlignLeading | Qt::AlignVCenter);
    applyTint(statusLine, Tint::Secondary);

    auto* panel = new RoundedPanel(Tint::Yellow, 0.3, 6, parent);
    panel->setObjectName(QStringLiteral("simulatedNotice"));
    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(8, 8, 8, 8);
    row->setSpacing(6);
    auto* triangle = new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), Tint::Yellow,
                                    symbolSize(TextStyle::Caption, parent->font()), panel);
    simulatedText = new QLabel(panel);
    simulatedText->setObjectName(QStringLiteral("simulatedText"));
    QFont strong = fontFor(TextStyle::Caption, parent->font());
    strong.setBold(true);
    simulatedText->setFont(strong);
    simulatedText->setTextFormat(Qt::PlainText);
    simulatedText->setWordWrap(true);
    alignByLayout(simulatedText, Qt::AlignLeading | Qt::AlignVCenter);
    row->addWidget(triangle, 0, Qt::AlignTop);
    row->addWidget(simulatedText, 1);
    simulatedNotice = panel;

    if (status != nullptr) {
        connect(status, &services::SoundSystemStatus::stateChanged, this, &SoundSystemNotice::redraw);
    }
    redraw();
}

QWidget* SoundSystemNotice::line() const
{
    return statusLine;
}

void SoundSystemNotice::redraw()
{
    const bool simulated = status != nullptr && status->state() == State::Simulated;
    QString text = status != nullptr ? lang.translate(statusKey(status->state())) : QString();
    // The server's product name is the same in every language.
    if (status != nullptr && status->state() == State::Connected && !status->serverName().isEmpty()) {
        text += QStringLiteral(" (%1)").arg(status->serverName());
    }
    statusLine->setText(simulated ? QString() : text);
    statusLine->setVisible(status != nullptr && !simulated);
    simulatedText->setText(simulated ? text : QString());
    simulatedNotice->setAccessibleName(simulatedText->text());
    simulatedNotice->setVisible(simulated);
}

} // namespace orvanta::ui
