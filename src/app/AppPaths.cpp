#include "app/AppPaths.h"

#include "app/Company.h"

#include <QDir>
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
    return temporaryOverride().isEmpty() ? QDir::cleanPath(QDir::tempPath()) : temporaryOverride();
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
