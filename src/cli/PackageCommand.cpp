// quillon package: preflights IDML documents and packages them with their links and fonts.
#include "cli/Commands.h"

#include "app/Alerts.h"
#include "app/Numbers.h"
#include "app/ParallelFor.h"
#include "app/RegularFile.h"
#include "cli/DocumentArguments.h"
#include "cli/Interruption.h"
#include "cli/JsonOutput.h"
#include "cli/OfflineDocument.h"
#include "cli/PresetChoice.h"
#include "cli/ProgressLine.h"
#include "cli/TerminalText.h"
#include "host/OfflineIdmlHost.h"
#include "package/Delivery.h"
#include "package/PackageController.h"
#include "package/PreflightToPackageController.h"
#include "preflight/DocumentWarnings.h"
#include "reportpdf/PdfReport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace quillon::cli {

namespace {

struct PackageOptions {
    std::vector<std::string> documents;
    std::string to;
    bool separate = false;
    std::string name;
    std::string nameSuffix;
    bool noLinks = false;
    bool noFonts = false;
    bool linksBesideDocument = false;
    bool idml = false;
    std::string pdfPreset;
    bool textReport = false;
    bool pdfReport = false;
    bool overwrite = false;
    std::vector<std::string> extras;
    std::string extrasFolder;
    bool noRelink = false;
    std::vector<std::string> linkDirs;
    std::string preset;
    std::string presetFile;
    bool noManifest = false;
    std::string hotFolder;
    std::string format = "text";
    int jobs = 0;
};

void printError(const QString& about, const QString& message)
{
    printCommandError("package", about, message);
}

// The batch bar and the package bars on the progress line.
class BatchLine : public app::ProgressSink {
public:
    explicit BatchLine(ProgressLine& line) : m_line(line) {}
    void status(const QString& text) override
    {
        if (!text.isEmpty())
            m_line.status(QStringLiteral("Preflighting"), text);
    }

private:
    ProgressLine& m_line;
};

class PackageLine : public package::PackageRunObserver {
public:
    explicit PackageLine(ProgressLine& line) : m_line(line) {}
    void progressChanged(const package::PackageProgress& progress) override
    {
        const QString bar1 = progress.bar1().status;
        const QString bar2 = progress.bar2().status;
        if (!bar1.isEmpty() || !bar2.isEmpty())
            m_line.status(bar1.isEmpty() ? QStringLiteral("Packaging") : bar1, bar2);
    }

private:
    ProgressLine& m_line;
};

// Rows of the judged lists that carry an alert.
int alertCount(const package::PreflightedDocument& document)
{
    int count = 0;
    for (const QVariantList* items : {&document.finalLinkItems, &document.finalFontItems, &document.finalColorItems})
        for (const QVariant& item : *items)
            if (item.toMap().value(QStringLiteral("alertName")).toString() == QLatin1String("warning"))
                ++count;
    return count;
}

void printLine(const QString& text)
{
    std::cout << printableText(text) << '\n';
}

// What was packaged, for the user to check at a glance.
void printSummary(const package::PackageOutcome& outcome, const QList<package::PreflightedDocument>& documents,
                  int alerts)
{
    for (const QString& folder : outcome.packageFolders)
        printLine(QStringLiteral("Package folder: %1").arg(folder));
    printLine(QStringLiteral("Documents: %1").arg(outcome.pathsOfPackagedDocs.size()));
    for (const QString& path : outcome.pathsOfPackagedDocs)
        printLine(QStringLiteral("  %1").arg(path));
    printLine(QStringLiteral("Links copied: %1").arg(outcome.linksCopied));
    if (outcome.extrasCopied > 0)
        printLine(QStringLiteral("Extra files copied: %1").arg(outcome.extrasCopied));
    printLine(QStringLiteral("Fonts copied: %1").arg(outcome.fontsCopied.size()));
    if (!outcome.fontsNotCopied.isEmpty()) {
        printLine(QStringLiteral("Fonts not copied: %1").arg(outcome.fontsNotCopied.size()));
        for (const package::FontNotCopied& font : outcome.fontsNotCopied)
            printLine(QStringLiteral("  %1: %2").arg(font.name, font.reason));
    }
    printLine(QStringLiteral("Copied: %1 (%2 bytes)")
                  .arg(app::fileSizeStrFromBytes(static_cast<std::uint64_t>(outcome.bytesCopied)))
                  .arg(outcome.bytesCopied));
    if (alerts > 0)
        printLine(QStringLiteral("Preflight alerts: %1 (see quillon preflight)").arg(alerts));
    QList<app::Error> warnings = outcome.warnings;
    for (const package::PreflightedDocument& document : documents)
        warnings += document.preflightProblems;
    if (!warnings.isEmpty()) {
        printLine(QStringLiteral("Warnings: %1").arg(warnings.size()));
        for (const QString& text : preflight::warningTexts(warnings))
            printLine(QStringLiteral("  %1").arg(text));
    }
    std::cout.flush();
}

QJsonObject packageJson(const package::PackageOutcome& outcome, const QList<package::PreflightedDocument>& documents,
                        int alerts)
{
    QJsonArray fontsNotCopied;
    for (const package::FontNotCopied& font : outcome.fontsNotCopied)
        fontsNotCopied.append(
            QJsonObject{{QStringLiteral("name"), font.name}, {QStringLiteral("reason"), font.reason}});
    QList<app::Error> warnings = outcome.warnings;
    for (const package::PreflightedDocument& document : documents)
        warnings += document.preflightProblems;
    const char* ended = outcome.ended == package::PackageEnding::Completed ? "completed"
                        : outcome.ended == package::PackageEnding::Stopped ? "stopped"
                                                                           : "cancelled";
    return QJsonObject{{QStringLiteral("ended"), QLatin1String(ended)},
                       {QStringLiteral("folders"), QJsonArray::fromStringList(outcome.packageFolders)},
                       {QStringLiteral("documents"), QJsonArray::fromStringList(outcome.pathsOfPackagedDocs)},
                       {QStringLiteral("linksCopied"), outcome.linksCopied},
                       {QStringLiteral("extrasCopied"), outcome.extrasCopied},
                       {QStringLiteral("bytesCopied"), outcome.bytesCopied},
                       {QStringLiteral("fontsCopied"), QJsonArray::fromStringList(outcome.fontsCopied)},
                       {QStringLiteral("fontsNotCopied"), fontsNotCopied},
                       {QStringLiteral("preflightAlerts"), alerts},
                       {QStringLiteral("warnings"), QJsonArray::fromStringList(preflight::warningTexts(warnings))}};
}

void printOutcome(const PackageOptions& options, const package::PackageOutcome& outcome,
                  const QList<package::PreflightedDocument>& documents, int alerts)
{
    if (options.format != "json") {
        printSummary(outcome, documents, alerts);
        return;
    }
    QJsonObject envelope = jsonEnvelope(QStringLiteral("package"));
    envelope.insert(QStringLiteral("package"), packageJson(outcome, documents, alerts));
    const QByteArray text = jsonText(envelope);
    std::cout.write(text.constData(), text.size());
    std::cout.flush();
}

int runPackage(const PackageOptions& options)
{
    const app::Result<ChosenPreset> preset = choosePreset(options.preset, options.presetFile, "package");
    if (!preset) {
        printError({}, preset.error().text());
        return kExitFailure;
    }
    QList<package::TNFileItem> documents;
    for (const std::string& document : options.documents) {
        const QString path = QFileInfo(app::pathFromLocalBytes(document)).absoluteFilePath();
        if (const app::Status usable = host::OfflineIdmlHost::checkDocumentPath(path); !usable) {
            printError(app::pathFromLocalBytes(document), usable.error().message);
            return kExitFailure;
        }
        documents << package::TNFileItem::fileItemWithPath(path);
    }
    QList<package::TNFileItem> extras;
    for (const std::string& extra : options.extras) {
        const QFileInfo info(app::pathFromLocalBytes(extra));
        if (!info.exists()) {
            printError(app::pathFromLocalBytes(extra), QStringLiteral("--extras names nothing that exists"));
            return kExitFailure;
        }
        extras << (info.isDir() ? package::TNFileItem::folderItemWithPath(info.absoluteFilePath())
                                : package::TNFileItem::fileItemWithPath(info.absoluteFilePath()));
    }
    const std::optional<QStringList> linkFolders = linkFoldersFromArguments(options.linkDirs, "package");
    if (!linkFolders)
        return kExitFailure;
    const QString hotFolder = options.hotFolder.empty()
                                  ? QString()
                                  : QFileInfo(app::pathFromLocalBytes(options.hotFolder)).absoluteFilePath();
    if (!hotFolder.isEmpty() && !QFileInfo(hotFolder).isDir()) {
        printError(hotFolder, QStringLiteral("--hot-folder needs a folder, and there is none here"));
        return kExitFailure;
    }
    const QString base = QFileInfo(app::pathFromLocalBytes(options.to)).absoluteFilePath();
    if (!QDir().mkpath(base) || !QFileInfo(base).isWritable()) {
        printError(base, QStringLiteral("the folder for packages cannot be made or written to"));
        return kExitFailure;
    }

    const PrivateWorkFolder work(QStringLiteral("package"));
    if (!work.isValid())
        return kExitFailure;
    host::OfflineIdmlHost host;
    host.setWorkFolder(work.path());
    app::ScriptedAlertSink alerts; // the answer is always the first button: go on
    ProgressLine line(static_cast<int>(documents.size()) + 1, standardErrorIsTerminal());
    app::CancelFlag cancel;
    const Interruption::CancelOnRequest cancelRunning([&cancel] { cancel.cancel(); });

    const package::PackageMode mode = options.separate ? package::PackageMode::Separate : package::PackageMode::Unified;
    BatchLine batchLine(line);
    package::QNPreflightToPackageController batch(host, alerts, batchLine);
    package::BatchPreflightOptions batchOptions{.preset = preset->preset,
                                                .linkFolders = *linkFolders,
                                                .workFolder = QDir(work.path()).filePath(QStringLiteral("preflight")),
                                                .cancel = &cancel};
    // Each job opens its document in an offline host of its own, so that no two share the active
    // document.
    batchOptions.jobs = documentJobs(options.jobs);
    batchOptions.hostForJob = [folder = work.path()]() -> std::unique_ptr<host::InDesignHost> {
        auto own = std::make_unique<host::OfflineIdmlHost>();
        own->setWorkFolder(folder);
        return own;
    };
    if (!batch.preflightForPackaging(documents, mode, batchOptions)) {
        line.clear();
        if (Interruption::requested()) {
            printError({}, QStringLiteral("cancelled"));
            return Interruption::exitStatus();
        }
        printError(batch.failure().file, batch.failure().message);
        return kExitFailure;
    }
    batch.calculateTotalSizeToPackage(extras);
    if (!batch.evaluateFreeSpace(base).passes) {
        line.clear();
        printError(base, QStringLiteral("Insufficient free disk space in the target location (%1 to package)")
                             .arg(batch.totalSizeToPackageDict().sizeStr));
        return kExitFailure;
    }

    package::PackageRequest request{host};
    for (const package::TNFileItem& document : documents)
        request.documents << batch.preflightDataOfProcessedDocs().value(document.path);
    request.linksWithoutDuplicates = batch.linksWithoutDuplicates();
    request.sizeOfLinksWithoutDuplicates = batch.sizeOfLinksWithoutDuplicates();
    request.extras = extras;
    request.cancel = &cancel;
    request.stagingFolder = QDir(work.path()).filePath(QStringLiteral("tmpPackage"));
    package::PackageRunChoices& choices = request.choices;
    choices.mode = mode;
    choices.basePackageFolderPath = base;
    choices.namePart1 = app::pathFromLocalBytes(options.name);
    choices.namePart2 = app::pathFromLocalBytes(options.nameSuffix);
    choices.overwrite = options.overwrite;
    choices.collectLinks = !options.noLinks;
    choices.collectFonts = !options.noFonts;
    choices.placeLinksInDocFolder = options.linksBesideDocument;
    choices.relinkBesideDocument = options.linksBesideDocument;
    choices.relinkToPackagedLinks = !options.noRelink;
    choices.createIdml = options.idml;
    choices.createPdf = !options.pdfPreset.empty();
    choices.pdfPreset = app::pathFromLocalBytes(options.pdfPreset);
    choices.textReport = options.textReport;
    choices.pdfReport = options.pdfReport;
    request.writePdfReport = [presetName = preset->name](const package::PreflightedDocument& document,
                                                         const QString& folder, const QString& fileName, bool replace) {
        reportpdf::ReportInputs inputs = reportpdf::reportInputs(document.finalFontItems, document.finalColorItems,
                                                                 document.finalLinkItems, document.docInfo);
        reportpdf::stampReport(inputs, presetName);
        return reportpdf::writePdfReport({reportpdf::reportSection(inputs)}, folder, fileName,
                                         replace ? reports::QNTextReport::ExistingFile::Replace
                                                 : reports::QNTextReport::ExistingFile::Number);
    };
    choices.extrasInSubfolder = !options.extrasFolder.empty();
    choices.extrasSubfolderName = app::pathFromLocalBytes(options.extrasFolder);
    choices.fontsFromRecords = true; // the offline host copies the document alone
    choices.writeManifest = !options.noManifest;
    choices.presetName = preset->name;
    QList<app::Error> deliveryFailures;
    if (!hotFolder.isEmpty())
        request.deliver = [&hotFolder, &deliveryFailures](const QString& folder) {
            if (const app::Status copied = package::RYDelivery::copyToHotFolder(folder, hotFolder); !copied)
                deliveryFailures << copied.error();
        };

    PackageLine packageLine(line);
    package::QNPackageController controller;
    const package::PackageOutcome outcome = controller.packageDocuments(request, {alerts, &packageLine, {}});
    line.clear();
    if (outcome.ended == package::PackageEnding::Cancelled) {
        printError({}, QStringLiteral("cancelled; the half-made package folder was removed"));
        return kExitInterrupted;
    }
    if (outcome.ended == package::PackageEnding::Stopped) {
        const app::Error failure = outcome.failure.value_or(app::makeError(QStringLiteral("packaging stopped")));
        printError(failure.file, failure.message);
        printOutcome(options, outcome, request.documents, 0);
        return kExitFailure;
    }
    for (const app::Error& failure : deliveryFailures)
        printError(failure.file, QStringLiteral("not handed to the hot folder: %1").arg(failure.message));
    int alertRows = 0;
    bool problems = !outcome.warnings.isEmpty() || !deliveryFailures.isEmpty();
    for (const package::PreflightedDocument& document : request.documents) {
        alertRows += alertCount(document);
        problems = problems || !document.preflightProblems.isEmpty();
    }
    printOutcome(options, outcome, request.documents, alertRows);
    return problems || alertRows > 0 ? kExitAlerts : kExitOk;
}

} // namespace

void addPackageCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<PackageOptions>();
    CLI::App* package = program.add_subcommand(
        "package", "Preflight IDML documents and package them: each document with its links and fonts in one "
                   "package folder (unified), or a folder for each (--separate).");
    package->add_option("documents", options->documents, "IDML files (.idml) exported from InDesign")->required();
    package->add_option("--to", options->to, "Folder in which package folders are made (made when missing)")
        ->required()
        ->check(nonEmpty("a folder name"));
    CLI::Option* separate =
        package->add_flag("--separate", options->separate, "A package folder for each document (default: one for all)");
    package
        ->add_option("--unified", options->name,
                     "One package folder for all documents, with this name (the default mode; default name: the "
                     "first document's name without extension)")
        ->excludes(separate);
    // The earlier spelling, kept for scripts that use it.
    package->add_option("--name", options->name)->excludes(separate)->group("");
    package->add_option("--name-suffix", options->nameSuffix, "Text added to the package folder's name");
    CLI::Option* noLinks = package->add_flag("--no-links", options->noLinks, "Do not copy the linked files");
    package->add_flag("--no-fonts", options->noFonts, "Do not copy the font files");
    package
        ->add_flag("--links-beside-document", options->linksBesideDocument,
                   "Put the links beside the document instead of in a Links folder")
        ->excludes(noLinks);
    package->add_flag("--idml", options->idml, "Also write the IDML copy relinked to the packaged links");
    package->add_option("--pdf", options->pdfPreset, "Also export a PDF with this preset (needs InDesign)")
        ->check(nonEmpty("a PDF preset name"));
    package->add_flag("--text-report", options->textReport, "Write each document's text report into the package");
    package->add_flag("--pdf-report", options->pdfReport,
                      "Write each document's PDF report (<document>_Quillon_Report.pdf) into the package");
    package->add_flag("--overwrite", options->overwrite,
                      "Use an existing package folder of the same name, replacing its files (without it the new "
                      "folder is numbered: <name>_1)");
    package->add_option("--extras", options->extras, "File or folder added to every package (may be repeated)")
        ->allow_extra_args(false);
    package->add_option("--extras-folder", options->extrasFolder,
                        "Subfolder of the package that receives the extras (default: the package folder)");
    package->add_flag("--no-relink", options->noRelink, "Leave the packaged documents linked to the original files");
    package
        ->add_option("--links-dir", options->linkDirs,
                     "Folder searched by file name for links missing where the document recorded them "
                     "(may be given several times)")
        ->allow_extra_args(false);
    package->add_flag("--no-manifest", options->noManifest,
                      "Do not write package-manifest.json (the file list with SHA-256 that quillon verify checks)");
    package
        ->add_option("--hot-folder", options->hotFolder,
                     "Hand each finished package folder to this hot folder (copied in under its own name)")
        ->check(nonEmpty("a folder name"));
    package
        ->add_option("--jobs", options->jobs,
                     "Documents preflighted at the same time, 1 to 64 (default: the number of cores)")
        ->check(CLI::Range(1, 64));
    package->add_option("--format", options->format, "Output: text (default) or json")
        ->check(CLI::IsMember({"text", "json"}));
    CLI::Option* presetName =
        package->add_option("--preset", options->preset, "Checkup preset by name (default: the current preset)");
    CLI::Option* presetFile = package->add_option("--preset-file", options->presetFile,
                                                  "Checkup preset file (.qnfp) to use instead of a named one");
    presetName->excludes(presetFile);
    commands.push_back({package, [options] {
                            // A separate package is named after the links are collected; without them
                            // there is no folder for the first document.
                            if (options->separate && options->noLinks) {
                                std::cerr << "quillon package: --separate needs the links collected (drop "
                                             "--no-links); see 'quillon package --help'"
                                          << std::endl;
                                return kExitUsage;
                            }
                            return runPackage(*options);
                        }});
}

} // namespace quillon::cli
