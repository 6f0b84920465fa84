#include "SimulatedSoundSystemStatus.h"

namespace orvanta::sim {

void SimulatedSoundSystemStatus::setState(State state)
{
    current = state;
    emit stateChanged();
}

} // namespace orvanta::sim
