#pragma once

// The main window's content: one column 420 pixels wide with the language picker, the
// permission banner, the two device pickers with what the sound system is doing, the sync
// switch, the balance section with both speakers, and the footer. It reads AppState and the
// language manager and redraws whenever either announces a change; the only state it owns is
// that of its alerts.

#include "ViewServices.h"
#include "state/AppState.h"

#include <QWidget>

#include <array>
#include <optional>

class QComboBox;

namespace orvanta::i18n {
class LanguageManager;
}

namespace orvanta::ui {

class BalanceSection;
class ContentFooter;
class OutputPickers;
class PermissionBanner;
class ToggleSwitch;

class ContentView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kWidth = 420;

    ContentView(i18n::LanguageManager& lang, state::AppState& appState, ViewServices services,
                QWidget* parent = nullptr);

    // The switch's two actions.
    void syncOn();
    void syncOff();

    // Reads the device list again; the selections stay as they are.
    void refreshDevices();

    // Everything drawn afresh from AppState and the language manager.
    void redraw();

    // The alerts waiting to be shown, in the order they are shown (the error, the volume
    // warning, the Bluetooth warning); they are shown from the event loop, one after the other.
    bool hasPendingAlerts() const;

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    // A pending alert: its title's key and its message, already translated.
    struct Alert
    {
        QString title;
        QString message;
    };
    enum AlertSlot
    {
        ErrorAlert,
        VolumeAlert,
        BluetoothAlert,
        AlertSlots
    };

    QWidget* buildHeader();
    void trustChanged();
    void soundSystemChanged();
    void scheduleAlerts();
    void presentAlerts();

    i18n::LanguageManager& lang;
    state::AppState& appState;
    ViewServices services;

    std::array<std::optional<Alert>, AlertSlots> pendingAlerts;
    bool presenting = false;
    bool lastTrusted = false; // the trust last seen

    QComboBox* languagePicker = nullptr;
    PermissionBanner* banner = nullptr;
    OutputPickers* outputs = nullptr;
    ToggleSwitch* syncSwitch = nullptr;
    BalanceSection* balance = nullptr;
    ContentFooter* footer = nullptr;
};

} // namespace orvanta::ui
