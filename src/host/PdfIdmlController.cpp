#include "host/PdfIdmlController.h"

#include "app/FilePaths.h"
#include "app/Log.h"
#include "app/RegularFile.h"
#include "app/Strings.h"
#include "host/InDesignHost.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>

namespace quillon::host {

QNPDFIDMLController::QNPDFIDMLController(QString docName, QString packageFolderPath, InDesignHost& host,
                                         const app::Settings& settings)
    : m_docName(std::move(docName)), m_packageFolderPath(std::move(packageFolderPath)), m_host(host),
      m_settings(settings), m_lastErrorMsg(QStringLiteral(""))
{
}

QNPDFIDMLController QNPDFIDMLController::PDFIDMLControllerWithFileItem(const QString& docName,
                                                                       const QString& packageFolderPath,
                                                                       InDesignHost& host,
                                                                       const app::Settings& settings)
{
    return QNPDFIDMLController(docName, packageFolderPath, host, settings);
}

QString QNPDFIDMLController::targetPathWithExtension(const QString& extension) const
{
    // The name is a file name; one holding "/" must not reach outside the package folder.
    return QDir(m_packageFolderPath)
        .filePath(app::stringByReplacingPathExtensionWith(app::safeFileName(m_docName), extension));
}

QString QNPDFIDMLController::selectedPdfPreset() const
{
    const QString preset = m_settings.string(kSelectedPdfPresetSetting);
    return preset.isEmpty() ? kSelectedPdfPresetSetting.defaultValue.toString() : preset;
}

void QNPDFIDMLController::removeTarget(const QString& target) const
{
    std::error_code ec;
    std::filesystem::remove_all(std::filesystem::path(app::localBytesOfPath(target).toStdString()), ec);
}

bool QNPDFIDMLController::exportDocToPDF()
{
    app::logEntry("exportDocToPDF");
    const QString target = targetPathWithExtension(QStringLiteral("pdf"));
    removeTarget(target);
    const app::Status exported = m_host.exportDocumentToPdf(m_docName, target, selectedPdfPreset());
    if (exported)
        return true;
    app::logFailure(QStringLiteral("create PDF: %1").arg(exported.error().message));
    m_lastErrorMsg = exported.error().message;
    return false;
}

bool QNPDFIDMLController::exportDocToIDML()
{
    app::logEntry("exportDocToIDML");
    const QString target = targetPathWithExtension(QStringLiteral("idml"));
    // A document that is itself an IDML file may already sit at the target (moved into the
    // package): the host replaces it from itself, so it must not be removed first.
    if (QFileInfo(target).fileName() != m_docName)
        removeTarget(target);
    const app::Status exported = m_host.exportDocumentToIdml(m_docName, target);
    if (exported)
        return true;
    app::logFailure(QStringLiteral("create IDML: %1").arg(exported.error().message));
    m_lastErrorMsg = exported.error().message;
    return false;
}

} // namespace quillon::host
