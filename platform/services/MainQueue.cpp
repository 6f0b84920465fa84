#include "MainQueue.h"

#include <QCoreApplication>
#include <QTimer>

namespace orvanta::services {

void postToMainQueue(std::function<void()> work)
{
    QTimer::singleShot(0, QCoreApplication::instance(), std::move(work));
}

} // namespace orvanta::services
