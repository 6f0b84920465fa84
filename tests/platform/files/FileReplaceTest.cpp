// Whole-file replacement when the step that fails is not the write: the temporary file cannot be
// made, or the rename is refused. Either way the old file stays and nothing is left behind.

#include "files/FileReplace.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace orvanta::testing {
namespace {

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

TEST(FileReplace, ReplacesTheContentAndLeavesNoTemporaryFile)
{
    QTemporaryDir dir;
    const std::string path = dir.filePath("file").toStdString();
    ASSERT_EQ(files::replaceFile(path, "first, and longer"), std::nullopt);
    ASSERT_EQ(files::replaceFile(path, "second"), std::nullopt);
    QFile file(dir.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "second");
    EXPECT_EQ(entriesOf(dir.path()), QStringList{"file"});
}

TEST(FileReplace, ARefusedRenameOrAMissingFolderLeavesWhatWasThereAndGivesTheReason)
{
    // A folder in the file's place, with something in it: rename() cannot replace it.
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkpath("file/inside"));
    EXPECT_EQ(files::replaceFile(dir.filePath("file").toStdString(), "content"), "Is a directory");
    EXPECT_EQ(files::replaceFile(dir.filePath("missing/file").toStdString(), "content"), "No such file or directory");
    EXPECT_EQ(entriesOf(dir.path()), QStringList{"file"});
    EXPECT_EQ(entriesOf(dir.filePath("file")), QStringList{"inside"});
}

} // namespace
} // namespace orvanta::testing
