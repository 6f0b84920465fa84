#pragma once

// The application's two answers to the desktop: once it has started, the silent launch-time
// update check runs; and closing the last window does not end the program, since sync, the
// delays and the volume keys keep working without a window.

namespace orvanta::update {
class UpdateChecker;
}

namespace orvanta::ui {

class AppDelegate
{
public:
    explicit AppDelegate(update::UpdateChecker& updates);

    // Starts the launch-time check and returns at once; the check ends on its own.
    void applicationDidFinishLaunching();

    bool applicationShouldTerminateAfterLastWindowClosed() const { return false; }

private:
    update::UpdateChecker& updates;
};

} // namespace orvanta::ui
