#pragma once

#include "app/Result.h"
#include "idml/IdmlArchive.h"
#include "preflight/UnpackedDocument.h"

#include <QString>

namespace quillon::app {
class CancelFlag;
} // namespace quillon::app

namespace quillon::host {
class InDesignHost;
} // namespace quillon::host

namespace quillon::preflight {

// Alert titles of the preflight export and unpacking.
inline const QString kDialogOpenAlertTitle = QStringLiteral("Error: A dialog is open in InDesign");
inline const QString kCannotPreflightAlertTitle = QStringLiteral("Cannot initiate preflighting");
inline const QString kCannotRepairAlertTitle = QStringLiteral("Cannot initiate preflighting (stage 2)");

// Has the host export the open document as IDML into the work folder and unpacks it there, for
// one preflight. A failure is the returned error, with the step that failed for the caller that
// words an alert; nothing is shown here. Runs on the preflight's worker thread.
class QNIDMLCreator {
public:
    explicit QNIDMLCreator(host::InDesignHost& host);

    // Exports and unpacks the document at `path` (its POSIX path). On failure `failedStep`, when
    // given, says which step failed.
    app::Result<UnpackedDocument> processInDesignFileAtPath(const QString& path, UnpackStep* failedStep = nullptr);
    // The host exported the open document `inddFileName` to the IDML path.
    app::Status exportDoc1ToIDMLAtPath(const QString& idmlPathForScript, const QString& idmlPathPOSIX,
                                       const QString& inddFileName);
    // Unpacks the IDML (through a repaired copy when the archive is damaged: only this work copy
    // is repaired, in its folder).
    app::Result<UnpackedDocument> unzipIDMLAtPath(const QString& idmlPath, UnpackStep* failedStep = nullptr);

    // "<work folder>/<document name with the extension idml>".
    static QString idmlPathForDocument(const QString& documentPath, const QString& workFolder);
    // The IDML path with "_tmp.zip" appended to the whole name.
    static QString repairedArchivePathForIDMLPath(const QString& idmlPath);
    // The IDML path with ".folder" and five random digits appended, its last component cut to
    // 243 characters when it reaches that length.
    static QString idmlContentsFolderPathForIDMLPath(const QString& idmlPath);

    void setZipTool(const QString& zipTool) { m_zipTool = zipTool; }
    // The folder the IDML is exported and unpacked into; empty: the system's work folder.
    void setWorkFolder(const QString& folder) { m_workFolder = folder; }
    void setUnpackLimits(const idml::UnpackLimits& limits) { m_limits = limits; }
    // Stops a repair of the archive when set.
    void setCancelFlag(const app::CancelFlag* cancel) { m_cancel = cancel; }

private:
    host::InDesignHost& m_host;
    QString m_documentPath;
    QString m_zipTool;
    QString m_workFolder;
    idml::UnpackLimits m_limits;
    const app::CancelFlag* m_cancel = nullptr;
};

} // namespace quillon::preflight
