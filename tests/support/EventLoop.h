#pragma once

// Runs the Qt event loop until a condition holds or a bound passes.

#include <QCoreApplication>
#include <QElapsedTimer>

#include <chrono>
#include <functional>

namespace orvanta::testing {

inline bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound = std::chrono::seconds(5))
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > bound.count()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    return true;
}

// Lets queued work run without waiting for anything in particular.
inline void drainEvents()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}

} // namespace orvanta::testing
