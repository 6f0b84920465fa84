#pragma once

// Alerts as Qt message boxes, modal to the whole application. Texts are shown as plain text,
// never as markup, since some of them (release notes) come from the network.

#include "services/Alerts.h"

namespace orvanta::linux_platform {

class MessageBoxAlerts final : public platform::Alerts
{
public:
    int runModal(const platform::Alert& alert) override;
};

} // namespace orvanta::linux_platform
