#pragma once

#include "app/Result.h"
#include "idml/IdmlArchive.h"

#include <QString>

class QObject;

namespace quillon::app {
class AlertSink;
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
// one preflight. Failures are shown as alerts and kept in lastError() for callers that report
// in words (the command line). Runs on the preflight's worker thread.
class QNIDMLCreator {
public:
    // `alertReceiver` gets the export alert's answer in its "lastAlertButtonReturn" property.
    QNIDMLCreator(host::InDesignHost& host, app::AlertSink& alerts, QObject* alertReceiver = nullptr);

    // The unpacked folder of the document's IDML, or "" after an alert.
    static QString createIDMLFolderFromInDesignFileAtPath(const QString& path, host::InDesignHost& host,
                                                          app::AlertSink& alerts, QObject* alertReceiver = nullptr);

    // Exports and unpacks the document at `path` (its POSIX path); "" on failure.
    QString processInDesignFileAtPath(const QString& path);
    // True when the host exported the open document `inddFileName` to the IDML path.
    bool exportDoc1ToIDMLAtPath(const QString& idmlPathForScript, const QString& idmlPathPOSIX,
                                const QString& inddFileName);
    // Unpacks the IDML (through a repaired copy when the archive is damaged: only this work copy
    // is repaired, in its folder); "" on failure.
    QString unzipIDMLAtPath(const QString& idmlPath);

    // "<work folder>/<document name with the extension idml>".
    static QString idmlPathForDocument(const QString& documentPath, const QString& workFolder);
    // The IDML path with "_tmp.zip" appended to the whole name.
    static QString repairedArchivePathForIDMLPath(const QString& idmlPath);
    // The IDML path with ".folder" and five random digits appended, its last component cut to
    // 243 characters when it reaches that length.
    static QString idmlContentsFolderPathForIDMLPath(const QString& idmlPath);

    const app::Error& lastError() const { return m_lastError; }
    bool lastUnpackWasRepaired() const { return m_repaired; }
    void setZipTool(const QString& zipTool) { m_zipTool = zipTool; }
    // The folder the IDML is exported and unpacked into; empty: the system's work folder.
    void setWorkFolder(const QString& folder) { m_workFolder = folder; }
    void setUnpackLimits(const idml::UnpackLimits& limits) { m_limits = limits; }
    // Stops a repair of the archive when set.
    void setCancelFlag(const app::CancelFlag* cancel) { m_cancel = cancel; }

private:
    QString fail(const QString& title, const app::Error& error);

    host::InDesignHost& m_host;
    app::AlertSink& m_alerts;
    QObject* m_alertReceiver;
    QString m_documentPath;
    QString m_zipTool;
    QString m_workFolder;
    idml::UnpackLimits m_limits;
    const app::CancelFlag* m_cancel = nullptr;
    app::Error m_lastError;
    bool m_repaired = false;
};

} // namespace quillon::preflight
