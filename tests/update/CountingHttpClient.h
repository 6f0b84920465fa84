#pragma once

// Passes requests on to another client and counts the ones whose work is over: the handler has
// run and so has whatever it handed to the main thread (for the update check, the dialog). A
// silent outcome counts too, so a test knows when a check that shows nothing has ended.

#include "services/HttpClient.h"

#include <QList>

#include <memory>

namespace orvanta::testing {

class CountingHttpClient final : public services::HttpClient
{
public:
    explicit CountingHttpClient(services::HttpClient& forwardTo) : inner(forwardTo) {}

    void getInBackground(const QUrl& url, ResponseHandler handler) override
    {
        requests.append(url);
        inner.getInBackground(
            url,
            [handler = std::move(handler), counter = finished](const services::HttpResponse& response) -> Continuation {
                Continuation next = handler(response);
                return [next, counter] {
                    if (next) {
                        next();
                    }
                    ++*counter;
                };
            });
    }

    int finishedCount() const { return *finished; }

    QList<QUrl> requests;

private:
    services::HttpClient& inner;
    std::shared_ptr<int> finished = std::make_shared<int>(0);
};

} // namespace orvanta::testing
