#pragma once

// Turns the keyboard's volume keys into volume steps. While its tap runs, a volume-up or
// volume-down key-down is taken away from the rest of the desktop and becomes a step of
// +/-0.0625 announced, from the main queue, by masterVolumeStep; every other event goes on.

#include "core/DiagnosticLog.h"
#include "services/EventTap.h"

#include <QObject>

#include <memory>
#include <optional>

namespace orvanta::state {

class MediaKeyManager : public QObject
{
    Q_OBJECT

public:
    static constexpr float kStep = 0.0625f;
    static constexpr qint64 kKeyStateMask = 0xFF00;
    static constexpr qint64 kKeyDown = 0x0A00;
    static constexpr qint64 kSoundUp = 0;
    static constexpr qint64 kSoundDown = 1;

    MediaKeyManager(services::EventTap& taps, core::DiagnosticLog log, QObject* parent = nullptr);

    // Creates, installs and enables the tap. A tap that already exists is enabled again and
    // kept: a second tap would only see what the first one passed on.
    void start();
    // Releases the tap. The program calls it before the platform objects the tap uses go away.
    void stop() { eventTap.reset(); }

    // Gives the event to pass on, or nothing when it is dropped.
    std::optional<services::TapEvent> handleEvent(const services::TapEvent& event);

    bool hasTap() const { return eventTap != nullptr; }

signals:
    void masterVolumeStep(float step);

private:
    void postStep(float step);

    services::EventTap& taps;
    core::DiagnosticLog log;
    std::unique_ptr<services::EventTapPort> eventTap;
};

} // namespace orvanta::state
