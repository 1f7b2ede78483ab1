#pragma once

#include "host/FontColorInspection.h"
#include "host/InDesignHost.h"

#include <QVariantMap>

namespace quillon::host {

class ScriptRunner;

// Talks to a running InDesign through scripts: every request is one script text, run by the
// script runner; a failure carries InDesign's brief message. Names and paths placed inside quoted
// script strings have their quotation marks escaped.
class AppleScriptHost : public InDesignHost {
public:
    // `applicationName` is the InDesign every script addresses ("Adobe InDesign 2024").
    AppleScriptHost(ScriptRunner& scripts, QString applicationName);

    QString applicationName() const override { return m_applicationName; }

    app::Result<inspection::DocumentRecord> pathsAndNameOfDocument(const DocumentReference& document) override;
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
    app::Status showLinkID(const QString& linkId, const QString& docName) override;
    app::Status relinkLinkID(const QString& linkId, const QString& path, const QString& docName) override;
    app::Status relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml) override;
    app::Result<inspection::Inspected<QVariantList>> processFonts(const inspection::DocumentRecord& record,
                                                                  const idml::IdmlDocument* document,
                                                                  const app::CancelFlag* cancel) override;
    app::Result<inspection::Inspected<inspection::ColorInspection>>
    processColors(const inspection::DocumentRecord& record, const idml::IdmlDocument* document,
                  const QString& registrationInTextFlag, const app::CancelFlag* cancel) override;
    app::Result<inspection::Inspected<QString>> paraReport(const QString& docName,
                                                           const idml::IdmlDocument* document) override;

private:
    QVariantMap run(const QString& source);
    app::Status runForStatus(const QString& source, const QString& about = {});
    // A script answering true or false: false fails with `refused`.
    app::Status runForAnswer(const QString& source, const QString& about, const QString& refused);
    // What the font and colour inspection scripts need: a runner answering with the script's
    // text (or InDesign's message) and the document they ask about.
    ScriptedDocument scriptedDocument(const QString& documentName, const QString& documentPath);

    ScriptRunner& m_scripts;
    QString m_applicationName;
};

} // namespace quillon::host
