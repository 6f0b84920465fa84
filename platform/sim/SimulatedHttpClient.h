#pragma once

// Canned web responses, for tests and for runs without a network. Every request is recorded;
// an address without a canned response fails as an unreachable host would. Responses arrive
// the way real ones do: never before the call returns, handled on a worker thread, continued on
// the main thread.

#include "services/HttpClient.h"

#include <QHash>
#include <QList>

namespace orvanta::sim {

class SimulatedHttpClient final : public services::HttpClient
{
public:
    void getInBackground(const QUrl& url, ResponseHandler handler) override;

    // Canned response by address (as QUrl::toString() writes it).
    QHash<QString, services::HttpResponse> responses;
    QList<QUrl> requests;
};

} // namespace orvanta::sim
