// GoogleTest's main on an offscreen screen the size of a 1366x768 laptop's area for windows:
// 768 pixels less a desktop panel of 48.

#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryFile>

int main(int argc, char** argv)
{
    QTemporaryFile screens;
    if (!screens.open()) {
        return 1;
    }
    screens.write(R"({"screens": [{"name": "laptop", "x": 0, "y": 0, "width": 1366, "height": 720,
                                   "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
    screens.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + screens.fileName().toLocal8Bit());
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
