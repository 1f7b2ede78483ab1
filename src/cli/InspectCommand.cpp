#include "cli/InspectCommands.h"

#include "app/RegularFile.h"
#include "cli/JsonOutput.h"
#include "cli/OutputFile.h"
#include "cli/TerminalText.h"
#include "fileinspect/FileFacts.h"

#include <QStringList>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace quillon::cli {

namespace {

using fileinspect::FileFacts;

struct InspectOptions {
    std::vector<std::string> files;
    std::string format = "text";
    OutputOptions output;
};

QString listText(const QString& count, const QStringList& items)
{
    const QString prefix = count.isEmpty() ? QString() : QStringLiteral("(%1) ").arg(count);
    return prefix + (items.isEmpty() ? QStringLiteral("none") : items.join(QStringLiteral(", ")));
}

QString factsText(const FileFacts& facts)
{
    QStringList lines{app::displayPath(facts.path),
                      QStringLiteral("  Kind: %1").arg(fileinspect::fileKindName(facts.kind))};
    auto add = [&lines](const QString& label, const QString& value) {
        if (!value.isEmpty())
            lines << QStringLiteral("  %1: %2").arg(label, value);
    };
    add(QStringLiteral("Colour mode"), facts.colorMode);
    add(QStringLiteral("Profile"), facts.profile);
    if (facts.pixelWidth > 0 && facts.pixelHeight > 0)
        add(QStringLiteral("Pixel size"), QStringLiteral("%1 x %2").arg(facts.pixelWidth).arg(facts.pixelHeight));
    if (!facts.resolution.isEmpty())
        add(QStringLiteral("Resolution"), QStringLiteral("%1 ppi").arg(facts.resolution));
    if (facts.pageWidth && facts.pageHeight)
        add(QStringLiteral("Page size"), QStringLiteral("%1 x %2 pt").arg(*facts.pageWidth).arg(*facts.pageHeight));
    if (!facts.duotoneInks.isEmpty())
        add(QStringLiteral("Duotone inks"), facts.duotoneInks.join(QStringLiteral(", ")));
    if (!facts.spotColorCount.isEmpty() || !facts.spotColors.isEmpty())
        add(QStringLiteral("Spot colours"), listText(facts.spotColorCount, facts.spotColors));
    if (!facts.fontCount.isEmpty() || !facts.fonts.isEmpty())
        add(QStringLiteral("Fonts"), listText(facts.fontCount, facts.fonts));
    add(QStringLiteral("Illustrator colour model"), facts.illustratorColorModel);
    if (facts.illustratorVersion > 0)
        add(QStringLiteral("Illustrator version"), QString::number(facts.illustratorVersion));
    if (facts.tiffCompression) {
        const QString name =
            facts.tiffCompressionName
                ? (facts.tiffCompressionName->isEmpty() ? QStringLiteral("none") : *facts.tiffCompressionName)
                : QStringLiteral("outside the link kinds");
        add(QStringLiteral("TIFF compression"), QStringLiteral("%1 (%2)").arg(*facts.tiffCompression).arg(name));
    }
    return lines.join(u'\n');
}

// The file's entry with its facts; "error" when it could not be read.
QJsonObject factsJson(const FileFacts& facts)
{
    QJsonObject entry = jsonFileEntry(facts.path, {}, facts.error);
    const QVariantMap record = fileinspect::factsRecord(facts);
    for (auto it = record.cbegin(); it != record.cend(); ++it)
        if (it.key() != fileinspect::factkeys::kPath && it.key() != fileinspect::factkeys::kError)
            entry.insert(it.key(), jsonValue(it.value()));
    return entry;
}

int runInspect(const InspectOptions& options, const ResultStream& out)
{
    QStringList paths;
    for (const std::string& file : options.files)
        paths << app::pathFromLocalBytes(file);
    const QList<FileFacts> all = fileinspect::inspectFiles(paths);
    bool failed = false;
    QJsonArray records;
    for (const FileFacts& facts : all) {
        // A file that cannot be read is said on standard error; JSON keeps its entry, with the error.
        if (!facts.error.isEmpty()) {
            failed = true;
            std::cerr << "quillon inspect: " << printableText(app::makeError(facts.error, facts.path).text()) << "\n";
        }
        if (options.format == "json")
            records.append(factsJson(facts));
        else if (facts.error.isEmpty())
            out.stream << printableLinesText(factsText(facts)) << "\n";
    }
    if (options.format == "json") {
        QJsonObject envelope = jsonEnvelope(QStringLiteral("inspect"));
        envelope.insert(QStringLiteral("files"), records);
        out.stream << jsonText(envelope).toStdString();
    }
    return failed ? kExitFailure : kExitOk;
}

} // namespace

void addFormatOptions(CLI::App* command, std::string& format, OutputOptions& output)
{
    command->add_option("--format", format, "Output: text (the default) or json")
        ->check(CLI::IsMember({"text", "json"}));
    addOutputOptions(*command, output);
}

void addInspectCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<InspectOptions>();
    CLI::App* command = program.add_subcommand(
        "inspect", "Show what the linked-file readers find in files: kind, colour mode, ICC profile, duotone inks, "
                   "spot colours and fonts, Illustrator colour model and version, TIFF compression, pixel size.");
    command->add_option("files", options->files, "Files to inspect")->required();
    addFormatOptions(command, options->format, options->output);
    commands.push_back({command, [options] {
                            return runWithOutput(options->output, "inspect",
                                                 [&](const ResultStream& out) { return runInspect(*options, out); });
                        }});
}

} // namespace quillon::cli
