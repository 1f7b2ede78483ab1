#include "host/HostEnvironment.h"

#include "app/ToolRunner.h"

#include <QCoreApplication>
#include <QDir>
#include <QMetaObject>

namespace quillon::host {

namespace {

QString executableFolder()
{
    return QCoreApplication::applicationDirPath();
}

} // namespace

QString SystemHostEnvironment::resourcePath() const
{
#ifdef Q_OS_MACOS
    return QDir::cleanPath(executableFolder() + QStringLiteral("/../Resources"));
#else
    return executableFolder();
#endif
}

QString SystemHostEnvironment::bundlePath() const
{
#ifdef Q_OS_MACOS
    return QDir::cleanPath(executableFolder() + QStringLiteral("/../.."));
#else
    return executableFolder();
#endif
}

QString SystemHostEnvironment::shortVersionString() const
{
    return QCoreApplication::applicationVersion();
}

QStringList SystemHostEnvironment::runningApplicationPaths() const
{
#ifdef Q_OS_MACOS
    app::SystemToolRunner tools;
    const std::optional<QString> listing =
        tools.runTaskWithPath(QStringLiteral("/bin/ps"), {QStringLiteral("-axo"), QStringLiteral("comm=")}, true);
    return applicationBundlesInProcessList(listing.value_or(QString()));
#else
    return {};
#endif
}

void SystemHostEnvironment::terminate()
{
    if (QCoreApplication* application = QCoreApplication::instance())
        QMetaObject::invokeMethod(application, &QCoreApplication::quit, Qt::QueuedConnection);
}

QStringList applicationBundlesInProcessList(const QString& processList)
{
    QStringList bundles;
    for (const QString& line : processList.split(u'\n', Qt::SkipEmptyParts)) {
        const QString path = line.trimmed();
        const qsizetype end = path.indexOf(QLatin1String(".app/"));
        const QString bundle = end >= 0 ? path.left(end + 4) : path.endsWith(QLatin1String(".app")) ? path : QString();
        if (!bundle.isEmpty() && !bundles.contains(bundle))
            bundles << bundle;
    }
    return bundles;
}

} // namespace quillon::host
