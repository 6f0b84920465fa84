#include "MeasureButton.h"

#include "MeasureDialog.h"
#include "RedrawOnChanges.h"
#include "services/DelayMeasurement.h"

namespace orvanta::ui {

MeasureButton::MeasureButton(i18n::LanguageManager& languageManager, state::AppState& state,
                             services::DelayMeasurement* delayMeasurement, QWidget* parent)
    : QPushButton(parent), lang(languageManager), appState(state), measurement(delayMeasurement)
{
    setObjectName(QStringLiteral("measureButton"));
    setCursor(Qt::PointingHandCursor);
    connect(this, &QPushButton::clicked, this, &MeasureButton::openDialog);
    redrawOnChanges(appState, lang, this, &MeasureButton::redraw);
    redraw();
}

void MeasureButton::redraw()
{
    setText(lang.translate(QStringLiteral("Measure with microphone…")));
    setVisible(measurement != nullptr && appState.isQuellonOn() && measurement->canMeasure());
}

void MeasureButton::openDialog()
{
    if (!measurement || !measurement->canMeasure()) {
        return;
    }
    auto* dialog = new MeasureDialog(lang, appState, *measurement, window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setObjectName(QStringLiteral("measureDialog"));
    dialog->open();
}

} // namespace orvanta::ui
