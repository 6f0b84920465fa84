// GoogleTest's main on a private X display: starts Xvfb, points DISPLAY at it, and runs the
// tests inside a QGuiApplication on the xcb platform.

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QThread>

namespace {

// Starts Xvfb on the first free display from :90 on; gives its number, or -1.
int startXvfb(QProcess& server)
{
    for (int display = 90; display < 130; ++display) {
        if (QFile::exists(QString("/tmp/.X%1-lock").arg(display))) {
            continue;
        }
        server.start("Xvfb", {QString(":%1").arg(display), "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
        server.waitForStarted(5000);
        for (int wait = 0; wait < 50 && server.state() == QProcess::Running; ++wait) {
            if (QFile::exists(QString("/tmp/.X11-unix/X%1").arg(display))) {
                return display;
            }
            QThread::msleep(100);
        }
        server.kill();
        server.waitForFinished();
    }
    return -1;
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
