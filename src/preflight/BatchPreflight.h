#pragma once

#include "preflight/ProgressStage.h"

#include <QString>

#include <optional>

namespace quillon::preflight {

// What the driver asks of the batch controller when it preflights the documents of a batch one
// after another. The batch controller sits above the driver (packaging), hence this interface.
class BatchPreflight {
public:
    virtual ~BatchPreflight() = default;

    struct QueuedDocument {
        QString name; // the file name InDesign knows the open document by
        QString path; // its POSIX path
    };
    // The first entry of the queue of documents waiting to be preflighted.
    virtual std::optional<QueuedDocument> nextDocument() = 0;

    // Progress of the batch: every stage of a document but "stop", and increments with status.
    virtual void setBatchPreflightProgressValueToStage(ProgressStage stage) = 0;
    virtual void incrementBatchProgressBy(double amount, const QString& status) = 0;

    // A document could not be preflighted: the batch and its packaging stop processing.
    virtual void stopProcessing() = 0;
    // A document's results are loaded (its data files are in place for the controller to keep).
    virtual void preflightIsDoneForDocAtPath(const QString& path) = 0;
};

} // namespace quillon::preflight
