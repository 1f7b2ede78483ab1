#pragma once

#include "package/FileItem.h"
#include "package/PackageFonts.h"
#include "package/PackageManifest.h"
#include "package/PackageProgress.h"
#include "package/PreflightedDocument.h"

#include "app/Progress.h"
#include "app/Result.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <memory>
#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::host {
class InDesignHost;
}

namespace quillon::package {

// The choices of one packaging run, read from the settings as it starts.
struct PackageRunChoices {
    PackageMode mode = PackageMode::Unified;
    QString basePackageFolderPath; // where package folders are made
    QString namePart1;             // unified name, field 1
    QString namePart2;             // both modes, field 2
    bool overwrite = false;        // use an existing package folder (else a numbered one)
    bool collectLinks = true;
    bool collectFonts = true;
    bool placeLinksInDocFolder = false; // the links beside the document rather than in "Links"
    bool relinkToPackagedLinks = true;  // "packUpdate"
    bool relinkBesideDocument = false;  // "packPlace": the relinking finds the links beside the document
    bool createPdf = false;
    QString pdfPreset;
    bool createIdml = false;
    bool pdfReport = false;
    bool textReport = false;
    bool extrasInSubfolder = false;
    QString extrasSubfolderName;
    // The host's package command copies the document alone (the offline host): the font files
    // the font records name are copied by the package itself.
    bool fontsFromRecords = false;
    bool openPackagedDocs = false;  // "packOpenDoc"
    bool openPackagedCopies = true; // "openPackagedDocFlag": the copies, else the documents as added
    // Every package folder gets its manifest, the copies hashed as they are made.
    bool writeManifest = false;
    QString presetName; // named in the manifest
};

// Told whenever the bars change, and every 0.1 s while files are copied.
class PackageRunObserver {
public:
    virtual ~PackageRunObserver() = default;
    virtual void progressChanged(const PackageProgress& progress) = 0;
};

struct PackageRequest {
    host::InDesignHost& host;
    QList<PreflightedDocument> documents{}; // in the table's order
    // Unified: the batch's links without duplicates and their bytes (from the batch preflight).
    QVariantList linksWithoutDuplicates{};
    qint64 sizeOfLinksWithoutDuplicates = 0;
    QList<TNFileItem> extras{};
    PackageRunChoices choices{};
    app::CancelFlag* cancel = nullptr;
    // Hands a finished package folder on; none: nothing is delivered.
    std::function<void(const QString& folder)> deliver{};
    // After the batch: the packaged documents' paths and the mode (the folders shown to the user).
    std::function<void(const QStringList& packagedDocs, bool unified)> folderOperations{};
    // Where InDesign's package command puts the unified documents and fonts first; empty: the
    // system's "tmpPackage" folder. Made fresh for the run.
    QString stagingFolder{};
    // Writes a document's PDF report as `folder`/`fileName` (replacing a file of that name when
    // `replace`, else numbering the report) and returns its path. Painting needs Qt Gui, which
    // this layer does not link, so the program supplies it; none: the report is a warning.
    std::function<app::Result<QString>(const PreflightedDocument& document, const QString& folder,
                                       const QString& fileName, bool replace)>
        writePdfReport{};
};

struct PackageSinks {
    app::AlertSink& alerts;
    PackageRunObserver* observer = nullptr;
    // The log lines of the run, besides the system log.
    std::function<void(const QString& line)> log;
};

enum class PackageEnding {
    Completed,
    Stopped,   // a step failed: the rest of the run was not done
    Cancelled, // the half-made package folder was removed
};

struct PackageOutcome {
    PackageEnding ended = PackageEnding::Completed;
    std::optional<app::Error> failure; // the step that stopped the run
    QStringList packageFolders;
    QStringList pathsOfPackagedDocs;
    int linksCopied = 0;
    int extrasCopied = 0;
    qint64 bytesCopied = 0; // of links and extras
    QStringList fontsCopied;
    QList<FontNotCopied> fontsNotCopied;
    // What the user must know although the package was made: files not copied, no PDF, no
    // relinking.
    QList<app::Error> warnings;
};

// Turns preflighted documents into package folders, separate (one a document) or unified (one
// for the batch). The steps run in order on the calling thread: each document's operations form
// one serial chain, as a queue running one operation at a time would, and a step that fails
// ends the chain. Links and extras are copied by the copy engine on its own thread while this
// thread reports progress and watches the cancel flag.
class QNPackageController {
public:
    PackageOutcome packageDocuments(const PackageRequest& request, const PackageSinks& sinks);

    bool isProcessing() const { return m_isProcessing; }

    // The parts of a run, in the order they are called.
    void createFreshTmpPackageFolder();
    void packageDocsUnified();
    void packageDocsSeparately();
    void copyLinks(const QVariantList& links, const QString& folder);
    void copyExtras();
    void moveLinksOutOfLinksFolder();
    // One document's operations; false when one failed and the chain was stopped.
    bool runOperationsForDocItem(const PreflightedDocument& document);
    bool moveFontsFromTmpFolderToPackageFolder();
    void clearAndCleanUpAfterSeparateDoc();
    void clearAndCleanAfterBatchDone();

private:
    // After the links: the extras, then the post-links stages begin (links moved out of "Links",
    // bar 2 ready for the document's stages). False when the run was cancelled.
    bool copyExtrasAndStartPostLinksStages(const QString& progr2Maximum);
    bool collectFontsForDocAtPath(const PreflightedDocument& document);
    void createPDFForDocItem(const PreflightedDocument& document);
    void createReportsForDocItem(const PreflightedDocument& document);
    void createPDFReportForDocName(const PreflightedDocument& document);
    bool moveDocFromTmpFolderToPackageFolder(const PreflightedDocument& document);
    void copyFiles(const QList<std::pair<QString, QString>>& sourceAndFolder, bool extras);
    bool makePackageFolder(const QString& folder);
    void suspend(const QString& title, const QString& message, const app::Error& error);
    ExistingDestination existingDestination() const;
    bool cancelled() const;
    void removeHalfMadePackage();
    void log(const QString& line) const;
    void showProgress() const;
    void packagedDocument(const PreflightedDocument& document, const QString& packagedPath);
    // Written last in a folder, after everything the run puts there; a failure is a warning.
    void writeManifestOf(const QString& folder);

    const PackageRequest* m_request = nullptr;
    const PackageSinks* m_sinks = nullptr;
    PackageOutcome m_outcome;
    std::unique_ptr<PackageProgress> m_progress;
    bool m_isProcessing = false;
    bool m_suspended = false;
    bool m_batchDone = false;
    QString m_stagingFolder;
    QString m_targetPackageFolderPath;
    QStringList m_foldersMadeByRun; // package folders that were not there before the run
    QSet<QString> m_fontsCopied;
    QSet<QString> m_fontsNotCopied;
    CopiedFileRecords m_copies; // what the copies hashed, by the copy's path
    QList<ManifestDocument> m_packagedDocuments;
    int m_indexOfCurrDocInBatch = 0;
};

} // namespace quillon::package
