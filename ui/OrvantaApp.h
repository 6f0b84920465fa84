#pragma once

// The application shell. It takes the language manager and the application state that main()
// made, and makes the delegate; start() opens the main window, puts the icon in the tray and,
// once the event loop runs, lets the delegate start the launch-time update check. It holds no
// logic of its own beyond wiring: "Check for Updates..." (in the main window's Orvanta menu and
// in the tray icon's menu, retitled when the language changes), the interface direction of the
// current language, and bringing the main window back.
//
// Where the desktop shows no tray, closing the main window still leaves the program running (the
// sync, the delays and the volume keys go on) and says so once, with how to get the window back:
// start Orvanta again. The Orvanta menu then also offers Launch at Login and Restore sync at
// start, which otherwise live in the tray panel.

#include "AppDelegate.h"
#include "ViewServices.h"

#include <QObject>
#include <QPointer>

#include <functional>
#include <memory>

class QAction;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::state {
class AppState;
}
namespace orvanta::update {
class UpdateChecker;
}

namespace orvanta::ui {

class MainWindow;
class TrayIcon;

struct ShellServices
{
    ViewServices views;
    update::UpdateChecker& updates;
    std::function<bool()> isSystemTrayAvailable; // the desktop's answer when not given
    std::function<void()> quit;                  // QCoreApplication::quit when not given
};

class OrvantaApp : public QObject
{
    Q_OBJECT

public:
    OrvantaApp(i18n::LanguageManager& languageManager, state::AppState& appState, ShellServices services);
    ~OrvantaApp() override;

    void start();

    // The user's update check, with its dialogs in the interface language.
    void checkForUpdates();

    // Makes and shows a new main window.
    MainWindow* openWindow();
    // Brings the main window to the front, opening one when there is none.
    void showMainWindow();

    i18n::LanguageManager& languageManager() const { return lang; }
    state::AppState& state() const { return appState; }
    AppDelegate& delegate() const { return *appDelegate; }
    TrayIcon* trayIcon() const { return tray.get(); }
    MainWindow* mainWindow() const;
    bool hasTray() const;

private:
    void addCommands(MainWindow* window);
    void languageChanged();
    void mainWindowClosed();
    void quit();

    i18n::LanguageManager& lang;
    state::AppState& appState;
    std::unique_ptr<AppDelegate> appDelegate;
    ShellServices services;
    std::unique_ptr<TrayIcon> tray;
    QPointer<MainWindow> window;
    bool keepRunningNoticeShown = false;
};

} // namespace orvanta::ui
