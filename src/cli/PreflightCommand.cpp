// quillon preflight: preflights IDML documents and prints the results as a summary, as the text
// report or as JSON.
#include "cli/Commands.h"

#include "app/FilePaths.h"
#include "app/ParallelFor.h"
#include "app/Progress.h"
#include "app/PropertyList.h"
#include "app/RegularFile.h"
#include "app/Settings.h"
#include "cli/DocumentArguments.h"
#include "cli/Interruption.h"
#include "cli/OfflineDocument.h"
#include "cli/OutputFile.h"
#include "cli/PreflightJob.h"
#include "cli/PreflightPrinter.h"
#include "cli/PresetChoice.h"
#include "cli/ProgressLine.h"
#include "cli/TerminalText.h"
#include "reportpdf/PdfReport.h"
#include "reports/TextReport.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <iostream>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace quillon::cli {

namespace {

struct PreflightOptions {
    DocumentSources documents;
    int searchDepth = 0;
    std::string preset;
    std::string presetFile;
    std::string format = "summary";
    std::string reportDir;
    std::vector<std::string> linkDirs;
    OutputOptions output;
    int jobs = 0;
    std::optional<int> maxItems;
    bool overwrite = false;
};

void printError(const QString& about, const QString& message)
{
    printCommandError("preflight", about, message);
}

bool isPdf(const QString& format)
{
    return format == QLatin1String("pdf");
}

// The report file name of each document ("<name>_Quillon_Report.txt" or ".pdf"), numbered when an
// earlier document of the run has the same name, so that no report of the run replaces another.
QStringList reportFileNames(const QStringList& documents, bool pdf)
{
    QSet<QString> taken;
    QStringList names;
    for (const QString& document : documents) {
        const QString docName = QFileInfo(document).fileName();
        const QString name =
            pdf ? reportpdf::pdfReportFileName(docName) : reports::QNTextReport::reportFileName(docName);
        QString candidate = name;
        for (int n = 1; taken.contains(candidate); ++n)
            candidate = QStringLiteral("%1_%2.%3").arg(name.chopped(4)).arg(n).arg(name.right(3));
        taken.insert(candidate);
        names << candidate;
    }
    return names;
}

std::optional<reports::TextReportType> reportTypeFor(const QString& format, bool reportDir)
{
    if (isPdf(format))
        return std::nullopt;
    if (format == QLatin1String("tab"))
        return reports::TextReportType::TabDelimited;
    if (format == QLatin1String("text") || reportDir)
        return reports::TextReportType::Regular;
    return std::nullopt;
}

// Preflights every document of the command line, the results going where `output` says.
int preflightAll(const PreflightOptions& options, const QStringList& paths, const ChosenPreset& preset,
                 const PreflightJobOptions& jobOptions, const QString& reportDir, const PrinterOutput& output)
{
    const QString format = app::pathFromLocalBytes(options.format);
    // Every document works in a folder of its own inside this one, which goes at the end.
    const PrivateWorkFolder runRoot(QStringLiteral("preflight"));
    if (!runRoot.isValid())
        return kExitFailure;

    const QStringList reportNames = reportFileNames(paths, isPdf(format));
    const auto existing =
        options.overwrite ? reports::QNTextReport::ExistingFile::Replace : reports::QNTextReport::ExistingFile::Number;
    const int jobs = documentJobs(options.jobs);

    ProgressLine progress(static_cast<int>(paths.size()), standardErrorIsTerminal() && !output.quiet);
    OrderedPrinter printer(format, preset.name, output, progress, paths.size());
    app::CancelFlag cancel; // every document's preflight stops when it is set
    // Ctrl-C reaches the running preflights from the signal watch.
    const Interruption::CancelOnRequest cancelRunning([&cancel] { cancel.cancel(); });
    app::parallelFor(paths.size(), {.maxThreads = jobs, .cancel = &cancel}, [&](int, qsizetype index) {
        if (Interruption::requested())
            return;
        const QString runFolder = QDir(runRoot.path()).filePath(QString::number(index));
        QDir().mkpath(runFolder);
        const QString name = QFileInfo(paths.at(index)).fileName();
        // The job folder's subfolders come before the --links-dir folders: they belong to this document.
        const LinkSearchFolders jobFolders = jobSubfolders(paths.at(index), options.searchDepth);
        PreflightJobOptions documentOptions = jobOptions;
        documentOptions.linkFolders = jobFolders.folders + jobOptions.linkFolders;
        PreflightedDocument document =
            preflightDocument(paths.at(index), documentOptions, runFolder, cancel,
                              [&progress, &name](const QString& status) { progress.status(name, status); });
        if (jobFolders.capped)
            document.warnings << linkSearchCappedWarning(paths.at(index));
        if (document.preflighted && !reportDir.isEmpty()) {
            const app::Result<QString> saved =
                document.pdfReport
                    ? reportpdf::writePdfReport({*document.pdfReport}, reportDir, reportNames.at(index), existing)
                    : reports::QNTextReport::saveReportFile(document.reportText.toUtf8(), reportDir,
                                                            reportNames.at(index), existing);
            if (!saved)
                document.outputError = saved.error().text();
        }
        QDir(runFolder).removeRecursively();
        if (Interruption::requested() && !document.preflighted)
            return; // a document cut short is not reported
        progress.documentDone();
        printer.deliver(index, renderDocument(std::move(document), format, preset.name, output.summaryToTerminal,
                                              options.maxItems));
    });
    progress.clear();
    printer.finish(paths);
    if (Interruption::requested()) {
        printError({}, QStringLiteral("cancelled"));
        return Interruption::exitStatus();
    }
    return printer.exitStatus();
}

int runPreflight(const PreflightOptions& options)
{
    if (isPdf(app::pathFromLocalBytes(options.format)) && options.reportDir.empty()) {
        std::cerr << "quillon preflight: --format pdf needs --report-dir: the PDF reports are written there; see "
                     "'quillon preflight --help'"
                  << std::endl;
        return kExitUsage;
    }
    const ExpandedDocuments documents = expandDocumentSources(options.documents, "preflight");
    if (documents.failureStatus != kExitOk)
        return documents.failureStatus;
    const app::Result<ChosenPreset> preset = choosePreset(options.preset, options.presetFile, "preflight");
    if (!preset) {
        printError({}, preset.error().text());
        return kExitFailure;
    }
    PreflightJobOptions jobOptions;
    jobOptions.preset = preset->preset;
    const std::optional<QStringList> linkFolders = linkFoldersFromArguments(options.linkDirs, "preflight");
    if (!linkFolders)
        return kExitFailure;
    jobOptions.linkFolders = *linkFolders;
    QString reportDir;
    if (!options.reportDir.empty()) {
        reportDir = QFileInfo(app::pathFromLocalBytes(options.reportDir)).absoluteFilePath();
        if (!QDir().mkpath(reportDir) || !QFileInfo(reportDir).isWritable()) {
            printError(reportDir, QStringLiteral("the report folder cannot be made or written to"));
            return kExitFailure;
        }
    }
    const QString format = app::pathFromLocalBytes(options.format);
    jobOptions.reportType = reportTypeFor(format, !reportDir.isEmpty());
    jobOptions.printParaStyles = app::Settings().boolForKey(QStringLiteral("printParas"), false);
    jobOptions.pdfReport = isPdf(format);
    jobOptions.presetName = preset->name;

    return runWithOutput(options.output, "preflight", [&](const ResultStream& out) {
        return preflightAll(options, documents.paths, *preset, jobOptions, reportDir,
                            {&out.stream, out.toFile, out.quiet});
    });
}

} // namespace

void addPreflightCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<PreflightOptions>();
    CLI::App* preflight = program.add_subcommand(
        "preflight", "Preflight IDML documents: fonts, colors and links judged by a checkup preset, with the "
                     "document information, as a summary, the text report, JSON or PDF reports.");
    addDocumentSourceOptions(*preflight, options->documents);
    CLI::Option* presetName =
        preflight->add_option("--preset", options->preset, "Checkup preset by name (default: the current preset)");
    CLI::Option* presetFile = preflight->add_option("--preset-file", options->presetFile,
                                                    "Checkup preset file (.qnfp) to use instead of a named one");
    presetName->excludes(presetFile);
    preflight
        ->add_option("--format", options->format,
                     "summary (the default), text (the report), tab (the tab-delimited report), json, or pdf (the "
                     "summary here and each document's PDF report, <name>_Quillon_Report.pdf, in --report-dir)")
        ->check(CLI::IsMember({"summary", "text", "tab", "json", "pdf"}));
    CLI::Option* reportDir =
        preflight
            ->add_option("--report-dir", options->reportDir,
                         "Also write each document's report file (<name>_Quillon_Report.txt, or .pdf with --format "
                         "pdf) into this folder, made when missing; a file already there is kept (see --overwrite)")
            ->check(nonEmpty("a folder name"));
    preflight
        ->add_option("--links-dir", options->linkDirs,
                     "Folder searched by file name for links missing where the document recorded them "
                     "(may be given several times)")
        ->allow_extra_args(false); // one folder each time, so that documents may follow
    addLinkSearchOption(*preflight, options->searchDepth);
    preflight
        ->add_flag("--overwrite", options->overwrite,
                   "Replace a report file of the same name in the report folder (without it the new report "
                   "is numbered: <name>_Quillon_Report_1.txt)")
        ->needs(reportDir); // alone it would promise a replacement that never happens
    preflight
        ->add_option("--jobs", options->jobs,
                     "Documents preflighted at the same time, 1 to 64 (default: the number of cores)")
        ->check(CLI::Range(1, 64));
    preflight
        ->add_option("--max-items", options->maxItems,
                     "Lines per list in the summary: files or items with alerts beyond N are counted in "
                     "\"… and K more\" (default: all)")
        ->check(CLI::NonNegativeNumber);
    addOutputOptions(*preflight, options->output);
    commands.push_back({preflight, [options] { return runPreflight(*options); }});
}

} // namespace quillon::cli
