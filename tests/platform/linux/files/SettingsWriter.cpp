// Writes the settings until it is killed, each time with a counter one higher and the same
// padding; says "ready" after the first write, so the test kills it while it writes.

#include "desktop/JsonFileUserDefaults.h"

#include <QString>

#include <cstdio>

int main(int /*argc*/, char** argv)
{
    orvanta::desktop::JsonFileUserDefaults defaults(QString::fromLocal8Bit(argv[1]));
    qint64 counter = defaults.value(QStringLiteral("counter")).toLongLong();
    defaults.setValue(QStringLiteral("padding"), QString(QString::fromLocal8Bit(argv[2]).toInt(), u'p'));
    defaults.setValue(QStringLiteral("counter"), ++counter);
    std::printf("ready\n");
    std::fflush(stdout);
    for (;;) {
        defaults.setValue(QStringLiteral("counter"), ++counter);
    }
}
