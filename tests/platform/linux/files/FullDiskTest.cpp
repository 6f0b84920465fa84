// Every file Orvanta writes, on a disk that is full: the write is refused whole, the file keeps
// what it had, and the failure is told with the file's name and the system's reason.

#include "ScarceSpace.h"

#include "JsonFileUserDefaults.h"
#include "XdgAutostartLoginItems.h"
#include "hal/PropertyTable.h"
#include "sim/SimStateFile.h"
#include "sim/SimulatedAudioHardware.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace orvanta::testing {
namespace {

using ::testing::HasSubstr;
using Kind = ScarceSpace::Kind;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// What the folder holds, besides the filler of a full tmpfs.
QStringList filesIn(const QString& folder)
{
    QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::System);
    names.removeAll(QStringLiteral("filler"));
    return names;
}

class FullDisk : public ::testing::TestWithParam<Kind>
{
protected:
    void SetUp() override
    {
        if (!space.available()) {
            GTEST_SKIP() << space.why().toStdString();
        }
    }

    ScarceSpace space{GetParam()};
};

TEST_P(FullDisk, ASettingsWriteThatDoesNotFitLeavesTheFileAndSaysSo)
{
    const QString path = space.filePath("settings.json");
    QStringList lines;
    std::vector<bool> outcomes;
    linux_platform::JsonFileUserDefaults defaults(path, [&lines](const QString& line) { lines.append(line); });
    defaults.setSaveObserver([&outcomes](bool saved) { outcomes.push_back(saved); });
    defaults.setValue("selectedLanguage", "Deutsch");
    const QByteArray before = contentOf(path);
    ASSERT_TRUE(before.contains("Deutsch"));
    ASSERT_TRUE(lines.isEmpty()) << lines.join('\n').toStdString();

    {
        ScarceSpace::Full full(space);
        defaults.setValue("selectedLanguage", QString(2000, u'x'));
    }
    EXPECT_EQ(contentOf(path), before);
    ASSERT_EQ(lines.size(), 1);
    EXPECT_EQ(lines[0], path + ": cannot save the settings: " + space.failureText());
    EXPECT_EQ(outcomes, (std::vector<bool>{true, false}));
    EXPECT_EQ(filesIn(space.folder()), QStringList{"settings.json"});

    // With room again, the next change is saved whole, and so is the one that failed.
    defaults.setValue("other", 1);
    EXPECT_EQ(outcomes.back(), true);
    EXPECT_TRUE(contentOf(path).contains(QString(2000, u'x').toUtf8()));
}

TEST_P(FullDisk, TheAutostartEntryStaysAsItWasAndTheFailureIsReported)
{
    const QString entry = space.filePath("autostart/orvanta.desktop");
    linux_platform::XdgAutostartLoginItems before(entry, "/usr/bin/orvanta");
    ASSERT_EQ(before.registerItem(), std::nullopt);
    const QByteArray written = contentOf(entry);

    linux_platform::XdgAutostartLoginItems moved(entry, "/opt/orvanta/" + QString(3000, u'o'));
    std::optional<QString> error;
    {
        ScarceSpace::Full full(space);
        error = moved.registerItem();
    }
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, "cannot write " + entry + ": " + space.failureText());
    EXPECT_EQ(contentOf(entry), written);
    EXPECT_EQ(moved.status(), platform::LoginItems::Status::Enabled);
    EXPECT_EQ(filesIn(space.filePath("autostart")), QStringList{"orvanta.desktop"});
}

TEST_P(FullDisk, TheSimulatedStateFileKeepsTheLastStateThatFit)
{
    const QString path = space.filePath("state.json");
    sim::DeviceSpec speakers;
    speakers.name = "Speakers";
    speakers.uid = "spk";
    speakers.virtualMainVolume = {true, true, 0.5f};
    sim::DeviceSpec other = speakers;
    other.name = "Other";
    other.uid = std::string(3000, 'u');
    sim::SimulatedAudioHardware system({{speakers, other}, {}, {}});
    std::string error;
    ASSERT_TRUE(sim::watchStateInFile(system, path.toStdString(), error)) << error;
    const QByteArray written = contentOf(path);
    ASSERT_TRUE(written.contains("\"spk\""));

    {
        ScarceSpace::Full full(space);
        hal::Float32 level = 0.25f;
        ASSERT_EQ(system.setPropertyData(2, hal::kVirtualMainVolume.address(), 0, nullptr, sizeof level, &level),
                  hal::noErr);
    }
    EXPECT_EQ(contentOf(path), written);
    EXPECT_EQ(filesIn(space.folder()), QStringList{"state.json"});

    {
        ScarceSpace::Full full(space);
        sim::SimulatedAudioHardware later({{speakers}, {}, {}});
        const QString laterPath = space.filePath("later.json");
        EXPECT_FALSE(sim::watchStateInFile(later, laterPath.toStdString(), error));
    }
    EXPECT_THAT(error, HasSubstr(space.filePath("later.json").toStdString() +
                                 ": cannot write the simulated state: " + space.failureText().toStdString()));
}

INSTANTIATE_TEST_SUITE_P(Kinds, FullDisk, ::testing::Values(Kind::SmallTmpfs, Kind::FileSizeLimit),
                         [](const ::testing::TestParamInfo<Kind>& kind) {
                             return kind.param == Kind::SmallTmpfs ? "SmallTmpfs" : "FileSizeLimit";
                         });

} // namespace
} // namespace orvanta::testing
