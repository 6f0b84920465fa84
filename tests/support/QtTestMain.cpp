// GoogleTest's main inside a Qt application, so that timers, queued calls and network replies run:
// with ORVANTA_TEST_WIDGETS a QApplication (offscreen unless QT_QPA_PLATFORM says otherwise), with
// ORVANTA_TEST_XVFB a QGuiApplication on a private X display it starts, else a QCoreApplication.

#include <gtest/gtest.h>

#if defined(ORVANTA_TEST_WIDGETS)
#include <QApplication>
using TestApplication = QApplication;
#elif defined(ORVANTA_TEST_XVFB)
#include <QGuiApplication>
#include <QProcess>
using TestApplication = QGuiApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

#include <cstdio>

#if defined(ORVANTA_TEST_XVFB)
namespace {

// Starts Xvfb on a display number it picks itself, so that parallel tests never share one, and
// points DISPLAY at it; false when it did not start.
bool startXvfb(QProcess& server)
{
    server.start("Xvfb", {"-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1024x768x24"});
    QByteArray number;
    while (server.waitForStarted(5000) && !number.contains('\n') && server.waitForReadyRead(10000)) {
        number += server.readAllStandardOutput();
    }
    bool ok = false;
    const int display = number.trimmed().toInt(&ok);
    qputenv("DISPLAY", ":" + QByteArray::number(display));
    qputenv("QT_QPA_PLATFORM", "xcb");
    return ok;
}

} // namespace
#endif

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
#if defined(ORVANTA_TEST_WIDGETS)
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
#elif defined(ORVANTA_TEST_XVFB)
    QProcess xvfb;
    if (!startXvfb(xvfb)) {
        std::fprintf(stderr, "Xvfb did not start\n");
        return 1;
    }
#endif
    int result = 0;
    {
        TestApplication application(argc, argv);
        result = RUN_ALL_TESTS();
    }
#if defined(ORVANTA_TEST_XVFB)
    xvfb.terminate();
    xvfb.waitForFinished(3000);
#endif
    return result;
}
