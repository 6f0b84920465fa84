#pragma once

// The red banner shown while the volume keys do not move both speakers: "Permission Required",
// in words a user understands why (another program holds the keys, the session gives them to
// no program, or nothing is seen to handle them), and, only where it leads somewhere, the
// "Open System Settings" button with the steps that go with it.

#include "Widgets.h"

class QLabel;
class QPushButton;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class AccessibilityTrust;
}

namespace orvanta::ui {

class PermissionBanner : public QWidget
{
    Q_OBJECT

public:
    PermissionBanner(i18n::LanguageManager& lang, services::AccessibilityTrust& trust, QWidget* parent = nullptr);

    // The texts and the button for the trust's current obstacle, in the current language.
    void redraw();

private:
    i18n::LanguageManager& lang;
    services::AccessibilityTrust& trust;
    QLabel* title = nullptr;
    QLabel* text = nullptr;
    QPushButton* settingsButton = nullptr;
};

} // namespace orvanta::ui
