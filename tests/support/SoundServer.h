#pragma once

// A private sound server for one test: PulseAudio 16, or PipeWire with its pulse server (and
// the session bus and session manager it needs), each in its own runtime directory, with
// PULSE_SERVER pointed at it for this process. Torn down when the object goes.

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

namespace orvanta::testing {

class SoundServer
{
public:
    enum class Kind
    {
        PulseAudio,
        PipeWire,
    };

    explicit SoundServer(Kind kind);
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    // Starts the server and waits (bounded) until it answers; false when it did not.
    bool start();
    // Ends the server's processes at once, as a crash would.
    void kill();
    // Stops the server's processes where they are (SIGSTOP), as a hung server, and lets them go on.
    void freeze();
    void thaw();

    // Runs pactl against this server; gives its standard output, or a null string on failure.
    QString pactl(const QStringList& arguments) const;
    // Loads a module with pactl, one argument per entry; gives its index, or -1.
    long long loadModule(const QString& name, const QStringList& arguments) const;
    QString runtimeDirectory() const { return runtime.path(); }
    QString serverAddress() const;
    Kind kind() const { return serverKind; }
    static const char* name(Kind kind);

private:
    QProcess* launch(const QString& program, const QStringList& arguments);
    bool waitUntilAnswering(int milliseconds) const;
    QProcessEnvironment environment() const;

    Kind serverKind;
    QTemporaryDir runtime;
    QString sessionBus;
    qint64 sessionBusPid = 0;
    std::vector<std::unique_ptr<QProcess>> processes;
};

} // namespace orvanta::testing
