#pragma once

// Work done on a worker thread of the process's pool, with its result brought back to the main
// thread's event loop. Only the platform layer starts threads; the layers above hand work in
// through this and get their continuations on the main thread.

#include <functional>

namespace orvanta::services {

// Runs work on a worker thread. The function work returns, when not empty, is then queued on the
// main thread's event loop. Needs the application object, and does nothing without one.
void runInBackground(std::function<std::function<void()>()> work);

} // namespace orvanta::services
