#pragma once

// Loading of web addresses (HTTP GET). Every request runs in the background and returns at once.
// What arrives is handed over as a response: the body, the HTTP status and, when the transfer
// itself failed, a readable error. An HTTP status of 404 or 500 is not a transfer failure: the
// body that came with it is delivered like any other, so callers decide what the status means.

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <functional>

namespace orvanta::services {

struct HttpResponse
{
    QByteArray body;
    int status = 0; // the HTTP status code, 0 when no response line arrived
    QString error;  // empty when the transfer worked
};

class HttpClient
{
public:
    // Work that goes on on the main thread, or nothing.
    using Continuation = std::function<void()>;
    // Runs on a worker thread with the response, so that reading a body never blocks the
    // interface; the continuation it gives back, if any, then runs on the main thread.
    using ResponseHandler = std::function<Continuation(const HttpResponse& response)>;
    // Runs on the main thread with the response.
    using Completion = std::function<void(const HttpResponse& response)>;

    virtual ~HttpClient() = default;

    // Starts a GET of url from the main thread.
    virtual void getInBackground(const QUrl& url, ResponseHandler handler) = 0;

    // The same, for callers that need nothing done off the main thread.
    void get(const QUrl& url, Completion completion);

protected:
    HttpClient() = default;
    HttpClient(const HttpClient&) = default;
    HttpClient& operator=(const HttpClient&) = default;
};

} // namespace orvanta::services
