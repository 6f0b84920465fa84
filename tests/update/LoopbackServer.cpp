#include "LoopbackServer.h"

#include <QHostAddress>
#include <QNetworkProxy>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace orvanta::testing {
namespace {

// HTTP clients read the status code; the reason phrase is only for people.
QByteArray statusLine(int status)
{
    return "HTTP/1.1 " + QByteArray::number(status) + " Status\r\n";
}

} // namespace

Route Route::reply(int status, const QByteArray& body, const QByteArray& contentType)
{
    return {.response = statusLine(status) + "Content-Type: " + contentType + "\r\nContent-Length: " +
                        QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body};
}

Route Route::redirect(const QByteArray& location, int status)
{
    return {.response =
                statusLine(status) + "Location: " + location + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n"};
}

Route Route::untilClose(const QByteArray& body)
{
    return {.response = statusLine(200) + "Content-Type: application/json\r\nConnection: close\r\n\r\n" + body};
}

LoopbackServer::LoopbackServer() : server(new QTcpServer(this))
{
    // Loopback traffic never goes through a proxy the machine may name.
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    connect(server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server->nextPendingConnection()) {
            ++connections;
            socket->setParent(this);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    server->listen(QHostAddress::LocalHost, 0);
}

QUrl LoopbackServer::url(const QString& path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(server->serverPort()).arg(path));
}

void LoopbackServer::close()
{
    server->close();
}

void LoopbackServer::readRequest(QTcpSocket* socket)
{
    const QByteArray buffer = socket->property("buffer").toByteArray() + socket->readAll();
    socket->setProperty("buffer", buffer);
    if (!buffer.contains("\r\n\r\n")) {
        return;
    }
    const QByteArray path = buffer.left(buffer.indexOf("\r\n")).split(' ').value(1);
    requestPaths.append(path);
    const Route route = routes.value(path, Route::reply(404, "<html><body>Not Found</body></html>", "text/html"));
    if (!route.answer) {
        return;
    }
    if (route.holdUntilRequests > 0) {
        held[path].append(socket);
        if (requestCount(path) >= route.holdUntilRequests) {
            for (QTcpSocket* waiting : held.take(path)) {
                answer(waiting, route);
            }
        }
        return;
    }
    QTimer::singleShot(route.delay, this, [this, guarded = QPointer<QTcpSocket>(socket), route] {
        if (guarded) {
            answer(guarded, route);
        }
    });
}

void LoopbackServer::answer(QTcpSocket* socket, const Route& route)
{
    socket->write(route.response);
    socket->disconnectFromHost(); // after the bytes are written
}

} // namespace orvanta::testing
