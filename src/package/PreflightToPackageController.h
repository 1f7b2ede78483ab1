#pragma once

#include "package/FileItem.h"
#include "package/PackageProgress.h"
#include "package/PackageSettings.h"
#include "package/PreflightedDocument.h"

#include "app/Progress.h"
#include "app/Result.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <mutex>

namespace quillon::app {
class AlertSink;
}

namespace quillon::host {
class InDesignHost;
}

namespace quillon::package {

// The InDesign commands packaging sends, each alerting the user when it fails ("Cannot open
// document", "Cannot close document \"<name>\"", with the host's brief message).
bool openDocFromInDesign(host::InDesignHost& host, app::AlertSink& alerts, const QString& path);
bool closeDoc1(host::InDesignHost& host, app::AlertSink& alerts, const QString& path);
// Only logged when it fails.
void setInDesignScriptUserInteraction(host::InDesignHost& host, bool interactWithAll);

// What every document of a batch preflight shares.
struct BatchPreflightOptions {
    QVariantMap preset = {};      // the checkup preset the results are judged by; empty: not judged
    QStringList linkFolders = {}; // searched by file name for links missing at their recorded path
    QString workFolder = {};      // each document gets a folder of its own inside it, removed after
    app::CancelFlag* cancel = nullptr;
    // Documents preflighted at the same time. Each job but the first opens its document in a
    // host of its own, so jobs never share an active document; without `hostForJob` the
    // documents go one at a time through the controller's host.
    int jobs = 1;
    std::function<std::unique_ptr<host::InDesignHost>()> hostForJob = {};
};

// The bytes a batch will package, as the total-size field shows them.
struct TotalSizeToPackage {
    qint64 sizeBytes = 0;
    QString sizeStr;
};

// Preflights the documents to package one after another, keeps what packaging needs of each,
// and works out the links to copy and the bytes to package. Documents with alerts are packaged
// like all others: nothing here holds a document back. The window drives the same object.
class QNPreflightToPackageController {
public:
    // `batchBar` receives the batch bar's value (in percent) and status line.
    QNPreflightToPackageController(host::InDesignHost& host, app::AlertSink& alerts, app::ProgressSink& batchBar);

    // Preflights every document in order. False when there were none ("No files to preflight"),
    // when one could not be opened or preflighted (the batch ends there: failure() says why) or
    // when it was cancelled; the documents done stay recorded.
    bool preflightForPackaging(const QList<TNFileItem>& documents, PackageMode mode,
                               const BatchPreflightOptions& options);

    // Document path -> its preflight record, in the path order the duplicate check walks.
    const QMap<QString, PreflightedDocument>& preflightDataOfProcessedDocs() const { return m_processed; }
    void addPreflightDataForProcessedDoc(const PreflightedDocument& document);
    const app::Error& failure() const { return m_failure; }

    // The links of the processed documents without duplicates, kept for packaging.
    const QVariantList& composeArrOfLinksWithoutDuplicates();
    const QVariantList& linksWithoutDuplicates() const { return m_linksWithoutDuplicates; }
    qint64 sizeOfLinksWithoutDuplicates() const { return m_sizeOfLinksWithoutDuplicates; }

    // Unified: the duplicate-free links; separate: every document's, duplicates counted.
    qint64 sizeOfLinks() const;
    qint64 sizeOfInDesignDocs() const;
    static qint64 sizeOfExtraFiles(const QList<TNFileItem>& extras);
    // Fills the total size; the caller then has the free space evaluated against it.
    TotalSizeToPackage calculateTotalSizeToPackage(const QList<TNFileItem>& extras);
    const TotalSizeToPackage& totalSizeToPackageDict() const { return m_totalSize; }
    // The free space of `location` against the total; alerts and fails when it is not enough.
    FreeSpaceCheck evaluateFreeSpace(const QString& location) const;

    // "%@ (%li of %li):" of the document in work.
    QString composePreflightStatusBaseStr() const;
    // The batch bar at a stage of the document in work ("open", "links", ... "end"): the stage's
    // value scaled to the document's segment, with "<status base> <stage text>".
    void setBatchPreflightProgressValueToStage(const QString& stageKey);
    // The segment of one document, an integer division of 100: seven documents end at 98.
    double progressSegmentForDoc() const { return m_progressSegmentForDoc; }
    double batchBarValue() const { return m_batchBarValue; }

private:
    // The batch bar's place of one document; the bar shows the last one to move it.
    struct DocumentSlot {
        QString name;
        long index = 0; // from 1
        double startValue = 0;
    };
    app::Status preflightDoc(host::InDesignHost& host, const TNFileItem& document, const BatchPreflightOptions& options,
                             int index);
    bool preflightSeveralAtOnce(const QList<TNFileItem>& documents, const BatchPreflightOptions& options);
    void useSlot(const DocumentSlot& slot);
    // The stage's value and text for the current document; the caller holds the mutex.
    void showStageOfCurrentDoc(const QString& stageKey);

    host::InDesignHost& m_host;
    app::AlertSink& m_alerts;
    app::ProgressSink& m_batchBar;
    PackageMode m_mode = PackageMode::Unified;
    QMap<QString, PreflightedDocument> m_processed;
    QVariantList m_linksWithoutDuplicates;
    qint64 m_sizeOfLinksWithoutDuplicates = 0;
    TotalSizeToPackage m_totalSize;
    app::Error m_failure;
    QString m_currentName;
    long m_numOfDocsInBatch = 0;
    long m_indexOfCurrDocInBatch = 0;
    double m_progressSegmentForDoc = 0;
    double m_startValueOfCurrDoc = 0;
    double m_batchBarValue = 0;
    // Guards the bar, the records and the failure while documents are preflighted at once.
    mutable std::mutex m_mutex;
};

} // namespace quillon::package
