#pragma once

// The main window's content: one column 420 pixels wide with the language picker, the
// permission banner, the two device pickers with what the sound system is doing, the sync
// switch, the balance section with both speakers, the notes, the support button, the links and
// the version. It reads AppState and the language manager and redraws whenever either announces
// a change; the only state it owns is that of its three alerts.

#include "ViewServices.h"
#include "state/AppState.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;
class QToolButton;

namespace orvanta::i18n {
class LanguageManager;
}

namespace orvanta::ui {

class PermissionBanner;
class RoundedPanel;
class SoundSystemNotice;
class SpeakerBlock;
class SymbolView;
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
    bool hasPendingAlerts() const { return showErrorAlert || showVolumeWarning || showBluetoothWarning; }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void build();
    QWidget* buildHeader();
    QWidget* buildOutputs();
    QWidget* buildBalance();
    QWidget* buildNotes();
    QWidget* buildFooter();

    void redrawPickers();
    void fillPicker(QComboBox* picker);
    void showSelection(QComboBox* picker, const state::OptionalDevice& selected);
    void choose(QComboBox* picker, int index);
    void trustChanged();
    void soundSystemChanged();
    void scheduleAlerts();
    void presentAlerts();
    void openAddress(const QString& address);

    i18n::LanguageManager& lang;
    state::AppState& appState;
    ViewServices services;

    // The alerts' presentation state.
    bool showErrorAlert = false;
    QString errorMessage;
    bool showVolumeWarning = false;
    QString volumeWarningMessage;
    bool showBluetoothWarning = false;
    QString bluetoothWarningMessage;
    bool presenting = false;

    // Presentation only: what the pickers were last filled from, and the trust last seen.
    state::DeviceList pickerDevices;
    QString pickerLanguage;
    bool lastTrusted = false;

    QComboBox* languagePicker = nullptr;
    PermissionBanner* banner = nullptr;
    QLabel* outputsTitle = nullptr;
    QToolButton* refreshButton = nullptr;
    QLabel* primaryTitle = nullptr;
    QLabel* secondaryTitle = nullptr;
    QComboBox* primaryPicker = nullptr;
    QComboBox* secondaryPicker = nullptr;
    SoundSystemNotice* soundSystem = nullptr;
    ToggleSwitch* syncSwitch = nullptr;
    QWidget* balance = nullptr;
    QLabel* balanceTitle = nullptr;
    SpeakerBlock* primaryBlock = nullptr;
    SpeakerBlock* secondaryBlock = nullptr;
    RoundedPanel* delayNote = nullptr;
    QLabel* delayNoteText = nullptr;
    QLabel* notesTitle = nullptr;
    QLabel* warningText = nullptr;
    QLabel* keepRunningText = nullptr;
    QLabel* volumeKeysText = nullptr;
    QPushButton* supportButton = nullptr;
    QPushButton* privacyLink = nullptr;
    QPushButton* termsLink = nullptr;
    QLabel* versionLabel = nullptr;
};

} // namespace orvanta::ui
