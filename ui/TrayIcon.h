#pragma once

// The tray icon: a speaker symbol that is filled while sync is on ("speaker.wave.2.fill") and
// drawn in outline while it is off ("speaker.wave.2"). A click opens the panel (MenuBarView) as
// a small frameless pop-up at the icon; a click elsewhere closes it. The context menu offers
// Open Main Window, Check for Updates... and Quit.

#include "MenuBarView.h"

#include <QElapsedTimer>
#include <QObject>

#include <functional>
#include <memory>

class QAction;
class QFrame;
class QMenu;
class QSystemTrayIcon;

namespace orvanta::ui {

class TrayIcon : public QObject
{
    Q_OBJECT

public:
    struct Commands
    {
        MenuBarView::OpenWindowAction openWindow;
        std::function<void()> checkForUpdates;
        std::function<void()> quit;
    };

    TrayIcon(state::AppState& appState, i18n::LanguageManager& lang, Commands commands, QObject* parent = nullptr);
    ~TrayIcon() override;

    static QString symbolFor(bool syncOn);
    // The icon for the tray: the symbol in white on a rounded badge, so that it reads on light
    // and dark panels alike.
    static QIcon iconFor(bool syncOn);
    // Where the panel goes: centred on the icon, below it when the icon is in the upper half of
    // the screen and above it otherwise, kept inside the available area.
    static QPoint panelPosition(const QRect& anchor, const QSize& panel, const QRect& available);

    void show();
    QString currentSymbol() const { return symbol; }
    QSystemTrayIcon* systemTrayIcon() const { return tray; }
    QMenu* contextMenu() const { return menu; }
    QAction* checkForUpdatesAction() const { return checkAction; }
    MenuBarView* panel() const { return view; }
    QWidget* panelWindow() const;

    // Opens the panel at the tray icon (or at the pointer when the tray does not tell where its
    // icon is), or closes it when it is open.
    void togglePanel();
    void showPanelAt(const QRect& anchor);

private:
    void redraw();
    void retitle();

    state::AppState& appState;
    i18n::LanguageManager& lang;
    Commands commands;
    QString symbol;
    QSystemTrayIcon* tray = nullptr;
    QMenu* menu = nullptr;
    QAction* openAction = nullptr;
    QAction* checkAction = nullptr;
    QAction* quitAction = nullptr;
    std::unique_ptr<QFrame> popup;
    MenuBarView* view = nullptr;
    QElapsedTimer sinceHidden;
};

} // namespace orvanta::ui
