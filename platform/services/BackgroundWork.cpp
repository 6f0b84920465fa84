#include "BackgroundWork.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThreadPool>

namespace orvanta::services {

void runInBackground(std::function<std::function<void()>()> work)
{
    if (QCoreApplication::instance() == nullptr) {
        return;
    }
    QThreadPool::globalInstance()->start([work = std::move(work)] {
        auto continuation = work();
        if (!continuation) {
            return;
        }
        // A queued call on the application object runs in the thread it lives in, the main one.
        if (auto* application = QCoreApplication::instance()) {
            QMetaObject::invokeMethod(application, std::move(continuation), Qt::QueuedConnection);
        }
    });
}

} // namespace orvanta::services
