#include <QCoreApplication>
#ifdef QUILLON_GUI_TESTS
#include <QApplication>
#elif defined(QUILLON_PAINT_TESTS)
#include <QGuiApplication>
#endif
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
#if defined(QUILLON_GUI_TESTS) || defined(QUILLON_PAINT_TESTS)
    // Windows and PDF reports need a GUI application; tests (and their listing at build time)
    // draw offscreen.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif
#ifdef QUILLON_GUI_TESTS
    QApplication app(argc, argv);
#elif defined(QUILLON_PAINT_TESTS)
    QGuiApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    // Tests never touch the user's own support folder.
    QTemporaryDir supportDir;
    qputenv("QUILLON_SUPPORT_DIR", supportDir.path().toUtf8());
    return RUN_ALL_TESTS();
}
