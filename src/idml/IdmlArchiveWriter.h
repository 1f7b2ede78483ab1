#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <memory>

namespace quillon::idml {

// Writes a zip archive in the IDML way: "mimetype" first and stored, the XML parts deflated.
// The archive appears at its path only when close() succeeds.
class IdmlArchiveWriter {
public:
    static constexpr quint32 kRegularFileMode = 0100644;
    static constexpr quint32 kSymbolicLinkMode = 0120777;

    // Starts a new archive at `path`, replacing any file there when closed.
    static app::Result<IdmlArchiveWriter> create(const QString& path);

    IdmlArchiveWriter(IdmlArchiveWriter&&) noexcept;
    IdmlArchiveWriter& operator=(IdmlArchiveWriter&&) noexcept;
    ~IdmlArchiveWriter(); // discards an archive that was not closed

    // The "mimetype" entry an IDML package starts with, stored uncompressed.
    app::Status addMimetype();
    // An entry with the bytes; `unixMode` records the file type and permissions (a link's bytes
    // are its target).
    app::Status addFile(const QString& name, const QByteArray& bytes, bool compress = true,
                        quint32 unixMode = kRegularFileMode);
    app::Status close();

private:
    struct Handle;
    IdmlArchiveWriter(QString path, std::unique_ptr<Handle> handle);

    QString m_path;
    std::unique_ptr<Handle> m_handle;
    std::deque<QByteArray> m_contents; // the archive reads them when it is closed
};

} // namespace quillon::idml
