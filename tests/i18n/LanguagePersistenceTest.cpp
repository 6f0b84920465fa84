// Choosing a language: every assignment is announced, then stored under "selectedLanguage", and
// the stored choice is the language of the next start.

#include "QtPrinters.h"
#include "i18n/LanguageManager.h"
#include "linux/JsonFileUserDefaults.h"
#include "sim/services/MemoryUserDefaults.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace orvanta::testing {
namespace {

using i18n::LanguageManager;

const QString kLanguageKey = QStringLiteral("selectedLanguage");
const QString kHebrew = QStringLiteral("עברית");

// Points XDG_CONFIG_HOME somewhere else for one test, so no real user's settings are touched.
class ScopedConfigHome
{
public:
    explicit ScopedConfigHome(const QString& path)
    {
        if (qEnvironmentVariableIsSet(kName)) {
            previous = qEnvironmentVariable(kName);
        }
        qputenv(kName, path.toUtf8());
    }
    ~ScopedConfigHome()
    {
        if (previous) {
            qputenv(kName, previous->toUtf8());
        } else {
            qunsetenv(kName);
        }
    }
    ScopedConfigHome(const ScopedConfigHome&) = delete;
    ScopedConfigHome& operator=(const ScopedConfigHome&) = delete;

private:
    static constexpr const char* kName = "XDG_CONFIG_HOME";
    std::optional<QString> previous;
};

TEST(LanguagePersistence, ChoosingALanguageStoresItsDisplayName)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);

    manager.setCurrentLanguage(kHebrew);

    EXPECT_EQ(manager.currentLanguage(), kHebrew);
    EXPECT_EQ(defaults.writes, 1);
    const QVariant stored = defaults.values.value(kLanguageKey);
    EXPECT_EQ(stored.typeId(), QMetaType::QString);
    EXPECT_EQ(stored.toString(), kHebrew);
    EXPECT_EQ(manager.translate(QStringLiteral("Quit")),
              manager.translations().value(kHebrew).value(QStringLiteral("Quit")));
    EXPECT_NE(manager.translate(QStringLiteral("Quit")), QStringLiteral("Quit"));
}

TEST(LanguagePersistence, TheStoredLanguageIsReadButNotWrittenBack)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Deutsch"));
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.currentLanguage(), QStringLiteral("Deutsch"));
    EXPECT_EQ(manager.translate(QStringLiteral("Reset")), QStringLiteral("Zurücksetzen"));
    EXPECT_EQ(defaults.writes, 0);
}

TEST(LanguagePersistence, TheChoiceSurvivesARestart)
{
    QTemporaryDir configHome;
    ASSERT_TRUE(configHome.isValid());
    const ScopedConfigHome scoped(configHome.path());
    const QString settingsPath = configHome.filePath(QStringLiteral("orvanta/settings.json"));
    ASSERT_EQ(linux_platform::JsonFileUserDefaults::defaultPath(), settingsPath);

    {
        linux_platform::JsonFileUserDefaults defaults;
        LanguageManager manager(defaults);
        EXPECT_EQ(manager.currentLanguage(), QStringLiteral("English"));
        EXPECT_FALSE(QFile::exists(settingsPath)) << "nothing is written before the user chooses";
        manager.setCurrentLanguage(kHebrew);
    }

    QFile file(settingsPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QJsonDocument::fromJson(file.readAll()).object().value(kLanguageKey).toString(), kHebrew);

    linux_platform::JsonFileUserDefaults reopened;
    const LanguageManager restarted(reopened);
    EXPECT_EQ(restarted.currentLanguage(), kHebrew);
    EXPECT_EQ(restarted.layoutDirection(), Qt::RightToLeft);
}

TEST(LanguagePersistence, AnEqualAssignmentIsAnnouncedAndStoredToo)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);
    int announcements = 0;
    QObject::connect(&manager, &LanguageManager::currentLanguageChanged, [&announcements] { ++announcements; });

    manager.setCurrentLanguage(QStringLiteral("English"));
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(defaults.writes, 1);

    manager.setCurrentLanguage(QStringLiteral("English"));
    EXPECT_EQ(announcements, 2);
    EXPECT_EQ(defaults.writes, 2);
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(QStringLiteral("English")));
}

TEST(LanguagePersistence, TheChangeIsAnnouncedBeforeItIsStored)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Español"));
    LanguageManager manager(defaults);

    QStringList seenByListener;
    QObject::connect(&manager, &LanguageManager::currentLanguageChanged, [&] {
        seenByListener << manager.currentLanguage() << defaults.values.value(kLanguageKey).toString()
                       << QString::number(defaults.writes);
    });
    manager.setCurrentLanguage(QStringLiteral("Français"));

    // The listener already sees the new language, while the settings still hold the old one.
    EXPECT_EQ(seenByListener,
              (QStringList{QStringLiteral("Français"), QStringLiteral("Español"), QStringLiteral("0")}));
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(QStringLiteral("Français")));
    EXPECT_EQ(defaults.writes, 1);
}

TEST(LanguagePersistence, TheLanguageIsAPropertyWithAChangeSignal)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);
    int announcements = 0;
    QObject::connect(&manager, &LanguageManager::currentLanguageChanged, [&announcements] { ++announcements; });

    EXPECT_TRUE(manager.setProperty("currentLanguage", QStringLiteral("Italiano")));
    EXPECT_EQ(manager.property("currentLanguage").toString(), QStringLiteral("Italiano"));
    EXPECT_EQ(announcements, 1);
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(QStringLiteral("Italiano")));
}

} // namespace
} // namespace orvanta::testing
