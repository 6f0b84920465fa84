#pragma once

// Event taps over injected events, for tests. Taps are created only while `allowed` is true.
// inject() runs an event through the enabled taps, newest first as taps placed at the head
// are, and records the events that came out the other end.

#include "services/EventTap.h"

#include <memory>
#include <vector>

namespace orvanta::sim {

class SimEventTap final : public services::EventTap
{
public:
    std::unique_ptr<services::EventTapPort> create(quint64 eventMask, services::TapCallback callback) override;

    // Gives whether the event was passed on to the rest of the system.
    bool inject(const services::TapEvent& event);

    bool allowed = true;
    int created = 0;
    std::vector<services::TapEvent> passedOn;

    struct Tap
    {
        quint64 mask = 0;
        services::TapCallback callback;
        bool onMainLoop = false;
        bool enabled = false;
    };

private:
    std::vector<std::shared_ptr<Tap>> taps; // newest last
};

} // namespace orvanta::sim
