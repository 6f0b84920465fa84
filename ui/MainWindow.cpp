#include "MainWindow.h"

#include "ContentView.h"
#include "MainWindowLookup.h"

#include <QCloseEvent>
#include <QLayout>

namespace orvanta::ui {

MainWindow::MainWindow(i18n::LanguageManager& lang, state::AppState& appState, ViewServices services, QWidget* parent)
    : QMainWindow(parent)
{
    setObjectName(kMainWindowName);
    // A fixed title, the same in every interface language.
    setWindowTitle(kMainWindowTitle);
    setAttribute(Qt::WA_DeleteOnClose);
    view = new ContentView(lang, appState, std::move(services), this);
    setCentralWidget(view);
    // The window is exactly as large as its menu and content, and follows the content's height.
    layout()->setSizeConstraint(QLayout::SetFixedSize);
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    if (event->isAccepted()) {
        markClosed(this);
        emit closed();
    }
}

} // namespace orvanta::ui
