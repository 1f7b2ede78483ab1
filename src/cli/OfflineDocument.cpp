#include "cli/OfflineDocument.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "cli/Interruption.h"
#include "cli/TerminalText.h"
#include "host/InDesignHost.h"
#include "host/OfflineIdmlHost.h"
#include "preflight/DocumentWarnings.h"
#include "preflight/IdmlCreator.h"

#include <QDir>
#include <QFile>

#include <iostream>

using namespace quillon::host;

namespace quillon::cli {

UnpackedDocument::UnpackedDocument(UnpackedDocument&& other) noexcept
    : record(std::move(other.record)), folder(std::exchange(other.folder, QString())), repaired(other.repaired),
      warnings(std::move(other.warnings))
{
}

UnpackedDocument::~UnpackedDocument()
{
    if (!folder.isEmpty())
        QDir(folder).removeRecursively();
}

app::Result<UnpackedDocument> unpackDocument(const QString& path, const QString& workFolder)
{
    host::OfflineIdmlHost host;
    host.setWorkFolder(workFolder);
    if (app::Status opened = host.openDocument(path, true); !opened)
        return opened.error();
    app::Result<inspection::DocumentRecord> record = host.pathsAndNameOfDocument(host::DocumentReference::active());
    if (!record)
        return record.error();

    preflight::QNIDMLCreator creator(host);
    creator.setWorkFolder(workFolder);
    const QString docPath = record->posixPath;
    const app::Result<preflight::UnpackedDocument> unpacked = creator.processInDesignFileAtPath(docPath);
    // The run's work folder is private: its copies of this document can go at once.
    const QString idmlPath = preflight::QNIDMLCreator::idmlPathForDocument(docPath, workFolder);
    QFile::remove(idmlPath);
    QFile::remove(preflight::QNIDMLCreator::repairedArchivePathForIDMLPath(idmlPath));
    if (!unpacked)
        return unpacked.error();
    UnpackedDocument document;
    document.folder = unpacked->folder;
    document.record = *record;
    document.repaired = unpacked->repaired;
    document.warnings = host.documentWarnings();
    if (document.repaired)
        preflight::addWarningsOnce(document.warnings, {preflight::repairedArchiveWarning()});
    if (const std::optional<app::Error> noPages = preflight::noPagesWarning(*record))
        preflight::addWarningsOnce(document.warnings, {*noPages});
    return document;
}

PrivateWorkFolder::PrivateWorkFolder(const QString& command)
    : m_folder(QDir(app::temporaryFolder()).filePath(QStringLiteral("quillon-%1-XXXXXX").arg(command)))
{
    if (!m_folder.isValid())
        std::cerr << "quillon " << command.toStdString() << ": no temporary folder could be made in "
                  << printableText(app::temporaryFolder()) << ": " << printableText(m_folder.errorString()) << '\n';
    else
        Interruption::removeOnForcedExit(m_folder.path());
}

PrivateWorkFolder::~PrivateWorkFolder()
{
    Interruption::forget(m_folder.path());
}

bool PrivateWorkFolder::isValid() const
{
    return m_folder.isValid();
}

} // namespace quillon::cli
