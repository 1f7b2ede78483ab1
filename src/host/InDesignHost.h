#pragma once

#include "app/Result.h"
#include "inspection/ColorInspection.h"
#include "inspection/DocumentRecord.h"
#include "inspection/PartInspection.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::host {

// Which open document a request is about: the active one, or one named by its file name.
class DocumentReference {
public:
    static DocumentReference active() { return DocumentReference(QString()); }
    static DocumentReference named(const QString& fileName) { return DocumentReference(fileName); }

    bool isActive() const { return m_name.isEmpty(); }
    const QString& name() const { return m_name; }
    // "active document", or "document \"<name>\"" with the name's quotation marks escaped.
    QString scriptText() const;

private:
    explicit DocumentReference(QString name) : m_name(std::move(name)) {}
    QString m_name;
};

// Everything the system asks of InDesign. Requests run synchronously on the calling thread.
// A failure's message is what the user reads (InDesign's brief message, or the host's own
// words for what it cannot do); callers add titles and the support contact.
class InDesignHost {
public:
    virtual ~InDesignHost() = default;

    // The application every request addresses ("Adobe InDesign 2024").
    virtual QString applicationName() const = 0;

    // The record of the document (an empty one when the host answered with nothing).
    virtual app::Result<inspection::DocumentRecord> pathsAndNameOfDocument(const DocumentReference& document) = 0;
    // What went wrong, without failing, while the last record was made (parts of a package that
    // could not be read); none for a host that asks InDesign.
    virtual QList<app::Error> documentWarnings() const { return {}; }
    // The document's full path; fails for a new, unsaved or converted document.
    virtual app::Result<QString> fullNameOfDocument(const DocumentReference& document) = 0;
    virtual app::Status saveDocument(const DocumentReference& document, const QString& path) = 0;

    // The path in the form the host's export wants (HFS for InDesign); failure means "use POSIX".
    virtual app::Result<QString> hostPathFromPath(const QString& posixPath) = 0;

    // Export for preflighting: the open document `docName` as IDML to `target` (the host's path
    // form, `targetPosix` the same place), allowed to run for hours on very large documents.
    virtual app::Status exportDocumentForPreflight(const QString& docName, const QString& target,
                                                   const QString& targetPosix) = 0;
    // Exports into a package folder.
    virtual app::Status exportDocumentToIdml(const QString& docName, const QString& targetPosix) = 0;
    virtual app::Status exportDocumentToPdf(const QString& docName, const QString& targetPosix,
                                            const QString& presetName) = 0;
    virtual app::Result<QStringList> pdfExportPresetNames() = 0;

    // InDesign's own packaging: the document and its fonts (no links) into `folder`.
    virtual app::Status packageDocument(const QString& docName, const QString& folder) = 0;
    // Brings InDesign forward with its Package dialog.
    virtual app::Status invokePackageCommand() = 0;

    virtual app::Status activateAndOpenDocument(const QString& path) = 0;
    virtual app::Status openDocument(const QString& path, bool showingWindow) = 0;
    // Closes without saving.
    virtual app::Status closeDocument(const QString& docName) = 0;
    // Closes without saving when open; errors are ignored.
    virtual void closeDocumentIfOpen(const QString& docNameOrPath) = 0;
    // Whether InDesign may show dialogs while scripts run.
    virtual app::Status setScriptUserInteraction(bool interactWithAll) = 0;

    // The name of the page that holds the anchored graphic of link `linkId` (decimal) in the open
    // document `docName`.
    virtual app::Result<QString> pageNameForLinkID(const QString& docName, const QString& linkId) = 0;

    // The parts of the preflight's IDML export at `idmlPath` when this host has read that very
    // document already (making the record reads every spread and story), so that the preflight
    // does not read them again (handed over once); none otherwise, and the preflight opens the
    // export itself.
    virtual std::shared_ptr<const idml::IdmlDocument> idmlDocument(const QString& idmlPath);

    // The font and colour inspections of a preflighted document: the font records, and the
    // colour records with the unused names and the Registration count, of the document of
    // `record`. `document` is the preflight's IDML export: a host that reads the IDML uses it, or
    // reads the document itself when it is null. `registrationInTextFlag` "1" asks for
    // Registration applied to text to be counted. `cancel` stops the reading between parts. The
    // answer names the parts of the document that could not be read and were skipped.
    virtual app::Result<inspection::Inspected<QVariantList>> processFonts(const inspection::DocumentRecord& record,
                                                                          const idml::IdmlDocument* document,
                                                                          const app::CancelFlag* cancel = nullptr) = 0;
    virtual app::Result<inspection::Inspected<inspection::ColorInspection>>
    processColors(const inspection::DocumentRecord& record, const idml::IdmlDocument* document,
                  const QString& registrationInTextFlag, const app::CancelFlag* cancel = nullptr) = 0;
    // The same inspections as readers of the export's parts, for the preflight to run in the pass
    // its link analysis makes over them (then finished in place of processFonts and processColors).
    // Null from a host that does not read the parts, or when the record is incomplete.
    virtual std::unique_ptr<inspection::PartInspection<QVariantList>>
    fontsFromParts(const inspection::DocumentRecord& record, const idml::IdmlDocument& document,
                   const app::CancelFlag* cancel = nullptr);
    virtual std::unique_ptr<inspection::PartInspection<inspection::ColorInspection>>
    colorsFromParts(const inspection::DocumentRecord& record, const idml::IdmlDocument& document,
                    const QString& registrationInTextFlag, const app::CancelFlag* cancel = nullptr);
    // The paragraph-styles report of the open document `docName`, with the parts it skipped;
    // `document`, when given, is its IDML.
    virtual app::Result<inspection::Inspected<QString>> paraReport(const QString& docName,
                                                                   const idml::IdmlDocument* document = nullptr) = 0;

    // Link actions and relinking; hosts that can do them override these.
    virtual app::Status showLinkID(const QString& linkId, const QString& docName);
    virtual app::Status relinkLinkID(const QString& linkId, const QString& path, const QString& docName);
    virtual app::Status relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml);
};

} // namespace quillon::host
