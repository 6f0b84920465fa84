#include "SoundServer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QThread>

#include <csignal>

namespace orvanta::testing {

SoundServer::SoundServer(Kind kind) : serverKind(kind)
{
    QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("PULSE_SERVER", serverAddress().toUtf8());
    // This process's own PipeWire clients find this server's daemon, and only it.
    qputenv("PIPEWIRE_RUNTIME_DIR", runtime.path().toUtf8());
}

SoundServer::~SoundServer()
{
    kill();
    if (sessionBusPid > 0) {
        ::kill(static_cast<pid_t>(sessionBusPid), SIGTERM);
    }
}

const char* SoundServer::name(Kind kind)
{
    return kind == Kind::PulseAudio ? "PulseAudio" : "PipeWire";
}

QString SoundServer::serverAddress() const
{
    return "unix:" + runtime.path() + "/pulse/native";
}

QProcessEnvironment SoundServer::environment() const
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", runtime.path());
    env.insert("PULSE_SERVER", serverAddress());
    env.insert("PULSE_RUNTIME_PATH", runtime.path() + "/pulse");
    env.insert("PIPEWIRE_RUNTIME_DIR", runtime.path());
    // The session manager keeps what it learns (the chosen default sink) per server, not per user.
    env.insert("XDG_STATE_HOME", runtime.path() + "/state");
    if (!sessionBus.isEmpty()) {
        env.insert("DBUS_SESSION_BUS_ADDRESS", sessionBus);
    }
    return env;
}

QProcess* SoundServer::launch(const QString& program, const QStringList& arguments)
{
    auto process = std::make_unique<QProcess>();
    process->setProcessEnvironment(environment());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(program, arguments);
    process->waitForStarted(5000);
    processes.push_back(std::move(process));
    return processes.back().get();
}

bool SoundServer::start()
{
    if (serverKind == Kind::PulseAudio) {
        launch("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disallow-exit",
                              "-L", "module-native-protocol-unix auth-anonymous=1"});
        return waitUntilAnswering(10000);
    }
    if (sessionBus.isEmpty()) {
        QProcess bus;
        bus.start("dbus-daemon", {"--session", "--fork", "--print-address=1", "--print-pid=1"});
        if (!bus.waitForFinished(5000)) {
            return false;
        }
        const auto lines = QString::fromUtf8(bus.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
        if (lines.size() < 2) {
            return false;
        }
        sessionBus = lines[0].trimmed();
        sessionBusPid = lines[1].trimmed().toLongLong();
    }
    launch("pipewire", {});
    QThread::msleep(300);
    launch("wireplumber", {});
    launch("pipewire-pulse", {});
    return waitUntilAnswering(15000);
}

void SoundServer::kill()
{
    for (auto it = processes.rbegin(); it != processes.rend(); ++it) {
        (*it)->kill();
        (*it)->waitForFinished(3000);
    }
    processes.clear();
}

void SoundServer::freeze()
{
    for (const auto& process : processes) {
        ::kill(static_cast<pid_t>(process->processId()), SIGSTOP);
    }
}

void SoundServer::thaw()
{
    for (const auto& process : processes) {
        ::kill(static_cast<pid_t>(process->processId()), SIGCONT);
    }
}

bool SoundServer::waitUntilAnswering(int milliseconds) const
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) {
        if (!pactl({"info"}).isNull()) {
            return true;
        }
        QThread::msleep(100);
    }
    return false;
}

QString SoundServer::pactl(const QStringList& arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment());
    process.start("pactl", arguments);
    if (!process.waitForFinished(5000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        return {};
    }
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return output.isNull() ? QStringLiteral("") : output; // success with no output is not a failure
}

long long SoundServer::loadModule(const QString& name, const QStringList& arguments) const
{
    const QStringList words = QStringList{"load-module", name} + arguments;
    const QString output = pactl(words);
    bool ok = false;
    const long long index = output.trimmed().toLongLong(&ok);
    return ok ? index : -1;
}

} // namespace orvanta::testing
