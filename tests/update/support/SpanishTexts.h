#pragma once

// The Spanish texts of the update dialogs, standing in for the interface language's table. Keys
// it does not hold come back as they are, as with the real table; every key asked for is noted.

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>

namespace orvanta::testing {

struct SpanishTexts
{
    std::shared_ptr<QStringList> asked = std::make_shared<QStringList>();

    QString operator()(const QString& key) const
    {
        static const QHash<QString, QString> table = {
            {QStringLiteral("is Available"), QStringLiteral("está Disponible")},
            {QStringLiteral("Download"), QStringLiteral("Descargar")},
            {QStringLiteral("Later"), QStringLiteral("Más tarde")},
            {QStringLiteral("You are up to date!"), QStringLiteral("¡Estás al día!")},
            {QStringLiteral("Version %@ is the latest version."),
             QStringLiteral("La versión %@ es la última versión.")},
            {QStringLiteral("OK"), QStringLiteral("OK")},
            {QStringLiteral("Update Check Failed"), QStringLiteral("Error al Buscar Actualizaciones")},
            {QStringLiteral("Could not check for updates. Please try again later."),
             QStringLiteral("No se pudo buscar actualizaciones. Por favor, inténtelo de nuevo más tarde.")},
        };
        asked->append(key);
        return table.value(key, key);
    }
};

} // namespace orvanta::testing
