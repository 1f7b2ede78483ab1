#include "package/FileCopy.h"

#include "package/FileMetadata.h"
#include "package/Sha256.h"

#include "app/FilePaths.h"
#include "app/RegularFile.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::package {

namespace {

using app::Error;
using app::makeError;
using app::Result;

// A file the copy is writing, removed unless it was put into place.
class TemporaryCopy {
public:
    explicit TemporaryCopy(QByteArray path) : m_path(std::move(path)) {}
    ~TemporaryCopy()
    {
        if (m_fd >= 0)
            ::close(m_fd);
        // Only what this copy made goes: the name may be a file that was there.
        if (m_made && !m_placed)
            ::unlink(m_path.constData());
    }
    TemporaryCopy(const TemporaryCopy&) = delete;
    TemporaryCopy& operator=(const TemporaryCopy&) = delete;

    const QByteArray& path() const { return m_path; }
    int fd() const { return m_fd; }
    void setFd(int fd)
    {
        m_fd = fd;
        m_made = fd >= 0;
    }
    void made() { m_made = true; }
    // Closes the file; false with errno when the system reports a late write failure.
    bool close()
    {
        const int fd = std::exchange(m_fd, -1);
        return ::close(fd) == 0;
    }
    void placed() { m_placed = true; }

private:
    QByteArray m_path;
    int m_fd = -1;
    bool m_made = false;
    bool m_placed = false;
};

// A name in the destination folder that no one else uses; short, so that a long file name
// still leaves room for it.
QByteArray temporaryName(const QString& destination)
{
    const QString folder = QFileInfo(destination).path();
    return app::localBytesOfPath(folder) + "/.quillon-copy-" +
           QByteArray::number(QRandomGenerator::global()->generate64(), 16);
}

Error writeError(const QString& destination, int errorNumber)
{
    return makeError(QStringLiteral("cannot be written: %1").arg(app::systemErrorText(errorNumber)), destination);
}

Error cancelled(const QString& source)
{
    return makeError(QStringLiteral("copying was cancelled"), source);
}

bool isCancelled(const FileCopyOptions& options)
{
    return options.cancel != nullptr && options.cancel->isCancelled();
}

bool writeAll(int fd, const char* bytes, ssize_t size)
{
    for (ssize_t done = 0; done < size;) {
        const ssize_t put = ::write(fd, bytes + done, static_cast<size_t>(size - done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return false;
        done += put;
    }
    return true;
}

// The buffer reads and writes go through, made once for each copying thread: thousands of small
// files would otherwise each pay for clearing a megabyte.
std::span<char> copyBuffer(const FileCopyOptions& options)
{
    constexpr size_t kBufferBytes = 1 << 20;
    thread_local const std::unique_ptr<char[]> buffer = std::make_unique_for_overwrite<char[]>(kBufferBytes);
    return {buffer.get(), std::min<size_t>(kBufferBytes, static_cast<size_t>(std::max<qint64>(options.chunkBytes, 1)))};
}

bool readFor(int fd, std::span<char> buffer, ssize_t& got)
{
    do
        got = ::read(fd, buffer.data(), buffer.size());
    while (got < 0 && errno == EINTR);
    return got >= 0;
}

// Hashes what is left of `in` to its end; 0, ECANCELED or the read's errno.
int hashRest(int in, const FileCopyOptions& options, Sha256& hash)
{
    const std::span<char> buffer = copyBuffer(options);
    while (true) {
        if (isCancelled(options))
            return ECANCELED;
        ssize_t got = 0;
        if (!readFor(in, buffer, got))
            return errno;
        if (got == 0)
            return 0;
        hash.addData(QByteArrayView(buffer.data(), got));
    }
}

// After a clone there is only the hash to take. Otherwise the kernel copies without the data passing through this
// process where it can; across file systems on older kernels, or on file systems that refuse, plain reads and writes
// take over from where it stopped. A hash wanted makes the data pass through here, read once for both. The kernel's
// copy stops at the size seen when the source was opened, as the copy's record says, which saves the call that would
// find the end. Returns 0, ECANCELED or the failing call's errno.
int copyData(int in, int out, qint64 size, const FileCopyOptions& options, qint64& copied, Sha256* hash, bool cloned)
{
    // A clone is the whole copy at once; the hash then reads the source once.
    if (struct stat info{}; cloned && ::fstat(out, &info) == 0) {
        copied = info.st_size;
        if (options.onBytes)
            options.onBytes(copied);
        return hash != nullptr ? hashRest(in, options, *hash) : 0;
    }
    bool inKernel = hash == nullptr;
    const std::span<char> buffer = copyBuffer(options);
    // A file that one read takes whole needs no read-ahead advice.
    if (!inKernel && size > static_cast<qint64>(buffer.size()))
        ::posix_fadvise(in, 0, 0, POSIX_FADV_SEQUENTIAL);
    while (true) {
        if (isCancelled(options))
            return ECANCELED;
        ssize_t got = 0;
        if (inKernel) {
            if (copied >= size)
                return 0;
            got = ::copy_file_range(in, nullptr, out, nullptr,
                                    static_cast<size_t>(std::min(options.chunkBytes, size - copied)), 0);
            // 0 is also what some file systems answer for data they cannot copy: let a read say.
            if (got == 0 ||
                (got < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP))) {
                inKernel = false;
                continue;
            }
            if (got < 0 && errno == EINTR)
                continue;
        } else if (copied >= size && size > 0) {
            // The size seen is copied: the read that would find the end is saved, as above.
            return 0;
        } else if (readFor(in, buffer, got) && got > 0) {
            if (hash != nullptr)
                hash->addData(QByteArrayView(buffer.data(), got));
            if (!writeAll(out, buffer.data(), got))
                return errno;
        }
        if (got < 0)
            return errno;
        if (got == 0)
            return 0;
        copied += got;
        if (options.onBytes)
            options.onBytes(copied);
    }
}

// The source opened for reading, with what it is. Non-blocking, so that a FIFO put in its place
// cannot stall the open; a regular file's reads ignore the flag.
struct OpenedSource {
    int fd = -1;
    struct stat info {};
    ~OpenedSource()
    {
        if (fd >= 0)
            ::close(fd);
    }
};

Result<CopiedFile> copyRegular(const QString& source, const OpenedSource& in, const QString& destination,
                               TemporaryCopy& copy, const FileCopyOptions& options)
{
    if (!S_ISREG(in.info.st_mode))
        return makeError(QStringLiteral("is not a regular file"), source);
    if (copy.fd() < 0)
        copy.setFd(::open(copy.path().constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (copy.fd() < 0)
        return writeError(destination, errno);
    CopiedFile copied;
    std::optional<Sha256> hash;
    if (options.sha256)
        hash.emplace();
    // A file system that shares blocks between files makes the copy at once. One that refused is
    // not asked again for the next file from the same file system into the same folder: thousands
    // of links would each pay a failing call.
    thread_local std::pair<dev_t, QByteArray> refusedClone;
    const QByteArray folder = copy.path().left(copy.path().lastIndexOf('/'));
    bool cloned = false;
    if (refusedClone.first != in.info.st_dev || refusedClone.second != folder) {
        cloned = ::ioctl(copy.fd(), FICLONE, in.fd) == 0;
        if (!cloned)
            refusedClone = {in.info.st_dev, folder};
    }
    if (const int failed =
            copyData(in.fd, copy.fd(), in.info.st_size, options, copied.bytes, hash ? &*hash : nullptr, cloned);
        failed != 0) {
        if (failed == ECANCELED)
            return cancelled(source);
        return makeError(QStringLiteral("could not be copied to %1: %2")
                             .arg(app::displayPath(destination), app::systemErrorText(failed)),
                         source);
    }
    copied.warnings = keepFileMetadata(in.fd, copy.fd(), in.info);
    // Only the manifest asks for the copy's stamp.
    if (hash) {
        copied.sha256 = hash->hexResult();
        if (struct stat placed{}; ::fstat(copy.fd(), &placed) == 0)
            copied.stamp = fileStamp(placed);
    }
    if (!copy.close())
        return writeError(destination, errno);
    return copied;
}

Result<CopiedFile> copyLink(const QString& source, const QString& destination, TemporaryCopy& copy,
                            const struct stat& info, const FileCopyOptions& options)
{
    const QByteArray from = app::localBytesOfPath(source);
    QByteArray target(static_cast<qsizetype>(info.st_size) + 1, Qt::Uninitialized);
    const ssize_t length = ::readlink(from.constData(), target.data(), static_cast<size_t>(target.size()));
    if (length < 0 || length >= target.size())
        return makeError(
            QStringLiteral("the link cannot be read: %1").arg(app::systemErrorText(length < 0 ? errno : ENAMETOOLONG)),
            source);
    target.truncate(length);
    if (::symlink(target.constData(), copy.path().constData()) != 0)
        return writeError(destination, errno);
    copy.made();
    CopiedFile copied;
    copied.warnings = keepLinkMetadata(from, copy.path(), info);
    if (options.sha256)
        copied.sha256 = Sha256::hexOf(target);
    if (struct stat placed{}; ::lstat(copy.path().constData(), &placed) == 0)
        copied.stamp = fileStamp(placed);
    return copied;
}

// Puts the finished copy at its name. Numbering takes a free name and claims it in the same
// call that renames, so a file that appears meanwhile is never replaced.
Result<QString> placeCopy(TemporaryCopy& copy, const QString& destination, ExistingDestination existing)
{
    if (existing == ExistingDestination::Replace) {
        if (::rename(copy.path().constData(), app::localBytesOfPath(destination).constData()) != 0)
            return writeError(destination, errno);
        copy.placed();
        return destination;
    }
    const QFileInfo wanted(destination);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const QString candidate = app::finalPathByAppendingNumberToFileName(wanted.fileName(), wanted.path());
        const QByteArray target = app::localBytesOfPath(candidate);
        int placed = ::renameat2(AT_FDCWD, copy.path().constData(), AT_FDCWD, target.constData(), RENAME_NOREPLACE);
        // File systems without the no-replace rename get a hard link, which fails on a taken name too.
        if (placed != 0 && (errno == EINVAL || errno == ENOSYS)) {
            placed = ::link(copy.path().constData(), target.constData());
            if (placed == 0)
                ::unlink(copy.path().constData());
        }
        if (placed == 0) {
            copy.placed();
            return candidate;
        }
        if (errno != EEXIST)
            return writeError(candidate, errno);
    }
    return writeError(destination, EEXIST);
}

} // namespace

FileStamp fileStamp(const struct stat& info)
{
    return {info.st_size, qint64(info.st_mtim.tv_sec) * 1'000'000'000 + info.st_mtim.tv_nsec, info.st_ino};
}

Result<CopiedFile> copyFile(const QString& source, const QString& destination, const FileCopyOptions& options)
{
    if (isCancelled(options))
        return cancelled(source);
    const QByteArray from = app::localBytesOfPath(source);
    OpenedSource in;
    in.fd = ::open(from.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    // A symbolic link refuses to open without following; it is copied as a link.
    const bool isLink =
        in.fd < 0 && errno == ELOOP && ::lstat(from.constData(), &in.info) == 0 && S_ISLNK(in.info.st_mode);
    if (!isLink && (in.fd < 0 || ::fstat(in.fd, &in.info) != 0))
        return app::openError(source, errno);
    // In a folder of the run's own, the name is claimed by the exclusive create itself; a name
    // already taken falls back to a temporary name.
    const QByteArray finalName = app::localBytesOfPath(destination);
    TemporaryCopy direct(finalName);
    if (options.ownedFolder && !isLink)
        direct.setFd(::open(finalName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (direct.fd() >= 0) {
        Result<CopiedFile> copied = copyRegular(source, in, destination, direct, options);
        if (copied) {
            direct.placed();
            copied->destination = destination;
        }
        return copied;
    }
    TemporaryCopy copy(temporaryName(destination));
    Result<CopiedFile> copied = isLink ? copyLink(source, destination, copy, in.info, options)
                                       : copyRegular(source, in, destination, copy, options);
    if (!copied)
        return copied;
    Result<QString> placed = placeCopy(copy, destination, options.existing);
    if (!placed)
        return placed.error();
    copied->destination = *placed;
    return copied;
}

} // namespace quillon::package
