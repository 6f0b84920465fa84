// Every file Orvanta writes, on a disk that is full: the write is refused whole, the file keeps
// what it had, and the failure is told with the file's name and the system's reason.

#include "desktop/JsonFileUserDefaults.h"
#include "desktop/XdgAutostartLoginItems.h"
#include "hal/PropertyTable.h"
#include "sim/SimStateFile.h"
#include "sim/SimulatedAudioHardware.h"
#include "support/Printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <cstring>

#include <sys/resource.h>

namespace orvanta::testing {
namespace {

// While it lives, this process cannot make a file longer than a few bytes: a write goes in part,
// as on a disk that fills up under it, and then fails with EFBIG (SIGXFSZ ignored, which would
// otherwise end the process). Kept short, since the limit holds for every file of the process.
class FullDisk
{
public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &saved);
        rlimit tight = saved;
        tight.rlim_cur = 64;
        ::setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &saved); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

    static QString reason() { return QString::fromLocal8Bit(std::strerror(EFBIG)); }

private:
    rlimit saved{};
};

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
}

TEST(FullDisk, ASettingsWriteThatDoesNotFitLeavesTheFileAndSaysSo)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("settings.json");
    QStringList lines;
    std::vector<bool> outcomes;
    desktop::JsonFileUserDefaults defaults(path, [&lines](const QString& line) { lines.append(line); });
    defaults.setSaveObserver([&outcomes](bool saved) { outcomes.push_back(saved); });
    defaults.setValue("selectedLanguage", "Deutsch");
    const QByteArray before = contentOf(path);
    ASSERT_TRUE(before.contains("Deutsch"));
    {
        FullDisk full;
        defaults.setValue("selectedLanguage", QString(2000, u'x'));
    }
    EXPECT_EQ(contentOf(path), before);
    EXPECT_EQ(lines, QStringList{path + ": cannot save the settings: " + FullDisk::reason()});
    EXPECT_EQ(outcomes, (std::vector<bool>{true, false}));
    EXPECT_EQ(filesIn(dir.path()), QStringList{"settings.json"});

    // With room again, the next change is saved whole, and so is the one that failed.
    defaults.setValue("other", 1);
    EXPECT_EQ(outcomes.back(), true);
    EXPECT_TRUE(contentOf(path).contains(QString(2000, u'x').toUtf8()));
}

TEST(FullDisk, TheAutostartEntryStaysAsItWasAndTheFailureIsReported)
{
    QTemporaryDir dir;
    const QString entry = dir.filePath("autostart/orvanta.desktop");
    ASSERT_EQ(desktop::XdgAutostartLoginItems(entry, "/usr/bin/orvanta").registerItem(), std::nullopt);
    const QByteArray written = contentOf(entry);

    desktop::XdgAutostartLoginItems moved(entry, "/opt/orvanta/" + QString(3000, u'o'));
    std::optional<QString> error;
    {
        FullDisk full;
        error = moved.registerItem();
    }
    EXPECT_EQ(error, "cannot write " + entry + ": " + FullDisk::reason());
    EXPECT_EQ(contentOf(entry), written);
    EXPECT_EQ(moved.status(), services::LoginItems::Status::Enabled);
    EXPECT_EQ(filesIn(dir.filePath("autostart")), QStringList{"orvanta.desktop"});
}

TEST(FullDisk, TheSimulatedStateFileKeepsTheLastStateThatFit)
{
    QTemporaryDir dir;
    const QString path = dir.filePath("state.json");
    sim::DeviceSpec speakers;
    speakers.name = speakers.uid = "spk";
    speakers.virtualMainVolume = {true, true, 0.5f};
    sim::SimulatedAudioHardware system({{speakers}, {}, {}});
    std::string error;
    ASSERT_TRUE(sim::watchStateInFile(system, path.toStdString(), error)) << error;
    const QByteArray written = contentOf(path);
    {
        FullDisk full;
        hal::Float32 level = 0.25f;
        ASSERT_EQ(system.setPropertyData(2, hal::kVirtualMainVolume.address(), 0, nullptr, sizeof level, &level),
                  hal::noErr);
        sim::SimulatedAudioHardware later({{speakers}, {}, {}});
        EXPECT_FALSE(sim::watchStateInFile(later, dir.filePath("later.json").toStdString(), error));
    }
    EXPECT_EQ(contentOf(path), written);
    EXPECT_EQ(filesIn(dir.path()), QStringList{"state.json"});
    EXPECT_THAT(error, ::testing::HasSubstr(dir.filePath("later.json").toStdString() +
                                            ": cannot write the simulated state: " + FullDisk::reason().toStdString()));
}

} // namespace
} // namespace orvanta::testing
