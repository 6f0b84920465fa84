// What the interface shows for a key (the chosen language's text, else the key itself), the
// languages offered, and the choice: announced, then stored, and the language of the next start.

#include "i18n/LanguageManager.h"
#include "desktop/JsonFileUserDefaults.h"
#include "i18n/LanguageList.h"
#include "sim/MemoryUserDefaults.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using i18n::LanguageManager;

const QString kLanguageKey = QStringLiteral("selectedLanguage");
const QString kHebrew = QStringLiteral("עברית");

TEST(LanguageManager, WithoutAStoredStringItIsEnglishWhichShowsItsNamedTextsAndOtherwiseTheKey)
{
    for (const QVariant& stored : {QVariant(), QVariant(5)}) {
        sim::MemoryUserDefaults defaults;
        if (stored.isValid()) {
            defaults.values.insert(kLanguageKey, stored);
        }
        const LanguageManager manager(defaults);
        EXPECT_EQ(manager.currentLanguage(), QStringLiteral("English"));
        EXPECT_EQ(defaults.writes, 0);
        const auto english = manager.translations().value(QStringLiteral("English"));
        ASSERT_FALSE(english.isEmpty());
        for (auto entry = english.cbegin(); entry != english.cend(); ++entry) {
            EXPECT_EQ(manager.translate(entry.key()), entry.value());
        }
        EXPECT_NE(manager.translate(QStringLiteral("delay_note")), QStringLiteral("delay_note"));
        EXPECT_EQ(manager.translate(QStringLiteral("Bluetooth device detected: JBL Flip 6")),
                  QStringLiteral("Bluetooth device detected: JBL Flip 6"));
    }
}

TEST(LanguageManager, AnUnknownStoredLanguageShowsTheKeysAndIsKeptAsItIs)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Klingon"));
    const LanguageManager manager(defaults);
    EXPECT_EQ(manager.currentLanguage(), QStringLiteral("Klingon"));
    EXPECT_EQ(manager.translate(QStringLiteral("delay_note")), QStringLiteral("delay_note"));
    EXPECT_EQ(manager.translate(QStringLiteral("Reset")), QStringLiteral("Reset"));
    EXPECT_EQ(manager.layoutDirection(), Qt::LeftToRight);
    EXPECT_EQ(defaults.writes, 0);
}

TEST(LanguageManager, OffersEveryListedLanguageInOrderEachWithItsOwnTable)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);
    ASSERT_EQ(manager.languages().size(), static_cast<qsizetype>(i18n::kLanguageList.size()));
    for (std::size_t i = 0; i < i18n::kLanguageList.size(); ++i) {
        const auto& entry = i18n::kLanguageList[i];
        const QString name = entry.displayName.toString();
        EXPECT_EQ(manager.languages()[static_cast<qsizetype>(i)], name);
        manager.setCurrentLanguage(name);
        EXPECT_EQ(manager.layoutDirection(), entry.direction) << name.toStdString();
        const auto table = manager.translations().value(name);
        ASSERT_FALSE(table.isEmpty()) << name.toStdString();
        for (auto text = table.cbegin(); text != table.cend(); ++text) {
            EXPECT_EQ(manager.translate(text.key()), text.value()) << name.toStdString();
        }
    }
    manager.setCurrentLanguage(QStringLiteral("Español"));
    EXPECT_EQ(manager.translate(QStringLiteral("Decrease by %d ms")), QStringLiteral("Disminuir %d ms"));
    // What a table does not hold stays in English.
    EXPECT_EQ(manager.translate(QStringLiteral("Audio Sync Error")), QStringLiteral("Audio Sync Error"));
}

TEST(LanguageManager, EveryChoiceIsAnnouncedThenStoredAndTheStoredOneIsNotWrittenBack)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Deutsch"));
    LanguageManager manager(defaults);
    EXPECT_EQ(manager.translate(QStringLiteral("Reset")), QStringLiteral("Zurücksetzen"));
    EXPECT_EQ(defaults.writes, 0);

    QStringList seen;
    QObject::connect(&manager, &LanguageManager::currentLanguageChanged,
                     [&] { seen << manager.currentLanguage() << defaults.values.value(kLanguageKey).toString(); });
    manager.setCurrentLanguage(kHebrew);
    // The listener already sees the new language, while the settings still hold the old one.
    EXPECT_EQ(seen, (QStringList{kHebrew, QStringLiteral("Deutsch")}));
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(kHebrew));
    // An equal assignment, here through the property, is announced and stored too.
    EXPECT_TRUE(manager.setProperty("currentLanguage", kHebrew));
    EXPECT_EQ(seen.size(), 4);
    EXPECT_EQ(defaults.writes, 2);
}

TEST(LanguageManager, TheChoiceSurvivesARestart)
{
    QTemporaryDir configHome;
    ASSERT_TRUE(configHome.isValid());
    const QString settingsPath = configHome.filePath(QStringLiteral("orvanta/settings.json"));
    {
        desktop::JsonFileUserDefaults defaults(settingsPath);
        LanguageManager manager(defaults);
        EXPECT_FALSE(QFile::exists(settingsPath)) << "nothing is written before the user chooses";
        manager.setCurrentLanguage(kHebrew);
    }
    QFile file(settingsPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(QJsonDocument::fromJson(file.readAll()).object().value(kLanguageKey).toString(), kHebrew);

    desktop::JsonFileUserDefaults reopened(settingsPath);
    const LanguageManager restarted(reopened);
    EXPECT_EQ(restarted.currentLanguage(), kHebrew);
    EXPECT_EQ(restarted.layoutDirection(), Qt::RightToLeft);
}

} // namespace
} // namespace orvanta::testing
