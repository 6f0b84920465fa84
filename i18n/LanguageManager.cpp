#include "LanguageManager.h"

#include "LanguageList.h"
#include "StringTable.h"

#include "services/UserDefaults.h"

#include <algorithm>

namespace orvanta::i18n {
namespace {

const QString kSelectedLanguageKey = QStringLiteral("selectedLanguage");
const QString kDefaultLanguage = QStringLiteral("English");

QStringList displayNames()
{
    QStringList names;
    names.reserve(static_cast<qsizetype>(kLanguageList.size()));
    for (const auto& entry : kLanguageList) {
        names.append(entry.displayName.toString());
    }
    return names;
}

QHash<QString, QHash<QString, QString>> allTables()
{
    QHash<QString, QHash<QString, QString>> tables;
    tables.reserve(static_cast<qsizetype>(kLanguageList.size()));
    for (const auto& entry : kLanguageList) {
        tables.insert(entry.displayName.toString(), loadStringTable(entry.tableName));
    }
    return tables;
}

// Only a stored string counts; anything else (or nothing) means the default language.
QString storedLanguage(const services::UserDefaults& defaults)
{
    const QVariant stored = defaults.value(kSelectedLanguageKey);
    if (stored.typeId() != QMetaType::QString) {
        return kDefaultLanguage;
    }
    return stored.toString();
}

} // namespace

LanguageManager::LanguageManager(services::UserDefaults& userDefaults, QObject* parent)
    : QObject(parent), defaults(userDefaults), languageNames(displayNames()), tables(allTables()),
      chosenLanguage(storedLanguage(userDefaults))
{}

QString LanguageManager::translate(const QString& key) const
{
    const auto table = tables.constFind(chosenLanguage);
    if (table == tables.cend()) {
        return key;
    }
    return table->value(key, key);
}

const QStringList& LanguageManager::languages() const
{
    return languageNames;
}

const QHash<QString, QHash<QString, QString>>& LanguageManager::translations() const
{
    return tables;
}

QString LanguageManager::currentLanguage() const
{
    return chosenLanguage;
}

void LanguageManager::setCurrentLanguage(const QString& newLanguage)
{
    chosenLanguage = newLanguage;
    emit currentLanguageChanged();
    // Stores what is current now, so that a listener that picks another language in turn leaves
    // the settings and the interface agreeing.
    defaults.setValue(kSelectedLanguageKey, chosenLanguage);
}

Qt::LayoutDirection LanguageManager::layoutDirection() const
{
    return layoutDirectionOf(chosenLanguage);
}

Qt::LayoutDirection LanguageManager::layoutDirectionOf(const QString& language)
{
    const auto entry = std::find_if(kLanguageList.begin(), kLanguageList.end(),
                                    [&language](const LanguageEntry& e) { return e.displayName == language; });
    return entry == kLanguageList.end() ? Qt::LeftToRight : entry->direction;
}

} // namespace orvanta::i18n
