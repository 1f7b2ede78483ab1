#include "cli/InspectCommands.h"

#include "app/Numbers.h"
#include "app/RegularFile.h"
#include "cli/JsonOutput.h"
#include "cli/OutputFile.h"
#include "cli/TerminalText.h"
#include "fileinspect/FileFacts.h"
#include "fileinspect/PXMetadataController.h"
#include "fileinspect/PdfPages.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <iostream>
#include <memory>
#include <string>

namespace quillon::cli {

namespace {

using namespace fileinspect::metadatakeys;

struct MetadataOptions {
    std::string file;
    std::string format = "text";
    OutputOptions output;
};

// A PDF has no image metadata; its rows are its first page's size, in points and in the
// user's unit. A PDF that cannot be measured is an Error, never a size of 0 x 0.
app::Result<QVariantList> pdfRows(fileinspect::PXMetadataController& controller, const QString& path)
{
    const auto size = fileinspect::firstPageSize(path);
    if (!size)
        return size.error();
    if (!*size)
        return app::makeError(QStringLiteral("is a PDF without pages"), path);
    const QStringList points{app::formatOneDecimal((*size)->width), app::formatOneDecimal((*size)->height)};
    const QStringList print = controller.printDimensionsFromInchValues((*size)->width / 72.0, (*size)->height / 72.0);
    return QVariantList{
        QVariantMap{{kTag, QStringLiteral("Page Size")},
                    {kValue, QStringLiteral("%1 x %2 pt").arg(points.value(0), points.value(1))}},
        QVariantMap{
            {kTag, QStringLiteral("Print Size")},
            {kValue, QStringLiteral("%1 x %2 %3").arg(print.value(0), print.value(1), controller.measurementUnits())}},
    };
}

int runMetadata(const MetadataOptions& options, std::ostream& out)
{
    const QString path = app::pathFromLocalBytes(options.file);
    const bool json = options.format == "json";
    const auto printJson = [&path, &out](const QJsonArray& rows, const QString& error) {
        QJsonObject entry = jsonFileEntry(path, {}, error);
        if (error.isEmpty())
            entry.insert(QStringLiteral("rows"), rows);
        QJsonObject envelope = jsonEnvelope(QStringLiteral("metadata"));
        envelope.insert(QStringLiteral("files"), QJsonArray{entry});
        out << jsonText(envelope).toStdString();
    };
    const auto fail = [&](const app::Error& error) {
        std::cerr << "quillon metadata: " << printableText(error.text()) << "\n";
        if (json)
            printJson({}, error.text());
        return kExitFailure;
    };
    if (app::Status regular = app::checkRegularFile(path); !regular)
        return fail(regular.error());
    fileinspect::PXMetadataController controller;
    QVariantList rows;
    if (fileinspect::detectFileKind(path) == fileinspect::FileKind::PDF) {
        app::Result<QVariantList> pdf = pdfRows(controller, path);
        if (!pdf)
            return fail(pdf.error());
        rows = std::move(pdf).value();
    } else {
        rows = controller.readFromURL(path, QFileInfo(path).suffix());
        // No rows from a file that is not what its name says is no image without metadata.
        if (rows.isEmpty())
            if (const fileinspect::FileFacts facts = fileinspect::inspectFile(path); !facts.error.isEmpty())
                return fail(app::makeError(facts.error, path));
    }
    if (json) {
        QJsonArray array;
        for (const QVariant& row : rows)
            array.append(jsonValue(row));
        printJson(array, {});
        return kExitOk;
    }
    for (const QVariant& value : rows) {
        const QVariantMap row = value.toMap();
        if (fileinspect::isMetadataHeaderRow(row))
            out << "[" << printableText(row.value(kTag).toString()) << "]\n";
        else
            out << "  " << printableText(row.value(kTag).toString()) << ": "
                << printableText(fileinspect::metadataValueText(row.value(kValue))) << "\n";
    }
    return kExitOk;
}

} // namespace

void addMetadataCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<MetadataOptions>();
    CLI::App* command = program.add_subcommand(
        "metadata", "Show a file's image metadata (EXIF, TIFF, IPTC, GPS) as the metadata viewer lists it, or the "
                    "page size of a PDF.");
    command->add_option("file", options->file, "Image or PDF file")->required();
    addFormatOptions(command, options->format, options->output);
    commands.push_back({command, [options] {
                            return runWithOutput(options->output, "metadata", [&](const ResultStream& out) {
                                return runMetadata(*options, out.stream);
                            });
                        }});
}

} // namespace quillon::cli
