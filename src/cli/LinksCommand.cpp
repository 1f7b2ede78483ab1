#include "cli/LinksCommand.h"

#include "app/RegularFile.h"
#include "cli/DocumentArguments.h"
#include "cli/Interruption.h"
#include "cli/JsonOutput.h"
#include "cli/OfflineDocument.h"
#include "cli/OutputFile.h"
#include "cli/TerminalText.h"
#include "idml/IdmlDocument.h"

#include "host/InDesignHost.h"
#include "links/LinkRecordKeys.h"
#include "links/QNIDMLLinksProcessor.h"
#include "preflight/DocumentWarnings.h"

#include <QJsonObject>

#include <iostream>
#include <memory>

using namespace quillon::host;

namespace quillon::cli {

namespace {

struct LinksOptions {
    DocumentSources documents;
    std::vector<std::string> linkFolders;
    int searchDepth = 0;
    std::string format = "table";
    OutputOptions output;
};

// Pads or cuts a text to a column width (by characters, which is what a terminal shows for the
// names a document holds).
QString cell(const QString& text, int width)
{
    const QString shown = printable(text);
    return shown.size() > width ? shown.left(width - 1) + u'…' : shown.leftJustified(width);
}

void printTable(std::ostream& out, const QString& docPath, const QVariantList& records)
{
    using namespace links;
    out << printableText(docPath) << "  (" << records.size() << (records.size() == 1 ? " link)" : " links)") << "\n";
    struct Column {
        const QString* key;
        const char* title;
        int width;
    };
    static const Column columns[] = {
        {&kLinkPageKey, "Page", 8},        {&kLinkNameKey, "Name", 32},     {&kLinkKindKey, "Kind", 12},
        {&kLinkStatusKey, "Status", 9},    {&kLinkColorKey, "Colour", 11},  {&kLinkActualResKey, "ppi", 5},
        {&kLinkEffectiveResKey, "eff", 5}, {&kLinkScaleKey, "Scale %", 10}, {&kLinkSizeKey, "Size", 9},
        {&kLinkProfileKey, "Profile", 26},
    };
    QString line;
    for (const Column& column : columns)
        line += cell(QLatin1String(column.title), column.width) + u' ';
    out << "  " << line.trimmed().toStdString() << "\n";
    for (const QVariant& item : records) {
        const QVariantMap record = item.toMap();
        line.clear();
        for (const Column& column : columns)
            line += cell(record.value(*column.key).toString(), column.width) + u' ';
        out << "  " << line.trimmed().toStdString() << "\n";
    }
}

int runLinks(const LinksOptions& options, const ResultStream& out)
{
    const ExpandedDocuments documentPaths = expandDocumentSources(options.documents, "links");
    if (documentPaths.failureStatus != kExitOk)
        return documentPaths.failureStatus;
    QStringList linkFolders;
    for (const std::string& folder : options.linkFolders)
        linkFolders << app::pathFromLocalBytes(folder);
    int status = kExitOk;
    const PrivateWorkFolder workFolder(QStringLiteral("links"));
    if (!workFolder.isValid())
        return kExitFailure;
    const bool json = options.format == "json";
    // The JSON is written a document at a time, a document's links a batch at a time: a copy of a
    // document of many links would double the peak memory.
    bool anyDocument = false;
    const auto writeDocument = [&](const QJsonObject& members, const std::vector<RecordListMember>& lists) {
        out.stream << (anyDocument ? ",\n" : "");
        writeObjectWithRecords(out.stream, members, lists, 2);
        anyDocument = true;
    };
    if (json)
        out.stream << envelopeOpening(jsonEnvelope(QStringLiteral("links")));
    for (const QString& path : documentPaths.paths) {
        if (Interruption::requested())
            break;
        app::Result<OfflineDocument> unpacked = readOfflineDocument(path, workFolder.path());
        if (!unpacked) {
            std::cerr << "quillon links: " << printableText(unpacked.error().text()) << std::endl;
            status = kExitFailure;
            if (json)
                writeDocument(jsonFileEntry(path, {}, unpacked.error().text()), {});
            continue;
        }
        const QString docPath = unpacked->record.posixPath;
        links::LinksController controller;
        const LinkSearchFolders jobFolders = jobSubfolders(path, options.searchDepth);
        controller.linkFolders = jobFolders.folders + linkFolders;
        controller.numberOfLinksInDoc = unpacked->record.numberOfLinks();
        links::QNIDMLLinksProcessor processor(controller);
        const QVariantList records = processor.processLinksInDocument(*unpacked->parts, docPath);
        QList<app::Error> warnings = unpacked->warnings;
        if (jobFolders.capped)
            warnings << app::makeError(linkSearchCappedWarning(path));
        preflight::addWarningsOnce(warnings, processor.warnings());
        const QStringList warningLines = preflight::warningTexts(warnings);
        for (const QString& warning : out.quiet ? QStringList() : warningLines)
            std::cerr << "quillon links: " << printableText(docPath + QStringLiteral(": warning: ") + warning) << "\n";
        bool alerted = !warnings.isEmpty();
        for (const QVariant& record : records) {
            const QString linkStatus = record.toMap().value(links::kLinkStatusKey).toString();
            alerted = alerted || linkStatus == links::kLinkStatusMissing || linkStatus == links::kLinkStatusModified;
        }
        if (alerted && status == kExitOk)
            status = kExitAlerts;
        if (json) {
            writeDocument(jsonFileEntry(path, warningLines), {{QStringLiteral("links"), records, RecordKind::Link}});
        } else {
            printTable(out.stream, docPath, records);
            out.stream << std::flush;
        }
    }
    if (json)
        out.stream << envelopeClosing(anyDocument);
    return status;
}

} // namespace

void addLinksCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<LinksOptions>();
    CLI::App* links = program.add_subcommand(
        "links", "List the placed files of IDML documents: page, kind, status, colour, resolution, scale, profile.");
    addDocumentSourceOptions(*links, options->documents);
    addLinkSearchOption(*links, options->searchDepth);
    links
        ->add_option("--links-dir", options->linkFolders,
                     "Folder searched by file name for links that are not where the document recorded them "
                     "(after the document's folder and its Links folder); one folder each time, may be repeated")
        ->check(CLI::ExistingDirectory)
        ->allow_extra_args(false);
    links->add_option("--format", options->format, "Output: table (default) or json")
        ->check(CLI::IsMember({"table", "json"}));
    addOutputOptions(*links, options->output);
    commands.push_back({links, [options] {
                            return runWithOutput(options->output, "links",
                                                 [&](const ResultStream& out) { return runLinks(*options, out); });
                        }});
}

} // namespace quillon::cli
