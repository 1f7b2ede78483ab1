#include "support/UnpackForTest.h"

#include <QProcess>

namespace quillon::test {

std::unique_ptr<QTemporaryDir> unpackForTest(const QString& idmlPath)
{
    auto dir = std::make_unique<QTemporaryDir>();
    if (!dir->isValid())
        return nullptr;
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), {QStringLiteral("-q"), idmlPath, QStringLiteral("-d"), dir->path()});
    if (!unzip.waitForFinished(60000) || unzip.exitStatus() != QProcess::NormalExit || unzip.exitCode() != 0)
        return nullptr;
    return dir;
}

} // namespace quillon::test
