#pragma once

// The status of the simulated sound system: Simulated unless a test sets another state.

#include "services/SoundSystemStatus.h"

namespace orvanta::sim {

class SimulatedSoundSystemStatus final : public services::SoundSystemStatus
{
public:
    explicit SimulatedSoundSystemStatus(State initial = State::Simulated) : current(initial) {}

    State state() const override { return current; }
    // Changes the state and announces it.
    void setState(State state);

private:
    State current;
};

} // namespace orvanta::sim
