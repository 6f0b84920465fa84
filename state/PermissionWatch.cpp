// The once-a-second accessibility trust poll, and launch at login.

#include "AppState.h"
#include "services/AccessibilityTrust.h"
#include "services/LoginItems.h"

namespace orvanta::state {

void AppState::startPermissionTimer()
{
    auto timer = std::make_unique<QTimer>();
    timer->setInterval(kPermissionPollInterval);
    // The timer belongs to this object and stops with it. Every tick assigns, so observers hear
    // from the flag once a second even when it holds.
    QObject::connect(timer.get(), &QTimer::timeout, this, [this] { setTrusted(services.trust.isProcessTrusted()); });
    timer->start();
    permissionTimer = std::move(timer);
}

void AppState::updateLaunchAtLogin()
{
    const auto error = startsAtLogin ? services.loginItems.registerItem() : services.loginItems.unregisterItem();
    if (error) {
        services.log(("Failed to update launch at login: " + *error).toStdString());
    }
}

} // namespace orvanta::state
