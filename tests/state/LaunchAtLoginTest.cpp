#include "support/StateFixture.h"

#include "XdgAutostartLoginItems.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/stat.h>
#include <unistd.h>

namespace orvanta::testing {
namespace {

using Status = platform::LoginItems::Status;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LaunchAtLogin : public ::testing::Test, protected StateFixture
{};

TEST_F(LaunchAtLogin, StartUpReadsTheStatusWithoutRegistering)
{
    loginItems.current = Status::Enabled;
    EXPECT_TRUE(start().launchAtLogin());
    loginItems.current = Status::RequiresApproval;
    EXPECT_FALSE(start().launchAtLogin());
    loginItems.current = Status::NotFound;
    EXPECT_FALSE(start().launchAtLogin());
    EXPECT_EQ(loginItems.registerCalls + loginItems.unregisterCalls, 0);
}

TEST_F(LaunchAtLogin, EveryAssignmentRegistersOrUnregistersAgainAndAFailureIsPrintedWhileTheChoiceStays)
{
    loginItems.current = Status::RequiresApproval;
    auto& app = start();
    app.setLaunchAtLogin(true);
    app.setLaunchAtLogin(true);
    EXPECT_EQ(loginItems.registerCalls, 2);
    app.setLaunchAtLogin(false);
    app.setLaunchAtLogin(false);
    EXPECT_EQ(loginItems.unregisterCalls, 2);
    EXPECT_THAT(sim.printed.lines, IsEmpty());

    loginItems.registerError = QStringLiteral("cannot write /ro/autostart/orvanta.desktop: Permission denied");
    app.setLaunchAtLogin(true);
    EXPECT_TRUE(app.launchAtLogin());
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("Failed to update launch at login: cannot write /ro/autostart/orvanta.desktop: "
                            "Permission denied"));
}

class XdgAutostart : public ::testing::Test
{
protected:
    QTemporaryDir dir;
    QString entry = dir.filePath("autostart/orvanta.desktop");
    linux_platform::XdgAutostartLoginItems items{entry, "/opt/Orvanta Apps/bin/orvanta"};

    QString entryText() const
    {
        QFile file(entry);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
};

TEST_F(XdgAutostart, RegisterWritesAnEntryADesktopStartsAndUnregisterRemovesIt)
{
    EXPECT_EQ(items.status(), Status::NotRegistered);
    ASSERT_EQ(items.registerItem(), std::nullopt);
    EXPECT_EQ(items.status(), Status::Enabled);
    const QString text = entryText();
    EXPECT_TRUE(text.startsWith("[Desktop Entry]\n"));
    EXPECT_TRUE(text.contains("\nType=Application\n"));
    EXPECT_TRUE(text.contains("\nExec=\"/opt/Orvanta Apps/bin/orvanta\"\n")) << text.toStdString();
    EXPECT_FALSE(text.contains("Hidden=true"));

    ASSERT_EQ(items.unregisterItem(), std::nullopt);
    EXPECT_FALSE(QFileInfo::exists(entry));
    EXPECT_EQ(items.status(), Status::NotRegistered);
    EXPECT_EQ(items.unregisterItem(), std::nullopt); // nothing left to remove is not a failure
}

TEST_F(XdgAutostart, ExecIsQuotedAndEscaped)
{
    EXPECT_EQ(linux_platform::desktopEntryExec("/usr/bin/orvanta"), "\"/usr/bin/orvanta\"");
    EXPECT_EQ(linux_platform::desktopEntryExec("/a$b/\"c\""), "\"/a\\\\$b/\\\\\"c\\\\\"\"");
    // A literal '%' would start a field code: it is doubled, inside the quotes too.
    EXPECT_EQ(linux_platform::desktopEntryExec("/opt/100%/orvanta"), "\"/opt/100%%/orvanta\"");
    EXPECT_EQ(linux_platform::desktopEntryExec("/opt/%u"), "\"/opt/%%u\"");
    // Quoting first (backslash before '"', '$', '`', '\\'), then the string escapes (each backslash
    // doubled, a newline as \n).
    EXPECT_EQ(linux_platform::desktopEntryExec("/opt/a b/100% \"$x`\\y\nz"),
              "\"/opt/a b/100%% \\\\\"\\\\$x\\\\`\\\\\\\\y\\nz\"");
}

TEST_F(XdgAutostart, AnEntryHiddenOrSwitchedOffTheGnomeWayCountsAsOff)
{
    const auto statusOf = [this](const QByteArray& text) {
        QDir().mkpath(dir.filePath("autostart"));
        QFile file(entry);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        return items.status();
    };
    EXPECT_EQ(statusOf("[Desktop Entry]\nType=Application\nExec=orvanta\nHidden = true\n"), Status::NotRegistered);
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\nX-GNOME-Autostart-enabled=false\n"), Status::NotRegistered);
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\nX-GNOME-Autostart-enabled = false\n"), Status::NotRegistered);
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\nX-GNOME-Autostart-enabled=true\n"), Status::Enabled);
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\nHidden=false\n"), Status::Enabled);
    // Only the main group counts, and a comment is no switch.
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\n[Desktop Action x]\nHidden=true\n"), Status::Enabled);
    EXPECT_EQ(statusOf("[Desktop Entry]\nExec=orvanta\n# Hidden=true\n"), Status::Enabled);
    // What this program writes reads as on.
    ASSERT_EQ(items.registerItem(), std::nullopt);
    EXPECT_EQ(items.status(), Status::Enabled);
}

TEST_F(XdgAutostart, SomethingOtherThanAFileAtTheEntryReadsAsOffWithoutWaiting)
{
    QDir().mkpath(dir.filePath("autostart"));
    ASSERT_EQ(mkfifo(QFile::encodeName(entry).constData(), 0600), 0);
    EXPECT_EQ(items.status(), Status::NotRegistered);
}

TEST_F(XdgAutostart, AnEntryLeftHalfWrittenByAKilledWriterIsClearedAtStart)
{
    QDir().mkpath(dir.filePath("autostart"));
    QFile stale(entry + ".tmp-Qw3Er5");
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.close();
    linux_platform::XdgAutostartLoginItems next(entry, "/usr/bin/orvanta");
    EXPECT_FALSE(QFileInfo::exists(entry + ".tmp-Qw3Er5"));
    EXPECT_EQ(QDir(dir.filePath("autostart")).entryList(QDir::Files | QDir::Hidden), QStringList{});
}

TEST_F(XdgAutostart, UnwritableFolderGivesAReadableError)
{
    if (geteuid() == 0) {
        GTEST_SKIP() << "root writes to read-only folders";
    }
    QDir().mkpath(dir.filePath("autostart"));
    ASSERT_EQ(chmod(QFile::encodeName(dir.filePath("autostart")).constData(), 0555), 0);
    const auto error = items.registerItem();
    ASSERT_TRUE(error.has_value());
    EXPECT_TRUE(error->startsWith("cannot write " + entry)) << error->toStdString();
}

TEST_F(XdgAutostart, AFileInPlaceOfTheFolderGivesAReadableError)
{
    // Works as root too: nothing can create a folder where a file stands.
    QFile blocker(dir.filePath("autostart"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    const auto error = items.registerItem();
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, "cannot create the folder " + dir.filePath("autostart"));
}

} // namespace
} // namespace orvanta::testing
