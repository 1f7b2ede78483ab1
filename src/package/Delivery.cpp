#include "package/Delivery.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "app/RegularFile.h"
#include "host/FontColorScripts.h"
#include "host/ScriptRunner.h"
#include "package/FileCopy.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace quillon::package {

using app::makeError;
using app::Status;

namespace {

bool isRelayonMini(const QString& appName)
{
    return appName.contains(QLatin1String("Mini"));
}

QString destinationType(const QVariantMap& file)
{
    const QString stored = file.value(QStringLiteral("KVDestType")).toString();
    if (!stored.isEmpty())
        return stored;
    return file.value(QStringLiteral("type")).toLongLong() != 0 ? QStringLiteral("Local Disk")
                                                                : QStringLiteral("FTP Server");
}

// Moves the finished copy to its name, never over a folder already there.
Status renameWithoutReplacing(const QString& from, const QString& to)
{
    const QByteArray source = app::localBytesOfPath(from);
    const QByteArray target = app::localBytesOfPath(to);
#ifdef RENAME_NOREPLACE
    if (::renameat2(AT_FDCWD, source.constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return makeError(app::systemErrorText(errno), to);
#endif
    if (QFileInfo::exists(to) || QFileInfo(to).isSymLink())
        return makeError(app::systemErrorText(EEXIST), to);
    if (::rename(source.constData(), target.constData()) != 0)
        return makeError(app::systemErrorText(errno), to);
    return {};
}

// Copies the folder's contents below `target` (which exists): folders made, files and links
// copied by the copy engine, links never followed.
Status copyFolderContents(const QString& folder, const QString& target)
{
    const QDir source(folder);
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        const QString destination = target + u'/' + source.relativeFilePath(entry.filePath());
        if (entry.isDir() && !entry.isSymLink()) {
            if (!QDir().mkpath(destination))
                return makeError(QStringLiteral("the folder could not be made"), destination);
            continue;
        }
        if (app::Result<CopiedFile> copied = copyFile(entry.filePath(), destination); !copied)
            return copied.error();
    }
    return {};
}

} // namespace

QString defaultDestinationsRoot()
{
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u'/' +
                           QLatin1String(app::kCompanyName));
}

QString imageForDestType(const QString& type)
{
    static const QHash<QString, QString> images{
        {QStringLiteral("FTP Server"), QStringLiteral("ftp")},
        {QStringLiteral("SFTP Server"), QStringLiteral("sftp")},
        {QStringLiteral("Local Disk"), QStringLiteral("disk")},
        {QStringLiteral("Amazon S3"), QStringLiteral("bucket")},
        {QStringLiteral("WebDAV Server"), QStringLiteral("http")},
        {QStringLiteral("Secure WebDAV Server"), QStringLiteral("http-sec")},
        {QStringLiteral("AFP Server"), QStringLiteral("afp")},
        {QStringLiteral("SMB Server"), QStringLiteral("afp")},
    };
    return images.value(type, QStringLiteral("ftp"));
}

QStringList foldersToDeliver(const QStringList& pathsOfPackagedDocs, bool packageUnified)
{
    QStringList folders;
    for (const QString& path : pathsOfPackagedDocs) {
        folders << QFileInfo(path).absolutePath();
        if (packageUnified)
            break;
    }
    return folders;
}

QString deliverySubmittingText()
{
    return QStringLiteral("Submitting packaged jobs for delivery...");
}

QString deliveryQueuedText(const QString& appName)
{
    return QStringLiteral("Packaged jobs have been queued for delivery. You can monitor the progress in %1.")
        .arg(appName.isEmpty() ? QLatin1String(kRelayonName) : appName);
}

RYDelivery::RYDelivery(app::Settings& settings, app::AlertSink& alerts, host::ScriptRunner* scripts,
                       QString destinationsRoot)
    : m_settings(settings), m_alerts(alerts), m_scripts(scripts), m_destinationsRoot(std::move(destinationsRoot))
{
    // One folder after another, in the order packaging finished them.
    m_worker.setMaxThreadCount(1);
}

RYDelivery::~RYDelivery()
{
    m_worker.waitForDone();
}

QList<Destination> RYDelivery::destinationsForApp(const QString& appName) const
{
    const QDir folder(m_destinationsRoot + u'/' + appName + QStringLiteral("/Destinations"));
    QList<Destination> destinations;
    for (const QFileInfo& file : folder.entryInfoList({QStringLiteral("*.dest")}, QDir::Files, QDir::Name)) {
        const app::Result<QVariantMap> stored = app::readPropertyListDictionary(file.filePath());
        if (!stored) {
            app::logFailure(QStringLiteral("read destination: %1").arg(stored.error().text()));
            continue;
        }
        Destination destination;
        destination.name = file.completeBaseName();
        destination.app = appName;
        destination.type = destinationType(*stored);
        destination.image = imageForDestType(destination.type);
        destination.fileName = file.fileName();
        if (isRelayonMini(appName)) {
            const QString hotFolder = stored->value(QStringLiteral("KVHotfolder")).toString();
            destination.hotFolder = !hotFolder.isEmpty() && QFileInfo(hotFolder).isDir() ? hotFolder : QString();
        }
        destinations << destination;
    }
    return destinations;
}

QList<DestinationMenuItem> RYDelivery::menuItemsForDestinations(const QList<Destination>& destinations,
                                                                const QString& appName) const
{
    QList<DestinationMenuItem> items{{QStringLiteral("       ") + appName, QString(), false, QString(), QString()}};
    for (const Destination& destination : destinations)
        items << DestinationMenuItem{destination.name, destination.image, true, appName, destination.hotFolder};
    return items;
}

QList<DestinationMenuItem> RYDelivery::createMenuItemsForDestinations() const
{
    const QString relayon = QLatin1String(kRelayonName);
    const QString mini = QLatin1String(kRelayonMiniName);
    const QList<Destination> relayonDestinations = destinationsForApp(relayon);
    QList<DestinationMenuItem> items;
    if (!relayonDestinations.isEmpty())
        items << menuItemsForDestinations(relayonDestinations, relayon);
    if (!destinationsForApp(mini).isEmpty())
        items << menuItemsForDestinations(relayonDestinations, mini);
    return items;
}

int RYDelivery::indexOfSelectedDestination(const QList<DestinationMenuItem>& items) const
{
    const QString selected = m_settings.string(kSelectedDestinationSetting);
    if (selected.isEmpty())
        return -1;
    for (qsizetype i = 0; i < items.size(); ++i)
        if (items[i].title == selected)
            return int(i);
    return -1;
}

void RYDelivery::chooseDestination(const DestinationMenuItem* item)
{
    if (!item || item->app.isEmpty()) {
        m_settings.remove(QLatin1String(kSelectedDestinationSetting.name));
        return;
    }
    m_settings.setValue(QLatin1String(kSelectedDestinationSetting.name), item->title);
    m_settings.setValue(QLatin1String(kDeliveryAppNameSetting.name), item->app);
    m_settings.setValue(QLatin1String(kDestinationHotFolderSetting.name), item->hotFolder);
}

RYDelivery::Choice RYDelivery::storedChoice() const
{
    return {m_settings.string(kDeliveryAppNameSetting), m_settings.string(kSelectedDestinationSetting),
            m_settings.string(kDestinationHotFolderSetting)};
}

Status RYDelivery::sendFolderAtPath(const QString& folder)
{
    return send(storedChoice(), folder);
}

void RYDelivery::deliverFolderAtPathAsync(const QString& folder)
{
    // The settings are read here: each thread needs settings of its own.
    const Choice choice = storedChoice();
    m_worker.start([this, choice, folder] {
        if (Status sent = send(choice, folder); !sent) {
            const std::lock_guard lock(m_failuresMutex);
            m_failures << sent.error();
        }
    });
}

QList<app::Error> RYDelivery::waitForDeliveries()
{
    m_worker.waitForDone();
    const std::lock_guard lock(m_failuresMutex);
    return std::exchange(m_failures, {});
}

Status RYDelivery::send(const Choice& choice, const QString& folder)
{
    app::logEntry("sendFolderAtPath");
    if (choice.appName.isEmpty()) {
        app::logLine(QStringLiteral("-> ERR: delivery app not defined"));
        return makeError(QStringLiteral("No delivery application is chosen; the package was not delivered."), folder);
    }
    if (isRelayonMini(choice.appName)) {
        if (choice.hotFolder.isEmpty()) {
            app::logLine(QStringLiteral("-> ERR: Relayon Mini hot folder not defined"));
            return makeError(QStringLiteral("The Relayon Mini destination has no hot folder; the package was not "
                                            "delivered."),
                             folder);
        }
        if (Status copied = copyToHotFolder(folder, choice.hotFolder); !copied) {
            app::runAlert(m_alerts, QStringLiteral("Package folder could not be copied to Relayon Mini hot folder"),
                          app::withSupportContact(QStringLiteral("Error: %1").arg(copied.error().text())), std::nullopt,
                          false);
            return copied;
        }
        // Launching an application that runs already does nothing.
        if (m_scripts)
            m_scripts->runAppleScriptWithSourceString(
                QStringLiteral("tell application id \"%1\" to launch").arg(QLatin1String(kRelayonMiniBundleId)));
        return {};
    }
    if (choice.destination.isEmpty()) {
        app::logLine(QStringLiteral("-> ERR: Relayon destination not defined"));
        return makeError(QStringLiteral("No Relayon destination is chosen; the package was not delivered."), folder);
    }
    if (!m_scripts)
        return makeError(QStringLiteral("Relayon is reached through Apple events, which this system does not have; "
                                        "the package was not delivered."),
                         folder);
    const QVariantMap outcome = m_scripts->runAppleScriptWithSourceString(
        QStringLiteral("tell application id \"%1\" to call method \"addItemToQueue:destination:\" with parameters "
                       "{\"%2\", \"%3\"}")
            .arg(QLatin1String(kRelayonBundleId), host::scriptStringContent(folder),
                 host::scriptStringContent(choice.destination)));
    if (!host::scriptSucceeded(outcome)) {
        app::logFailure(QStringLiteral("queue for delivery: %1").arg(host::scriptBriefErrorMessage(outcome)));
        return makeError(host::scriptBriefErrorMessage(outcome), folder);
    }
    return {};
}

Status RYDelivery::copyToHotFolder(const QString& folder, const QString& hotFolder)
{
    const QFileInfo source(folder);
    if (!source.isDir())
        return makeError(QStringLiteral("the package folder does not exist"), folder);
    const QString target = QDir(hotFolder).filePath(source.fileName());
    if (QFileInfo::exists(target))
        return makeError(QStringLiteral("a folder of that name is already in the hot folder"), target);
    // Copied under a hidden name first, so the delivery application never takes a half-copied
    // folder, then renamed.
    QByteArray staging =
        app::localBytesOfPath(QDir(hotFolder).filePath(QStringLiteral(".%1.XXXXXX").arg(source.fileName())));
    if (!::mkdtemp(staging.data()))
        return makeError(QStringLiteral("the hot folder is not writable: %1").arg(app::systemErrorText(errno)),
                         hotFolder);
    const QString stagingPath = app::pathFromLocalBytes(staging);
    QFile::setPermissions(stagingPath, QFile::permissions(folder));
    Status copied = copyFolderContents(folder, stagingPath);
    if (copied)
        copied = renameWithoutReplacing(stagingPath, target);
    if (!copied)
        QDir(stagingPath).removeRecursively();
    return copied;
}

} // namespace quillon::package
