// The settings file as the program finds it (malformed, oversized, not a file, a link), and the
// settings and autostart entry on a full disk.

#include "desktop/JsonFileUserDefaults.h"
#include "desktop/XdgAutostartLoginItems.h"
#include "support/Printers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>

#include <sys/resource.h>
#include <sys/stat.h>

namespace orvanta::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

// Runs work while no file of this process can grow past 64 bytes: a write goes in part, as on a
// disk that fills up, then fails with EFBIG (SIGXFSZ ignored).
void onFullDisk(const std::function<void()>& work)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    rlimit tight = saved;
    tight.rlim_cur = 64;
    ::setrlimit(RLIMIT_FSIZE, &tight);
    work();
    ::setrlimit(RLIMIT_FSIZE, &saved);
}

const QString kFullDiskReason = QString::fromLocal8Bit(std::strerror(EFBIG));

class SettingsFile : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString path = dir.filePath("settings.json");
    QStringList lines;

    desktop::JsonFileUserDefaults open()
    {
        return desktop::JsonFileUserDefaults(path, [this](const QString& line) { lines.append(line); });
    }

    void put(const QString& name, const QByteArray& content)
    {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }

    QByteArray contentOf(const QString& name) const
    {
        QFile file(dir.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }

    QStringList files(const QString& folder = {}) const
    {
        return QDir(dir.filePath(folder)).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }
};

TEST_F(SettingsFile, EachMalformedFileIsKeptUnderANameOfItsOwn)
{
    put("settings.json", "{\"selectedLanguage\": ");
    {
        auto defaults = open();
        EXPECT_FALSE(defaults.value("selectedLanguage").isValid());
        EXPECT_EQ(files(), QStringList{"settings.json"}) << "nothing is moved until something is written";
        defaults.setValue("selectedLanguage", "Deutsch");
    }
    put("settings.json", "[\"second incident\"]");
    open().setValue("selectedLanguage", "Français");

    EXPECT_THAT(files(), UnorderedElementsAre("settings.json", "settings.json.broken", "settings.json.broken-2"));
    EXPECT_EQ(contentOf("settings.json.broken"), "{\"selectedLanguage\": ");
    EXPECT_EQ(contentOf("settings.json.broken-2"), "[\"second incident\"]");
    EXPECT_EQ(open().value("selectedLanguage").toString(), "Français");
    ASSERT_EQ(lines.size(), 4);
    EXPECT_THAT(lines[0].toStdString(), HasSubstr(path.toStdString() + ": malformed settings ("));
    EXPECT_EQ(lines[3], path + ": the unusable settings are kept as " + path + ".broken-2");
}

TEST_F(SettingsFile, AnOversizedFileIsNotReadButKeptAndAFifoDoesNotBlockTheStart)
{
    const auto limit = desktop::JsonFileUserDefaults::kMaxFileBytes;
    const QByteArray huge = "{\"a\": \"" + QByteArray(limit, 'a') + "\"}";
    put("settings.json", huge);
    auto defaults = open();
    EXPECT_FALSE(defaults.value("a").isValid());
    EXPECT_EQ(lines, QStringList{path + ": cannot read the settings (larger than " + QString::number(limit) +
                                 " bytes); starting with defaults"});
    defaults.setValue("a", 1);
    EXPECT_EQ(contentOf("settings.json.broken").size(), huge.size());

    lines.clear();
    QFile::remove(path);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_FALSE(open().value("a").isValid());
    EXPECT_EQ(lines, QStringList{path + ": cannot read the settings (not a regular file); starting with defaults"});
}

// The file is replaced whole on each write; a link to it stays a link, and the target keeps its permissions.
TEST_F(SettingsFile, ANewFileIsReadableByAllAndAReplacedOneStaysALinkWithItsPermissions)
{
    const auto mode = [](const QString& file) {
        struct stat info
        {};
        return ::stat(QFile::encodeName(file).constData(), &info) == 0 ? info.st_mode & 0777 : 0u;
    };
    const QString target = dir.filePath("kept/settings.json");
    open().setValue("a", 1);
    EXPECT_EQ(mode(path), 0644u);
    ASSERT_TRUE(QDir(dir.path()).mkdir("kept") && QFile::rename(path, target) && QFile::link(target, path));
    ASSERT_TRUE(QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner));
    auto defaults = open();
    EXPECT_EQ(defaults.value("a").toInt(), 1);
    defaults.setValue("a", 2);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_EQ(open().value("a").toInt(), 2);
    EXPECT_EQ(mode(target), 0600u);
    EXPECT_EQ(QDir(dir.filePath("kept")).entryList(QDir::Files), QStringList{"settings.json"});
}

TEST_F(SettingsFile, OnAFullDiskTheFileStaysAsItWasAndTheFailureIsToldAndTheChangeSavedLater)
{
    std::vector<bool> outcomes;
    auto defaults = open();
    defaults.setSaveObserver([&outcomes](bool saved) { outcomes.push_back(saved); });
    defaults.setValue("selectedLanguage", "Deutsch");
    const QByteArray before = contentOf("settings.json");
    ASSERT_TRUE(before.contains("Deutsch"));
    onFullDisk([&] { defaults.setValue("selectedLanguage", QString(2000, u'x')); });
    EXPECT_EQ(contentOf("settings.json"), before);
    EXPECT_EQ(lines, QStringList{path + ": cannot save the settings: " + kFullDiskReason});
    EXPECT_EQ(files(), QStringList{"settings.json"});
    // With room again, the next change is saved whole, and so is the one that failed.
    defaults.setValue("other", 1);
    EXPECT_EQ(outcomes, (std::vector<bool>{true, false, true}));
    EXPECT_TRUE(contentOf("settings.json").contains(QString(2000, u'x').toUtf8()));
}

TEST_F(SettingsFile, OnAFullDiskTheAutostartEntryStaysAsItWasAndTheFailureIsReported)
{
    const QString entry = dir.filePath("autostart/orvanta.desktop");
    ASSERT_EQ(desktop::XdgAutostartLoginItems(entry, "/usr/bin/orvanta").registerItem(), std::nullopt);
    const QByteArray written = contentOf("autostart/orvanta.desktop");
    desktop::XdgAutostartLoginItems moved(entry, "/opt/orvanta/" + QString(3000, u'o'));
    std::optional<QString> error;
    onFullDisk([&] { error = moved.registerItem(); });
    EXPECT_EQ(error, "cannot write " + entry + ": " + kFullDiskReason);
    EXPECT_EQ(contentOf("autostart/orvanta.desktop"), written);
    EXPECT_EQ(moved.status(), services::LoginItems::Status::Enabled);
    EXPECT_EQ(files("autostart"), QStringList{"orvanta.desktop"});
}

} // namespace
} // namespace orvanta::testing
