#include "support/EventLoop.h"

#include "ui/SingleInstance.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <chrono>
#include <thread>

namespace orvanta::testing {
namespace {

TEST(SingleInstance, ASocketLeftByACrashedInstanceDoesNotBlockTheNextWhichAnswersOnlyAnActivationRequest)
{
    QTemporaryDir runtime;
    {
        QLocalServer leftOver;
        leftOver.setSocketOptions(QLocalServer::UserAccessOption);
        ui::SingleInstance probe(runtime.path());
        ASSERT_TRUE(leftOver.listen(probe.socketPath()));
        leftOver.close();
        QFile stale(probe.socketPath());
        stale.open(QIODevice::WriteOnly); // what a crash leaves: the name, and no listener
    }
    ui::SingleInstance next(runtime.path());
    ASSERT_EQ(next.claim(), ui::SingleInstance::Claim::First);
    QSignalSpy activations(&next, &ui::SingleInstance::activationRequested);
    QLocalSocket client;
    client.connectToServer(next.socketPath());
    ASSERT_TRUE(runUntil([&client] { return client.state() == QLocalSocket::ConnectedState; }));
    client.write("quit\n");
    client.write("activate\n");
    ASSERT_TRUE(runUntil([&client] { return client.canReadLine(); }));
    EXPECT_EQ(client.readLine(), "ok\n");
    EXPECT_EQ(activations.size(), 1);
}

TEST(SingleInstance, ASecondLaunchWaitsForAFirstThatIsStillStarting)
{
    QTemporaryDir runtime;
    ui::SingleInstance first(runtime.path());
    ASSERT_EQ(first.claim(), ui::SingleInstance::Claim::First);
    QSignalSpy activations(&first, &ui::SingleInstance::activationRequested);

    // The second launch runs beside this one, which stands for a first instance that holds the
    // lock and listens but, busy choosing its sound system, runs no event loop for a while:
    // longer than one connection attempt takes, shorter than the second launch waits.
    std::atomic<int> claim{-1};
    std::thread second([&runtime, &claim] {
        ui::SingleInstance later(runtime.path());
        claim = static_cast<int>(later.claim());
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const bool answered = runUntil([&claim] { return claim != -1; }, std::chrono::seconds(10));
    second.join();
    ASSERT_TRUE(answered);
    EXPECT_EQ(claim, static_cast<int>(ui::SingleInstance::Claim::Notified));
    EXPECT_EQ(activations.size(), 1);
}

// Starts the program with its own runtime and settings folders, on the simulated sound system.
QProcess* startProgram(const QTemporaryDir& home, QObject* parent)
{
    auto* process = new QProcess(parent);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("XDG_RUNTIME_DIR", home.filePath("runtime"));
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("ORVANTA_AUDIO", "simulated");
    environment.insert("QT_LOGGING_RULES", "orvanta.ui.info=true");
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(ORVANTA_PROGRAM), {});
    return process;
}

TEST(SingleInstance, ASecondLaunchRaisesTheFirstWindowAndEnds)
{
    QTemporaryDir home;
    QDir(home.path()).mkpath("runtime");
    QFile::setPermissions(home.filePath("runtime"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QObject owner;
    QProcess* first = startProgram(home, &owner);
    QByteArray firstOutput;
    QByteArray firstErrors;
    ASSERT_TRUE(runUntil(
        [&] {
            firstOutput += first->readAllStandardOutput();
            return firstOutput.contains("Using the simulated sound system");
        },
        std::chrono::seconds(60)))
        << first->readAllStandardError().toStdString();

    QProcess* second = startProgram(home, &owner);
    ASSERT_TRUE(runUntil([second] { return second->state() == QProcess::NotRunning; }, std::chrono::seconds(60)));
    EXPECT_EQ(second->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(second->exitCode(), 0);
    const QByteArray secondOutput = second->readAllStandardOutput();
    EXPECT_EQ(secondOutput, "Orvanta is already running: its window was brought to the front.\n");
    EXPECT_FALSE(secondOutput.contains("Using the simulated sound system"));

    EXPECT_TRUE(runUntil(
        [&] {
            firstErrors += first->readAllStandardError();
            return firstErrors.contains("main window brought to the front");
        },
        std::chrono::seconds(20)))
        << firstErrors.toStdString();
    EXPECT_EQ(first->state(), QProcess::Running);

    first->terminate();
    if (!first->waitForFinished(10000)) {
        first->kill();
        first->waitForFinished(5000);
    }
}

} // namespace
} // namespace orvanta::testing
