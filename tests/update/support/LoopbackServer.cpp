#include "LoopbackServer.h"

#include <QHostAddress>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace orvanta::testing {
namespace {

const char* reasonPhrase(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 301:
        return "Moved Permanently";
    case 302:
        return "Found";
    case 404:
        return "Not Found";
    case 500:
        return "Internal Server Error";
    default:
        return "Status";
    }
}

QByteArray statusLine(int status)
{
    return "HTTP/1.1 " + QByteArray::number(status) + ' ' + reasonPhrase(status) + "\r\n";
}

} // namespace

Route Route::reply(int status, const QByteArray& body, const QByteArray& contentType)
{
    Route route;
    route.response = statusLine(status) + "Content-Type: " + contentType +
                     "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\nConnection: close\r\n\r\n" + body;
    return route;
}

Route Route::redirect(const QByteArray& location, int status)
{
    Route route;
    route.response =
        statusLine(status) + "Location: " + location + "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n";
    return route;
}

Route Route::untilClose(const QByteArray& body)
{
    Route route;
    route.response = statusLine(200) + "Content-Type: application/json\r\nConnection: close\r\n\r\n" + body;
    return route;
}

Route Route::silent()
{
    Route route;
    route.answer = false;
    return route;
}

LoopbackServer::LoopbackServer() : server(new QTcpServer(this))
{
    connect(server, &QTcpServer::newConnection, this, &LoopbackServer::accept);
    server->listen(QHostAddress::LocalHost, 0);
}

LoopbackServer::~LoopbackServer() = default;

bool LoopbackServer::listening() const
{
    return server->isListening();
}

quint16 LoopbackServer::port() const
{
    return server->serverPort();
}

QUrl LoopbackServer::url(const QString& path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port()).arg(path));
}

void LoopbackServer::setRoute(const QByteArray& path, Route route)
{
    routes.insert(path, std::move(route));
}

void LoopbackServer::close()
{
    server->close();
}

void LoopbackServer::accept()
{
    while (QTcpSocket* socket = server->nextPendingConnection()) {
        ++connections;
        socket->setParent(this);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void LoopbackServer::readRequest(QTcpSocket* socket)
{
    // One request per connection: every answer closes it.
    if (socket->property("answered").toBool()) {
        socket->readAll();
        return;
    }
    QByteArray buffer = socket->property("buffer").toByteArray() + socket->readAll();
    socket->setProperty("buffer", buffer);
    if (!buffer.contains("\r\n\r\n")) {
        return;
    }
    socket->setProperty("answered", true);
    const QList<QByteArray> requestLine = buffer.left(buffer.indexOf("\r\n")).split(' ');
    const QByteArray path = requestLine.size() >= 2 ? requestLine[1] : QByteArray();
    requestPaths.append(path);

    const auto found = routes.constFind(path);
    if (found == routes.cend()) {
        answer(socket, Route::reply(404, "<html><body>Not Found</body></html>", "text/html"));
        return;
    }
    const Route route = *found;
    if (!route.answer) {
        return;
    }
    if (route.holdUntilRequests > 0) {
        held[path].append(socket);
        if (requestCount(path) >= route.holdUntilRequests) {
            release(path);
        }
        return;
    }
    if (route.delay.count() > 0) {
        QPointer<QTcpSocket> guarded(socket);
        QTimer::singleShot(route.delay, this, [this, guarded, route] {
            if (guarded) {
                answer(guarded, route);
            }
        });
        return;
    }
    answer(socket, route);
}

void LoopbackServer::release(const QByteArray& path)
{
    const Route route = routes.value(path);
    for (QTcpSocket* socket : held.take(path)) {
        answer(socket, route);
    }
}

void LoopbackServer::answer(QTcpSocket* socket, const Route& route)
{
    socket->write(route.response);
    socket->disconnectFromHost(); // after the bytes are written
}

} // namespace orvanta::testing
