#pragma once

// One language's string table: English text (or one of the named keys) to the text shown.

#include <QHash>
#include <QString>
#include <QStringView>

namespace orvanta::i18n {

using StringTable = QHash<QString, QString>;

// Where the table of that name lives among the program's compiled-in resources.
QString stringTablePath(QStringView tableName);

// Reads the compiled-in table. A table that is missing or malformed (a build defect) is reported
// on the i18n logging category and reads as empty, so its keys show in English.
StringTable loadStringTable(QStringView tableName);

} // namespace orvanta::i18n
