#include "SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>

namespace orvanta::ui {
namespace {

const QByteArray kActivate = QByteArrayLiteral("activate\n");
const QByteArray kDone = QByteArrayLiteral("ok\n");
constexpr int kConnectTimeoutMs = 1000;
constexpr unsigned long kRetryPauseMs = 100;
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
    // The first instance listens as soon as it holds the lock, but answers only once its event
    // loop runs, after it has chosen its sound system and built its window. So the request is
    // sent once and the answer awaited for the whole bound; a refused connection (the lock
    // taken, the socket not there yet) is tried again within the same bound.
    QElapsedTimer clock;
    clock.start();
    const auto remaining = [&clock] { return static_cast<int>(std::max<qint64>(0, kNotifyBoundMs - clock.elapsed())); };
    while (remaining() > 0) {
        QLocalSocket socket;
        socket.connectToServer(socketPath());
        if (!socket.waitForConnected(std::min(kConnectTimeoutMs, remaining()))) {
            QThread::msleep(kRetryPauseMs);
            continue;
        }
        socket.write(kActivate);
        if (!socket.waitForBytesWritten(remaining())) {
            return false;
        }
        while (!socket.canReadLine() && remaining() > 0 && socket.state() == QLocalSocket::ConnectedState) {
            socket.waitForReadyRead(remaining());
        }
        return socket.canReadLine() && socket.readLine() == kDone;
    }
    return false;
}

} // namespace orvanta::ui
