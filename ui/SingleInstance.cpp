#include "SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

namespace orvanta::ui {
namespace {

const QByteArray kActivate = QByteArrayLiteral("activate\n");
const QByteArray kDone = QByteArrayLiteral("ok\n");
constexpr int kConnectTimeoutMs = 1000;
// How long a second launch keeps trying while the first is still starting up.
constexpr qint64 kNotifyBoundMs = 5000;

} // namespace

SingleInstance::SingleInstance(QString directory, QObject* parent) : QObject(parent), folder(std::move(directory)) {}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::defaultDirectory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir(runtime).exists()) {
        return runtime;
    }
    const QString fallback = QDir::temp().filePath(QStringLiteral("orvanta-") + qEnvironmentVariable("USER"));
    QDir().mkpath(fallback);
    QFile::setPermissions(fallback, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    return fallback;
}

QString SingleInstance::socketPath() const
{
    return QDir(folder).filePath(QStringLiteral("orvanta.socket"));
}

QString SingleInstance::lockPath() const
{
    return QDir(folder).filePath(QStringLiteral("orvanta.lock"));
}

SingleInstance::Claim SingleInstance::claim()
{
    lock = std::make_unique<QLockFile>(lockPath());
    // Only a lock whose process is gone counts as stale, however old it is.
    lock->setStaleLockTime(0);
    if (lock->tryLock(0)) {
        listen();
        return Claim::First;
    }
    lock.reset();
    return notifyRunningInstance() ? Claim::Notified : Claim::Silent;
}

bool SingleInstance::listen()
{
    // A socket left by an instance that crashed would block the name.
    QLocalServer::removeServer(socketPath());
    server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(socketPath())) {
        return false;
    }
    connect(server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* client = server->nextPendingConnection()) {
            connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            connect(client, &QLocalSocket::readyRead, this, [this, client] {
                while (client->canReadLine()) {
                    if (client->readLine() == kActivate) {
                        client->write(kDone);
                        client->flush();
                        emit activationRequested();
                    }
                }
            });
        }
    });
    return true;
}

bool SingleInstance::notifyRunningInstance()
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < kNotifyBoundMs) {
        QLocalSocket socket;
        socket.connectToServer(socketPath());
        if (socket.waitForConnected(kConnectTimeoutMs)) {
            socket.write(kActivate);
            if (socket.waitForBytesWritten(kConnectTimeoutMs) && socket.waitForReadyRead(kConnectTimeoutMs)) {
                return socket.readLine() == kDone;
            }
            return false;
        }
        // The first instance holds the lock but may not be listening yet.
        QThread::msleep(100);
    }
    return false;
}

} // namespace orvanta::ui
