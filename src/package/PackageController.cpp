#include "package/PackageController.h"

#include "package/FileCopyManager.h"
#include "package/LinkLists.h"
#include "package/PackageNames.h"
#include "package/PreflightToPackageController.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/FilePaths.h"
#include "app/Log.h"
#include "app/ParallelFor.h"
#include "host/InDesignHost.h"
#include "links/LinkRecordKeys.h"
#include "reports/PreflightResults.h"
#include "reports/TextReport.h"
#include "results/Summary.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace quillon::package {

namespace {

const QString kLinksFolderName = QStringLiteral("Links");
const QString kDocumentFontsFolderName = QStringLiteral("Document fonts");

// Moves a file or folder, copying it across file systems. A destination already there is an
// error whose text says it "exists".
app::Status movePath(const QString& from, const QString& to)
{
    if (QFileInfo::exists(to) || QFileInfo(to).isSymLink())
        return app::makeError(QStringLiteral("\"%1\" exists").arg(to), from);
    if (std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0)
        return {};
    if (errno != EXDEV)
        return app::makeError(QString::fromLocal8Bit(std::strerror(errno)), from);
    if (const app::Status copied = app::copyPathReplacingIt(from, to); !copied)
        return copied;
    if (QFileInfo(from).isDir() ? !QDir(from).removeRecursively() : !QFile::remove(from))
        app::logFailure(QStringLiteral("remove the moved %1").arg(from));
    return {};
}

} // namespace

PackageOutcome QNPackageController::packageDocuments(const PackageRequest& request, const PackageSinks& sinks)
{
    app::logUserAction("packageBtn:");
    if (m_isProcessing) {
        PackageOutcome ignored;
        ignored.ended = PackageEnding::Stopped;
        ignored.failure = app::makeError(QStringLiteral("a packaging run is under way"));
        return ignored;
    }
    m_request = &request;
    m_sinks = &sinks;
    m_outcome = {};
    m_progress = std::make_unique<PackageProgress>(request.choices.mode);
    m_isProcessing = true;
    m_suspended = false;
    m_batchDone = false;
    m_targetPackageFolderPath.clear();
    m_foldersMadeByRun.clear();
    m_fontsCopied.clear();
    m_fontsNotCopied.clear();
    m_copies.clear();
    m_packagedDocuments.clear();
    m_indexOfCurrDocInBatch = 0;
    createFreshTmpPackageFolder();
    if (request.choices.mode == PackageMode::Unified)
        packageDocsUnified();
    else
        packageDocsSeparately();
    // A cancel that comes once the batch is done leaves a whole package.
    if (cancelled() && !m_batchDone) {
        removeHalfMadePackage();
        m_outcome.ended = PackageEnding::Cancelled;
    } else if (m_suspended) {
        m_outcome.ended = PackageEnding::Stopped;
    }
    QDir(m_stagingFolder).removeRecursively();
    m_isProcessing = false;
    m_request = nullptr;
    m_sinks = nullptr;
    return std::move(m_outcome);
}

void QNPackageController::createFreshTmpPackageFolder()
{
    m_stagingFolder = m_request->stagingFolder.isEmpty()
                          ? QDir(QDir::tempPath()).filePath(QStringLiteral("Quillon/tmpPackage"))
                          : m_request->stagingFolder;
    QDir(m_stagingFolder).removeRecursively();
    QDir().mkpath(QFileInfo(m_stagingFolder).absolutePath());
    if (!QDir().mkdir(m_stagingFolder))
        log(QStringLiteral("-> can't create tmp package folder: %1").arg(m_stagingFolder));
}

void QNPackageController::packageDocsUnified()
{
    const PackageRunChoices& choices = m_request->choices;
    const PackageFolderNaming naming{choices.basePackageFolderPath, choices.namePart1, choices.namePart2,
                                     choices.overwrite};
    const QString firstPath = m_request->documents.isEmpty() ? QString() : m_request->documents.first().docItem.path;
    m_targetPackageFolderPath =
        QDir(choices.basePackageFolderPath).filePath(packageFolderNameForUnified(naming, firstPath));
    m_progress->setProgr1Maximum(m_request->documents.size() + 3);
    if (!makePackageFolder(m_targetPackageFolderPath)) {
        suspend(QStringLiteral("Cannot copy document \"%1\"").arg(QFileInfo(firstPath).fileName()),
                QStringLiteral("Error: the package folder cannot be made\n\nFolder: %1").arg(m_targetPackageFolderPath),
                app::makeError(QStringLiteral("the package folder cannot be made"), m_targetPackageFolderPath));
        return;
    }
    if (choices.collectLinks) {
        QVariantList links = m_request->linksWithoutDuplicates;
        qint64 bytes = m_request->sizeOfLinksWithoutDuplicates;
        if (links.isEmpty()) {
            QList<QVariantList> linksOfDocuments;
            for (const PreflightedDocument& document : m_request->documents)
                linksOfDocuments << document.links();
            links = composeArrOfLinksWithoutDuplicates(linksOfDocuments);
            bytes = totalSizeFromArrOfLinks(links);
        }
        m_progress->startLinksPhase(bytes);
        copyLinks(links, QDir(m_targetPackageFolderPath).filePath(kLinksFolderName));
    }
    if (!copyExtrasAndStartPostLinksStages(QStringLiteral("7")))
        return;
    setInDesignScriptUserInteraction(m_request->host, false);
    for (const PreflightedDocument& document : m_request->documents)
        if (!runOperationsForDocItem(document))
            break;
    if (!m_suspended && !cancelled() && choices.collectFonts)
        moveFontsFromTmpFolderToPackageFolder();
    if (!cancelled())
        clearAndCleanAfterBatchDone();
}

void QNPackageController::packageDocsSeparately()
{
    const PackageRunChoices& choices = m_request->choices;
    const PackageFolderNaming naming{choices.basePackageFolderPath, {}, choices.namePart2, choices.overwrite};
    const qsizetype count = m_request->documents.size();
    m_progress->setProgr1Maximum(static_cast<double>(count) + 3);
    setInDesignScriptUserInteraction(m_request->host, false);
    for (qsizetype index = 0; index < count && !cancelled(); ++index) {
        const PreflightedDocument& document = m_request->documents.at(index);
        m_indexOfCurrDocInBatch = static_cast<int>(index) + 1;
        m_progress->startProgr1ForDocName(document.docItem.name, m_indexOfCurrDocInBatch, count);
        showProgress();
        // Named only when links are collected: without, the document goes where the one before
        // went (nowhere for the first); kept on purpose.
        if (choices.collectLinks) {
            m_targetPackageFolderPath = separatePackageFolderPath(naming, document.docItem.path);
            makePackageFolder(m_targetPackageFolderPath);
            const QVariantList links = removeDuplicatesFromLinksArr(addNestedLinksToLinksArr(document.links()));
            m_progress->startLinksPhase(totalSizeFromArrOfLinks(links));
            copyLinks(links, QDir(m_targetPackageFolderPath).filePath(kLinksFolderName));
        }
        if (!copyExtrasAndStartPostLinksStages(QStringLiteral("5")))
            return;
        runOperationsForDocItem(document);
        if (m_suspended || cancelled() || index + 1 == count)
            break;
        clearAndCleanUpAfterSeparateDoc();
    }
    if (!cancelled())
        clearAndCleanAfterBatchDone();
}

bool QNPackageController::copyExtrasAndStartPostLinksStages(const QString& progr2Maximum)
{
    if (!m_request->extras.isEmpty() && !cancelled())
        copyExtras();
    if (cancelled())
        return false;
    moveLinksOutOfLinksFolder();
    m_progress->setProgr2MaxValue(progr2Maximum);
    return true;
}

bool QNPackageController::makePackageFolder(const QString& folder)
{
    const bool existed = QFileInfo(folder).isDir();
    if (!QDir().mkpath(folder)) {
        log(QStringLiteral("-> can't create package folder: %1").arg(folder));
        return false;
    }
    if (!existed)
        m_foldersMadeByRun << folder;
    if (!m_outcome.packageFolders.contains(folder))
        m_outcome.packageFolders << folder;
    return true;
}

void QNPackageController::copyLinks(const QVariantList& links, const QString& folder)
{
    if (!QDir().mkpath(folder))
        log(QStringLiteral("-> can't create links folder: %1").arg(folder));
    QList<std::pair<QString, QString>> files;
    for (const QVariant& record : links)
        files << std::pair{record.toMap().value(links::kLinkPathKey).toString(), folder};
    if (files.isEmpty())
        log(QStringLiteral("no links"));
    copyFiles(files, false);
}

void QNPackageController::copyExtras()
{
    const PackageRunChoices& choices = m_request->choices;
    const QString folder =
        choices.extrasInSubfolder && !choices.extrasSubfolderName.isEmpty()
            ? QDir(m_targetPackageFolderPath).filePath(app::safeFileName(choices.extrasSubfolderName))
            : m_targetPackageFolderPath;
    m_progress->startExtrasPhase();
    if (!QDir().mkpath(folder))
        log(QStringLiteral("-> can't create extras folder: %1").arg(folder));
    // composeArrOfExtraFilesForTargetFolder: a folder is copied with its subfolders under its name.
    QList<std::pair<QString, QString>> files;
    for (const TNFileItem& extra : m_request->extras) {
        const QFileInfo info(extra.path);
        if (!info.exists()) {
            log(QStringLiteral("-> extra file doesn't exist: %1").arg(extra.path));
            m_outcome.warnings << app::makeError(QStringLiteral("the extra file is gone; not packaged"), extra.path);
            continue;
        }
        if (!info.isDir() || info.isSymLink()) {
            files << std::pair{extra.path, folder};
            continue;
        }
        const QDir source(extra.path);
        const QString target = QDir(folder).filePath(info.fileName());
        QDirIterator it(extra.path, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString file = it.next();
            const QString subfolder = QDir(target).filePath(source.relativeFilePath(QFileInfo(file).path()));
            if (!QDir().mkpath(subfolder))
                log(QStringLiteral("-> can't create folder: %1").arg(subfolder));
            files << std::pair{file, QDir::cleanPath(subfolder)};
        }
    }
    if (files.isEmpty())
        log(QStringLiteral("no extraFileItems"));
    copyFiles(files, true);
}

void QNPackageController::copyFiles(const QList<std::pair<QString, QString>>& sourceAndFolder, bool extras)
{
    PackageProgress& progress = *m_progress;
    FileCopyManager manager([&progress](int count) { progress.copyQueueDidChange(count); });
    // Making an operation reads its source's size: thousands of links are looked at side by side.
    std::vector<std::shared_ptr<FileCopyOperation>> made(static_cast<size_t>(sourceAndFolder.size()));
    const ExistingDestination existing = existingDestination();
    app::parallelFor(sourceAndFolder.size(), {.itemsPerThread = 256}, [&](int, qsizetype index) {
        const auto& [source, folder] = sourceAndFolder.at(index);
        made[static_cast<size_t>(index)] =
            FileCopyOperation::create(source, QDir(folder).filePath(QFileInfo(source).fileName()), &progress, existing);
    });
    const bool inOwnedFolder = m_foldersMadeByRun.contains(m_targetPackageFolderPath);
    std::vector<std::shared_ptr<FileCopyOperation>> operations;
    QHash<QString, bool> folderIsThere; // thousands of links share a few folders
    for (qsizetype index = 0; index < sourceAndFolder.size(); ++index) {
        const auto& [source, folder] = sourceAndFolder.at(index);
        std::shared_ptr<FileCopyOperation>& operation = made[static_cast<size_t>(index)];
        auto known = folderIsThere.constFind(folder);
        if (known == folderIsThere.constEnd())
            known = folderIsThere.insert(folder, QFileInfo(folder).isDir());
        // The operation's size is that of the source as it stands now: none when it is gone.
        if (!operation->fSize() || !*known) {
            log(QStringLiteral("-> err: smth not reachable: %1 -> %2").arg(source, folder));
            m_outcome.warnings << app::makeError(QStringLiteral("not found, so not packaged"), source);
            continue;
        }
        if (m_request->choices.writeManifest)
            operation->hashWhileCopying();
        if (inOwnedFolder)
            operation->writeInOwnedFolder();
        operations.push_back(std::move(operation));
    }
    progress.prepareProgr2ForFilesArr(static_cast<int>(operations.size()));
    manager.addOperations(operations);
    // The window's 0.1 s ticks; a cancel is passed on within 20 ms and stops the running copy
    // within one chunk.
    using namespace std::chrono_literals;
    auto nextTick = std::chrono::steady_clock::now();
    do {
        if (std::chrono::steady_clock::now() >= nextTick) {
            progress.updateProgress();
            showProgress();
            nextTick += 100ms;
        }
        if (cancelled())
            manager.cancelAllOperations();
    } while (!manager.waitUntilAllOperationsAreFinishedFor(20ms));
    m_copies.reserve(m_copies.size() + static_cast<qsizetype>(operations.size()));
    for (const auto& operation : operations) {
        if (operation->fCopyState() != FileCopyState::Finished) {
            if (!cancelled())
                m_outcome.warnings << operation->error().value_or(app::makeError(QStringLiteral("not copied")));
            continue;
        }
        (extras ? m_outcome.extrasCopied : m_outcome.linksCopied) += 1;
        if (!operation->sha256().isEmpty())
            m_copies.insert(operation->copiedTo(),
                            {operation->srcPath(), operation->sha256(), operation->copiedStamp()});
        m_outcome.bytesCopied += operation->fSize().value_or(0);
        for (const QString& warning : operation->warnings())
            m_outcome.warnings << app::makeError(warning, operation->copiedTo());
    }
    progress.clearProgressArea(2);
    showProgress();
}

void QNPackageController::moveLinksOutOfLinksFolder()
{
    if (!m_request->choices.placeLinksInDocFolder || m_targetPackageFolderPath.isEmpty())
        return;
    const QDir links(QDir(m_targetPackageFolderPath).filePath(kLinksFolderName));
    bool allMoved = true;
    for (const QString& name : links.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        const QString destination = QDir(m_targetPackageFolderPath).filePath(name);
        if (const app::Status moved = movePath(links.filePath(name), destination); !moved) {
            log(QStringLiteral("-> can't move link out of Links: %1").arg(moved.error().text()));
            allMoved = false;
        } else if (const auto copy = m_copies.constFind(links.filePath(name)); copy != m_copies.constEnd()) {
            // A rename keeps the file's stamp; a move across file systems does not, and it is hashed again.
            const CopiedFileRecord record = *copy;
            m_copies.erase(copy);
            m_copies.insert(destination, record);
        }
    }
    if (allMoved && !QDir(links).removeRecursively())
        log(QStringLiteral("-> can't delete Links folder"));
    if (!allMoved)
        m_outcome.warnings << app::makeError(QStringLiteral("some links stayed in the Links folder"), links.path());
}

bool QNPackageController::runOperationsForDocItem(const PreflightedDocument& document)
{
    const bool unified = m_request->choices.mode == PackageMode::Unified;
    if (cancelled())
        return false;
    if (unified) {
        ++m_indexOfCurrDocInBatch;
        m_progress->startProgr1ForDocName(document.docItem.name, m_indexOfCurrDocInBatch, m_request->documents.size());
        showProgress();
    }
    if (!openDocFromInDesign(m_request->host, m_sinks->alerts, document.docItem.path)) {
        m_suspended = true;
        m_outcome.failure = app::makeError(QStringLiteral("the document could not be opened"), document.docItem.path);
        return false;
    }
    if (!collectFontsForDocAtPath(document) || cancelled())
        return false;
    if (m_request->choices.createPdf)
        createPDFForDocItem(document);
    if (m_request->choices.pdfReport || m_request->choices.textReport)
        createReportsForDocItem(document);
    if (!closeDoc1(m_request->host, m_sinks->alerts, document.docItem.path)) {
        m_suspended = true;
        m_outcome.failure = app::makeError(QStringLiteral("the document could not be closed"), document.docItem.path);
        return false;
    }
    if (unified && !moveDocFromTmpFolderToPackageFolder(document))
        return false;
    return !cancelled();
}

bool QNPackageController::collectFontsForDocAtPath(const PreflightedDocument& document)
{
    const bool unified = m_request->choices.mode == PackageMode::Unified;
    m_progress->setProgr2ValueToStageOfSingleDoc(QStringLiteral("collectFonts"));
    showProgress();
    const QString destination = unified ? m_stagingFolder : m_targetPackageFolderPath;
    const QString name = document.docItem.name;
    const app::Status packaged =
        destination.isEmpty()
            ? app::Status(app::makeError(QStringLiteral("No package folder was named for it: collect the links to "
                                                        "name the folder of a separate package.")))
            : m_request->host.packageDocument(name, destination);
    if (!packaged) {
        suspend(QStringLiteral("Cannot collect fonts for document \"%1\"").arg(name), packaged.error().message,
                packaged.error());
        return false;
    }
    if (!unified)
        packagedDocument(document, QDir(destination).filePath(name));
    if (!m_request->choices.fontsFromRecords || !m_request->choices.collectFonts)
        return true;
    FontFilesCopied fonts =
        copyFontFilesOfRecords(document.fonts(), QDir(destination).filePath(kDocumentFontsFolderName),
                               existingDestination(), m_fontsCopied, m_request->cancel);
    m_outcome.fontsCopied += fonts.copied;
    m_outcome.warnings += fonts.warnings;
    for (const FontNotCopied& font : fonts.notCopied)
        if (!m_fontsNotCopied.contains(font.name)) {
            m_fontsNotCopied.insert(font.name);
            m_outcome.fontsNotCopied << font;
        }
    return true;
}

void QNPackageController::createPDFForDocItem(const PreflightedDocument& document)
{
    m_progress->setProgr2ValueToStageOfSingleDoc(QStringLiteral("pdf"));
    showProgress();
    const QString target = QDir(m_targetPackageFolderPath)
                               .filePath(QFileInfo(document.docItem.name).completeBaseName() + QStringLiteral(".pdf"));
    if (const app::Status exported =
            m_request->host.exportDocumentToPdf(document.docItem.name, target, m_request->choices.pdfPreset);
        !exported) {
        log(QStringLiteral("-> can't create PDF: %1").arg(exported.error().text()));
        m_outcome.warnings << exported.error();
    }
}

void QNPackageController::createReportsForDocItem(const PreflightedDocument& document)
{
    m_progress->setProgr2ValueToStageOfSingleDoc(QStringLiteral("report"));
    showProgress();
    if (m_request->choices.pdfReport)
        createPDFReportForDocName(document);
    if (!m_request->choices.textReport)
        return;
    const reports::QNTextReport report;
    const QString text =
        report.reportText(document.finalFontItems, document.finalColorItems, document.finalLinkItems, {},
                          reports::reportDocumentInfo(document.docInfo), QDateTime::currentDateTime());
    const app::Result<QString> saved = reports::QNTextReport::saveReportFile(
        text.toUtf8(), m_targetPackageFolderPath, reports::QNTextReport::reportFileName(document.docItem.name),
        m_request->choices.overwrite ? reports::QNTextReport::ExistingFile::Replace
                                     : reports::QNTextReport::ExistingFile::Number);
    if (!saved) {
        log(QStringLiteral("-> can't write the text report: %1").arg(saved.error().text()));
        m_outcome.warnings << saved.error();
    }
}

void QNPackageController::createPDFReportForDocName(const PreflightedDocument& document)
{
    const QString fileName = reportNameForDocName(document.docItem.name, QStringLiteral("_Quillon_Report.pdf"));
    if (!m_request->writePdfReport) {
        m_outcome.warnings << app::makeError(
            QStringLiteral("The PDF report (%1) is not made by this program; ask for the text report instead.")
                .arg(fileName),
            document.docItem.path);
        return;
    }
    const app::Result<QString> saved =
        m_request->writePdfReport(document, m_targetPackageFolderPath, fileName, m_request->choices.overwrite);
    if (!saved) {
        log(QStringLiteral("-> can't write the PDF report: %1").arg(saved.error().text()));
        m_outcome.warnings << saved.error();
    }
}

bool QNPackageController::moveDocFromTmpFolderToPackageFolder(const PreflightedDocument& document)
{
    m_progress->setProgr2ValueToStageOfSingleDoc(QStringLiteral("moveDoc"));
    showProgress();
    const QString name = document.docItem.name;
    const QString source = QDir(m_stagingFolder).filePath(name);
    const QString destination = existingDestination() == ExistingDestination::Replace
                                    ? QDir(m_targetPackageFolderPath).filePath(name)
                                    : app::finalPathByAppendingNumberToFileName(name, m_targetPackageFolderPath);
    if (QFileInfo::exists(destination))
        QFile::remove(destination);
    const app::Status moved = movePath(source, destination);
    packagedDocument(document, destination);
    if (!moved) {
        suspend(QStringLiteral("Cannot copy document \"%1\"").arg(name),
                QStringLiteral("Error: %1\n\nFile: %2\n\nFolder: %3")
                    .arg(moved.error().message, source, m_targetPackageFolderPath),
                moved.error());
        return false;
    }
    return true;
}

bool QNPackageController::moveFontsFromTmpFolderToPackageFolder()
{
    const QString fonts = QDir(m_stagingFolder).filePath(kDocumentFontsFolderName);
    if (!QFileInfo(fonts).isDir()) {
        log(QStringLiteral("no tmp fonts folder [normal if all fonts missing or no fonts]: %1").arg(fonts));
        return true;
    }
    m_progress->setProgr2ValueToStageOfSingleDoc(QStringLiteral("moveFonts"));
    showProgress();
    const QString destination = QDir(m_targetPackageFolderPath).filePath(kDocumentFontsFolderName);
    app::Status moved = movePath(fonts, destination);
    if (!moved && moved.error().message.contains(QLatin1String("exists"))) {
        QDir(destination).removeRecursively();
        moved = movePath(fonts, destination);
        if (!moved)
            log(QStringLiteral("-> can't move fonts: %1").arg(moved.error().text()));
        return true;
    }
    if (!moved) {
        suspend(QStringLiteral("Cannot move fonts to \"%1\"").arg(QFileInfo(m_targetPackageFolderPath).fileName()),
                QStringLiteral("Error: %1").arg(moved.error().message), moved.error());
        return false;
    }
    return true;
}

void QNPackageController::clearAndCleanUpAfterSeparateDoc()
{
    m_progress->clearProgressArea(2);
    showProgress();
    // The package handed on now holds a manifest of what it holds now; the batch end writes it
    // again once the relinking has changed the document.
    writeManifestOf(m_targetPackageFolderPath);
    if (m_request->deliver && !m_targetPackageFolderPath.isEmpty())
        m_request->deliver(m_targetPackageFolderPath);
}

void QNPackageController::clearAndCleanAfterBatchDone()
{
    m_progress->clearProgressArea(1);
    m_progress->clearProgressArea(2);
    showProgress();
    if (m_suspended) {
        log(QStringLiteral("stop: queue suspended"));
        return;
    }
    const PackageRunChoices& choices = m_request->choices;
    // The IDML of a package is written by the relinking, so it runs whenever IDML is wanted.
    if (choices.relinkToPackagedLinks || choices.createIdml) {
        const qsizetype count = m_outcome.pathsOfPackagedDocs.size();
        m_progress->setProgr1Maximum(static_cast<double>(count) + 1);
        for (qsizetype i = 0; i < count; ++i) {
            const QString path = m_outcome.pathsOfPackagedDocs.at(i);
            const QString documentFolder = QFileInfo(path).absolutePath();
            const QString linksFolder =
                choices.relinkBesideDocument ? documentFolder : QDir(documentFolder).filePath(kLinksFolderName);
            m_progress->setProgr1Status(QStringLiteral("Relinking to packaged links (%1 of %2): %3")
                                            .arg(i + 1)
                                            .arg(count)
                                            .arg(QFileInfo(path).fileName()),
                                        1);
            showProgress();
            if (const app::Status relinked = m_request->host.relinkLinksInDoc(path, linksFolder, choices.createIdml);
                !relinked) {
                log(QStringLiteral("-> ERR: relinking failed!"));
                m_outcome.warnings << app::makeError(
                    QStringLiteral("not relinked to the packaged links: %1").arg(relinked.error().message), path);
            }
        }
        m_progress->clearProgressArea(1);
        showProgress();
    }
    setInDesignScriptUserInteraction(m_request->host, true);
    for (const QString& folder : std::as_const(m_outcome.packageFolders))
        writeManifestOf(folder);
    if (m_request->deliver && !m_targetPackageFolderPath.isEmpty())
        m_request->deliver(m_targetPackageFolderPath);
    if (choices.openPackagedDocs) {
        QStringList documents = m_outcome.pathsOfPackagedDocs;
        if (!choices.openPackagedCopies) {
            documents.clear();
            for (const PreflightedDocument& document : m_request->documents)
                documents << document.docItem.path;
        }
        for (const QString& path : documents) {
            m_request->host.closeDocumentIfOpen(path);
            if (const app::Status opened = m_request->host.openDocument(path, true); !opened) {
                app::runAlert(m_sinks->alerts, QStringLiteral("Cannot open document"),
                              app::withSupportContact(opened.error().message), std::nullopt, true);
                break;
            }
        }
    }
    if (m_request->folderOperations)
        m_request->folderOperations(m_outcome.pathsOfPackagedDocs, choices.mode == PackageMode::Unified);
    m_batchDone = true;
}

void QNPackageController::suspend(const QString& title, const QString& message, const app::Error& error)
{
    app::runAlert(m_sinks->alerts, title, app::withSupportContact(message), std::nullopt, true);
    m_suspended = true;
    m_outcome.failure = error;
}

ExistingDestination QNPackageController::existingDestination() const
{
    // A file of the same name in a folder this run made is replaced, as the duplicate-free list
    // allows only one. A folder that was there is written into only when overwriting was asked
    // for, or when its name passed the existence test before "/" and ":" were replaced: then
    // nothing in it is replaced.
    return m_request->choices.overwrite || m_foldersMadeByRun.contains(m_targetPackageFolderPath)
               ? ExistingDestination::Replace
               : ExistingDestination::Number;
}

bool QNPackageController::cancelled() const
{
    return m_request->cancel != nullptr && m_request->cancel->isCancelled();
}

void QNPackageController::removeHalfMadePackage()
{
    // Only the folder in work is half made: finished separate packages stay, and a folder that
    // was there before the run is never removed.
    if (m_foldersMadeByRun.contains(m_targetPackageFolderPath)) {
        QDir(m_targetPackageFolderPath).removeRecursively();
        m_outcome.packageFolders.removeAll(m_targetPackageFolderPath);
        m_outcome.pathsOfPackagedDocs.removeIf(
            [this](const QString& path) { return path.startsWith(m_targetPackageFolderPath + u'/'); });
    }
}

void QNPackageController::log(const QString& line) const
{
    app::logLine(line);
    if (m_sinks->log)
        m_sinks->log(line);
}

void QNPackageController::packagedDocument(const PreflightedDocument& document, const QString& packagedPath)
{
    m_outcome.pathsOfPackagedDocs << packagedPath;
    // The line the preflight gave; counted again only for a document that comes without one.
    const QString summary = !document.statusLine.isEmpty()
                                ? document.statusLine
                                : results::QNSummaryOutlineController::loadPreflightStatusResults(
                                      document.finalFontItems, document.finalColorItems, document.finalLinkItems)
                                      .text;
    m_packagedDocuments << ManifestDocument{document.docItem.path, packagedPath, summary};
}

void QNPackageController::writeManifestOf(const QString& folder)
{
    if (!m_request->choices.writeManifest || folder.isEmpty() || !QFileInfo(folder).isDir())
        return;
    ManifestHeader header{m_request->choices.presetName, {}};
    for (const ManifestDocument& document : std::as_const(m_packagedDocuments))
        if (document.packaged.startsWith(folder + u'/'))
            header.documents << document;
    const app::Status written = writePackageManifest(folder, header, m_copies, m_request->cancel);
    if (!written) {
        log(QStringLiteral("-> can't write the package manifest: %1").arg(written.error().text()));
        m_outcome.warnings << written.error();
    }
}

void QNPackageController::showProgress() const
{
    if (m_sinks->observer != nullptr)
        m_sinks->observer->progressChanged(*m_progress);
}

} // namespace quillon::package
