#include "package/FileCopyOperation.h"

#include "app/Log.h"
#include "app/RegularFile.h"

#include <QFileInfo>

#include <sys/stat.h>

namespace quillon::package {

std::shared_ptr<FileCopyOperation> FileCopyOperation::create(const QString& source, const QString& destination,
                                                             FileCopyDelegate* delegate, ExistingDestination existing)
{
    return std::shared_ptr<FileCopyOperation>(new FileCopyOperation(source, destination, delegate, existing));
}

FileCopyOperation::FileCopyOperation(const QString& source, const QString& destination, FileCopyDelegate* delegate,
                                     ExistingDestination existing)
    : m_source(source), m_destination(destination), m_name(QFileInfo(source).fileName()), m_delegate(delegate),
      m_existing(existing)
{
    struct stat info {};
    if (::lstat(app::localBytesOfPath(source).constData(), &info) == 0)
        m_size = info.st_size;
}

void FileCopyOperation::main()
{
    if (!start())
        return;
    copy();
    tellFinished();
}

bool FileCopyOperation::start()
{
    if (isCancelled()) {
        m_error = app::makeError(QStringLiteral("copying was cancelled"), m_source);
        m_state.store(FileCopyState::Failed, std::memory_order_release);
        return false;
    }
    m_started = true;
    if (m_delegate != nullptr)
        m_delegate->fileCopyOperationWillStart(shared_from_this());
    m_state.store(FileCopyState::Copying, std::memory_order_release);
    return true;
}

void FileCopyOperation::copy()
{
    FileCopyOptions options;
    options.existing = m_existing;
    options.cancel = &m_cancel;
    options.sha256 = m_sha256Wanted;
    options.ownedFolder = m_ownedFolder;
    options.onBytes = [this](qint64 copied) { m_written.store(copied, std::memory_order_relaxed); };
    app::Result<CopiedFile> copied = copyFile(m_source, m_destination, options);
    if (copied) {
        m_copiedTo = copied->destination;
        m_warnings = copied->warnings;
        m_sha256 = copied->sha256;
        m_stamp = copied->stamp;
    } else {
        m_error = copied.error();
        app::logError(QStringLiteral("copy failed: %1").arg(copied.error().text()));
    }
    m_state.store(copied ? FileCopyState::Finished : FileCopyState::Failed, std::memory_order_release);
}

void FileCopyOperation::tellFinished()
{
    if (m_started && m_delegate != nullptr)
        m_delegate->fileCopyOperationDidFinished(shared_from_this());
}

} // namespace quillon::package
