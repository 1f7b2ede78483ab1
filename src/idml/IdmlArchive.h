#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace quillon::idml {

// How much an archive may unpack to. An IDML of a thousand spreads holds about 50 MB of XML, so
// these leave room for very large documents while stopping archives built to fill the disk.
struct UnpackLimits {
    qint64 maxTotalBytes = qint64(2) << 30;
    qint64 maxEntries = 200'000;
};

// A read-only zip archive (an IDML package), read in process.
class IdmlArchive {
public:
    struct Entry {
        QString name; // as stored ("Spreads/Spread_u1.xml"; folders end in "/")
        // The name as a path below the package ("./Stories//a.xml" is "Stories/a.xml"); empty
        // when it would lead outside.
        QString path;
        quint64 index = 0;
        qint64 size = 0;      // uncompressed, as declared
        quint32 unixMode = 0; // file type and permissions when the archive records them, else 0
    };

    // Opens the archive. Errors name the file (or `reportedName`, such as the document a
    // repaired copy stands for): missing, a folder, empty, unreadable, or not a zip archive
    // (which includes a truncated one).
    static app::Result<IdmlArchive> open(const QString& path, const QString& reportedName = {});

    IdmlArchive(IdmlArchive&&) noexcept;
    IdmlArchive& operator=(IdmlArchive&&) noexcept;
    ~IdmlArchive();

    const QString& path() const { return m_path; }
    // The file named in messages.
    const QString& name() const { return m_name; }
    const std::vector<Entry>& entries() const { return m_entries; }
    // Entries are found by their path below the package, however the archive spells it.
    bool contains(const QString& name) const;
    // The entry of that path; null when there is none.
    const Entry* entry(const QString& name) const;

    // The entry's bytes; refused when it declares more than `maxBytes`. May be called from several
    // threads at once: each read takes a handle of its own.
    app::Result<QByteArray> readEntry(const QString& name, qint64 maxBytes = qint64(512) << 20) const;

    // Refuses an archive that could write outside its folder (absolute paths, "..", links or
    // other special files), that names one path twice (reading would see one entry and unpacking
    // keep the other) or that is too large, naming the first offending entry.
    app::Status checkEntriesAreSafe(const UnpackLimits& limits = {}) const;

    // Unpacks every entry below `folder` (made when missing). Checks the whole archive first, so
    // a refused archive writes nothing; a damaged entry stops the unpacking with its name.
    // Existing files of the same names are replaced; links are never followed.
    app::Status extractTo(const QString& folder, const UnpackLimits& limits = {}) const;

private:
    struct Handle;
    class Handles;
    IdmlArchive(QString path, QString name, std::unique_ptr<Handle> handle, std::vector<Entry> entries);

    QString m_path;
    QString m_name;
    std::unique_ptr<Handles> m_handles;
    std::vector<Entry> m_entries;
    QHash<QString, size_t> m_indexByPath; // the first entry of each path
};

// libzip's words for the error code zip_open gave.
QString zipOpenErrorText(int code);

// The entry name as a relative path below the unpacked folder ("\" read as "/", "." parts
// dropped), or nothing when it would leave the folder (absolute, drive-lettered or with "..").
std::optional<QString> safeRelativeEntryPath(const QString& entryName);

} // namespace quillon::idml
