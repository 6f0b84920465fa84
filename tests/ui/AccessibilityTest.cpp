// The views at larger text, for a screen reader and the keyboard: every control in the
// accessibility tree of the main window and of the tray panel has a name (the sliders name their
// speaker), the panel is in the tree under the program's name, Tab goes through the controls in
// the order they are seen, and no one-line text is cut in any language.

#include "UiFixture.h"

#include <QAccessible>
#include <QAccessibleInterface>

namespace orvanta::testing {
namespace {

using ::testing::IsSupersetOf;

// The names of the controls under iface that are not hidden, in tree order; each must have one.
void collectControlNames(QAccessibleInterface* iface, std::vector<QString>& names)
{
    if (iface == nullptr || iface->state().invisible) {
        return;
    }
    static const QList<QAccessible::Role> kControls{QAccessible::Slider,     QAccessible::ComboBox,
                                                    QAccessible::PushButton, QAccessible::CheckBox,
                                                    QAccessible::Button,     QAccessible::SpinBox};
    if (kControls.contains(iface->role())) {
        names.push_back(iface->text(QAccessible::Name));
        EXPECT_FALSE(names.back().trimmed().isEmpty()) << "a control of role " << iface->role() << " has no name";
    }
    for (int i = 0; i < iface->childCount(); ++i) {
        collectControlNames(iface->child(i), names);
    }
}

// The widgets Tab visits in root, starting after root, in order.
std::vector<QWidget*> tabOrder(QWidget* root)
{
    std::vector<QWidget*> order;
    for (QWidget* next = root->nextInFocusChain(); next != root; next = next->nextInFocusChain()) {
        if (root->isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) != 0 && shown(next) && next->isEnabled()) {
            order.push_back(next);
        }
    }
    return order;
}

// Each widget is below the one before it, or beside it on the same line and further along.
void expectReadingOrder(QWidget* root)
{
    const auto order = tabOrder(root);
    ASSERT_GT(order.size(), 3u);
    const bool leftToRight = root->layoutDirection() == Qt::LeftToRight;
    for (std::size_t i = 1; i < order.size(); ++i) {
        const QRect before(order[i - 1]->mapTo(root, QPoint(0, 0)), order[i - 1]->size());
        const QRect after(order[i]->mapTo(root, QPoint(0, 0)), order[i]->size());
        const bool below = after.top() >= before.center().y();
        const bool sameLine = after.top() < before.bottom() && after.bottom() > before.top();
        const bool further = leftToRight ? after.left() >= before.right() - 1 : after.right() <= before.left() + 1;
        EXPECT_TRUE(below || (sameLine && further))
            << order[i - 1]->objectName().toStdString() << " then " << order[i]->objectName().toStdString();
    }
}

// Every one-line text shown in root is as wide as its text needs.
void expectNothingCut(const QWidget* root, const std::string& where)
{
    for (const QLabel* label : root->findChildren<QLabel*>()) {
        if (shown(label) && !label->wordWrap() && !label->text().isEmpty() &&
            qobject_cast<const ui::ElidedLabel*>(label) == nullptr) {
            EXPECT_GE(label->contentsRect().width(), label->fontMetrics().horizontalAdvance(label->text()))
                << where << ": " << label->objectName().toStdString() << " \"" << label->text().toStdString() << "\"";
        }
    }
    for (const QAbstractButton* button : root->findChildren<QAbstractButton*>()) {
        if (shown(button) && !button->text().isEmpty()) {
            EXPECT_GE(button->width(), button->sizeHint().width())
                << where << ": " << button->objectName().toStdString();
        }
    }
}

using Accessibility = ScaledViews;

TEST_P(Accessibility, EveryControlOfTheMainWindowHasANameTabReadsInOrderAndNoTextIsCut)
{
    syncTwoBluetoothSpeakers();
    ui::MainWindow window(lang, *appState, services());
    window.show();
    for (const QString& language : {QStringLiteral("English"), QStringLiteral("العربية"), QStringLiteral("Deutsch"),
                                    QStringLiteral("Bahasa Indonesia"), QStringLiteral("Кыргызча")}) {
        lang.setCurrentLanguage(language);
        drainEvents();
        expectNothingCut(window.content(), language.toStdString() + " at " + std::to_string(GetParam()));
        std::vector<QString> names;
        collectControlNames(QAccessible::queryAccessibleInterface(&window), names);
        ASSERT_GT(names.size(), 10u);
        if (language == u"English") {
            EXPECT_THAT(names, IsSupersetOf({QStringLiteral("Volume of BT Speaker"),
                                             QStringLiteral("Volume of Bahasa Indonesia Soundbar"),
                                             QStringLiteral("Bluetooth delay of BT Speaker"),
                                             QStringLiteral("Bluetooth delay of Bahasa Indonesia Soundbar")}));
        }
        expectReadingOrder(window.content());
    }
}

TEST_P(Accessibility, ThePanelIsInTheTreeWithEveryControlNamedInOrderAndUncut)
{
    syncTwoBluetoothSpeakers();
    ui::MenuBarView panel(*appState, lang, {}, {});
    panel.show();
    drainEvents();
    QAccessibleInterface* root = QAccessible::queryAccessibleInterface(&panel);
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->text(QAccessible::Name), "Orvanta");
    std::vector<QString> names;
    collectControlNames(root, names);
    EXPECT_THAT(names,
                IsSupersetOf({QStringLiteral("Enable Sync"), QStringLiteral("Volume of BT Speaker"),
                              QStringLiteral("Bluetooth delay of BT Speaker"), QStringLiteral("Decrease by 5 ms"),
                              QStringLiteral("Increase by 5 ms"), QStringLiteral("Launch at Login"),
                              QStringLiteral("Restore sync at start"), QStringLiteral("Quit")}));
    expectReadingOrder(&panel);
    // Percentages and delays are shown whole.
    EXPECT_EQ(child<QLabel>(child<QWidget>(&panel, "primarySpeaker"), "percentLabel")->text(), "100%");
    EXPECT_EQ(child<QLabel>(child<QWidget>(&panel, "primarySpeaker"), "delayLabel")->text(), "595 ms");
    expectNothingCut(&panel, "panel at " + std::to_string(GetParam()));

    // The keyboard starts on the panel's first control.
    panel.activateWindow();
    panel.focusFirstControl();
    EXPECT_EQ(QApplication::focusWidget(), tabOrder(&panel).front());
}

INSTANTIATE_TEST_SUITE_P(TextSizes, Accessibility, ::testing::Values(1.0, 1.25, 1.5));

} // namespace
} // namespace orvanta::testing
