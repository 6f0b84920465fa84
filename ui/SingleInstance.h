#pragma once

// One running Orvanta per user session. The first instance holds a lock file and listens on a
// local socket, both in the user's runtime directory; a later launch finds the lock taken, asks
// the running instance over the socket to bring its main window to the front, and ends. That is
// also the way back to the window on a desktop that shows no tray icon.

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;

namespace orvanta::ui {

class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Claim
    {
        First,    // this is the one instance; activationRequested() tells of later launches
        Notified, // another instance runs and was asked to show its window
        Silent,   // another instance holds the lock but did not answer
    };

    explicit SingleInstance(QString directory = defaultDirectory(), QObject* parent = nullptr);
    ~SingleInstance() override;

    // $XDG_RUNTIME_DIR, or a private folder in the temporary directory when it is not set.
    static QString defaultDirectory();

    Claim claim();

    QString socketPath() const;
    QString lockPath() const;

signals:
    void activationRequested();

private:
    bool listen();
    bool notifyRunningInstance();

    QString folder;
    std::unique_ptr<QLockFile> lock;
    QLocalServer* server = nullptr;
};

} // namespace orvanta::ui
