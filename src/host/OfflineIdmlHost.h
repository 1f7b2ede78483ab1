#pragma once

#include "host/InDesignHost.h"

namespace quillon::host {

// Stands in for InDesign where there is none: the documents are exported IDML files. The record
// comes from the IDML itself (no HFS path; the page count of the spreads; the links with a file
// location in master spreads, spreads and stories; the IDML's DOM version in place of InDesign's
// version), "export as IDML" copies the file, and what only InDesign can do fails with words
// saying so. The most recently opened document is the active one.
class OfflineIdmlHost : public InDesignHost {
public:
    OfflineIdmlHost() = default;

    // Refuses what is not an IDML file (a missing path, a folder, an InDesign document, anything
    // else), saying what to give instead. Does not read the file.
    static app::Status checkDocumentPath(const QString& path);

    QString applicationName() const override;

    app::Result<inspection::DocumentRecord> pathsAndNameOfDocument(const DocumentReference& document) override;
    // The parts the last record left out because they could not be read.
    QList<app::Error> documentWarnings() const override;
    app::Result<QString> fullNameOfDocument(const DocumentReference& document) override;
    app::Status saveDocument(const DocumentReference& document, const QString& path) override;
    app::Result<QString> hostPathFromPath(const QString& posixPath) override;
    app::Status exportDocumentForPreflight(const QString& docName, const QString& target,
                                           const QString& targetPosix) override;
    app::Status exportDocumentToIdml(const QString& docName, const QString& targetPosix) override;
    app::Status exportDocumentToPdf(const QString& docName, const QString& targetPosix,
                                    const QString& presetName) override;
    app::Result<QStringList> pdfExportPresetNames() override;
    app::Status packageDocument(const QString& docName, const QString& folder) override;
    app::Status invokePackageCommand() override;
    app::Status activateAndOpenDocument(const QString& path) override;
    app::Status openDocument(const QString& path, bool showingWindow) override;
    app::Status closeDocument(const QString& docName) override;
    void closeDocumentIfOpen(const QString& docNameOrPath) override;
    app::Status setScriptUserInteraction(bool interactWithAll) override;
    app::Result<QString> pageNameForLinkID(const QString& docName, const QString& linkId) override;
    app::Result<inspection::Inspected<QVariantList>> processFonts(const inspection::DocumentRecord& record,
                                                                  const QString& idmlFolder) override;
    app::Result<inspection::Inspected<inspection::ColorInspection>>
    processColors(const inspection::DocumentRecord& record, const QString& idmlFolder,
                  const QString& registrationInTextFlag) override;
    app::Result<inspection::Inspected<QString>> paraReport(const QString& docName) override;

    const QStringList& openDocuments() const { return m_documents; }
    // Where the host unpacks what it reads (a damaged archive's repaired copy); empty: the
    // system's work folder.
    void setWorkFolder(const QString& folder) { m_workFolder = folder; }

private:
    app::Result<QString> documentPath(const DocumentReference& document) const;
    app::Status copyDocument(const QString& docName, const QString& targetPosix);

    QStringList m_documents; // absolute paths, the active one first
    QString m_workFolder;
    QList<app::Error> m_recordWarnings;
};

// The record of an IDML file, read from the archive (a copy repaired in `workFolder`,
// the system's work folder when empty, when it is damaged). Parts that cannot be read are left
// out of the counts and, with `warnings`, named there.
app::Result<inspection::DocumentRecord> idmlDocumentRecord(const QString& idmlPath, const QString& workFolder = {},
                                                           QList<app::Error>* warnings = nullptr);

} // namespace quillon::host
