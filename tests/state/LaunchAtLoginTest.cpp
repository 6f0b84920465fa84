#include "support/StateFixture.h"

#include "desktop/XdgAutostartLoginItems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace orvanta::testing {
namespace {

using Status = services::LoginItems::Status;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Launch at login as AppState keeps it.
class LaunchAtLogin : public ::testing::Test, protected StateFixture
{};

TEST_F(LaunchAtLogin, StartUpReadsTheStatusAndEveryAssignmentRegistersAgainAndAFailureIsPrintedWhileTheChoiceStays)
{
    for (const auto& [status, on] : {std::pair{Status::Enabled, true}, std::pair{Status::NotFound, false},
                                     std::pair{Status::RequiresApproval, false}}) {
        loginItems.current = status;
        EXPECT_EQ(start().launchAtLogin(), on);
    }
    EXPECT_EQ(loginItems.registerCalls + loginItems.unregisterCalls, 0);
    appState->setLaunchAtLogin(true);
    appState->setLaunchAtLogin(true);
    appState->setLaunchAtLogin(false);
    appState->setLaunchAtLogin(false);
    EXPECT_EQ(std::pair(loginItems.registerCalls, loginItems.unregisterCalls), std::pair(2, 2));
    EXPECT_THAT(sim.printed.lines, IsEmpty());

    loginItems.registerError = QStringLiteral("cannot write here: Permission denied");
    appState->setLaunchAtLogin(true);
    EXPECT_TRUE(appState->launchAtLogin());
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("Failed to update launch at login: cannot write here: Permission denied"));
}

class XdgAutostart : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString folder = dir.filePath("autostart");
    QString entry = folder + "/orvanta.desktop";
    desktop::XdgAutostartLoginItems items{entry, "/opt/Orvanta Apps/bin/orvanta"};

    Status statusOf(const QByteArray& text)
    {
        QDir().mkpath(folder);
        QFile file(entry);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        return items.status();
    }
};

TEST_F(XdgAutostart, RegisterWritesAnEntryADesktopStartsUnregisterRemovesItAndAFileInPlaceOfTheFolderIsAReadableError)
{
    EXPECT_EQ(items.status(), Status::NotRegistered);
    ASSERT_EQ(items.registerItem(), std::nullopt);
    EXPECT_EQ(items.status(), Status::Enabled);
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n") && text.contains("\nType=Application\n") &&
                text.contains("\nExec=\"/opt/Orvanta Apps/bin/orvanta\"\n"))
        << text.toStdString();

    ASSERT_EQ(items.unregisterItem(), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(entry));
    EXPECT_EQ(items.unregisterItem(), std::nullopt); // nothing left to remove is not a failure

    QFile blocker(folder); // nothing can make a folder where a file stands, not even root
    ASSERT_TRUE(QDir(folder).removeRecursively() && blocker.open(QIODevice::WriteOnly));
    EXPECT_EQ(items.registerItem(), "cannot create the folder " + folder);
}

TEST(DesktopEntryExec, QuotesAndEscapesThePathAndDoublesPercentSigns)
{
    for (const auto& [path, exec] : std::initializer_list<std::pair<QString, QString>>{
             {"/usr/bin/orvanta", R"("/usr/bin/orvanta")"},
             // Quoting first (backslash before '"', '$', '`', '\'), then each backslash doubled, a newline as \n;
             // a '%' would start a field code, inside the quotes too.
             {"/opt/a b/100% \"$x`\\y\nz", R"("/opt/a b/100%% \\"\\$x\\`\\\\y\nz")"}}) {
        EXPECT_EQ(desktop::desktopEntryExec(path), exec) << path.toStdString();
    }
}

TEST_F(XdgAutostart, AnEntryHiddenSwitchedOffTheGnomeWayOrNoFileCountsAsOff)
{
    for (const auto& [text, status] : std::initializer_list<std::pair<QByteArray, Status>>{
             {"[Desktop Entry]\nType=Application\nExec=orvanta\nHidden = true\n", Status::NotRegistered},
             {"[Desktop Entry]\nExec=orvanta\nX-GNOME-Autostart-enabled = false\n", Status::NotRegistered},
             {"[Desktop Entry]\nExec=orvanta\nX-GNOME-Autostart-enabled=true\n", Status::Enabled},
             {"[Desktop Entry]\nExec=orvanta\nHidden=false\n", Status::Enabled},
             // Only the main group counts, and a comment is no switch.
             {"[Desktop Entry]\nExec=orvanta\n[Desktop Action x]\nHidden=true\n", Status::Enabled},
             {"[Desktop Entry]\nExec=orvanta\n# Hidden=true\n", Status::Enabled}}) {
        EXPECT_EQ(statusOf(text), status) << text.toStdString();
    }
    // A pipe in place of the file reads as off, without waiting for a writer.
    ASSERT_TRUE(QFile::remove(entry));
    ASSERT_EQ(mkfifo(QFile::encodeName(entry).constData(), 0600), 0);
    EXPECT_EQ(items.status(), Status::NotRegistered);
}

TEST_F(XdgAutostart, AnEntryLeftHalfWrittenByAKilledWriterIsClearedAtStart)
{
    statusOf("[Desktop Entry]\n");
    ASSERT_TRUE(QFile::rename(entry, entry + ".tmp-Qw3Er5"));
    desktop::XdgAutostartLoginItems next(entry, "/usr/bin/orvanta");
    EXPECT_EQ(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList{});
}

} // namespace
} // namespace orvanta::testing
