#include "TrayIcon.h"

#include "Symbols.h"
#include "Theme.h"
#include "i18n/LanguageManager.h"
#include "state/AppState.h"

#include <QAction>
#include <QApplication>
#include <QBoxLayout>
#include <QCursor>
#include <QEvent>
#include <QFrame>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QSystemTrayIcon>

namespace orvanta::ui {
namespace {

// A click on the tray icon while the panel is open first closes the panel (the click lands
// outside it); the same click must not open it again at once.
constexpr qint64 kReopenGuardMs = 300;
constexpr int kGap = 4;

// Notes when the pop-up hides, by a click outside it or otherwise.
class HideWatcher final : public QObject
{
public:
    HideWatcher(QObject* parent, QElapsedTimer& timer) : QObject(parent), clock(timer) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Hide) {
            clock.start();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QElapsedTimer& clock;
};

} // namespace

TrayIcon::TrayIcon(state::AppState& state, i18n::LanguageManager& languageManager, Commands trayCommands,
                   QObject* parent)
    : QObject(parent), appState(state), lang(languageManager), commands(std::move(trayCommands))
{
    tray = new QSystemTrayIcon(this);
    tray->setToolTip(QStringLiteral("Orvanta"));

    menu = new QMenu();
    openAction = menu->addAction(symbolIcon(QStringLiteral("macwindow"), Tint::Primary), QString());
    openAction->setObjectName(QStringLiteral("openMainWindowAction"));
    checkAction = menu->addAction(QString());
    checkAction->setObjectName(QStringLiteral("checkForUpdatesAction"));
    menu->addSeparator();
    quitAction = menu->addAction(symbolIcon(QStringLiteral("power"), Tint::Primary), QString());
    quitAction->setObjectName(QStringLiteral("quitAction"));
    connect(openAction, &QAction::triggered, this, [this] { view->openMainWindow(); });
    connect(checkAction, &QAction::triggered, this, [this] {
        if (commands.checkForUpdates) {
            commands.checkForUpdates();
        }
    });
    connect(quitAction, &QAction::triggered, this, [this] {
        if (commands.quit) {
            commands.quit();
        }
    });
    tray->setContextMenu(menu);

    popup = std::make_unique<QFrame>(nullptr, Qt::Popup | Qt::FramelessWindowHint);
    popup->setObjectName(QStringLiteral("panelWindow"));
    popup->setAccessibleName(QStringLiteral("Orvanta"));
    popup->setFrameShape(QFrame::StyledPanel);
    popup->setAttribute(Qt::WA_DeleteOnClose, false);
    auto* layout = new QVBoxLayout(popup.get());
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    view = new MenuBarView(appState, lang, commands.openWindow, commands.quit, popup.get());
    layout->addWidget(view);
    popup->installEventFilter(new HideWatcher(this, sinceHidden));
    connect(view, &MenuBarView::mainWindowShown, popup.get(), &QWidget::hide);

    connect(tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) {
            togglePanel();
        }
    });
    connect(&appState, &state::AppState::isQuellonOnChanged, this, &TrayIcon::redraw);
    connect(&lang, &i18n::LanguageManager::currentLanguageChanged, this, &TrayIcon::retitle);
    redraw();
    retitle();
}

TrayIcon::~TrayIcon()
{
    popup.reset();
    delete menu;
}

QString TrayIcon::symbolFor(bool syncOn)
{
    return syncOn ? QStringLiteral("speaker.wave.2.fill") : QStringLiteral("speaker.wave.2");
}

QIcon TrayIcon::iconFor(bool syncOn)
{
    QIcon icon;
    const QColor badge = syncOn ? QColor(0x0a, 0x7c, 0xff) : QColor(0x5f, 0x63, 0x68);
    for (int size : {16, 22, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(badge);
        const qreal radius = size * 0.24;
        painter.drawRoundedRect(QRectF(0.5, 0.5, size - 1.0, size - 1.0), radius, radius);
        const int inset = std::max(2, size / 7);
        painter.drawPixmap(inset, inset, symbolPixmap(symbolFor(syncOn), Qt::white, size - 2 * inset));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QPoint TrayIcon::panelPosition(const QRect& anchor, const QSize& panel, const QRect& available)
{
    int x = anchor.center().x() - panel.width() / 2;
    int y = anchor.center().y() < available.center().y() ? anchor.bottom() + 1 + kGap
                                                         : anchor.top() - kGap - panel.height();
    x = std::clamp(x, available.left(), std::max(available.left(), available.right() + 1 - panel.width()));
    y = std::clamp(y, available.top(), std::max(available.top(), available.bottom() + 1 - panel.height()));
    return {x, y};
}

void TrayIcon::show()
{
    tray->show();
}

QWidget* TrayIcon::panelWindow() const
{
    return popup.get();
}

void TrayIcon::togglePanel()
{
    if (popup->isVisible()) {
        popup->hide();
        return;
    }
    if (sinceHidden.isValid() && sinceHidden.elapsed() < kReopenGuardMs) {
        return;
    }
    QRect anchor = tray->geometry();
    if (!anchor.isValid() || anchor.isEmpty()) {
        // Trays that speak the StatusNotifierItem protocol do not tell where the icon is.
        anchor = QRect(QCursor::pos(), QSize(1, 1));
    }
    showPanelAt(anchor);
}

void TrayIcon::showPanelAt(const QRect& anchor)
{
    view->redraw();
    popup->adjustSize();
    QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QRect available = screen != nullptr ? screen->availableGeometry() : QRect(0, 0, 1920, 1080);
    popup->move(panelPosition(anchor, popup->sizeHint(), available));
    popup->show();
    popup->raise();
    popup->activateWindow();
    // The keyboard starts on the panel's first control, so Tab and the arrows work at once.
    view->focusFirstControl();
}

void TrayIcon::redraw()
{
    const bool on = appState.isQuellonOn();
    symbol = symbolFor(on);
    tray->setIcon(iconFor(on));
}

void TrayIcon::retitle()
{
    openAction->setText(lang.translate(QStringLiteral("Open Main Window")));
    checkAction->setText(lang.translate(QStringLiteral("Check for Updates...")));
    quitAction->setText(lang.translate(QStringLiteral("Quit")));
    menu->setLayoutDirection(lang.layoutDirection());
    popup->setLayoutDirection(lang.layoutDirection());
}

} // namespace orvanta::ui
