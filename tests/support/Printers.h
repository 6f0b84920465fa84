#pragma once

// Lets GoogleTest show Qt values in failure messages as readable text instead of raw bytes.
// They live in Qt's namespace so that argument-dependent lookup finds them.

#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <ostream>

QT_BEGIN_NAMESPACE

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& texts, std::ostream* out)
{
    *out << '[' << texts.join(QStringLiteral("\", \"")).prepend(u'"').append(u'"').toStdString() << ']';
}

inline void PrintTo(const QUrl& url, std::ostream* out)
{
    *out << '<' << url.toString().toStdString() << '>';
}

inline void PrintTo(const QVariant& value, std::ostream* out)
{
    *out << (value.isValid() ? value.typeName() : "invalid") << '(' << value.toString().toStdString() << ')';
}

QT_END_NAMESPACE
