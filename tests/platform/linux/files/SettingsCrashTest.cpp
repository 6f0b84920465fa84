// A process that writes the settings is killed with SIGKILL at random moments, hundreds of
// times. After every kill the settings file must be whole: the one before the interrupted write
// or the one after it, never a mix, never empty, never lost.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <chrono>
#include <random>
#include <thread>

namespace orvanta::testing {
namespace {

constexpr int kKills = 200;
constexpr int kPaddingBytes = 256 * 1024;

// The settings file's counter, or -1 when the file is not whole.
qint64 counterInWholeFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    QJsonParseError error{};
    const QJsonObject settings = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError ||
        settings.value("padding").toString() != QString(kPaddingBytes, u'p')) {
        return -1;
    }
    return settings.value("counter").toInteger(-1);
}

int temporaryFilesIn(const QString& folder)
{
    return static_cast<int>(QDir(folder).entryList({"settings.json.*"}, QDir::Files | QDir::Hidden).size());
}

TEST(SettingsCrash, AKillAtAnyMomentLeavesTheOldOrTheNewFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("orvanta/settings.json");
    const auto seed = std::random_device{}();
    RecordProperty("seed", std::to_string(seed));
    std::mt19937 random(seed);
    // Up to a few writes' time after the first write: most kills land inside a write.
    std::uniform_int_distribution<int> delayMicroseconds(0, 20000);

    qint64 lastCounter = 0;
    int killedMidWrite = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        QProcess writer;
        writer.start(QStringLiteral(ORVANTA_SETTINGS_WRITER), {path, QString::number(kPaddingBytes)});
        ASSERT_TRUE(writer.waitForStarted(30000));
        ASSERT_TRUE(writer.waitForReadyRead(60000))
            << "kill " << kill << ": " << writer.readAllStandardError().toStdString();
        ASSERT_EQ(writer.readAllStandardOutput(), "ready\n");
        std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
        writer.kill();
        ASSERT_TRUE(writer.waitForFinished(30000));
        ASSERT_EQ(writer.exitStatus(), QProcess::CrashExit) << "the writer stopped by itself";

        const qint64 counter = counterInWholeFile(path);
        ASSERT_GE(counter, lastCounter + 1) << "kill " << kill << ": the settings file is not whole or went back";
        lastCounter = counter;
        // One temporary file at most: each start removes what the last kill left.
        const int temporaries = temporaryFilesIn(QFileInfo(path).absolutePath());
        ASSERT_LE(temporaries, 1) << "kill " << kill;
        killedMidWrite += temporaries;
    }
    RecordProperty("killedMidWrite", killedMidWrite);
    // Kills land inside writes far more often than not; none at all would mean the test does
    // not test what it says.
    EXPECT_GT(killedMidWrite, 0);
}

} // namespace
} // namespace orvanta::testing
