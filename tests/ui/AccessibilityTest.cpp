// The views at larger text and in several languages, on the screen of a 1366x768 laptop: every
// control in the accessibility tree is named, Tab follows the order controls are seen in, no
// one-line text is cut, and the window stays on the screen with what does not fit reached by scrolling.

#include "UiFixture.h"

#include <QAccessible>
#include <QAccessibleInterface>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <array>

namespace orvanta::testing {
namespace {

using ::testing::IsSupersetOf;

// The names of the controls under iface that are not hidden, in tree order; each must have one.
std::vector<QString> controlNames(QAccessibleInterface* iface)
{
    std::vector<QString> names;
    static const QList<QAccessible::Role> kControls{QAccessible::Slider,     QAccessible::ComboBox,
                                                    QAccessible::PushButton, QAccessible::CheckBox,
                                                    QAccessible::Button,     QAccessible::SpinBox};
    if (iface != nullptr && !iface->state().invisible && kControls.contains(iface->role())) {
        names.push_back(iface->text(QAccessible::Name));
        EXPECT_FALSE(names.back().trimmed().isEmpty()) << "a control of role " << iface->role() << " has no name";
    }
    for (int i = 0; iface != nullptr && !iface->state().invisible && i < iface->childCount(); ++i) {
        const std::vector<QString> below = controlNames(iface->child(i));
        names.insert(names.end(), below.begin(), below.end());
    }
    return names;
}
std::vector<QString> controlNames(QWidget* root)
{
    return controlNames(QAccessible::queryAccessibleInterface(root));
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
                << where << ": " << label->objectName().toStdString();
        }
    }
    for (const QAbstractButton* button : root->findChildren<QAbstractButton*>()) {
        if (shown(button) && !button->text().isEmpty()) {
            EXPECT_GE(button->width(), button->sizeHint().width())
                << where << ": " << button->objectName().toStdString();
        }
    }
}

// The window is on the screen and, scrolled to the end, shows its last line.
void expectOnScreen(ui::MainWindow& window, const std::string& where)
{
    EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(window.frameGeometry())) << where;
    QScrollBar* bar = window.scrollArea()->verticalScrollBar();
    bar->setValue(bar->maximum());
    const QWidget* version = child<QWidget>(window.content(), "versionLabel");
    const QPoint bottom = version->mapTo(window.scrollArea()->viewport(), QPoint(0, version->height()));
    EXPECT_LE(bottom.y(), window.scrollArea()->viewport()->height()) << where;
    bar->setValue(0);
}

// Two Bluetooth speakers synced, so that every row is shown, with the primary at full volume and
// delays of three digits, at a scaled application font.
class Accessibility : public ::testing::TestWithParam<double>, public UiFixture
{
protected:
    Accessibility()
    {
        auto second = outputDevice("Bahasa Indonesia Soundbar", "bt2", hal::kAudioDeviceTransportTypeBluetooth, 44100);
        second.channelVolumes = {volumeControl(), volumeControl()};
        sim.system.addDevice(second);
        const auto devices = sim.audio.getOutputDevices(); // the soundbar last
        appState->setDevices(devices);
        appState->setSelectedDevice1(kBluetooth);
        appState->setSelectedDevice2(devices.back());
        appState->setVolume1(1.0f);
        appState->setBluetoothDelay(595, kBluetooth);
        appState->setBluetoothDelay(600, devices.back());
        appState->enableSync();
        QFont scaled = savedFont;
        scaled.setPointSizeF(savedFont.pointSizeF() * GetParam());
        QApplication::setFont(scaled);
    }
    ~Accessibility() override { QApplication::setFont(savedFont); }

    const QFont savedFont = QApplication::font();
};

// Also: each control's name changes with the language, and the panel runs right to left in Arabic.
TEST_P(Accessibility, EveryControlOfTheWindowAndThePanelHasANameTabReadsInOrderAndTheWindowFitsTheScreen)
{
    ASSERT_EQ(QGuiApplication::primaryScreen()->availableGeometry().size(), QSize(1366, 720));
    sim::SimulatedSoundSystemStatus status; // with the simulated notice, the window's tallest form
    auto withStatus = services();
    withStatus.soundSystem = &status;
    ui::MainWindow window(lang, *appState, withStatus);
    ui::MenuBarView panel(*appState, lang, {}, {});
    window.show();
    panel.show();
    drainEvents();
    const std::array<QWidget*, 2> roots{&panel, window.content()};
    const QStringList deviceNames{"BT Speaker", "Bahasa Indonesia Soundbar"}; // the pickers' names

    const std::array<std::vector<QString>, 2> english{controlNames(&panel), controlNames(window.content())};
    EXPECT_THAT(english[0], IsSupersetOf({QStringLiteral("Volume of BT Speaker"),
                                          QStringLiteral("Bluetooth delay of Bahasa Indonesia Soundbar")}));
    panel.activateWindow(); // the keyboard starts on the panel's first control
    panel.focusFirstControl();
    EXPECT_EQ(QApplication::focusWidget(), tabOrder(&panel).front());
    for (const QString& language :
         {QStringLiteral("English"), QStringLiteral("Deutsch"), QStringLiteral("Bahasa Indonesia"),
          QStringLiteral("Кыргызча"), QStringLiteral("العربية")}) {
        lang.setCurrentLanguage(language);
        drainEvents();
        const std::string where = language.toStdString() + " at " + std::to_string(GetParam());
        expectOnScreen(window, where);
        for (std::size_t r = 0; r < roots.size(); ++r) {
            expectNothingCut(roots[r], (r == 0 ? "panel in " : "window in ") + where);
            expectReadingOrder(roots[r]);
            const std::vector<QString> names = controlNames(roots[r]); // each retitled in another language
            for (std::size_t i = 0; language != u"English" && i < std::min(names.size(), english[r].size()); ++i) {
                EXPECT_TRUE(names[i] != english[r][i] || deviceNames.contains(names[i])) << where;
            }
        }
    }
    EXPECT_EQ(panel.layoutDirection(), Qt::RightToLeft);
}

INSTANTIATE_TEST_SUITE_P(TextSizes, Accessibility, ::testing::Values(1.0, 1.25, 1.5));

} // namespace
} // namespace orvanta::testing
