#pragma once

// What the main window says about the sound system, kept up to date as it changes: one line
// under the device pickers (connected, connecting, not answering), or, on the simulated sound
// system, a yellow notice above them that these devices are not real.

#include <QObject>

class QLabel;
class QWidget;

namespace orvanta::i18n {
class LanguageManager;
}
namespace orvanta::services {
class SoundSystemStatus;
}

namespace orvanta::ui {

class SoundSystemNotice : public QObject
{
    Q_OBJECT

public:
    // status may be null: then nothing is shown. The line and the notice are made as children of
    // parent, for the caller's layout.
    SoundSystemNotice(i18n::LanguageManager& lang, services::SoundSystemStatus* status, QWidget* parent);

    QWidget* line() const;
    QWidget* notice() const { return simulatedNotice; }

    void redraw();

private:
    i18n::LanguageManager& lang;
    services::SoundSystemStatus* status;
    QLabel* statusLine = nullptr;
    QWidget* simulatedNotice = nullptr;
    QLabel* simulatedText = nullptr;
};

} // namespace orvanta::ui
