#pragma once

// Runs the test's event loop until a condition holds or a time limit passes.

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace orvanta::testing {

// True when condition held before limit ran out.
inline bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    if (condition()) {
        return true;
    }
    QEventLoop loop;
    QTimer poll;
    poll.setInterval(std::chrono::milliseconds(5));
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition()) {
            loop.quit();
        }
    });
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    poll.start();
    deadline.start(limit);
    loop.exec();
    return condition();
}

// Lets queued work run for a while (to see that nothing more happens).
inline void spinFor(std::chrono::milliseconds duration)
{
    QElapsedTimer elapsed;
    elapsed.start();
    waitUntil([&] { return elapsed.elapsed() >= duration.count(); }, duration + std::chrono::milliseconds(1000));
}

} // namespace orvanta::testing
