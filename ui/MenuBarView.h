#pragma once

// The tray panel: the product header with a status dot, the sync switch (or "Select two
// different devices"), while sync is on the volume and delay of each speaker, Open Main
// Window, Launch at Login, Restore sync at start and Quit. 280 pixels wide; its height follows its content. It keeps
// no state of its own: everything is read from AppState and written through it.

#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::state {
class AppState;
}

namespace orvanta::ui {

class StatusDot;
class ToggleSwitch;

class MenuBarView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kWidth = 280;

    // Opens a new main window; used when none is there to bring back.
    using OpenWindowAction = std::function<void()>;
    using QuitAction = std::function<void()>;

    MenuBarView(state::AppState& appState, i18n::LanguageManager& lang, OpenWindowAction openWindow,
                QuitAction quit = {}, QWidget* parent = nullptr);

    void openMainWindow();
    void redraw();
    // Gives the keyboard focus to the first control that takes it.
    void focusFirstControl();

    QSize sizeHint() const override;

signals:
    // The main window was brought to the front (a panel in a pop-up closes then).
    void mainWindowShown();

private:
    state::AppState& appState;
    i18n::LanguageManager& lang;
    OpenWindowAction openWindow;
    QuitAction quit;

    StatusDot* statusDot = nullptr;
    ToggleSwitch* syncSwitch = nullptr;
    QLabel* syncCaption = nullptr;
    QWidget* speakers = nullptr;
    QToolButton* openButton = nullptr;
    QCheckBox* launchAtLogin = nullptr;
    QCheckBox* restoreSync = nullptr;
    QToolButton* quitButton = nullptr;
};

} // namespace orvanta::ui
