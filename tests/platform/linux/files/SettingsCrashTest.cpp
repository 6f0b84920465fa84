// A settings writer killed with SIGKILL at random moments, 200 times: after every kill the file
// is whole, the one before the interrupted write or the one after it.

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
    const QJsonObject settings =
        file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
    return settings.value("padding").toString() == QString(kPaddingBytes, u'p')
               ? settings.value("counter").toInteger(-1)
               : -1;
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
        ASSERT_TRUE(writer.waitForReadyRead(60000))
            << "kill " << kill << ": " << writer.readAllStandardError().toStdString();
        std::this_thread::sleep_for(std::chrono::microseconds(delayMicroseconds(random)));
        writer.kill();
        ASSERT_TRUE(writer.waitForFinished(30000));

        const qint64 counter = counterInWholeFile(path);
        ASSERT_GE(counter, lastCounter + 1) << "kill " << kill << ": the settings file is not whole or went back";
        lastCounter = counter;
        // One temporary file at most: each start removes what the last kill left.
        const auto temporaries =
            QDir(QFileInfo(path).absolutePath()).entryList({"settings.json.*"}, QDir::Files).size();
        ASSERT_LE(temporaries, 1) << "kill " << kill;
        killedMidWrite += static_cast<int>(temporaries);
    }
    RecordProperty("killedMidWrite", killedMidWrite);
    // Most kills land inside a write; none would mean the test does not test what it says.
    EXPECT_GT(killedMidWrite, 0);
}

} // namespace
} // namespace orvanta::testing
