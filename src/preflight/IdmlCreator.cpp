#include "preflight/IdmlCreator.h"

#include "idml/IdmlDocument.h"

#include "app/AppPaths.h"
#include "app/Log.h"
#include "app/Numbers.h"
#include "app/Strings.h"
#include "host/InDesignHost.h"
#include "idml/IdmlPackage.h"

#include <QDir>
#include <QFileInfo>

using namespace quillon::idml;
using namespace quillon::host;

namespace quillon::preflight {

namespace {

constexpr qsizetype kMaxFolderNameLength = 243;

} // namespace

QNIDMLCreator::QNIDMLCreator(host::InDesignHost& host) : m_host(host), m_zipTool(defaultZipTool()) {}

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

app::Result<UnpackedDocument> QNIDMLCreator::processInDesignFileAtPath(const QString& path, UnpackStep* failedStep)
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

    if (const app::Status exported = exportDoc1ToIDMLAtPath(pathForScript, idmlPath, QFileInfo(path).fileName());
        !exported) {
        if (failedStep)
            *failedStep = UnpackStep::Export;
        return exported.error();
    }
    return unzipIDMLAtPath(idmlPath, failedStep);
}

app::Status QNIDMLCreator::exportDoc1ToIDMLAtPath(const QString& idmlPathForScript, const QString& idmlPathPOSIX,
                                                  const QString& inddFileName)
{
    app::logLine(QStringLiteral("> exportDoc1ToIDMLAtPath: %1").arg(idmlPathForScript));
    const app::Status exported = m_host.exportDocumentForPreflight(inddFileName, idmlPathForScript, idmlPathPOSIX);
    if (exported) {
        app::logLine(QStringLiteral("-->> idml created"));
        return {};
    }
    app::Error error = exported.error();
    app::logFailure(QStringLiteral("export IDML: %1").arg(error.message));
    if (error.file.isEmpty())
        error.file = m_documentPath.isEmpty() ? inddFileName : m_documentPath;
    return error;
}

app::Result<UnpackedDocument> QNIDMLCreator::unzipIDMLAtPath(const QString& idmlPath, UnpackStep* failedStep)
{
    app::logLine(QStringLiteral("> unzipIDMLAtPath: %1").arg(idmlPath));
    auto fail = [failedStep](UnpackStep step, const app::Error& error) {
        app::logFailure(QStringLiteral("unpack IDML: %1").arg(error.text()));
        if (failedStep)
            *failedStep = step;
        return error;
    };
    // Errors name the document the user gave, not the copy in the work folder.
    const QString named = m_documentPath.isEmpty() ? idmlPath : m_documentPath;
    if (!QFileInfo(idmlPath).isFile())
        return fail(UnpackStep::Unpack,
                    app::makeError(QStringLiteral("the export left no IDML file at %1").arg(idmlPath), named));

    // A host that has read this very export already hands its parts over.
    if (std::shared_ptr<const IdmlDocument> read = m_host.idmlDocument(idmlPath)) {
        UnpackedDocument document;
        document.idmlPath = idmlPath;
        document.repaired = read->wasRepaired();
        document.parts = std::move(read);
        return document;
    }

    ArchiveRepair repair;
    repair.repairedPath = repairedArchivePathForIDMLPath(idmlPath);
    repair.reportedName = named;
    repair.zipTool = m_zipTool;
    repair.cancel = m_cancel;
    UnpackedDocument document;
    document.idmlPath = idmlPath;
    app::Result<IdmlArchive> archive = openArchiveRepairingIt(idmlPath, repair, &document.repaired);
    if (!archive)
        return fail(UnpackStep::Repair, archive.error());
    if (const app::Status whole = checkIdmlStructure(*archive, m_limits); !whole)
        return fail(UnpackStep::Unpack, whole.error());

    // The parts are read from the archive in memory, each parsed once for every stage.
    app::Result<std::shared_ptr<IdmlDocument>> parts = IdmlDocument::fromArchive(std::move(*archive));
    if (!parts)
        return fail(UnpackStep::Unpack, parts.error());
    document.parts = std::move(*parts);
    return document;
}

} // namespace quillon::preflight
