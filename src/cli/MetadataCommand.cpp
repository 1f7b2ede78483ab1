#include "cli/InspectCommands.h"

#include "cli/TerminalText.h"
#include "fileinspect/FileFacts.h"
#include "fileinspect/PXMetadataController.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
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
};

// A PDF has no image metadata; its rows are its first page's size, in points and in the
// user's unit.
QVariantList pdfRows(fileinspect::PXMetadataController& controller, const QString& path)
{
    const QStringList points = controller.pdfDimensionsAtPath(path);
    const QStringList print =
        controller.printDimensionsFromInchValues(points.value(0).toDouble() / 72.0, points.value(1).toDouble() / 72.0);
    return {
        QVariantMap{{kTag, QStringLiteral("Page Size")},
                    {kValue, QStringLiteral("%1 x %2 pt").arg(points.value(0), points.value(1))}},
        QVariantMap{
            {kTag, QStringLiteral("Print Size")},
            {kValue, QStringLiteral("%1 x %2 %3").arg(print.value(0), print.value(1), controller.measurementUnits())}},
    };
}

int runMetadata(const MetadataOptions& options)
{
    const QString path = QString::fromLocal8Bit(options.file);
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable()) {
        std::cerr << "quillon metadata: " << printableText(path)
                  << (info.exists() ? ": not a readable file\n" : ": no such file\n");
        return kExitFailure;
    }
    fileinspect::PXMetadataController controller;
    const QVariantList rows = fileinspect::detectFileKind(path) == fileinspect::FileKind::PDF
                                  ? pdfRows(controller, path)
                                  : controller.readFromURL(path, info.suffix());
    if (options.format == "json") {
        QJsonArray array;
        for (const QVariant& row : rows)
            array.append(QJsonObject::fromVariantMap(row.toMap()));
        std::cout << QJsonDocument(array).toJson(QJsonDocument::Indented).toStdString();
        return kExitOk;
    }
    for (const QVariant& value : rows) {
        const QVariantMap row = value.toMap();
        if (fileinspect::isMetadataHeaderRow(row))
            std::cout << "[" << printableText(row.value(kTag).toString()) << "]\n";
        else
            std::cout << "  " << printableText(row.value(kTag).toString()) << ": "
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
    addFormatOption(command, options->format);
    commands.push_back({command, [options] { return runMetadata(*options); }});
}

} // namespace quillon::cli
