#include "host/AppleScriptHost.h"

#include "app/Log.h"
#include "app/Strings.h"
#include "host/HfsPath.h"
#include "host/LinkActionScripts.h"
#include "host/ScriptRunner.h"

namespace quillon::host {

using app::makeError;
using app::Result;
using app::Status;

namespace {

// For a name or path placed inside a quoted script string.
QString quoted(const QString& text)
{
    return app::stringByEscapingCharacters(text, {QStringLiteral("\"")});
}

app::Error scriptError(const QVariantMap& outcome, const QString& about)
{
    return makeError(scriptBriefErrorMessage(outcome), about);
}

// The positions of the answer to the document-record script.
enum RecordItem {
    kRecordHfsPath,
    kRecordPosixPath,
    kRecordFileName,
    kRecordPageCount,
    kRecordLinkCount,
    kRecordVersion
};

// The answer's texts in their order; a gap leaves the facts after it one place early, as InDesign
// answered.
inspection::DocumentRecord documentRecordFromAnswer(const QStringList& items)
{
    return {items.value(kRecordHfsPath),   items.value(kRecordPosixPath), items.value(kRecordFileName),
            items.value(kRecordPageCount), items.value(kRecordLinkCount), items.value(kRecordVersion)};
}

Status checkRecord(const inspection::DocumentRecord& record)
{
    if (record.posixPath.isEmpty() || record.fileName.isEmpty())
        return makeError(QStringLiteral("The document record is incomplete."));
    return {};
}

} // namespace

AppleScriptHost::AppleScriptHost(ScriptRunner& scripts, QString applicationName)
    : m_scripts(scripts), m_applicationName(std::move(applicationName))
{
}

QVariantMap AppleScriptHost::run(const QString& source)
{
    app::logLine(QStringLiteral("scriptSrc: %1").arg(source));
    return m_scripts.runAppleScriptWithSourceString(source);
}

Status AppleScriptHost::runForStatus(const QString& source, const QString& about)
{
    const QVariantMap outcome = run(source);
    if (!scriptSucceeded(outcome))
        return scriptError(outcome, about);
    return {};
}

Status AppleScriptHost::runForAnswer(const QString& source, const QString& about, const QString& refused)
{
    const QVariantMap outcome = run(source);
    if (!scriptSucceeded(outcome))
        return scriptError(outcome, about);
    if (descriptorStringValue(outcome.value(kScriptResultKey)) != QLatin1String("true"))
        return makeError(refused, about);
    return {};
}

Result<inspection::DocumentRecord> AppleScriptHost::pathsAndNameOfDocument(const DocumentReference& document)
{
    const QVariantMap outcome =
        run(QStringLiteral("tell app \"%1\" \n tell %2 \n set res to {} \n set pathHFS to (full name) as string \n set "
                           "end of res to pathHFS \n set end of res to posix path of pathHFS \n set end of res to name "
                           "\n set end of res to (count pages) as string \n set end of res to (count links) as string "
                           "\n end tell \n set end of res to version \n end tell \n return res")
                .arg(m_applicationName, document.scriptText()));
    if (!scriptSucceeded(outcome))
        return scriptError(outcome, document.name());
    // Items without a text form are left out, as InDesign's answer may hold gaps.
    QStringList items;
    for (const QVariant& item : outcome.value(kScriptResultKey).toList())
        if (hasStringValue(item))
            items << descriptorStringValue(item);
    return documentRecordFromAnswer(items);
}

Result<QString> AppleScriptHost::fullNameOfDocument(const DocumentReference& document)
{
    const QVariantMap outcome =
        run(QStringLiteral("tell app \"%1\" to return full name of %2").arg(m_applicationName, document.scriptText()));
    if (!scriptSucceeded(outcome))
        return scriptError(outcome, document.name());
    return scriptResultString(outcome);
}

Status AppleScriptHost::saveDocument(const DocumentReference& document, const QString& path)
{
    return runForStatus(QStringLiteral("tell app \"%1\" to save %2 to \"%3\"")
                            .arg(m_applicationName, document.scriptText(), quoted(path)),
                        path);
}

Result<QString> AppleScriptHost::hostPathFromPath(const QString& posixPath)
{
    QVariantMap errorDict;
    const QString hfs = hfsPathFromPath(m_scripts, posixPath, &errorDict);
    if (hfs.isEmpty())
        return makeError(errorDict.value(kScriptErrorBriefMessageKey).toString(), posixPath);
    return hfs;
}

Status AppleScriptHost::exportDocumentForPreflight(const QString& docName, const QString& target,
                                                   const QString& targetPosix)
{
    return runForStatus(QStringLiteral("with timeout of 36000 seconds \n tell application \"%1\" to export document "
                                       "\"%2\" format InDesign markup to \"%3\" without showing options \n end timeout")
                            .arg(m_applicationName, quoted(docName), quoted(target)),
                        targetPosix);
}

Status AppleScriptHost::exportDocumentToIdml(const QString& docName, const QString& targetPosix)
{
    return runForStatus(QStringLiteral("tell application \"%1\" to export document \"%2\" format InDesign markup to "
                                       "\"%3\" without showing options")
                            .arg(m_applicationName, quoted(docName), quoted(targetPosix)),
                        targetPosix);
}

Status AppleScriptHost::exportDocumentToPdf(const QString& docName, const QString& targetPosix,
                                            const QString& presetName)
{
    return runForStatus(QStringLiteral("tell application \"%1\" \n set page range of PDF export preferences to all "
                                       "pages \n export document \"%2\" format PDF type to \"%3\" using PDF export "
                                       "preset \"%4\" without showing options \n end tell")
                            .arg(m_applicationName, quoted(docName), quoted(targetPosix), quoted(presetName)),
                        targetPosix);
}

Result<QStringList> AppleScriptHost::pdfExportPresetNames()
{
    const QVariantMap outcome =
        run(QStringLiteral("tell application \"%1\" to return name of PDF export presets").arg(m_applicationName));
    if (!scriptSucceeded(outcome))
        return scriptError(outcome, {});
    return scriptResultStrings(outcome);
}

Status AppleScriptHost::packageDocument(const QString& docName, const QString& folder)
{
    return runForStatus(
        QStringLiteral("tell application \"%1\" to package document \"%2\" to \"%3\" copying fonts true copying linked "
                       "graphics no copying profiles no updating graphics no ignore preflight errors yes creating "
                       "report no including hidden layers yes")
            .arg(m_applicationName, quoted(docName), quoted(folder)),
        folder);
}

Status AppleScriptHost::invokePackageCommand()
{
    return runForStatus(
        QStringLiteral("tell application \"%1\" to invoke menu action \"$ID/Packa&ge...\"").arg(m_applicationName));
}

Status AppleScriptHost::activateAndOpenDocument(const QString& path)
{
    return runForStatus(
        QStringLiteral("tell app \"%1\" \n activate \n open \"%2\" \n end").arg(m_applicationName, quoted(path)), path);
}

Status AppleScriptHost::openDocument(const QString& path, bool showingWindow)
{
    return runForStatus(
        QStringLiteral("tell app \"%1\" to open \"%2\" showing window %3")
            .arg(m_applicationName, quoted(path), showingWindow ? QStringLiteral("true") : QStringLiteral("false")),
        path);
}

Status AppleScriptHost::closeDocument(const QString& docName)
{
    return runForStatus(QStringLiteral("tell app \"%1\" to close document \"%2\" saving %3")
                            .arg(m_applicationName, quoted(docName), QStringLiteral("no")),
                        docName);
}

void AppleScriptHost::closeDocumentIfOpen(const QString& docNameOrPath)
{
    run(QStringLiteral("try \n tell app \"%1\" to close document \"%2\" saving no \n end try")
            .arg(m_applicationName, quoted(docNameOrPath)));
}

Status AppleScriptHost::setScriptUserInteraction(bool interactWithAll)
{
    const Status status =
        runForStatus(QStringLiteral("tell app \"%1\" to set user interaction level of script preferences to %2")
                         .arg(m_applicationName, interactWithAll ? QStringLiteral("interact with all")
                                                                 : QStringLiteral("never interact")));
    if (!status)
        app::logFailure(QStringLiteral("set script interaction: %1").arg(status.error().message));
    return status;
}

Result<QString> AppleScriptHost::pageNameForLinkID(const QString& docName, const QString& linkId)
{
    app::logEntry("pageNameForLinkID");
    if (const Status id = checkLinkId(linkId, docName); !id)
        return id.error();
    const QVariantMap outcome =
        run(QStringList{QStringLiteral("tell app \"%1\"").arg(m_applicationName),
                        QStringLiteral("tell document \"%1\"").arg(quoted(docName)),
                        QStringLiteral("return name of parent page of parent of link id %1").arg(linkId),
                        QStringLiteral("end tell"), QStringLiteral("end tell")}
                .join(QStringLiteral(" \n ")));
    if (!scriptSucceeded(outcome)) {
        app::logFailure(QStringLiteral("get anchored link page: %1").arg(scriptBriefErrorMessage(outcome)));
        return scriptError(outcome, docName);
    }
    return scriptResultString(outcome);
}

Status AppleScriptHost::showLinkID(const QString& linkId, const QString& docName)
{
    app::logEntry("showLinkID");
    if (const Status id = checkLinkId(linkId, docName); !id)
        return id;
    return runForStatus(showLinkScript(m_applicationName, linkId, docName), docName);
}

Status AppleScriptHost::relinkLinkID(const QString& linkId, const QString& path, const QString& docName)
{
    app::logEntry("relinkLinkID");
    if (const Status id = checkLinkId(linkId, docName); !id)
        return id;
    return runForAnswer(relinkLinkScript(m_applicationName, linkId, path, docName), docName,
                        QStringLiteral("InDesign could not relink link %1 to %2.").arg(linkId, path));
}

Status AppleScriptHost::relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml)
{
    app::logEntry("relinkLinksInDoc");
    return runForAnswer(relinkLinksInDocScript(m_applicationName, docPath, linksFolder, createIdml), docPath,
                        QStringLiteral("InDesign could not relink every link to the files in %1.").arg(linksFolder));
}

ScriptedDocument AppleScriptHost::scriptedDocument(const QString& documentName, const QString& documentPath)
{
    ScriptTextRunner runText = [this, documentName](const QString& source) -> Result<QString> {
        const QVariantMap outcome = run(source);
        if (!scriptSucceeded(outcome))
            return scriptError(outcome, documentName);
        return scriptResultString(outcome);
    };
    return {std::move(runText), m_applicationName, documentName, documentPath};
}

namespace {

// InDesign reads the whole document itself: there are no parts to skip.
template <typename T> Result<inspection::Inspected<T>> noPartsSkipped(Result<T> found)
{
    if (!found)
        return found.error();
    return inspection::Inspected<T>{std::move(*found), {}};
}

} // namespace

Result<inspection::Inspected<QVariantList>> AppleScriptHost::processFonts(const inspection::DocumentRecord& record,
                                                                          const idml::IdmlDocument* document,
                                                                          const app::CancelFlag* cancel)
{
    (void)document; // InDesign answers for the open document itself
    (void)cancel;   // and one script cannot be stopped halfway
    if (const Status checked = checkRecord(record); !checked)
        return checked.error();
    return noPartsSkipped(processFontsWithScripts(scriptedDocument(record.fileName, record.posixPath)));
}

Result<inspection::Inspected<inspection::ColorInspection>>
AppleScriptHost::processColors(const inspection::DocumentRecord& record, const idml::IdmlDocument* document,
                               const QString& registrationInTextFlag, const app::CancelFlag* cancel)
{
    (void)document;
    (void)cancel;
    if (const Status checked = checkRecord(record); !checked)
        return checked.error();
    return noPartsSkipped(
        processColorsWithScripts(scriptedDocument(record.fileName, record.posixPath), registrationInTextFlag));
}

Result<inspection::Inspected<QString>> AppleScriptHost::paraReport(const QString& docName,
                                                                   const idml::IdmlDocument* document)
{
    (void)document;
    Result<QString> report = paraReportWithScripts(scriptedDocument(docName, {}));
    if (!report)
        return report.error();
    return inspection::Inspected<QString>{std::move(report).value(), {}};
}

} // namespace quillon::host
