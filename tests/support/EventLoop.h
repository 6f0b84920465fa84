#pragma once

// Waits for a condition with a bound: running the Qt event loop, or not.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <chrono>
#include <functional>

namespace orvanta::testing {

// Polls done() until it holds or the bound (in ms) passes, with pause() between two polls.
inline bool pollUntil(const std::function<bool()>& done, qint64 bound, const std::function<void()>& pause)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > bound) {
            return false;
        }
        pause();
    }
    return true;
}

inline bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound = std::chrono::seconds(5))
{
    return pollUntil(done, bound.count(), [] { QCoreApplication::processEvents(QEventLoop::AllEvents, 10); });
}

// Waits, without an event loop, until a condition holds or a bound passes (in ms).
inline bool eventually(const std::function<bool()>& done, int milliseconds = 5000)
{
    return pollUntil(done, milliseconds, [] { QThread::msleep(10); });
}

// Lets queued work run without waiting for anything in particular.
inline void drainEvents()
{
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
}

} // namespace orvanta::testing
