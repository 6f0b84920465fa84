// The settings file as the program finds it: malformed, oversized, not a file at all, or with
// temporary files beside it that a killed process left.

#include "desktop/JsonFileUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

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
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    QByteArray contentOf(const QString& name) const
    {
        QFile file(dir.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }

    QStringList files() const { return QDir(dir.path()).entryList(QDir::Files | QDir::Hidden | QDir::System); }
};

TEST_F(SettingsFile, EachMalformedFileIsKeptUnderANameOfItsOwn)
{
    put("settings.json", "{\"selectedLanguage\": ");
    {
        auto defaults = open();
        EXPECT_FALSE(defaults.value("selectedLanguage").isValid());
        // Nothing is moved until something is written.
        EXPECT_EQ(files(), QStringList{"settings.json"});
        defaults.setValue("selectedLanguage", "Deutsch");
    }
    put("settings.json", "[\"second incident\"]");
    open().setValue("selectedLanguage", "Español");
    put("settings.json", "third");
    open().setValue("selectedLanguage", "Français");

    EXPECT_THAT(files(), UnorderedElementsAre("settings.json", "settings.json.broken", "settings.json.broken-2",
                                              "settings.json.broken-3"));
    EXPECT_EQ(contentOf("settings.json.broken"), "{\"selectedLanguage\": ");
    EXPECT_EQ(contentOf("settings.json.broken-2"), "[\"second incident\"]");
    EXPECT_EQ(contentOf("settings.json.broken-3"), "third");
    EXPECT_EQ(open().value("selectedLanguage").toString(), "Français");
    ASSERT_EQ(lines.size(), 6);
    EXPECT_THAT(lines[0].toStdString(), HasSubstr(path.toStdString() + ": malformed settings ("));
    EXPECT_EQ(lines[1], path + ": the unusable settings are kept as " + path + ".broken");
    EXPECT_EQ(lines[3], path + ": the unusable settings are kept as " + path + ".broken-2");
    EXPECT_EQ(lines[5], path + ": the unusable settings are kept as " + path + ".broken-3");
}

TEST_F(SettingsFile, TemporaryFilesLeftByAKilledWriterAreRemovedAtStart)
{
    put("settings.json", "{\"a\": 1}");
    put("settings.json.tmp-Ab12Cd", "{\"a\": 2");
    put("settings.json.xY34zW", "{\"a\""); // left by earlier versions
    put("settings.json.broken", "kept on purpose");
    put("settings.json.tmp-toolong", "not ours");
    put("notes.txt", "not ours");
    const auto defaults = open();
    EXPECT_EQ(defaults.value("a").toInt(), 1);
    EXPECT_THAT(files(), UnorderedElementsAre("settings.json", "settings.json.broken", "settings.json.tmp-toolong",
                                              "notes.txt"));
    EXPECT_TRUE(lines.isEmpty());
}

TEST_F(SettingsFile, AnOversizedFileIsNotReadButKeptAndAFifoDoesNotBlockTheStart)
{
    const auto limit = desktop::JsonFileUserDefaults::kMaxFileBytes;
    const QByteArray huge = "{\"a\": \"" + QByteArray(limit, 'a') + "\"}";
    put("settings.json", huge);
    auto defaults = open();
    EXPECT_FALSE(defaults.value("a").isValid());
    EXPECT_THAT(lines, ElementsAre(path + ": cannot read the settings (larger than " + QString::number(limit) +
                                   " bytes); starting with defaults"));
    defaults.setValue("a", 1);
    EXPECT_EQ(contentOf("settings.json.broken").size(), huge.size());

    lines.clear();
    QFile::remove(path);
    ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    EXPECT_FALSE(open().value("a").isValid());
    EXPECT_THAT(lines, ElementsAre(path + ": cannot read the settings (not a regular file); starting with defaults"));
}

TEST_F(SettingsFile, ANewFileIsReadableByAllAndAReplacedOneKeepsItsPermissions)
{
    open().setValue("a", 1);
    struct stat info
    {};
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
    ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0600), 0);
    open().setValue("a", 2);
    ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);
}

TEST_F(SettingsFile, ALinkToTheSettingsStaysALink)
{
    QDir(dir.path()).mkdir("kept");
    put("kept/settings.json", "{\"a\": 1}");
    ASSERT_TRUE(QFile::link(dir.filePath("kept/settings.json"), path));
    auto defaults = open();
    EXPECT_EQ(defaults.value("a").toInt(), 1);
    defaults.setValue("a", 2);
    EXPECT_TRUE(QFileInfo(path).isSymLink());
    EXPECT_EQ(open().value("a").toInt(), 2);
    EXPECT_EQ(QDir(dir.filePath("kept")).entryList(QDir::Files), QStringList{"settings.json"});
}

} // namespace
} // namespace orvanta::testing
