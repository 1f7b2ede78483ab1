#include "preflight/IdmlCreator.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/Numbers.h"
#include "app/Strings.h"
#include "idml/IdmlPackage.h"
#include "host/InDesignHost.h"

#include <QDir>
#include <QFileInfo>

using namespace quillon::idml;
using namespace quillon::host;

namespace quillon::preflight {

namespace {

constexpr qsizetype kMaxFolderNameLength = 243;

} // namespace

QNIDMLCreator::QNIDMLCreator(host::InDesignHost& host, app::AlertSink& alerts, QObject* alertReceiver)
    : m_host(host), m_alerts(alerts), m_alertReceiver(alertReceiver), m_zipTool(defaultZipTool())
{
}

QString QNIDMLCreator::createIDMLFolderFromInDesignFileAtPath(const QString& path, host::InDesignHost& host,
                                                              app::AlertSink& alerts, QObject* alertReceiver)
{
    QNIDMLCreator creator(host, alerts, alertReceiver);
    return creator.processInDesignFileAtPath(path);
}

QString QNIDMLCreator::idmlPathForDocument(const QString& documentPath, const QString& workFolder)
{
    return QDir(workFolder)
        .filePath(app::stringByReplacingPathExtensionWith(QFileInfo(documentPath).fileName(), QStringLiteral("idml")));
}

QString QNIDMLCreator::repairedArchivePathForIDMLPath(const QString& idmlPath)
{
    return idmlPath + QStringLiteral("_tmp.zip");
}

QString QNIDMLCreator::idmlContentsFolderPathForIDMLPath(const QString& idmlPath)
{
    const QFileInfo idml(idmlPath);
    QString name = idml.fileName() + QStringLiteral(".folder") + app::randomNumberOfLength(5);
    if (name.size() >= kMaxFolderNameLength) {
        qsizetype cut = kMaxFolderNameLength;
        if (name.at(cut - 1).isHighSurrogate())
            --cut; // never split a character
        name.truncate(cut);
    }
    return idml.dir().filePath(name);
}

QString QNIDMLCreator::processInDesignFileAtPath(const QString& path)
{
    m_documentPath = path;
    const QString idmlPath = idmlPathForDocument(path, m_workFolder.isEmpty() ? app::workFolder() : m_workFolder);
    QString pathForScript = idmlPath;
    const app::Result<QString> hostPath = m_host.hostPathFromPath(idmlPath);
    if (hostPath && !hostPath->isEmpty())
        pathForScript = *hostPath;
    else
        app::logFailure(QStringLiteral("get HFS path: %1").arg(idmlPath));
    app::logLine(QStringLiteral("idmlPathForAS: %1").arg(pathForScript));

    if (!exportDoc1ToIDMLAtPath(pathForScript, idmlPath, QFileInfo(path).fileName()))
        return {};
    return unzipIDMLAtPath(idmlPath);
}

bool QNIDMLCreator::exportDoc1ToIDMLAtPath(const QString& idmlPathForScript, const QString& idmlPathPOSIX,
                                           const QString& inddFileName)
{
    app::logLine(QStringLiteral("> exportDoc1ToIDMLAtPath: %1").arg(idmlPathForScript));
    const app::Status exported = m_host.exportDocumentForPreflight(inddFileName, idmlPathForScript, idmlPathPOSIX);
    if (exported) {
        app::logLine(QStringLiteral("-->> idml created"));
        return true;
    }
    const QString brief = exported.error().message;
    app::logFailure(QStringLiteral("export IDML: %1").arg(brief));
    m_lastError = exported.error();
    if (m_lastError.file.isEmpty())
        m_lastError.file = m_documentPath.isEmpty() ? inddFileName : m_documentPath;
    const bool dialogOpen = brief.contains(QLatin1String("modal dialog or alert is active"));
    app::runAlertOnMainThread(
        m_alerts, m_alertReceiver, dialogOpen ? kDialogOpenAlertTitle : kCannotPreflightAlertTitle,
        app::withSupportContact(dialogOpen ? QStringLiteral("Please dismiss the dialog in InDesign before preflighting")
                                           : brief),
        std::nullopt, true);
    return false;
}

QString QNIDMLCreator::fail(const QString& title, const app::Error& error)
{
    m_lastError = error;
    app::logFailure(QStringLiteral("unpack IDML: %1").arg(error.text()));
    app::runAlert(m_alerts, title, error.text(), std::nullopt, true);
    return {};
}

QString QNIDMLCreator::unzipIDMLAtPath(const QString& idmlPath)
{
    app::logLine(QStringLiteral("> unzipIDMLAtPath: %1").arg(idmlPath));
    m_repaired = false;
    // Errors name the document the user gave, not the copy in the work folder.
    const QString named = m_documentPath.isEmpty() ? idmlPath : m_documentPath;
    if (!QFileInfo(idmlPath).isFile())
        return fail(kCannotPreflightAlertTitle,
                    app::makeError(QStringLiteral("the export left no IDML file at %1").arg(idmlPath), named));

    ArchiveRepair repair;
    repair.repairedPath = repairedArchivePathForIDMLPath(idmlPath);
    repair.reportedName = named;
    repair.zipTool = m_zipTool;
    repair.cancel = m_cancel;
    app::Result<IdmlArchive> archive = openArchiveRepairingIt(idmlPath, repair, &m_repaired);
    if (!archive)
        return fail(kCannotRepairAlertTitle, archive.error());
    if (const app::Status whole = checkIdmlStructure(*archive); !whole)
        return fail(kCannotPreflightAlertTitle, whole.error());

    const QString folder = idmlContentsFolderPathForIDMLPath(idmlPath);
    if (const app::Status unpacked = archive->extractTo(folder, m_limits); !unpacked) {
        QDir(folder).removeRecursively(); // a half-unpacked folder is of no use to anyone
        return fail(kCannotPreflightAlertTitle, unpacked.error());
    }
    app::logLine(QStringLiteral("idmlContentsFolderPath: %1").arg(folder));
    return folder;
}

} // namespace quillon::preflight
