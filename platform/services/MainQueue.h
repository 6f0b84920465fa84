#pragma once

// Work handed to the main thread's event loop, to run after the current event is finished.

#include <functional>

namespace orvanta::services {

void postToMainQueue(std::function<void()> work);

} // namespace orvanta::services
