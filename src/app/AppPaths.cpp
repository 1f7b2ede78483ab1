#include "app/AppPaths.h"

#include "app/Company.h"

#include <QDir>
#include <QFileInfo>
#include <QMutex>
#include <QStandardPaths>

namespace quillon::app {

namespace {

QMutex& overrideMutex()
{
    static QMutex mutex;
    return mutex;
}

QString& temporaryOverride()
{
    static QString folder;
    return folder;
}

// The system's temporary folder. A TMPDIR naming a folder that does not exist falls back to
// /tmp, as it does when TMPDIR is unset: never to the folder above it or to the current one.
QString systemTemporaryFolder()
{
    const QString fromEnvironment = qEnvironmentVariable("TMPDIR");
    if (!fromEnvironment.isEmpty() && !QFileInfo(fromEnvironment).isDir())
        return QStringLiteral("/tmp");
    const QString fromSystem = QDir::cleanPath(QDir::tempPath());
    return !fromSystem.isEmpty() && QFileInfo(fromSystem).isDir() ? fromSystem : QStringLiteral("/tmp");
}

} // namespace

QString applicationSupportFolder()
{
    const QString fromEnvironment = qEnvironmentVariable("QUILLON_SUPPORT_DIR");
    if (!fromEnvironment.isEmpty())
        return QDir::cleanPath(fromEnvironment);
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
                           QLatin1String(kCompanyName) + u'/' + QLatin1String(kApplicationName));
}

QString temporaryFolder()
{
    QMutexLocker lock(&overrideMutex());
    return temporaryOverride().isEmpty() ? systemTemporaryFolder() : temporaryOverride();
}

void setTemporaryFolderOverride(const QString& folder)
{
    QMutexLocker lock(&overrideMutex());
    temporaryOverride() = folder.isEmpty() ? QString() : QDir::cleanPath(folder);
}

QString workFolder()
{
    const QString temp = temporaryFolder();
    const QString work = temp + QStringLiteral("/Quillon");
    return QDir().mkpath(work) ? work : temp;
}

} // namespace quillon::app
