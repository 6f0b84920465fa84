#include "SoundServer.h"

#include "support/EventLoop.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>

#include <csignal>
#include <functional>

#include <sys/prctl.h>
#include <unistd.h>

namespace orvanta::testing {
namespace {

// Read before the system's settings. WirePlumber 0.4's Bluetooth monitor tracks logind seats, and
// where logind does not run (a container, a minimal CI machine) that takes the whole session manager
// down, so that nothing picks a default sink. A test server has no Bluetooth devices anyway.
constexpr char kNoBluetoothMonitor[] =
    "-- A private test server: no Bluetooth monitor, and so no logind seat tracking.\n"
    "bluez_monitor.enabled = false\n";

// True once something listens on the Unix socket at path. A socket file alone is not enough: one
// left by a killed server stays behind until the next one takes it over.
bool socketAccepts(const QString& path)
{
    QLocalSocket socket;
    socket.connectToServer(path);
    return socket.waitForConnected(1000);
}

// Whether process has ended. Without an event loop its state is only brought up to date by a
// wait, hence the wait of no time.
bool exited(QProcess& process)
{
    return process.state() == QProcess::NotRunning || process.waitForFinished(0);
}

// Polls until done() holds, for at most milliseconds; gives up early once process has exited.
bool waitFor(const std::function<bool()>& done, int milliseconds, QProcess& process)
{
    return pollUntil([&] { return done() || exited(process); }, milliseconds, [] { QThread::msleep(20); }) && done();
}

QString logName(const QProcess& process)
{
    return QFileInfo(process.program()).fileName() + ".log";
}

} // namespace

SoundServer::SoundServer(Kind kind) : serverKind(kind)
{
    QFile::setPermissions(runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString wireplumber = runtime.path() + "/config/wireplumber/bluetooth.lua.d";
    QFile monitor(wireplumber + "/80-no-bluetooth-monitor.lua");
    QDir().mkpath(wireplumber);
    if (monitor.open(QIODevice::WriteOnly)) {
        monitor.write(kNoBluetoothMonitor);
    }
    qputenv("PULSE_SERVER", serverAddress().toUtf8());
    // This process's own PipeWire clients find this server's daemon, and only it.
    qputenv("PIPEWIRE_RUNTIME_DIR", runtime.path().toUtf8());
}

SoundServer::~SoundServer()
{
    kill();
    if (sessionBusProcess) {
        sessionBusProcess->kill();
        sessionBusProcess->waitForFinished(3000);
    }
}

QProcessEnvironment SoundServer::environment() const
{
    auto env = QProcessEnvironment::systemEnvironment();
    // Settings a developer's shell may carry for their own session would send these servers to
    // another configuration or another daemon.
    for (const char* variable : {"PIPEWIRE_CONFIG_NAME", "PIPEWIRE_CONFIG_DIR", "PIPEWIRE_CONFIG_PREFIX",
                                 "PIPEWIRE_REMOTE", "WIREPLUMBER_CONFIG_DIR", "WIREPLUMBER_DATA_DIR"}) {
        env.remove(variable);
    }
    env.insert("XDG_RUNTIME_DIR", runtime.path());
    env.insert("PULSE_SERVER", serverAddress());
    env.insert("PULSE_RUNTIME_PATH", runtime.path() + "/pulse");
    env.insert("PIPEWIRE_RUNTIME_DIR", runtime.path());
    // The servers read their settings from here (the session manager's above, nothing else), not
    // from the user's, and keep what they learn (the chosen default sink) per server, not per user.
    env.insert("XDG_CONFIG_HOME", runtime.path() + "/config");
    env.insert("XDG_STATE_HOME", runtime.path() + "/state");
    if (!sessionBus.isEmpty()) {
        env.insert("DBUS_SESSION_BUS_ADDRESS", sessionBus);
    }
    return env;
}

std::unique_ptr<QProcess> SoundServer::spawn(const QString& program, const QStringList& arguments) const
{
    auto process = std::make_unique<QProcess>();
    process->setProgram(program);
    process->setArguments(arguments);
    process->setProcessEnvironment(environment());
    process->setProcessChannelMode(QProcess::MergedChannels);
    process->setStandardOutputFile(runtime.path() + "/" + logName(*process));
    // A test process that crashes or is killed by a timeout takes its servers along instead of
    // leaving them running. (The signal is sent when the thread that started them ends: the tests
    // start servers on their main thread.)
    const pid_t parent = ::getpid();
    process->setChildProcessModifier([parent] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(127);
        }
    });
    process->start();
    process->waitForStarted(5000);
    return process;
}

QProcess* SoundServer::launch(const QString& program, const QStringList& arguments)
{
    processes.push_back(spawn(program, arguments));
    return processes.back().get();
}

bool SoundServer::start()
{
    if (serverKind == Kind::PulseAudio) {
        launch("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "--disallow-exit",
                              "-L", "module-native-protocol-unix auth-anonymous=1"});
        return waitUntilAnswering(10000) || failed("PulseAudio did not answer within 10 s");
    }
    if (!sessionBusProcess) {
        // At an address of its own in the runtime directory, so that it can be waited for and stays
        // this server's; it outlives kill() and start(), as a user's session bus would.
        const QString socket = runtime.path() + "/bus";
        sessionBus = "unix:path=" + socket;
        sessionBusProcess = spawn("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--address=" + sessionBus});
        if (!waitFor([&] { return socketAccepts(socket); }, 5000, *sessionBusProcess)) {
            return failed("the session bus did not start within 5 s");
        }
    }
    // The session manager and the pulse server connect once, at start: the daemon must be
    // listening by then, however long it takes on a busy machine.
    QProcess* daemon = launch("pipewire", {});
    if (!waitFor([this] { return socketAccepts(runtime.path() + "/pipewire-0"); }, 10000, *daemon)) {
        return failed("pipewire did not listen within 10 s");
    }
    launch("wireplumber", {});
    launch("pipewire-pulse", {});
    if (!waitUntilAnswering(15000)) {
        return failed("pipewire-pulse did not answer within 15 s");
    }
    for (const auto& process : processes) {
        if (exited(*process)) {
            return failed(process->program() + " exited");
        }
    }
    return waitUntilPolicyRuns(15000) ||
           failed("the session manager chose no default sink within 15 s (it has no default-node policy running)");
}

bool SoundServer::waitUntilPolicyRuns(int milliseconds) const
{
    // The session manager loads its policy after the pulse server answers, later still on a busy
    // machine, and a test that loads sinks and reads the default at once would race it. Once the
    // policy runs, some sink is the default: a probe sink, the only one a new server has, shows
    // when, and goes. A restarted server may choose a sink it remembers instead (a stacked device
    // that reconnects by itself), which shows the policy running just as well.
    const QString probe = "orvanta.server.probe";
    const long long module = loadModule("module-null-sink", {"sink_name=" + probe});
    // Until then the pulse server names no sink but its placeholder.
    const auto someDefault = [this] {
        const QString sink = defaultSink();
        return !sink.isEmpty() && sink != "@DEFAULT_SINK@";
    };
    const bool chosen = module >= 0 && pollUntil(someDefault, milliseconds, [] { QThread::msleep(50); });
    return !pactl({"unload-module", QString::number(module)}).isNull() && chosen;
}

bool SoundServer::failed(const QString& why) const
{
    qWarning().noquote() << "The private" << name(serverKind) << "server failed to start:" << why;
    std::vector<QProcess*> launched{sessionBusProcess.get()};
    for (const auto& process : processes) {
        launched.push_back(process.get());
    }
    for (QProcess* process : launched) {
        QFile log(process ? runtime.path() + "/" + logName(*process) : QString());
        if (log.open(QIODevice::ReadOnly)) {
            qWarning().noquote() << "---" << process->program() << (exited(*process) ? "exited" : "running")
                                 << "; its output:" << QString::fromUtf8(log.readAll().right(4000));
        }
    }
    return false;
}

void SoundServer::kill()
{
    for (auto it = processes.rbegin(); it != processes.rend(); ++it) {
        (*it)->kill();
        (*it)->waitForFinished(3000);
    }
    processes.clear();
}

void SoundServer::signalAll(int signal) const
{
    for (const auto& process : processes) {
        ::kill(static_cast<pid_t>(process->processId()), signal);
    }
}

bool SoundServer::waitUntilAnswering(int milliseconds) const
{
    return pollUntil([this] { return !pactl({"info"}).isNull(); }, milliseconds, [] { QThread::msleep(100); });
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

QStringList SoundServer::pactlLines(const QString& list, const QString& text) const
{
    return pactl({"list", "short", list}).split('\n').filter(text);
}

QStringList SoundServer::modules(const QString& text) const
{
    QStringList found;
    for (const auto& line : pactlLines("modules", text)) {
        found << line.section('\t', 2).trimmed();
    }
    found.sort();
    return found;
}

int SoundServer::sinksNamed(const QString& name) const
{
    return static_cast<int>(pactlLines("sinks", "\t" + name + "\t").size()); // the name column only
}

} // namespace orvanta::testing
