#pragma once

#include "package/FileCopy.h"

#include "app/Progress.h"
#include "app/Result.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>

namespace quillon::package {

class FileCopyOperation;

// Told when a copy starts and ends, on a copying thread, one call at a time: the starts in the
// order queued, each before its copy, and the ends in the same order.
class FileCopyDelegate {
public:
    virtual ~FileCopyDelegate() = default;
    virtual void fileCopyOperationWillStart(const std::shared_ptr<FileCopyOperation>& operation) = 0;
    // The name's grammar is kept: other parts of the program know it by this name.
    virtual void fileCopyOperationDidFinished(const std::shared_ptr<FileCopyOperation>& operation) = 0;
};

enum class FileCopyState : int {
    Created = 0,
    Copying = 1,
    Finished = 2, // copied
    Failed = 3,   // not copied (error() says why), or cancelled
};

// One file to copy: from `source` to the path `destination` (the destination folder and the
// source's file name). Made on any thread, run once by the copy queue.
class FileCopyOperation : public std::enable_shared_from_this<FileCopyOperation> {
public:
    static std::shared_ptr<FileCopyOperation> create(const QString& source, const QString& destination,
                                                     FileCopyDelegate* delegate,
                                                     ExistingDestination existing = ExistingDestination::Number);

    // Tells the delegate, copies, tells the delegate. An operation cancelled before it started
    // fails at once without telling anybody.
    void main();
    // The three steps of main(), for a queue that copies several at once and tells the ends in
    // order. start() is false when the operation was cancelled before it started (it has failed).
    bool start();
    void copy();
    void tellFinished();
    bool isDone() const
    {
        const FileCopyState state = fCopyState();
        return state == FileCopyState::Finished || state == FileCopyState::Failed;
    }
    // Before it is queued: compute the copy's SHA-256 while copying.
    void hashWhileCopying() { m_sha256Wanted = true; }
    // Before it is queued: the destination folder is the run's own (see FileCopyOptions).
    void writeInOwnedFolder() { m_ownedFolder = true; }
    void cancel() { m_cancel.cancel(); }
    bool isCancelled() const { return m_cancel.isCancelled(); }

    const QString& srcPath() const { return m_source; }
    const QString& dstPath() const { return m_destination; }
    const QString& fName() const { return m_name; }
    // The source's size when the operation was made; nothing when it could not be read.
    std::optional<qint64> fSize() const { return m_size; }
    // Bytes copied so far; read from any thread.
    qint64 bWritten() const { return m_written.load(std::memory_order_relaxed); }
    FileCopyState fCopyState() const { return m_state.load(std::memory_order_acquire); }
    // 0 when copied, -1 when not.
    int fCopyExitCode() const { return fCopyState() == FileCopyState::Failed ? -1 : 0; }

    // Valid once the state is Finished or Failed.
    const std::optional<app::Error>& error() const { return m_error; }
    const QString& copiedTo() const { return m_copiedTo; } // numbered when the name was taken
    const QStringList& warnings() const { return m_warnings; }
    const QByteArray& sha256() const { return m_sha256; } // hex; empty unless hashed
    const FileStamp& copiedStamp() const { return m_stamp; }

private:
    FileCopyOperation(const QString& source, const QString& destination, FileCopyDelegate* delegate,
                      ExistingDestination existing);

    QString m_source;
    QString m_destination;
    QString m_name;
    std::optional<qint64> m_size;
    FileCopyDelegate* m_delegate;
    ExistingDestination m_existing;
    app::CancelFlag m_cancel;
    std::atomic<qint64> m_written{0};
    std::atomic<FileCopyState> m_state{FileCopyState::Created};
    std::optional<app::Error> m_error;
    QString m_copiedTo;
    QStringList m_warnings;
    bool m_sha256Wanted = false;
    bool m_ownedFolder = false;
    bool m_started = false;
    QByteArray m_sha256;
    FileStamp m_stamp;
};

} // namespace quillon::package
