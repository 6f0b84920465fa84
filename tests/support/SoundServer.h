#pragma once

// A private sound server for one test: PulseAudio 16, or PipeWire with its pulse server, session bus
// and session manager, in directories of its own, with PULSE_SERVER pointed at it. Needs no system
// service (no system bus, no logind); its processes end with the object or with the test process.

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <csignal>
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
    void freeze() const { signalAll(SIGSTOP); }
    void thaw() const { signalAll(SIGCONT); }

    // Runs pactl against this server; gives its standard output, or a null string on failure.
    QString pactl(const QStringList& arguments) const;
    // Loads a module with pactl, one argument per entry; gives its index, or -1.
    long long loadModule(const QString& name, const QStringList& arguments) const;
    // The sorted arguments of the modules whose line holds text; the index of the first one.
    QStringList modules(const QString& text) const;
    QString moduleLoading(const QString& text) const
    {
        return pactlLines("modules", text).value(0).section('\t', 0, 0);
    }
    int sinksNamed(const QString& name) const;
    QString defaultSink() const { return pactl({"get-default-sink"}).trimmed(); }
    QString serverAddress() const { return "unix:" + runtime.path() + "/pulse/native"; }
    Kind kind() const { return serverKind; }
    static const char* name(Kind kind) { return kind == Kind::PulseAudio ? "PulseAudio" : "PipeWire"; }

private:
    void signalAll(int signal) const;
    QStringList pactlLines(const QString& list, const QString& text) const;
    std::unique_ptr<QProcess> spawn(const QString& program, const QStringList& arguments) const;
    QProcess* launch(const QString& program, const QStringList& arguments);
    bool waitUntilAnswering(int milliseconds) const;
    // PipeWire: bounded wait until the session manager picks default sinks.
    bool waitUntilPolicyRuns(int milliseconds) const;
    // Prints why start() failed, with the output of every process it launched.
    bool failed(const QString& why) const;
    QProcessEnvironment environment() const;

    Kind serverKind;
    QTemporaryDir runtime;
    QString sessionBus;
    std::unique_ptr<QProcess> sessionBusProcess;
    std::vector<std::unique_ptr<QProcess>> processes;
};

} // namespace orvanta::testing
