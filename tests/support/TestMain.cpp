#include <QCoreApplication>
#ifdef QUILLON_GUI_TESTS
#include <QApplication>
#endif
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
#ifdef QUILLON_GUI_TESTS
    // Windows need a GUI application; tests (and their listing at build time) draw offscreen.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    // Tests never touch the user's own support folder.
    QTemporaryDir supportDir;
    qputenv("QUILLON_SUPPORT_DIR", supportDir.path().toUtf8());
    return RUN_ALL_TESTS();
}
