#include "SimulatedHttpClient.h"

#include "services/BackgroundWork.h"

namespace orvanta::sim {

void SimulatedHttpClient::getInBackground(const QUrl& url, ResponseHandler handler)
{
    requests.append(url);
    services::HttpResponse response;
    if (const auto canned = responses.constFind(url.toString()); canned != responses.cend()) {
        response = *canned;
    } else {
        response.error = QStringLiteral("no response for %1").arg(url.toString());
    }
    services::runInBackground([handler = std::move(handler), response] { return handler(response); });
}

} // namespace orvanta::sim
