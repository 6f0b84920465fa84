#include "NetworkHttpClient.h"

#include "services/BackgroundWork.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

namespace orvanta::desktop {
namespace {

bool isWebScheme(const QString& scheme)
{
    return scheme == QLatin1String("http") || scheme == QLatin1String("https");
}

// QtNetwork reports an HTTP status of 400 or more as an error of its own. Those errors say
// nothing about the transfer: the response arrived whole and is the caller's to judge.
bool comesFromHttpStatus(QNetworkReply::NetworkError error, int status)
{
    if (status < 400) {
        return false;
    }
    switch (error) {
    case QNetworkReply::ProtocolInvalidOperationError:
    case QNetworkReply::AuthenticationRequiredError:
    case QNetworkReply::ContentAccessDenied:
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::ContentConflictError:
    case QNetworkReply::ContentGoneError:
    case QNetworkReply::UnknownContentError:
    case QNetworkReply::InternalServerError:
    case QNetworkReply::OperationNotImplementedError:
    case QNetworkReply::ServiceUnavailableError:
    case QNetworkReply::UnknownServerError:
        return true;
    default:
        return false;
    }
}

void deliver(services::HttpClient::ResponseHandler handler, services::HttpResponse response)
{
    services::runInBackground(
        [handler = std::move(handler), response = std::move(response)] { return handler(response); });
}

// One request in flight. Lives as long as its reply; finishes exactly once.
struct Transfer
{
    QNetworkReply* reply = nullptr;
    services::HttpClient::ResponseHandler handler;
    QByteArray body;
    QString failure; // set by this client's own checks before it aborts the reply
    bool finished = false;

    void fail(const QString& reason)
    {
        if (finished) {
            return;
        }
        if (failure.isEmpty()) {
            failure = reason;
        }
        reply->abort(); // emits finished() at once
    }

    void finish()
    {
        if (finished) {
            return;
        }
        finished = true;
        services::HttpResponse response;
        response.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        if (failure.isEmpty()) {
            body += reply->readAll();
        }
        if (!failure.isEmpty()) {
            response.error = failure;
        } else if (reply->error() != QNetworkReply::NoError && !comesFromHttpStatus(reply->error(), response.status)) {
            response.error = reply->errorString();
        } else {
            response.body = std::move(body);
        }
        reply->deleteLater();
        deliver(std::move(handler), std::move(response));
    }
};

} // namespace

NetworkHttpClient::NetworkHttpClient(HttpLimits limits) : transferLimits(limits) {}

NetworkHttpClient::~NetworkHttpClient() = default;

void NetworkHttpClient::getInBackground(const QUrl& url, ResponseHandler handler)
{
    if (!url.isValid() || !isWebScheme(url.scheme()) || url.host().isEmpty()) {
        services::HttpResponse refused;
        refused.error = QStringLiteral("not an http or https address: %1").arg(url.toString());
        deliver(std::move(handler), std::move(refused));
        return;
    }
    if (!manager) {
        manager = std::make_unique<QNetworkAccessManager>();
    }

    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(transferLimits.maxRedirects);

    auto transfer = std::make_shared<Transfer>();
    transfer->handler = std::move(handler);
    QNetworkReply* reply = manager->get(request);
    transfer->reply = reply;
    const qint64 maxBodySize = transferLimits.maxBodySize;
    const QString scheme = url.scheme();

    QObject::connect(reply, &QNetworkReply::redirected, reply, [transfer, scheme](const QUrl& target) {
        if (target.scheme() != scheme) {
            transfer->fail(QStringLiteral("refused a redirect from %1 to %2").arg(scheme, target.toString()));
            return;
        }
        Q_EMIT transfer->reply->redirectAllowed();
    });
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [transfer, maxBodySize] {
        const QVariant length = transfer->reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > maxBodySize) {
            transfer->fail(QStringLiteral("the body of %1 bytes is over the limit of %2 bytes")
                               .arg(length.toLongLong())
                               .arg(maxBodySize));
        }
    });
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [transfer, maxBodySize] {
        if (transfer->finished || !transfer->failure.isEmpty()) {
            return;
        }
        transfer->body += transfer->reply->readAll();
        if (transfer->body.size() > maxBodySize) {
            transfer->fail(QStringLiteral("the body is over the limit of %1 bytes").arg(maxBodySize));
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, reply, [transfer] { transfer->finish(); });
    const auto timeout = transferLimits.timeout;
    QTimer::singleShot(timeout, reply, [transfer, timeout] {
        transfer->fail(QStringLiteral("no complete response within %1 ms").arg(timeout.count()));
    });
}

} // namespace orvanta::desktop
