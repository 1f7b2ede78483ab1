#include <QCoreApplication>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication app(argc, argv);
    // Tests never touch the user's own support folder.
    QTemporaryDir supportDir;
    qputenv("QUILLON_SUPPORT_DIR", supportDir.path().toUtf8());
    return RUN_ALL_TESTS();
}
