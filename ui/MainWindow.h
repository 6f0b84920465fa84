#pragma once

// The main window: title "Orvanta", object name "main", the ContentView as its content and the
// application menu above it. The window is as tall as the column when the screen has room for
// it; when the column is taller than the screen's available height, the window stops there and
// the column scrolls, a scroll bar beside it so the column keeps its 420 pixels. The height
// follows the content as sections appear and go. Its position is kept in the settings and
// given back when a window opens again. Closing it deletes it; the program goes on (see
// AppDelegate).

#include "ViewServices.h"

#include <QMainWindow>

class QScrollArea;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::state {
class AppState;
}

namespace orvanta::ui {

class ContentView;

class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // Settings key of the window's last position, a dictionary with "x" and "y".
    static constexpr const char* kPositionKey = "mainWindowPosition";

    MainWindow(i18n::LanguageManager& lang, state::AppState& appState, ViewServices services,
               QWidget* parent = nullptr);
    ~MainWindow() override;

    ContentView* content() const { return view; }
    QScrollArea* scrollArea() const { return scroll; }

    // Sizes the window to the content, but no taller than available (the screen's area for
    // windows, decorations included) allows; keeps the window inside it.
    void fitInto(const QRect& available);
    // The same for the screen the window is on.
    void fitToScreen();

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int decorationHeight() const;
    void restorePosition();
    void storePosition();

    ContentView* view = nullptr;
    QScrollArea* scroll = nullptr;
    services::UserDefaults* settings = nullptr;
    bool fitPending = false;
};

} // namespace orvanta::ui
