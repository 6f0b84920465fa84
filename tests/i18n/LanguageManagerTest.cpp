// What the interface shows for a key, the languages offered, and the choice: announced, stored,
// and the language of the next start.

#include "i18n/LanguageManager.h"
#include "desktop/JsonFileUserDefaults.h"
#include "sim/MemoryUserDefaults.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using i18n::LanguageManager;

const QString kLanguageKey = QStringLiteral("selectedLanguage");
const QString kHebrew = QStringLiteral("עברית");

TEST(LanguageManager, WithoutAStoredStringItIsEnglishAndAnUnknownLanguageShowsTheKeys)
{
    for (const QVariant& stored : {QVariant(), QVariant(5), QVariant(QStringLiteral("Klingon"))}) {
        sim::MemoryUserDefaults defaults;
        if (stored.isValid()) {
            defaults.values.insert(kLanguageKey, stored);
        }
        const LanguageManager manager(defaults);
        const bool unknown = stored.typeId() == QMetaType::QString;
        EXPECT_EQ(manager.currentLanguage(), unknown ? QStringLiteral("Klingon") : QStringLiteral("English"));
        EXPECT_EQ(manager.translate(QStringLiteral("delay_note")) == QStringLiteral("delay_note"), unknown);
        EXPECT_EQ(defaults.writes, 0);
    }
}

TEST(LanguageManager, EveryChoiceIsAnnouncedThenStoredAndSurvivesARestart)
{
    QTemporaryDir configHome;
    const QString settingsPath = configHome.filePath(QStringLiteral("orvanta/settings.json"));
    {
        desktop::JsonFileUserDefaults defaults(settingsPath);
        LanguageManager manager(defaults);
        QStringList seen;
        QObject::connect(&manager, &LanguageManager::currentLanguageChanged,
                         [&] { seen << manager.currentLanguage() << defaults.value(kLanguageKey).toString(); });
        EXPECT_FALSE(QFile::exists(settingsPath)) << "nothing is written before the user chooses";
        manager.setCurrentLanguage(QStringLiteral("Deutsch"));
        EXPECT_TRUE(manager.setProperty("currentLanguage", kHebrew));
        manager.setCurrentLanguage(kHebrew); // an equal assignment is announced and stored too
        // The listener already sees the new language, while the settings still hold the old one.
        EXPECT_EQ(seen, (QStringList{"Deutsch", "", kHebrew, "Deutsch", kHebrew, kHebrew}));
    }
    desktop::JsonFileUserDefaults reopened(settingsPath);
    EXPECT_EQ(reopened.value(kLanguageKey).toString(), kHebrew);
    const LanguageManager restarted(reopened);
    EXPECT_EQ(restarted.currentLanguage(), kHebrew);
    EXPECT_EQ(restarted.layoutDirection(), Qt::RightToLeft);
    // What a table does not hold stays in English.
    EXPECT_EQ(restarted.translate(QStringLiteral("Audio Sync Error")), QStringLiteral("Audio Sync Error"));
}

} // namespace
} // namespace orvanta::testing
