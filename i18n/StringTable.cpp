#include "StringTable.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

namespace orvanta::i18n {
namespace {

Q_LOGGING_CATEGORY(lcI18n, "orvanta.i18n")

StringTable fromJsonObject(const QJsonObject& object)
{
    StringTable table;
    table.reserve(object.size());
    for (auto it = object.begin(); it != object.end(); ++it) {
        table.insert(it.key(), it.value().toString());
    }
    return table;
}

} // namespace

QString stringTablePath(QStringView tableName)
{
    return QStringLiteral(":/orvanta/i18n/%1.json").arg(tableName);
}

StringTable loadStringTable(QStringView tableName)
{
    QFile file(stringTablePath(tableName));
    if (!file.open(QIODevice::ReadOnly)) {
        qCWarning(lcI18n) << "cannot open the string table" << file.fileName() << ":" << file.errorString();
        return {};
    }
    QJsonParseError error{};
    const auto document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        qCWarning(lcI18n) << "malformed string table" << file.fileName() << ":" << error.errorString();
        return {};
    }
    return fromJsonObject(document.object());
}

} // namespace orvanta::i18n
