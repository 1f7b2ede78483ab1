#include "cli/OfflineDocument.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "cli/Interruption.h"
#include "cli/TerminalText.h"
#include "host/InDesignHost.h"
#include "host/OfflineIdmlHost.h"
#include "idml/IdmlDocument.h"
#include "preflight/DocumentWarnings.h"

#include <QDir>
#include <QFile>

#include <iostream>

using namespace quillon::host;

namespace quillon::cli {

app::Result<OfflineDocument> readOfflineDocument(const QString& path, const QString& workFolder)
{
    host::OfflineIdmlHost host;
    if (app::Status opened = host.openDocument(path, true); !opened)
        return opened.error();
    const QString docPath = host.openDocuments().value(0);
    app::Result<std::shared_ptr<idml::IdmlDocument>> parts = idml::IdmlDocument::open(docPath, workFolder);
    if (!parts)
        return parts.error();
    OfflineDocument document;
    document.record = host::idmlDocumentRecord(**parts, docPath, &document.warnings);
    document.repaired = (*parts)->wasRepaired();
    document.parts = std::move(*parts);
    if (document.repaired)
        preflight::addWarningsOnce(document.warnings, {preflight::repairedArchiveWarning()});
    if (const std::optional<app::Error> noPages = preflight::noPagesWarning(document.record))
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
