#include "host/OfflineIdmlHost.h"

#include "app/AppPaths.h"
#include "app/FilePaths.h"
#include "app/Log.h"
#include "app/ParallelFor.h"
#include "app/RegularFile.h"
#include "host/FontColorInspection.h"
#include "host/IdmlRelinking.h"
#include "idml/ElementTally.h"
#include "idml/IdmlDocument.h"
#include "idml/XmlPath.h"
#include "inspection/ColorsFromIdml.h"
#include "links/LinkValues.h"

#include <QDir>
#include <QFileInfo>

#include <cstring>
#include <memory>

using namespace quillon::idml;

namespace quillon::host {

using app::makeError;
using app::Result;
using app::Status;

namespace {

bool isSameFile(const QString& a, const QString& b)
{
    const QString canonicalA = QFileInfo(a).canonicalFilePath();
    return !canonicalA.isEmpty() && canonicalA == QFileInfo(b).canonicalFilePath();
}

// The work folder given to a host, or the system's.
QString workFolderOr(const QString& workFolder)
{
    return workFolder.isEmpty() ? app::workFolder() : workFolder;
}

Status checkRecord(const inspection::DocumentRecord& record)
{
    if (record.posixPath.isEmpty())
        return makeError(QStringLiteral("The document record is incomplete."));
    return {};
}

QString unavailable(const QString& what)
{
    return QStringLiteral("%1 needs InDesign, and this document is an IDML file read without it. %2")
        .arg(what, QStringLiteral("Open the document in InDesign for this."));
}

} // namespace

namespace {

// The pages and file links of one part, or why it cannot be read.
struct PartCounts {
    qint64 pages = 0;
    qint64 links = 0;
    std::optional<app::Error> unreadable;
};

PartCounts countPagesAndLinks(const IdmlDocument& document, const QString& name, bool spread)
{
    PartCounts counts;
    // A document too large to keep its parts would be parsed once here and again by the stages:
    // its parts are counted from their text, and parsed only when the text holds something the
    // count does not read as the parser would.
    if (!document.keepsParts()) {
        static const std::vector<ElementQuery> kQueries{{"Page", {}, {}}, {"Link", "LinkResourceURI", "file:"}};
        const Result<QByteArray> text = document.partText(name);
        if (text) {
            if (const std::optional<std::vector<qint64>> tally =
                    tallyElements(std::string_view(text->constData(), static_cast<size_t>(text->size())), kQueries)) {
                counts.pages = spread ? (*tally)[0] : 0;
                counts.links = (*tally)[1];
                return counts;
            }
        }
    }
    const Result<std::shared_ptr<const XmlPart>> part = document.part(name);
    if (!part) {
        counts.unreadable = part.error();
        return counts;
    }
    forEachElement((*part)->document(), [&](const pugi::xml_node element) {
        if (spread && std::strcmp(element.name(), "Page") == 0)
            ++counts.pages;
        else if (std::strcmp(element.name(), "Link") == 0 &&
                 std::strncmp(element.attribute("LinkResourceURI").value(), "file:", 5) == 0)
            ++counts.links;
    });
    return counts;
}

} // namespace

inspection::DocumentRecord idmlDocumentRecord(const IdmlDocument& document, const QString& idmlPath,
                                              QList<app::Error>* warnings)
{
    const QString path = QFileInfo(idmlPath).absoluteFilePath();
    const QString version = QString::fromUtf8(document.designmap().document_element().attribute("DOMVersion").value());
    const QStringList names = document.masterSpreadFiles() + document.spreadFiles() + document.storyFiles();
    const qsizetype spreadsBegin = document.masterSpreadFiles().size();
    const qsizetype spreadsEnd = spreadsBegin + document.spreadFiles().size();
    std::vector<PartCounts> counted(static_cast<size_t>(names.size()));
    app::parallelFor(names.size(), {}, [&](int, qsizetype index) {
        counted[static_cast<size_t>(index)] =
            countPagesAndLinks(document, names[index], index >= spreadsBegin && index < spreadsEnd);
    });
    qint64 pages = 0;
    qint64 links = 0;
    for (const PartCounts& counts : counted) {
        // A part that cannot be read is left out of the counts and named; the rest still counts.
        if (counts.unreadable) {
            app::logFailure(QStringLiteral("count pages and links: %1").arg(counts.unreadable->text()));
            if (warnings)
                warnings->append(*counts.unreadable);
        }
        pages += counts.pages;
        links += counts.links;
    }
    return inspection::DocumentRecord{
        QString(), path, QFileInfo(path).fileName(), QString::number(pages), QString::number(links), version};
}

Result<inspection::DocumentRecord> idmlDocumentRecord(const QString& idmlPath, const QString& workFolder,
                                                      QList<app::Error>* warnings)
{
    Result<std::shared_ptr<IdmlDocument>> document = IdmlDocument::open(idmlPath, workFolderOr(workFolder));
    if (!document)
        return document.error();
    return idmlDocumentRecord(**document, idmlPath, warnings);
}

Status OfflineIdmlHost::checkDocumentPath(const QString& path)
{
    if (path.isEmpty())
        return makeError(QStringLiteral("No document was given: give the path of an IDML file (.idml)."));
    const QFileInfo info(path);
    if (info.isDir())
        return makeError(QStringLiteral("is a folder, not a document: give the path of an IDML file (.idml) "
                                        "exported from InDesign"),
                         path);
    if (Status regular = app::checkRegularFile(path); !regular)
        return regular;
    // The document is copied, unpacked and looked up through the file APIs of Qt, which take
    // names as UTF-8 only: refused now, rather than lost in the work folder.
    if (app::displayPath(path) != path)
        return makeError(QStringLiteral("the path is not valid UTF-8, and Quillon reads only documents whose paths "
                                        "are: rename the file or its folder"),
                         path);
    const QString suffix = info.suffix().toLower();
    if (suffix == QLatin1String("idml"))
        return {};
    if (suffix == QLatin1String("indd") || suffix == QLatin1String("indt") || suffix == QLatin1String("indb"))
        return makeError(QStringLiteral("is an InDesign file, which Quillon reads only through InDesign, and InDesign "
                                        "is not at hand: in InDesign choose File > Export > InDesign Markup (IDML) "
                                        "and give Quillon the .idml file"),
                         path);
    return makeError(QStringLiteral("is not an IDML file: give the path of an IDML file (.idml) exported from "
                                    "InDesign (File > Export > InDesign Markup)"),
                     path);
}

QString OfflineIdmlHost::applicationName() const
{
    return QStringLiteral("Quillon (IDML without InDesign)");
}

Result<QString> OfflineIdmlHost::documentPath(const DocumentReference& document) const
{
    if (m_documents.isEmpty())
        return makeError(QStringLiteral("No document is open: give Quillon the path of an IDML file (.idml)."));
    if (document.isActive())
        return m_documents.first();
    for (const QString& path : m_documents)
        if (QFileInfo(path).fileName() == document.name())
            return path;
    return makeError(QStringLiteral("No open document is named \"%1\".").arg(document.name()), document.name());
}

Result<inspection::DocumentRecord> OfflineIdmlHost::pathsAndNameOfDocument(const DocumentReference& document)
{
    m_recordWarnings.clear();
    m_lastRead.reset();
    Result<QString> path = documentPath(document);
    if (!path)
        return path.error();
    const QFileInfo file(*path);
    Result<std::shared_ptr<IdmlDocument>> read = IdmlDocument::open(*path, workFolderOr(m_workFolder));
    if (!read)
        return read.error();
    inspection::DocumentRecord record = idmlDocumentRecord(**read, *path, &m_recordWarnings);
    m_lastRead = ReadDocument{*path, file.size(), file.lastModified(), std::move(*read)};
    return record;
}

bool OfflineIdmlHost::isLastReadOf(const QString& path) const
{
    const QFileInfo file(path);
    return m_lastRead && m_lastRead->path == file.absoluteFilePath() && m_lastRead->size == file.size() &&
           m_lastRead->modified == file.lastModified();
}

Result<std::shared_ptr<const IdmlDocument>> OfflineIdmlHost::documentAt(const QString& path, const IdmlDocument* given,
                                                                        const app::CancelFlag* cancel)
{
    if (given)
        return std::shared_ptr<const IdmlDocument>(std::shared_ptr<const IdmlDocument>(), given); // not owned
    if (isLastReadOf(path))
        return m_lastRead->document;
    Result<std::shared_ptr<IdmlDocument>> document = IdmlDocument::open(path, workFolderOr(m_workFolder), cancel);
    if (!document)
        return document.error();
    return std::shared_ptr<const IdmlDocument>(std::move(*document));
}

std::shared_ptr<const IdmlDocument> OfflineIdmlHost::idmlDocument(const QString& idmlPath)
{
    if (!m_lastExport || !isSameFile(m_lastExport->copy, idmlPath) || !isLastReadOf(m_lastExport->source))
        return nullptr;
    // Handed over, not shared: the preflight lets the parts go when its last stage is done with them.
    std::shared_ptr<const IdmlDocument> document = std::move(m_lastRead->document);
    m_lastRead.reset();
    return document;
}

QList<app::Error> OfflineIdmlHost::documentWarnings() const
{
    return m_recordWarnings;
}

Result<QString> OfflineIdmlHost::fullNameOfDocument(const DocumentReference& document)
{
    return documentPath(document);
}

Status OfflineIdmlHost::saveDocument(const DocumentReference& document, const QString& path)
{
    Result<QString> source = documentPath(document);
    if (!source)
        return source.error();
    if (QFileInfo(path).suffix().toLower() != QLatin1String("idml"))
        return makeError(unavailable(QStringLiteral("Saving as an InDesign document")), path);
    if (isSameFile(*source, path))
        return {};
    return app::copyPathReplacingIt(*source, path);
}

Result<QString> OfflineIdmlHost::hostPathFromPath(const QString& posixPath)
{
    return makeError(QStringLiteral("HFS paths are for InDesign's scripts; this host uses the path as it is."),
                     posixPath);
}

Status OfflineIdmlHost::copyDocument(const QString& docName, const QString& targetPosix)
{
    Result<QString> source = documentPath(DocumentReference::named(docName));
    if (!source)
        return source.error();
    if (isSameFile(*source, targetPosix))
        return {};
    return app::copyPathReplacingIt(*source, targetPosix);
}

Status OfflineIdmlHost::exportDocumentForPreflight(const QString& docName, const QString& target,
                                                   const QString& targetPosix)
{
    (void)target;
    m_lastExport.reset();
    Status copied = copyDocument(docName, targetPosix);
    if (copied)
        m_lastExport = ExportedCopy{documentPath(DocumentReference::named(docName)).valueOr(QString()), targetPosix};
    return copied;
}

Status OfflineIdmlHost::exportDocumentToIdml(const QString& docName, const QString& targetPosix)
{
    return copyDocument(docName, targetPosix);
}

Status OfflineIdmlHost::exportDocumentToPdf(const QString& docName, const QString& targetPosix,
                                            const QString& presetName)
{
    (void)targetPosix;
    return makeError(unavailable(QStringLiteral("Exporting a PDF (preset \"%1\")").arg(presetName)), docName);
}

Result<QStringList> OfflineIdmlHost::pdfExportPresetNames()
{
    return makeError(unavailable(QStringLiteral("Listing the PDF export presets")));
}

Status OfflineIdmlHost::packageDocument(const QString& docName, const QString& folder)
{
    // The document part of a package is the IDML file itself; fonts are gathered from this
    // system by the packaging, not by the host.
    return copyDocument(docName, QDir(folder).filePath(docName));
}

Status OfflineIdmlHost::invokePackageCommand()
{
    return makeError(unavailable(QStringLiteral("InDesign's Package command")));
}

Status OfflineIdmlHost::activateAndOpenDocument(const QString& path)
{
    return openDocument(path, true);
}

Status OfflineIdmlHost::openDocument(const QString& path, bool showingWindow)
{
    (void)showingWindow;
    if (Status usable = checkDocumentPath(path); !usable)
        return usable;
    const QString absolute = QFileInfo(path).absoluteFilePath();
    m_documents.removeAll(absolute);
    m_documents.prepend(absolute);
    return {};
}

Status OfflineIdmlHost::closeDocument(const QString& docName)
{
    Result<QString> path = documentPath(DocumentReference::named(docName));
    if (!path)
        return path.error();
    m_documents.removeAll(*path);
    return {};
}

void OfflineIdmlHost::closeDocumentIfOpen(const QString& docNameOrPath)
{
    const QString absolute = QFileInfo(docNameOrPath).absoluteFilePath();
    m_documents.removeIf(
        [&](const QString& path) { return path == absolute || QFileInfo(path).fileName() == docNameOrPath; });
}

Status OfflineIdmlHost::setScriptUserInteraction(bool interactWithAll)
{
    (void)interactWithAll; // no dialogs to allow or suppress
    return {};
}

Result<QString> OfflineIdmlHost::pageNameForLinkID(const QString& docName, const QString& linkId)
{
    return makeError(QStringLiteral("The page of the anchored graphic of link %1 is asked of InDesign; for an IDML "
                                    "file the link analysis finds it in the stories.")
                         .arg(linkId),
                     docName);
}

Result<inspection::Inspected<QVariantList>> OfflineIdmlHost::processFonts(const inspection::DocumentRecord& record,
                                                                          const IdmlDocument* document,
                                                                          const app::CancelFlag* cancel)
{
    if (Status checked = checkRecord(record); !checked)
        return checked.error();
    Result<std::shared_ptr<const IdmlDocument>> read = documentAt(record.posixPath, document, cancel);
    if (!read)
        return read.error();
    return processFontsFromIdml(**read, record.posixPath, cancel);
}

Result<inspection::Inspected<inspection::ColorInspection>>
OfflineIdmlHost::processColors(const inspection::DocumentRecord& record, const IdmlDocument* document,
                               const QString& registrationInTextFlag, const app::CancelFlag* cancel)
{
    if (Status checked = checkRecord(record); !checked)
        return checked.error();
    Result<std::shared_ptr<const IdmlDocument>> read = documentAt(record.posixPath, document, cancel);
    if (!read)
        return read.error();
    return processColorsFromIdml(**read, registrationInTextFlag, cancel);
}

std::unique_ptr<inspection::PartInspection<QVariantList>>
OfflineIdmlHost::fontsFromParts(const inspection::DocumentRecord& record, const IdmlDocument& document,
                                const app::CancelFlag* cancel)
{
    if (!checkRecord(record))
        return nullptr; // processFonts says why
    return fontsFromIdmlParts(document, record.posixPath, cancel);
}

std::unique_ptr<inspection::PartInspection<inspection::ColorInspection>>
OfflineIdmlHost::colorsFromParts(const inspection::DocumentRecord& record, const IdmlDocument& document,
                                 const QString& registrationInTextFlag, const app::CancelFlag* cancel)
{
    if (!checkRecord(record))
        return nullptr; // processColors says why
    return std::make_unique<inspection::ColorsFromParts>(document, registrationInTextFlag, cancel);
}

Result<inspection::Inspected<QString>> OfflineIdmlHost::paraReport(const QString& docName, const IdmlDocument* document)
{
    if (document)
        return paraReportFromIdml(*document);
    // Asked for after the preflight, when its export is gone: the document is read again.
    Result<QString> path = documentPath(DocumentReference::named(docName));
    if (!path)
        return path.error();
    Result<std::shared_ptr<const IdmlDocument>> read = documentAt(*path, nullptr);
    if (!read)
        return read.error();
    return paraReportFromIdml(**read);
}

Status OfflineIdmlHost::showLinkID(const QString& linkId, const QString& docName)
{
    return makeError(unavailable(QStringLiteral("Selecting link %1 in the layout").arg(linkId)), docName);
}

Status OfflineIdmlHost::relinkLinkID(const QString& linkId, const QString& path, const QString& docName)
{
    const Result<QString> document = documentPath(DocumentReference::named(docName));
    if (!document)
        return document.error();
    if (!QFileInfo(path).isFile())
        return makeError(QStringLiteral("Link %1 cannot be relinked: there is no file to link to.").arg(linkId), path);
    bool found = false;
    const Result<int> changed = retargetIdmlLinks(*document, [&](const IdmlLink& link) -> std::optional<QString> {
        if (links::idStringFromHexString(link.self) != linkId)
            return std::nullopt;
        found = true;
        return QFileInfo(path).absoluteFilePath();
    });
    if (!changed)
        return changed.error();
    if (!found)
        return makeError(QStringLiteral("The document has no link with id %1.").arg(linkId), *document);
    return {};
}

Status OfflineIdmlHost::relinkLinksInDoc(const QString& docPath, const QString& linksFolder, bool createIdml)
{
    app::logEntry("relinkLinksInDoc");
    (void)createIdml; // the packaged document is the IDML
    const Result<int> changed = relinkIdmlToFolder(docPath, linksFolder);
    if (!changed)
        return changed.error();
    app::logLine(QStringLiteral("relinked %1 links of %2 to %3").arg(*changed).arg(docPath, linksFolder));
    return {};
}

} // namespace quillon::host
