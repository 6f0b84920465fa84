// GoogleTest's main with a Qt application object, so timers and queued calls run in tests. Built
// with ORVANTA_TEST_WIDGETS it is a widget application, so that views can be built, shown,
// clicked and dragged; without a display they draw on the offscreen platform.

#include <gtest/gtest.h>

#ifdef ORVANTA_TEST_WIDGETS
#include <QApplication>
using TestApplication = QApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif

int main(int argc, char** argv)
{
#ifdef ORVANTA_TEST_WIDGETS
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
#endif
    TestApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
