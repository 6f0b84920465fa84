#include "StringFormat.h"

namespace orvanta::update {

QString formatWithString(const QString& format, const QString& argument)
{
    const QStringView text(format);
    QString result;
    result.reserve(format.size() + argument.size());
    qsizetype index = 0;
    while (index < text.size()) {
        const QStringView rest = text.sliced(index);
        if (rest.startsWith(u"%@")) {
            result += argument;
            index += 2;
        } else if (rest.startsWith(u"%1$@")) {
            result += argument;
            index += 4;
        } else if (rest.startsWith(u"%%")) {
            result += u'%';
            index += 2;
        } else {
            result += text[index];
            ++index;
        }
    }
    return result;
}

} // namespace orvanta::update
