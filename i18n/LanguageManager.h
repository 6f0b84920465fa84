#pragma once

// The language of the interface and the lookup of its texts. The user picks one of 23 languages
// by its display name; the choice is kept in the settings under "selectedLanguage" and is the
// language of the next start. Every visible text is looked up by its English text, which is the
// key, so a key no table holds shows in English. The system's own locale plays no part.

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringList>

namespace orvanta::services {
class UserDefaults;
} // namespace orvanta::services

namespace orvanta::i18n {

class LanguageManager : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString currentLanguage READ currentLanguage WRITE setCurrentLanguage NOTIFY currentLanguageChanged)

public:
    // Reads the stored language ("English" when there is none) and builds the tables once.
    explicit LanguageManager(services::UserDefaults& defaults, QObject* parent = nullptr);

    // The text of key in the current language; the key itself when there is none.
    QString translate(const QString& key) const;

    // The display names, in the order the language picker offers them.
    const QStringList& languages() const;
    // Display name to that language's table.
    const QHash<QString, QHash<QString, QString>>& translations() const;

    QString currentLanguage() const;
    // Announces every assignment, also of the same language, and then stores it.
    void setCurrentLanguage(const QString& language);

    Qt::LayoutDirection layoutDirection() const;
    static Qt::LayoutDirection layoutDirectionOf(const QString& language);

signals:
    void currentLanguageChanged();

private:
    services::UserDefaults& defaults;
    QStringList languageNames;
    QHash<QString, QHash<QString, QString>> tables;
    QString chosenLanguage;
};

} // namespace orvanta::i18n
