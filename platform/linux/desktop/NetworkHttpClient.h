#pragma once

// Web requests over QtNetwork. Certificates are verified (Qt's default, never relaxed). Only
// http and https addresses are fetched; a redirect is followed only when it keeps the scheme of
// the request, so an https request never ends up on plain http or anywhere else. A request is
// given up after a deadline, and a body larger than a limit fails the transfer; both are
// checked while the body is still arriving. A failed transfer delivers no body. Requests still
// in flight when the client is destroyed end without a response.

#include "services/HttpClient.h"

#include <QtGlobal>

#include <chrono>
#include <memory>

class QNetworkAccessManager;

namespace orvanta::desktop {

struct HttpLimits
{
    std::chrono::milliseconds timeout{30'000}; // for the whole transfer, redirects included
    qint64 maxBodySize = 1024 * 1024;
    int maxRedirects = 10;
};

class NetworkHttpClient final : public services::HttpClient
{
public:
    explicit NetworkHttpClient(HttpLimits limits = {});
    ~NetworkHttpClient() override;
    NetworkHttpClient(const NetworkHttpClient&) = delete;
    NetworkHttpClient& operator=(const NetworkHttpClient&) = delete;

    void getInBackground(const QUrl& url, ResponseHandler handler) override;

    const HttpLimits& limits() const { return transferLimits; }

private:
    HttpLimits transferLimits;
    // Made on the first request, on the main thread, where its replies then live.
    std::unique_ptr<QNetworkAccessManager> manager;
};

} // namespace orvanta::desktop
