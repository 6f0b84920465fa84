#include "MediaKeyManager.h"

#include "services/MainQueue.h"

#include <QPointer>

namespace orvanta::state {

MediaKeyManager::MediaKeyManager(services::EventTap& eventTaps, core::DiagnosticLog diagnostics, QObject* parent)
    : QObject(parent), taps(eventTaps), log(std::move(diagnostics))
{}

void MediaKeyManager::start()
{
    if (eventTap) {
        eventTap->setEnabled(true);
        return;
    }
    auto port = taps.create(services::kSystemDefinedEventMask,
                            [this](const services::TapEvent& event) { return handleEvent(event); });
    if (!port) {
        log("❌ Failed to create Event Tap. Check Accessibility Permissions.");
        return;
    }
    eventTap = std::move(port);
    eventTap->addToMainLoop();
    eventTap->setEnabled(true);
}

std::optional<services::TapEvent> MediaKeyManager::handleEvent(const services::TapEvent& event)
{
    if (!event.readable || event.type != services::kSystemDefinedEventType) {
        return event;
    }
    if ((event.data1 & kKeyStateMask) != kKeyDown) {
        return event;
    }
    const qint64 keyCode = (event.data1 >> 16) & 0xFFFF;
    if (keyCode == kSoundUp) {
        postStep(kStep);
        return std::nullopt;
    }
    if (keyCode == kSoundDown) {
        postStep(-kStep);
        return std::nullopt;
    }
    return event;
}

void MediaKeyManager::postStep(float step)
{
    // The tap decides at once; the volume work, which reaches the audio layer, runs after it.
    services::postToMainQueue([self = QPointer<MediaKeyManager>(this), step] {
        if (self) {
            emit self->masterVolumeStep(step);
        }
    });
}

} // namespace orvanta::state
