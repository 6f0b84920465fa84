#pragma once

// An HTTP server on 127.0.0.1 in the test's event loop, with a scripted answer per path (written
// as given, so it may lie about its length), held back, delayed, or never sent.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QUrl>

#include <chrono>

class QTcpServer;
class QTcpSocket;

namespace orvanta::testing {

struct Route
{
    QByteArray response;                // written as it is, then the connection is closed
    bool answer = true;                 // false: read the request and never answer
    int holdUntilRequests = 0;          // answer only once this many requests for the path arrived
    std::chrono::milliseconds delay{0}; // wait this long before answering

    // A complete response with a correct Content-Length.
    static Route reply(int status, const QByteArray& body,
                       const QByteArray& contentType = QByteArrayLiteral("application/json"));
    static Route redirect(const QByteArray& location, int status = 302);
    // A response without Content-Length whose end is the closing of the connection.
    static Route untilClose(const QByteArray& body);
};

class LoopbackServer : public QObject
{
public:
    LoopbackServer();

    QUrl url(const QString& path) const;
    void setRoute(const QByteArray& path, Route route) { routes.insert(path, std::move(route)); }

    int requestCount(const QByteArray& path) const { return static_cast<int>(requestPaths.count(path)); }
    int connectionCount() const { return connections; }

    void close();

private:
    void readRequest(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const Route& route);

    QTcpServer* server;
    QHash<QByteArray, Route> routes;
    QHash<QByteArray, QList<QTcpSocket*>> held;
    QList<QByteArray> requestPaths;
    int connections = 0;
};

} // namespace orvanta::testing
