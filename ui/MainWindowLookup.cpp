#include "MainWindowLookup.h"

#include <QApplication>
#include <QVariant>

namespace orvanta::ui {
namespace {

constexpr const char* kClosedProperty = "orvantaClosed";

} // namespace

void markClosed(QWidget* window)
{
    window->setProperty(kClosedProperty, true);
}

QWidget* findMainWindow()
{
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (window->property(kClosedProperty).toBool()) {
            continue;
        }
        if (window->windowTitle() == kMainWindowTitle || window->objectName() == kMainWindowName) {
            return window;
        }
    }
    return nullptr;
}

void bringToFront(QWidget* window)
{
    if (window->isMinimized()) {
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    }
    window->show();
    window->raise();
    window->activateWindow();
}

void openMainWindow(const std::function<void()>& openWindow)
{
    if (QWidget* window = findMainWindow()) {
        bringToFront(window);
        return;
    }
    if (openWindow) {
        openWindow();
    }
    if (QWidget* window = findMainWindow()) {
        bringToFront(window);
    }
}

} // namespace orvanta::ui
