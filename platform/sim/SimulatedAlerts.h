#pragma once

// Alerts that are recorded instead of shown, for tests. Each one is answered at once with the
// next scripted choice, or with defaultChoice when none is left.

#include "services/Alerts.h"

#include <QList>

#include <deque>

namespace orvanta::sim {

class SimulatedAlerts final : public services::Alerts
{
public:
    int runModal(const services::Alert& alert) override;

    QList<services::Alert> shown;
    std::deque<int> choices;
    int defaultChoice = 0;
};

} // namespace orvanta::sim
