#include "SimulatedAlerts.h"

namespace orvanta::sim {

int SimulatedAlerts::runModal(const services::Alert& alert)
{
    shown.append(alert);
    if (choices.empty()) {
        return defaultChoice;
    }
    const int choice = choices.front();
    choices.pop_front();
    return choice;
}

} // namespace orvanta::sim
