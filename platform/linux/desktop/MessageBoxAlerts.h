#pragma once

// Alerts as Qt message boxes, modal to the whole application. Texts are shown as plain text,
// never as markup, since some of them (release notes) come from the network.

#include "services/Alerts.h"

namespace orvanta::desktop {

class MessageBoxAlerts final : public services::Alerts
{
public:
    int runModal(const services::Alert& alert) override;
};

} // namespace orvanta::desktop
