#pragma once

#include "host/InDesignHost.h"

#include <QDateTime>

#include <optional>

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
    // The export of a preflight is a copy of the document: what the record read is handed over.
    std::shared_ptr<const idml::IdmlDocument> idmlDocument(const QString& idmlPath) override;
    app::Result<inspection::Inspected<QVariantList>> processFonts(const inspection::DocumentRecord& record,
                                                                  const idml::IdmlDocument* document,
                                                                  const app::CancelFlag* cancel) override;
    app::Result<inspection::Inspected<inspection::ColorInspection>>
    processColors(const inspection::DocumentRecord& record, const idml::IdmlDocument* document,
                  const QString& registrationInTextFlag, const app::CancelFlag* cancel) override;
    std::unique_ptr<inspection::PartInspection<QVariantList>> fontsFromParts(const inspection::DocumentRecord& record,
                                                                             const idml::IdmlDocument& document,
                                                                             const app::CancelFlag* cancel) override;
    std::unique_ptr<inspection::PartInspection<inspection::ColorInspection>>
    colorsFromParts(const inspection::DocumentRecord& record, const idml::IdmlDocument& document,
                    const QString& registrationInTextFlag, const app::CancelFlag* cancel) override;
    app::Result<inspection::Inspected<QString>> paraReport(const QString& docName,
                                                           const idml::IdmlDocument* document) override;

    // Selecting a link needs InDesign's window.
    app::Status showLinkID(const QString& linkId, const QString& docName) override;
    // Rewrites the open document's IDML: the link of that id points at `path`.
    app::Status relinkLinkID(const QString& linkId, const QString& path, const QString& docName) override;
    // Rewrites the IDML at `docPath` (a packaged copy) so that its links point at the files of the
    // same names in `linksFolder`; nothing but `docPath` is written. The document is already IDML,
    // so `createIdml` makes no second file.
    app::Status relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml) override;

    const QStringList& openDocuments() const { return m_documents; }
    // Where the host keeps a damaged archive's repaired copy while it reads it; empty: the
    // system's work folder.
    void setWorkFolder(const QString& folder) { m_workFolder = folder; }

private:
    app::Result<QString> documentPath(const DocumentReference& document) const;
    app::Status copyDocument(const QString& docName, const QString& targetPosix);
    // The parts an inspection reads: `given` when there are any, else those of the document at
    // `path` (the ones the last record read when the file is unchanged).
    app::Result<std::shared_ptr<const idml::IdmlDocument>>
    documentAt(const QString& path, const idml::IdmlDocument* given, const app::CancelFlag* cancel = nullptr);

    QStringList m_documents; // absolute paths, the active one first
    QString m_workFolder;
    QList<app::Error> m_recordWarnings;
    // What the last record read: making it means inflating and parsing every spread and story, so
    // the preflight that asked for the record is handed these parts rather than reading them again
    // (unless the file changed since, by its size or time).
    struct ReadDocument {
        QString path;
        qint64 size = -1;
        QDateTime modified;
        std::shared_ptr<const idml::IdmlDocument> document;
    };
    std::optional<ReadDocument> m_lastRead;
    bool isLastReadOf(const QString& path) const;
    // The last export for preflighting: `copy` holds the document at `source`.
    struct ExportedCopy {
        QString source;
        QString copy;
    };
    std::optional<ExportedCopy> m_lastExport;
};

// The record of a document from its IDML parts: no HFS path, the path and file name of
// `idmlPath`, the pages of the spreads, the links with a file location in master spreads, spreads
// and stories, the DOM version. Parts that cannot be read are left out of the counts and, with
// `warnings`, named there.
inspection::DocumentRecord idmlDocumentRecord(const idml::IdmlDocument& document, const QString& idmlPath,
                                              QList<app::Error>* warnings = nullptr);
// The same read from the file (a copy repaired in `workFolder`, the system's work folder when
// empty, when it is damaged).
app::Result<inspection::DocumentRecord> idmlDocumentRecord(const QString& idmlPath, const QString& workFolder = {},
                                                           QList<app::Error>* warnings = nullptr);

} // namespace quillon::host
