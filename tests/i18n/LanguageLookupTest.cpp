// What the interface shows for a key: the chosen language's text, else the English text, which
// is the key itself (or, for the named keys, the key's name when no table applies).

#include "ExpectedKeys.h"
#include "ExpectedLanguages.h"
#include "QtPrinters.h"

#include "i18n/LanguageManager.h"
#include "services/PlatformServices.h"
#include "sim/services/MemoryUserDefaults.h"

#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using i18n::LanguageManager;

const QString kLanguageKey = QStringLiteral("selectedLanguage");

TEST(LanguageLookup, NoStoredLanguageMeansEnglishAndNothingIsWritten)
{
    sim::MemoryUserDefaults defaults;
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.currentLanguage(), QStringLiteral("English"));
    for (const auto& expected : kExpectedKeys) {
        EXPECT_EQ(manager.translate(expected.key.toString()), englishTextOf(expected.key))
            << expected.key.toString().toStdString();
    }
    EXPECT_EQ(defaults.writes, 0);
    EXPECT_TRUE(defaults.values.isEmpty());
}

TEST(LanguageLookup, UnknownStoredLanguageShowsKeysAndIsKeptAsIs)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Klingon"));
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.currentLanguage(), QStringLiteral("Klingon"));
    for (const auto& expected : kExpectedKeys) {
        EXPECT_EQ(manager.translate(expected.key.toString()), expected.key.toString())
            << expected.key.toString().toStdString();
    }
    EXPECT_EQ(manager.translate(QStringLiteral("instruction_text")), QStringLiteral("instruction_text"));
    EXPECT_EQ(manager.translate(QStringLiteral("delay_note")), QStringLiteral("delay_note"));
    EXPECT_EQ(manager.translate(QStringLiteral("keys_taken_text")), QStringLiteral("keys_taken_text"));
    EXPECT_EQ(defaults.writes, 0);
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(QStringLiteral("Klingon")));
}

TEST(LanguageLookup, StoredValueThatIsNoStringMeansEnglish)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, 5);
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.currentLanguage(), QStringLiteral("English"));
    EXPECT_EQ(defaults.writes, 0);
}

TEST(LanguageLookup, EnglishFallsBackToTheKeyAndHoldsTheNamedTexts)
{
    sim::MemoryUserDefaults defaults;
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.translate(QStringLiteral("Audio Outputs")), QStringLiteral("Audio Outputs"));
    EXPECT_EQ(manager.translate(QStringLiteral("delay_note")), kEnglishDelayNote.toString());
    EXPECT_EQ(manager.translate(QStringLiteral("instruction_text")), kEnglishInstructions.toString());
    EXPECT_EQ(manager.translate(QStringLiteral("keys_taken_reason")), kEnglishKeysTakenReason.toString());
    EXPECT_EQ(manager.translate(QStringLiteral("keys_taken_text")), kEnglishKeysTaken.toString());
    EXPECT_EQ(manager.translate(QStringLiteral("keys_wayland_text")), kEnglishKeysWayland.toString());
    EXPECT_EQ(manager.translate(QStringLiteral("Bluetooth device detected: JBL Flip 6")),
              QStringLiteral("Bluetooth device detected: JBL Flip 6"));
}

TEST(LanguageLookup, SpanishTranslatesWhatItHoldsAndLeavesTheRestInEnglish)
{
    sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Español"));
    const LanguageManager manager(defaults);

    EXPECT_EQ(manager.translate(QStringLiteral("Audio Sync Error")), QStringLiteral("Audio Sync Error"));
    EXPECT_EQ(manager.translate(QStringLiteral("Reset")), QStringLiteral("Restablecer"));
    EXPECT_EQ(manager.translate(QStringLiteral("Audio Outputs")), QStringLiteral("Salidas de Audio"));
    EXPECT_EQ(manager.translate(QStringLiteral("Decrease by %d ms")), QStringLiteral("Disminuir %d ms"));
    EXPECT_EQ(manager.translate(QStringLiteral("Volume control not supported: ")),
              QStringLiteral("Volume control not supported: "));
}

TEST(LanguageLookup, EveryLanguageLooksUpItsOwnTable)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);
    for (const auto& language : kExpectedLanguages) {
        const QString name = language.displayName.toString();
        manager.setCurrentLanguage(name);
        const auto table = manager.translations().value(name);
        ASSERT_FALSE(table.isEmpty()) << name.toStdString();
        for (const auto& expected : kExpectedKeys) {
            const QString key = expected.key.toString();
            EXPECT_EQ(manager.translate(key), table.value(key, key))
                << name.toStdString() << " / " << key.toStdString();
        }
    }
}

TEST(LanguageLookup, OffersTheTwentyThreeLanguagesInPickerOrder)
{
    sim::MemoryUserDefaults defaults;
    const LanguageManager manager(defaults);

    QStringList expected;
    for (const auto& language : kExpectedLanguages) {
        expected.append(language.displayName.toString());
    }
    EXPECT_EQ(manager.languages(), expected);
    EXPECT_EQ(manager.translations().size(), 23);
    for (const auto& name : expected) {
        EXPECT_TRUE(manager.translations().contains(name)) << name.toStdString();
    }
}

TEST(LanguageLookup, LayoutDirectionFollowsTheCurrentLanguage)
{
    sim::MemoryUserDefaults defaults;
    LanguageManager manager(defaults);
    EXPECT_EQ(manager.layoutDirection(), Qt::LeftToRight);

    manager.setCurrentLanguage(QStringLiteral("العربية"));
    EXPECT_EQ(manager.layoutDirection(), Qt::RightToLeft);
    manager.setCurrentLanguage(QStringLiteral("עברית"));
    EXPECT_EQ(manager.layoutDirection(), Qt::RightToLeft);
    manager.setCurrentLanguage(QStringLiteral("Klingon"));
    EXPECT_EQ(manager.layoutDirection(), Qt::LeftToRight);
}

TEST(LanguageLookup, SharedInstanceUsesTheChosenSettingsAndStaysTheSame)
{
    // The instance lives until the process ends, and so must the settings it reads.
    static sim::MemoryUserDefaults defaults;
    defaults.values.insert(kLanguageKey, QStringLiteral("Deutsch"));
    platform::PlatformServices::current().userDefaults = &defaults;

    LanguageManager& first = LanguageManager::shared();
    EXPECT_EQ(first.currentLanguage(), QStringLiteral("Deutsch"));
    EXPECT_EQ(&LanguageManager::shared(), &first);
    first.setCurrentLanguage(QStringLiteral("Polski"));
    EXPECT_EQ(defaults.values.value(kLanguageKey), QVariant(QStringLiteral("Polski")));
}

} // namespace
} // namespace orvanta::testing
