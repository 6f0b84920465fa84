#pragma once

// The main window: title "Orvanta", object name "main", the ContentView as its only content and
// the application menu above it. Its size follows the content (420 pixels wide, as tall as the
// column is). Closing it deletes it; the program goes on (see AppDelegate).

#include "ViewServices.h"

#include <QMainWindow>

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
    MainWindow(i18n::LanguageManager& lang, state::AppState& appState, ViewServices services,
               QWidget* parent = nullptr);

    ContentView* content() const { return view; }

signals:
    void closed();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    ContentView* view = nullptr;
};

} // namespace orvanta::ui
