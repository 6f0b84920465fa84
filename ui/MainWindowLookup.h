#pragma once

// Finding the main window among the application's windows: the first whose title is "Orvanta"
// or whose object name is "main". The tray panel and a second launch both use it to bring the
// window back instead of opening another.

#include <QString>
#include <QWidget>

#include <functional>

namespace orvanta::ui {

inline const QString kMainWindowName = QStringLiteral("main");
inline const QString kMainWindowTitle = QStringLiteral("Orvanta");

// Marks a window that was closed and is about to be deleted, so that it is no longer found.
void markClosed(QWidget* window);

// The main window, or null when there is none.
QWidget* findMainWindow();

// Shows the window if it is hidden or minimised, raises it and gives it the keyboard focus.
void bringToFront(QWidget* window);

// Brings the main window to the front, or calls openWindow to make a new one and then brings
// that to the front.
void openMainWindow(const std::function<void()>& openWindow);

} // namespace orvanta::ui
