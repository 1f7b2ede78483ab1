#pragma once

#include "app/Progress.h"
#include "app/Result.h"

#include <QString>
#include <QStringList>

#include <functional>

#include <sys/stat.h>

namespace quillon::package {

// Small enough that a cancel or a progress tick is never far away, large enough that the kernel
// streams: about 5 ms of copying on a local disk.
inline constexpr qint64 kCopyChunkBytes = 4LL * 1024 * 1024;

// What a copy does when its destination name is already taken.
enum class ExistingDestination {
    Number,  // the existing file stays; the copy is named "<base>_<n><.ext>"
    Replace, // the user asked to overwrite: the copy takes the name in one rename
};

struct FileCopyOptions {
    ExistingDestination existing = ExistingDestination::Number;
    // Told the bytes copied so far after every chunk, on the copying thread.
    std::function<void(qint64 bytesCopied)> onBytes;
    // Checked before every chunk.
    const app::CancelFlag* cancel = nullptr;
    qint64 chunkBytes = kCopyChunkBytes;
    // The SHA-256 of the data, computed from the chunks as they pass, so the data is read once.
    bool sha256 = false;
    // The destination folder was made by this run, so no user file can be there: the copy is
    // written at its own name (claimed exclusively) without a temporary name and rename. A failure
    // or a cancel still removes it; a name already taken falls back to the temporary name.
    bool ownedFolder = false;
};

// What identifies a file's state: a copy whose size, modification time and inode are unchanged
// still has the data it was hashed with.
struct FileStamp {
    qint64 size = 0;
    qint64 modifiedNs = 0;
    quint64 inode = 0;
    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};
FileStamp fileStamp(const struct stat& info);

struct CopiedFile {
    QString destination;  // where the copy landed: numbered when the name was taken
    qint64 bytes = 0;     // data bytes copied
    QStringList warnings; // what of the file's metadata could not be kept
    QByteArray sha256;    // hex; only when asked for
    FileStamp stamp;      // of the copy as placed
};

// Copies one file, or a symbolic link as a link, to the path `destination`, keeping its mode,
// access and modification times and extended attributes: a packaged link with a new time would
// read "Modified". The copy is written under a temporary name in the destination folder and
// renamed into place, so no half-written file ever bears the name; a failure or a cancel removes
// it. The source is only read.
app::Result<CopiedFile> copyFile(const QString& source, const QString& destination,
                                 const FileCopyOptions& options = {});

} // namespace quillon::package
