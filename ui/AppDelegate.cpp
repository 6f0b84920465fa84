#include "AppDelegate.h"

#include "update/UpdateChecker.h"

namespace orvanta::ui {

AppDelegate::AppDelegate(update::UpdateChecker& checker) : updates(checker) {}

void AppDelegate::applicationDidFinishLaunching()
{
    updates.checkForUpdatesAtLaunch();
}

} // namespace orvanta::ui
