#include "ViewRules.h"

#include <cmath>

namespace orvanta::ui {

int volumePercent(float volume)
{
    // Multiplied as a float, as the volume is kept, then truncated toward zero.
    return static_cast<int>(volume * 100.0f);
}

int roundedDelay(double value)
{
    return static_cast<int>(std::lround(value));
}

QString formatWithInteger(const QString& format, long long value)
{
    QString out;
    out.reserve(format.size() + 8);
    bool filled = false;
    for (qsizetype i = 0; i < format.size(); ++i) {
        const QChar c = format.at(i);
        if (c != u'%' || i + 1 >= format.size()) {
            out.append(c);
            continue;
        }
        const QStringView rest = QStringView(format).mid(i + 1);
        if (rest.startsWith(u'%')) {
            out.append(u'%');
            i += 1;
            continue;
        }
        qsizetype length = 0;
        if (rest.startsWith(u"d") || rest.startsWith(u"i")) {
            length = 1;
        } else if (rest.startsWith(u"ld") || rest.startsWith(u"li")) {
            length = 2;
        } else if (rest.startsWith(u"lld") || rest.startsWith(u"lli") || rest.startsWith(u"1$d")) {
            length = 3;
        }
        if (length == 0 || filled) {
            out.append(c);
            continue;
        }
        out.append(QString::number(value));
        filled = true;
        i += length;
    }
    return out;
}

} // namespace orvanta::ui
