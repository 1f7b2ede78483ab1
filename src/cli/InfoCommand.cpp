#include "cli/Commands.h"

#include "app/RegularFile.h"
#include "cli/DocumentArguments.h"
#include "cli/Interruption.h"
#include "cli/JsonOutput.h"
#include "cli/OfflineDocument.h"
#include "cli/OutputFile.h"
#include "cli/TerminalText.h"
#include "host/OfflineIdmlHost.h"
#include "idml/IdmlDocument.h"

#include "host/InDesignHost.h"
#include "inspection/DocInfo.h"
#include "inspection/PageSizes.h"
#include "preflight/DocumentWarnings.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

using namespace quillon::inspection;
using namespace quillon::host;

namespace quillon::cli {

namespace {

using inspection::QNDocInfo;

struct DocumentFacts {
    inspection::DocumentRecord record;
    QNDocInfo info;
    bool repaired = false;
    QList<app::Error> warnings; // parts that could not be read, a repair, no pages
};

// Reads one document the way a preflight does, straight from its archive: the record, then the
// document information from the same parts.
app::Result<DocumentFacts> readDocument(const QString& path, const QString& workFolder)
{
    app::Result<OfflineDocument> document = readOfflineDocument(path, workFolder);
    if (!document)
        return document.error();
    DocumentFacts facts{document->record, QNDocInfo::docInfoWithRecord(document->record), document->repaired,
                        document->warnings};
    QList<app::Error> partWarnings;
    if (const app::Status read = facts.info.parseDocInfoInDocument(*document->parts); !read)
        partWarnings << read.error();
    facts.info.setDocPageSizesDict(inspection::pageSizesInDocument(*document->parts, &partWarnings));
    preflight::addWarningsOnce(facts.warnings, partWarnings);
    return facts;
}

QString orDash(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("-") : text;
}

void printText(std::ostream& out, const DocumentFacts& facts)
{
    const QNDocInfo& info = facts.info;
    const QList<std::pair<const char*, QString>> lines{
        {"Path", info.docPath()},
        {"Pages", info.numberOfPagesStr()},
        {"Links", facts.record.linkCount},
        {"Version", orDash(info.InDesignVersion())},
        {"Size", info.fileSizeStr()},
        {"Created", orDash(info.creationDateStr())},
        {"Modified", orDash(info.modDateStr())},
        {"Units",
         QStringLiteral("%1 / %2").arg(orDash(info.horizMeasurementUnits()), orDash(info.vertMeasurementUnits()))},
        {"Page size", info.pageSizeStr()},
        {"Bleed", info.bleedStr()},
        {"Slug", info.slugStr()},
    };
    out << printableText(info.docName()) << '\n';
    for (const auto& [label, value] : lines)
        out << "  " << (QString::fromLatin1(label) + u':').leftJustified(11).toStdString() << printableText(value)
            << '\n';
}

// The document's entry: the document information with the record's link count and HFS path.
QJsonObject jsonFacts(const QString& path, const DocumentFacts& facts)
{
    QJsonObject info = documentInfoJson(facts.info);
    info.insert(QStringLiteral("hfsPath"), facts.record.hfsPath);
    info.insert(QStringLiteral("numberOfLinksStr"), facts.record.linkCount);
    info.insert(QStringLiteral("numberOfLinks"), facts.record.numberOfLinks());
    QJsonObject object = jsonFileEntry(path, preflight::warningTexts(facts.warnings));
    object.insert(QStringLiteral("info"), info);
    object.insert(QStringLiteral("repaired"), facts.repaired);
    return object;
}

int runInfo(const DocumentSources& sources, const std::string& format, const ResultStream& out)
{
    const ExpandedDocuments documents = expandDocumentSources(sources, "info");
    if (documents.failureStatus != kExitOk)
        return documents.failureStatus;
    const PrivateWorkFolder workFolder(QStringLiteral("info"));
    if (!workFolder.isValid())
        return kExitFailure;

    const bool json = format == "json";
    QJsonArray array;
    int status = kExitOk;
    bool first = true;
    for (const QString& path : documents.paths) {
        if (Interruption::requested())
            break;
        app::Result<DocumentFacts> facts = readDocument(path, workFolder.path());
        if (!facts) {
            std::cerr << "quillon info: " << printableText(facts.error().text()) << std::endl;
            status = kExitFailure;
            if (json)
                array.append(jsonFileEntry(path, {}, facts.error().text()));
            continue;
        }
        for (const QString& warning : out.quiet ? QStringList() : preflight::warningTexts(facts->warnings))
            std::cerr << "quillon info: " << path.toStdString() << ": warning: " << warning.toStdString() << '\n';
        if (!facts->warnings.isEmpty() && status == kExitOk)
            status = kExitAlerts;
        if (json) {
            array.append(jsonFacts(path, *facts));
        } else {
            if (!first)
                out.stream << '\n';
            printText(out.stream, *facts);
            out.stream << std::flush;
        }
        first = false;
    }
    if (json) {
        QJsonObject envelope = jsonEnvelope(QStringLiteral("info"));
        envelope.insert(QStringLiteral("documents"), array);
        out.stream << jsonText(envelope).toStdString();
    }
    return status;
}

} // namespace

void addInfoCommand(CLI::App& program, std::vector<Command>& commands)
{
    struct Options {
        DocumentSources documents;
        std::string format = "text";
        OutputOptions output;
    };
    auto options = std::make_shared<Options>();
    CLI::App* info = program.add_subcommand(
        "info", "Print the document record and document information of IDML files (pages, links, version, size, "
                "dates, units, page size, bleed, slug).");
    addDocumentSourceOptions(*info, options->documents);
    info->add_option("--format", options->format, "text (the default) or json")->check(CLI::IsMember({"text", "json"}));
    addOutputOptions(*info, options->output);
    commands.push_back({info, [options] {
                            return runWithOutput(options->output, "info", [&](const ResultStream& out) {
                                return runInfo(options->documents, options->format, out);
                            });
                        }});
}

} // namespace quillon::cli
