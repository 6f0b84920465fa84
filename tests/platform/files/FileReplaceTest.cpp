// Whole-file replacement: when the rename is refused or the folder is missing, the old file stays.

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

TEST(FileReplace, ReplacesTheContentAndARefusedRenameOrAMissingFolderLeavesWhatWasThereAndGivesTheReason)
{
    QTemporaryDir dir;
    ASSERT_EQ(files::replaceFile(dir.filePath("file").toStdString(), "first, and longer"), std::nullopt);
    ASSERT_EQ(files::replaceFile(dir.filePath("file").toStdString(), "second"), std::nullopt);
    QFile file(dir.filePath("file"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "second");
    EXPECT_EQ(entriesOf(dir.path()), QStringList{"file"});
    // A folder in the file's place, with something in it: rename() cannot replace it.
    ASSERT_TRUE(QDir(dir.path()).mkpath("folder/inside"));
    EXPECT_EQ(files::replaceFile(dir.filePath("folder").toStdString(), "content"), "Is a directory");
    EXPECT_EQ(files::replaceFile(dir.filePath("missing/file").toStdString(), "content"), "No such file or directory");
    EXPECT_EQ(entriesOf(dir.path()), (QStringList{"file", "folder"}));
}

} // namespace
} // namespace orvanta::testing
