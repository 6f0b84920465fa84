// Writes the settings over and over, as fast as it can, until it is killed: each write stores
// a counter one higher than the last and the same large padding. Prints "ready" once its first
// write is done, so that the test kills it while it writes rather than while it starts.

#include "desktop/JsonFileUserDefaults.h"

#include <QString>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s SETTINGS_FILE PADDING_BYTES\n", argv[0]);
        return 2;
    }
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
