#pragma once

// Passes requests on and counts those whose handler and main-thread continuation (the dialog) have
// both run, silent outcomes included.

#include "services/HttpClient.h"

#include <memory>

namespace orvanta::testing {

class CountingHttpClient final : public services::HttpClient
{
public:
    explicit CountingHttpClient(services::HttpClient& forwardTo) : inner(forwardTo) {}

    void getInBackground(const QUrl& url, ResponseHandler handler) override
    {
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

private:
    services::HttpClient& inner;
    std::shared_ptr<int> finished = std::make_shared<int>(0);
};

} // namespace orvanta::testing
