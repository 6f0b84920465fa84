// The views at larger text: at 1.0, 1.25 and 1.5 times the desktop's font, every one-line text
// is as wide as it needs (percentages, delays, language names).

#include "ScaledViews.h"

#include "ui/ContentView.h"
#include "ui/MainWindow.h"
#include "ui/MenuBarView.h"
#include "ui/Widgets.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>

#include <memory>

namespace orvanta::testing {
namespace {

class TextFit : public ScaledViews
{
protected:
    // Every one-line text shown in root is as wide as its text needs.
    static void expectNothingCut(const QWidget* root, const std::string& where)
    {
        for (const QLabel* label : root->findChildren<QLabel*>()) {
            if (!shown(label) || label->wordWrap() || label->text().isEmpty() ||
                qobject_cast<const ui::ElidedLabel*>(label) != nullptr) {
                continue;
            }
            const int needed = label->fontMetrics().horizontalAdvance(label->text());
            EXPECT_GE(label->contentsRect().width(), needed)
                << where << ": " << label->objectName().toStdString() << " \"" << label->text().toStdString() << "\"";
        }
        for (const QAbstractButton* button : root->findChildren<QAbstractButton*>()) {
            if (shown(button) && !button->text().isEmpty()) {
                EXPECT_GE(button->width(), button->sizeHint().width())
                    << where << ": " << button->objectName().toStdString();
            }
        }
    }
};

TEST_P(TextFit, TheMainWindowCutsNoTextInAnyLanguage)
{
    syncTwoBluetoothSpeakers();
    ui::MainWindow window(lang, *appState, services());
    window.show();
    for (const QString& language : {QStringLiteral("English"), QStringLiteral("Bahasa Indonesia"),
                                    QStringLiteral("Deutsch"), QStringLiteral("Кыргызча")}) {
        lang.setCurrentLanguage(language);
        drainEvents();
        expectNothingCut(window.content(), language.toStdString() + " at " + std::to_string(scale));
        // The language picker is as wide as its longest name.
        auto* picker = child<QComboBox>(window.content(), "languagePicker");
        EXPECT_GE(picker->width(), picker->fontMetrics().horizontalAdvance(QStringLiteral("Bahasa Indonesia")));
        EXPECT_EQ(window.content()->width(), 420);
    }
}

TEST_P(TextFit, ThePanelShowsWholePercentagesAndDelays)
{
    syncTwoBluetoothSpeakers();
    ui::MenuBarView panel(*appState, lang, {}, {});
    panel.show();
    drainEvents();
    auto* primary = child<QWidget>(&panel, "primarySection");
    EXPECT_EQ(child<QLabel>(primary, "percentLabel")->text(), "100%");
    EXPECT_EQ(child<QLabel>(primary, "delayLabel")->text(), "595 ms");
    expectNothingCut(&panel, "panel at " + std::to_string(scale));
    for (const QString& label : {QStringLiteral("percentLabel"), QStringLiteral("delayLabel")}) {
        const auto* shownLabel = child<QLabel>(primary, label.toLatin1().constData());
        RecordProperty(label.toStdString() + "Width", shownLabel->width());
        RecordProperty(label.toStdString() + "Needed", shownLabel->fontMetrics().horizontalAdvance(shownLabel->text()));
    }
}

INSTANTIATE_TEST_SUITE_P(TextSizes, TextFit, ::testing::Values(1.0, 1.25, 1.5));

} // namespace
} // namespace orvanta::testing
