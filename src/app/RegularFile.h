#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>

namespace quillon::app {

// Every file the program reads (documents, presets, settings, property lists, linked files) is
// opened here first: symlinks are followed, the open never blocks (a FIFO put where a file was
// expected), and anything but a regular file is refused with what it is, so that a device such
// as /dev/zero can neither stall a read nor fill memory.

// Whole-file reads of records, presets and settings stop here; real ones are a few kilobytes.
inline constexpr qint64 kMaxPropertyListBytes = 16LL * 1024 * 1024;
// The preflight data files hold a record per link, font and colour of a document; they may be large.
inline constexpr qint64 kMaxDataFileBytes = 256LL * 1024 * 1024;

// File names are bytes. A name that is not valid UTF-8 keeps its stray bytes in the QString as
// the code points U+DC80..U+DCFF, so that it can still be opened; these two convert between a
// path and the bytes the system sees. Valid UTF-8 converts as usual.
QString pathFromLocalBytes(QByteArrayView bytes);
QByteArray localBytesOfPath(const QString& path);

// A path as a person reads it: stray bytes shown as "\xNN".
QString displayPath(const QString& path);

// The system's text for `errorNumber`, starting in lower case ("no space left on device").
QString systemErrorText(int errorNumber);

// An Error naming `path` for a failed open or stat: "the file does not exist", "cannot be opened: too many
// levels of symbolic links", "cannot be opened: permission denied", ...
Error openError(const QString& path, int errorNumber);

// An open regular file, read only; closed with the object.
class ReadableFile {
public:
    ReadableFile() = default;
    ~ReadableFile();
    ReadableFile(ReadableFile&& other) noexcept;
    ReadableFile& operator=(ReadableFile&& other) noexcept;

    int descriptor() const { return m_fd; }
    // The size when opened.
    qint64 size() const { return m_size; }

private:
    friend Result<ReadableFile> openRegularFile(const QString& path);
    int m_fd = -1;
    qint64 m_size = 0;
};

Result<ReadableFile> openRegularFile(const QString& path);

// Succeeds when `path` opens as a regular file; the Error says why not.
Status checkRegularFile(const QString& path);

// The whole file, refused when it is larger than `maxBytes` (the message names both).
Result<QByteArray> readRegularFile(const QString& path, qint64 maxBytes);
// The same for a file already opened (and its size seen) as `path`.
Result<QByteArray> readOpenedFile(const ReadableFile& file, const QString& path, qint64 maxBytes);

// Writes `bytes` to a temporary file beside `path`, flushed to disk, and renames it into place: a
// failed write (a full disk, a size limit) leaves the old file as it was, and the message gives
// the failing call's own reason ("No space left on device", "File too large").
Status writeFileReplacing(const QString& path, QByteArrayView bytes);

// Whether a written file is flushed to disk before it is renamed into place. A file the program
// makes again on every run (the preflight's data files) is not worth the wait.
enum class Durability { Flushed, Unflushed };

// Hands bytes to the file being written; false once a write has failed.
using ChunkWriter = std::function<bool(QByteArrayView bytes)>;
// The same for text made in pieces, so that it is never held whole: `produce` hands each piece to
// `write`. When it returns an error, or a write fails, the file is left as it was.
Status writeFileReplacing(const QString& path, const std::function<Status(const ChunkWriter& write)>& produce,
                          Durability durability = Durability::Flushed);

} // namespace quillon::app
