#pragma once

// A notice in the main window, shown while changed settings cannot be written (a full disk, a
// read-only folder): the user's changes still apply now, but will be gone at the next start.

#include <QWidget>

class QLabel;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::state {
class AppState;
}

namespace orvanta::ui {

class SettingsSaveNotice : public QWidget
{
    Q_OBJECT

public:
    static constexpr const char* kTextKey = "Changes are not being saved: the settings file cannot be written.";

    SettingsSaveNotice(i18n::LanguageManager& lang, state::AppState& appState, QWidget* parent = nullptr);

private:
    void redraw();

    i18n::LanguageManager& lang;
    state::AppState& appState;
    QLabel* text = nullptr;
};

} // namespace orvanta::ui
