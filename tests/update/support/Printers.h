#pragma once

// Readable failure messages for the Qt and service types the update tests compare.

#include "services/Alerts.h"

#include <QString>
#include <QUrl>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QUrl& url, std::ostream* out)
{
    *out << '<' << url.toString().toStdString() << '>';
}

namespace orvanta::platform {

inline void PrintTo(const Alert& alert, std::ostream* out)
{
    *out << "{message \"" << alert.messageText.toStdString() << "\", informative \""
         << alert.informativeText.toStdString() << "\", buttons [";
    for (qsizetype index = 0; index < alert.buttons.size(); ++index) {
        *out << (index > 0 ? ", " : "") << '"' << alert.buttons[index].toStdString() << '"';
    }
    *out << "]}";
}

} // namespace orvanta::platform
