#include "support/IdmlUnpack.h"

#include <QDir>
#include <QProcess>

namespace quillon::test {

QString unpackIdml(const QString& idmlPath, const QString& folder)
{
    QDir().mkpath(folder);
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"),
                {QStringLiteral("-q"), QStringLiteral("-o"), idmlPath, QStringLiteral("-d"), folder});
    if (!unzip.waitForFinished(60000)) {
        unzip.kill();
        unzip.waitForFinished();
        return QStringLiteral("unzip did not finish");
    }
    if (unzip.exitStatus() != QProcess::NormalExit || unzip.exitCode() != 0)
        return QStringLiteral("unzip failed: ") + QString::fromLocal8Bit(unzip.readAllStandardError());
    return {};
}

} // namespace quillon::test
