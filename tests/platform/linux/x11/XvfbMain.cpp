// GoogleTest's main on a private X display: starts Xvfb, points DISPLAY at it, and runs the
// tests inside a QGuiApplication on the xcb platform.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QProcess>

namespace {

// Starts Xvfb on a display number it picks itself, so parallel tests never share one; gives the
// number, or -1.
int startXvfb(QProcess& server)
{
    server.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
    if (!server.waitForStarted(5000)) {
        return -1;
    }
    QByteArray number;
    while (!number.contains('\n') && server.waitForReadyRead(10000)) {
        number += server.readAllStandardOutput();
    }
    bool ok = false;
    const int display = number.trimmed().toInt(&ok);
    return ok ? display : -1;
}

} // namespace

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QProcess xvfb;
    const int display = startXvfb(xvfb);
    if (display < 0) {
        std::fprintf(stderr, "Xvfb did not start\n");
        return 1;
    }
    qputenv("DISPLAY", QByteArray(":") + QByteArray::number(display));
    qputenv("QT_QPA_PLATFORM", "xcb");
    int result = 0;
    {
        QGuiApplication app(argc, argv);
        result = RUN_ALL_TESTS();
    }
    xvfb.terminate();
    xvfb.waitForFinished(3000);
    return result;
}
