#include "OrvantaApp.h"

#include "Logging.h"
#include "MainWindow.h"
#include "MainWindowLookup.h"
#include "Symbols.h"
#include "TrayIcon.h"
#include "i18n/LanguageManager.h"
#include "services/Alerts.h"
#include "state/AppState.h"
#include "update/UpdateChecker.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QSignalBlocker>
#include <QSystemTrayIcon>
#include <QTimer>

namespace orvanta::ui {
namespace {

const QString kCheckForUpdates = QStringLiteral("Check for Updates...");
const QString kKeepsRunningTitle = QStringLiteral("Orvanta keeps running");
const QString kKeepsRunningText = QStringLiteral("keeps_running_text");
const QString kRestoreSync = QStringLiteral("Restore sync at start");

} // namespace

OrvantaApp::OrvantaApp(i18n::LanguageManager& languageManager, state::AppState& state, ShellServices shellServices)
    : lang(languageManager), appState(state), appDelegate(std::make_unique<AppDelegate>(shellServices.updates)),
      services(std::move(shellServices))
{
    if (!services.isSystemTrayAvailable) {
        services.isSystemTrayAvailable = [] { return QSystemTrayIcon::isSystemTrayAvailable(); };
    }
    connect(&lang, &i18n::LanguageManager::currentLanguageChanged, this, &OrvantaApp::languageChanged);
}

OrvantaApp::~OrvantaApp()
{
    if (window) {
        delete window.data();
    }
}

void OrvantaApp::start()
{
    QApplication::setQuitOnLastWindowClosed(appDelegate->applicationShouldTerminateAfterLastWindowClosed());
    QApplication::setWindowIcon(appIcon());
    QApplication::setLayoutDirection(lang.layoutDirection());

    openWindow();

    TrayIcon::Commands commands;
    commands.openWindow = [this] { openWindow(); };
    commands.checkForUpdates = [this] { checkForUpdates(); };
    commands.quit = [this] { quit(); };
    tray = std::make_unique<TrayIcon>(appState, lang, std::move(commands));
    tray->show();

    // After the start, from the event loop, as the desktop's "did finish launching".
    QTimer::singleShot(0, this, [this] { appDelegate->applicationDidFinishLaunching(); });
}

void OrvantaApp::checkForUpdates()
{
    services.updates.checkForUpdates();
}

MainWindow* OrvantaApp::openWindow()
{
    auto* created = new MainWindow(lang, appState, services.views);
    addCommands(created);
    connect(created, &MainWindow::closed, this, &OrvantaApp::mainWindowClosed);
    window = created;
    created->show();
    return created;
}

void OrvantaApp::showMainWindow()
{
    openMainWindow([this] { openWindow(); });
    qCInfo(lcOrvantaUi) << "main window brought to the front";
}

MainWindow* OrvantaApp::mainWindow() const
{
    return qobject_cast<MainWindow*>(findMainWindow());
}

bool OrvantaApp::hasTray() const
{
    return services.isSystemTrayAvailable();
}

void OrvantaApp::addCommands(MainWindow* target)
{
    // The application menu: the update check after the program's own entries, then quitting.
    QMenu* menu = target->menuBar()->addMenu(QStringLiteral("Orvanta"));
    menu->setObjectName(QStringLiteral("applicationMenu"));
    QAction* check = menu->addAction(lang.translate(kCheckForUpdates));
    check->setObjectName(QStringLiteral("checkForUpdatesAction"));
    check->setMenuRole(QAction::ApplicationSpecificRole);
    connect(check, &QAction::triggered, this, &OrvantaApp::checkForUpdates);

    if (!hasTray()) {
        // Without a tray there is no panel; its Launch at Login lives here instead.
        QAction* login = menu->addAction(lang.translate(QStringLiteral("Launch at Login")));
        login->setObjectName(QStringLiteral("launchAtLoginAction"));
        login->setCheckable(true);
        login->setChecked(appState.launchAtLogin());
        connect(login, &QAction::triggered, this, [this](bool checked) { appState.setLaunchAtLogin(checked); });
        connect(&appState, &state::AppState::launchAtLoginChanged, login, [this, login] {
            const QSignalBlocker quiet(login);
            login->setChecked(appState.launchAtLogin());
        });
        QAction* restore = menu->addAction(lang.translate(kRestoreSync));
        restore->setObjectName(QStringLiteral("restoreSyncAction"));
        restore->setCheckable(true);
        restore->setChecked(appState.restoreSyncAtStart());
        connect(restore, &QAction::triggered, this, [this](bool checked) { appState.setRestoreSyncAtStart(checked); });
    }

    menu->addSeparator();
    QAction* quitAction = menu->addAction(lang.translate(QStringLiteral("Quit")));
    quitAction->setObjectName(QStringLiteral("quitAction"));
    quitAction->setShortcut(QKeySequence::Quit);
    quitAction->setMenuRole(QAction::QuitRole);
    connect(quitAction, &QAction::triggered, this, &OrvantaApp::quit);
}

void OrvantaApp::languageChanged()
{
    QApplication::setLayoutDirection(lang.layoutDirection());
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* topLevel : windows) {
        auto* main = qobject_cast<MainWindow*>(topLevel);
        if (main == nullptr) {
            continue;
        }
        const auto actions = main->findChildren<QAction*>();
        for (QAction* action : actions) {
            if (action->objectName() == QLatin1String("checkForUpdatesAction")) {
                action->setText(lang.translate(kCheckForUpdates));
            } else if (action->objectName() == QLatin1String("launchAtLoginAction")) {
                action->setText(lang.translate(QStringLiteral("Launch at Login")));
            } else if (action->objectName() == QLatin1String("restoreSyncAction")) {
                action->setText(lang.translate(kRestoreSync));
            } else if (action->objectName() == QLatin1String("quitAction")) {
                action->setText(lang.translate(QStringLiteral("Quit")));
            }
        }
    }
}

void OrvantaApp::mainWindowClosed()
{
    if (hasTray() || keepRunningNoticeShown) {
        return;
    }
    keepRunningNoticeShown = true;
    // Said once per run, after the window is gone.
    QTimer::singleShot(0, this, [this] {
        services.views.alerts.runModal({lang.translate(kKeepsRunningTitle),
                                        lang.translate(kKeepsRunningText),
                                        {lang.translate(QStringLiteral("OK"))}});
    });
}

void OrvantaApp::quit()
{
    if (services.quit) {
        services.quit();
    } else {
        QCoreApplication::quit();
    }
}

} // namespace orvanta::ui
