#pragma once

// Waits for a condition with a bound: running the Qt event loop, or not.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

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

// Waits, without an event loop, until a condition holds or a bound passes (in ms).
inline bool eventually(const std::function<bool()>& done, int milliseconds = 5000)
{
    QElapsedTimer clock;
    clock.start();
    while (!done()) {
        if (clock.elapsed() > milliseconds) {
            return false;
        }
        QThread::msleep(10);
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
