#include "HttpClient.h"

namespace orvanta::services {

void HttpClient::get(const QUrl& url, Completion completion)
{
    getInBackground(url, [completion = std::move(completion)](const HttpResponse& response) -> Continuation {
        return [completion, response] { completion(response); };
    });
}

} // namespace orvanta::services
