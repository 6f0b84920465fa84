#include "support/EventLoop.h"

#include "ui/SingleInstance.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <chrono>
#include <thread>

namespace orvanta::testing {
namespace {

TEST(SingleInstance, ASecondLaunchWaitsForAFirstThatIsStillStarting)
{
    QTemporaryDir runtime;
    ui::SingleInstance first(runtime.path());
    ASSERT_EQ(first.claim(), ui::SingleInstance::Claim::First);
    QSignalSpy activations(&first, &ui::SingleInstance::activationRequested);

    // This thread is a first instance that listens but runs no event loop for a while (choosing
    // its sound system): longer than one connection attempt, shorter than the second one waits.
    std::atomic<int> claim{-1};
    std::thread second([&runtime, &claim] {
        ui::SingleInstance later(runtime.path());
        claim = static_cast<int>(later.claim());
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_TRUE(runUntil([&claim] { return claim != -1; }, std::chrono::seconds(10)));
    second.join();
    EXPECT_EQ(claim, static_cast<int>(ui::SingleInstance::Claim::Notified));
    EXPECT_EQ(activations.size(), 1);
}

QProcess* startProgram(const QTemporaryDir& home, QObject* parent)
{
    auto* process = new QProcess(parent);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("XDG_RUNTIME_DIR", home.path());
    environment.insert("XDG_CONFIG_HOME", home.filePath("config"));
    environment.insert("ORVANTA_AUDIO", "simulated");
    environment.insert("QT_LOGGING_RULES", "orvanta.ui.info=true");
    process->setProcessEnvironment(environment);
    process->start(QStringLiteral(ORVANTA_PROGRAM), {});
    return process;
}

bool waitForText(QProcess* process, QProcess::ProcessChannel channel, const char* text)
{
    QByteArray read;
    process->setReadChannel(channel);
    return runUntil(
        [&] {
            read += process->readAll();
            return read.contains(text);
        },
        std::chrono::seconds(60));
}

// The socket a crashed instance left behind does not stop the first launch; a second one raises it.
TEST(SingleInstance, ASecondLaunchRaisesTheFirstWindowAndEnds)
{
    QTemporaryDir home; // private to its owner, as a runtime directory must be
    QFile stale(home.filePath("orvanta.socket"));
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    QObject owner;
    QProcess* first = startProgram(home, &owner);
    ASSERT_TRUE(waitForText(first, QProcess::StandardOutput, "Using the simulated sound system"));

    QProcess* second = startProgram(home, &owner);
    ASSERT_TRUE(runUntil([second] { return second->state() == QProcess::NotRunning; }, std::chrono::seconds(60)));
    EXPECT_EQ(second->exitCode(), 0);
    EXPECT_EQ(second->readAllStandardOutput(), "Orvanta is already running: its window was brought to the front.\n");
    EXPECT_TRUE(waitForText(first, QProcess::StandardError, "main window brought to the front"));
    EXPECT_EQ(first->state(), QProcess::Running);
    first->terminate();
    first->waitForFinished(10000);
}

} // namespace
} // namespace orvanta::testing
