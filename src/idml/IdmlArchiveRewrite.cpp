#include "idml/IdmlArchiveRewrite.h"

#include "app/RegularFile.h"
#include "idml/IdmlArchive.h"

#include <QFileInfo>

#include <cerrno>
#include <cstdlib>
#include <deque>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zip.h>

namespace quillon::idml {

using app::makeError;
using app::Status;

namespace {

struct ZipCloser {
    void operator()(zip_t* zip) const { zip_discard(zip); }
};
using ZipPointer = std::unique_ptr<zip_t, ZipCloser>;

QString zipErrorText(zip_t* zip)
{
    return QString::fromUtf8(zip_strerror(zip));
}

// The temporary file the new archive is written to, removed unless it was renamed into place.
class TemporaryArchive {
public:
    explicit TemporaryArchive(const QString& path)
    {
        const QFileInfo info(path);
        m_name = app::localBytesOfPath(info.absolutePath() + QStringLiteral("/.") + info.fileName() +
                                       QStringLiteral(".relink-XXXXXX"));
        const int fd = mkstemp(m_name.data());
        m_errno = errno;
        if (fd >= 0)
            ::close(fd);
        else
            m_name.clear();
    }
    ~TemporaryArchive()
    {
        if (!m_name.isEmpty())
            ::unlink(m_name.constData());
    }
    TemporaryArchive(const TemporaryArchive&) = delete;
    TemporaryArchive& operator=(const TemporaryArchive&) = delete;

    bool made() const { return !m_name.isEmpty(); }
    int creationError() const { return m_errno; }
    const QByteArray& name() const { return m_name; }
    void keep() { m_name.clear(); }

private:
    QByteArray m_name;
    int m_errno = 0;
};

// Entries the new archive reads when it is closed.
struct Writing {
    zip_t* source;
    zip_t* target;
    std::deque<QByteArray> contents;
};

// The time a rewritten entry keeps: its time in the source archive (none for an entry the source
// lacks), so the same document relinked twice gives the same bytes.
std::optional<time_t> sourceEntryTime(zip_t* source, zip_int64_t index)
{
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (index < 0 || zip_stat_index(source, zip_uint64_t(index), 0, &stat) != 0 || !(stat.valid & ZIP_STAT_MTIME))
        return std::nullopt;
    return stat.mtime;
}

Status addBytes(Writing& writing, const char* name, const QByteArray& bytes, zip_int32_t method,
                std::optional<time_t> time, const QString& path)
{
    const QByteArray& kept = writing.contents.emplace_back(bytes);
    zip_source_t* data = zip_source_buffer(writing.target, kept.constData(), zip_uint64_t(kept.size()), 0);
    const zip_int64_t index = data ? zip_file_add(writing.target, name, data, ZIP_FL_ENC_RAW) : -1;
    if (index < 0) {
        zip_source_free(data);
        return makeError(QStringLiteral("the entry cannot be written: %1").arg(zipErrorText(writing.target)), path,
                         QString::fromUtf8(name));
    }
    if (zip_set_file_compression(writing.target, zip_uint64_t(index), method, 0) != 0)
        return makeError(QStringLiteral("the entry cannot be written: %1").arg(zipErrorText(writing.target)), path,
                         QString::fromUtf8(name));
    if (time)
        zip_file_set_mtime(writing.target, zip_uint64_t(index), *time, 0);
    return {};
}

// The entry's stored bytes as they are, with its time and attributes.
Status copyEntry(Writing& writing, zip_uint64_t index, const char* name, const QString& path)
{
    zip_stat_t stat;
    zip_stat_init(&stat);
    zip_source_t* data = zip_stat_index(writing.source, index, 0, &stat) == 0
                             ? zip_source_zip(writing.target, writing.source, index, 0, 0, -1)
                             : nullptr;
    const zip_int64_t added = data ? zip_file_add(writing.target, name, data, ZIP_FL_ENC_RAW) : -1;
    if (added < 0) {
        zip_source_free(data);
        return makeError(QStringLiteral("the entry cannot be copied: %1").arg(zipErrorText(writing.target)), path,
                         QString::fromUtf8(name));
    }
    const auto entry = zip_uint64_t(added);
    // The same method as stored means no recompression: the bytes go across unchanged.
    if ((stat.valid & ZIP_STAT_COMP_METHOD) && (stat.comp_method == ZIP_CM_STORE || stat.comp_method == ZIP_CM_DEFLATE))
        zip_set_file_compression(writing.target, entry, stat.comp_method, 0);
    if (stat.valid & ZIP_STAT_MTIME)
        zip_file_set_mtime(writing.target, entry, stat.mtime, 0);
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(writing.source, index, 0, &system, &attributes) == 0)
        zip_file_set_external_attributes(writing.target, entry, 0, system, attributes);
    return {};
}

Status readMimetype(zip_t* source, zip_uint64_t index, QByteArray& bytes, const QString& path)
{
    // "mimetype" is a line of text; anything larger is not one.
    constexpr zip_uint64_t kMaxMimetypeBytes = 1024;
    zip_stat_t stat;
    zip_stat_init(&stat);
    if (zip_stat_index(source, index, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_SIZE) || stat.size > kMaxMimetypeBytes)
        return makeError(QStringLiteral("the \"mimetype\" entry is not readable"), path);
    bytes.resize(qsizetype(stat.size));
    zip_file_t* file = zip_fopen_index(source, index, 0);
    const zip_int64_t read = file ? zip_fread(file, bytes.data(), stat.size) : -1;
    if (file)
        zip_fclose(file);
    if (read != zip_int64_t(stat.size))
        return makeError(QStringLiteral("the \"mimetype\" entry is not readable"), path);
    return {};
}

Status syncFile(const QByteArray& name)
{
    const int fd = ::open(name.constData(), O_RDONLY | O_CLOEXEC);
    const bool synced = fd >= 0 && ::fsync(fd) == 0;
    const int error = errno;
    if (fd >= 0)
        ::close(fd);
    if (!synced)
        return makeError(QStringLiteral("the new archive could not be written: %1").arg(app::systemErrorText(error)),
                         app::pathFromLocalBytes(name));
    return {};
}

} // namespace

Status rewriteArchiveEntries(const QString& path, const QHash<quint64, QByteArray>& replaced)
{
    int code = 0;
    ZipPointer source(zip_open(app::localBytesOfPath(path).constData(), ZIP_RDONLY, &code));
    if (!source)
        return makeError(QStringLiteral("the archive cannot be read: %1").arg(zipOpenErrorText(code)), path);
    struct stat original {};
    if (::stat(app::localBytesOfPath(path).constData(), &original) != 0)
        return app::openError(path, errno);

    TemporaryArchive temporary(path);
    if (!temporary.made())
        return makeError(QStringLiteral("the archive cannot be rewritten: its folder is not writable (%1)")
                             .arg(app::systemErrorText(temporary.creationError())),
                         path);
    ZipPointer target(zip_open(temporary.name().constData(), ZIP_TRUNCATE, &code));
    if (!target)
        return makeError(QStringLiteral("the archive cannot be rewritten: %1").arg(zipOpenErrorText(code)), path);

    Writing writing{source.get(), target.get(), {}};
    const zip_int64_t count = zip_get_num_entries(source.get(), 0);
    const zip_int64_t mimetype = zip_name_locate(source.get(), "mimetype", 0);
    QByteArray mimetypeBytes = QByteArrayLiteral("application/vnd.adobe.indesign-idml-package");
    if (mimetype >= 0)
        if (Status read = readMimetype(source.get(), zip_uint64_t(mimetype), mimetypeBytes, path); !read)
            return read;
    if (Status added =
            addBytes(writing, "mimetype", mimetypeBytes, ZIP_CM_STORE, sourceEntryTime(source.get(), mimetype), path);
        !added)
        return added;
    for (zip_int64_t i = 0; i < count; ++i) {
        if (i == mimetype)
            continue;
        const auto index = zip_uint64_t(i);
        const char* name = zip_get_name(source.get(), index, ZIP_FL_ENC_RAW);
        if (!name)
            return makeError(QStringLiteral("an entry's name cannot be read: %1").arg(zipErrorText(source.get())),
                             path);
        const auto change = replaced.constFind(quint64(index));
        const Status added = change == replaced.cend() ? copyEntry(writing, index, name, path)
                                                       : addBytes(writing, name, *change, ZIP_CM_DEFLATE,
                                                                  sourceEntryTime(source.get(), i), path);
        if (!added)
            return added;
    }
    if (zip_close(target.get()) != 0)
        return makeError(QStringLiteral("the archive cannot be rewritten: %1").arg(zipErrorText(target.get())), path);
    (void)target.release();
    if (::chmod(temporary.name().constData(), original.st_mode & 07777) != 0)
        return makeError(QStringLiteral("the archive cannot be rewritten: %1").arg(app::systemErrorText(errno)), path);
    if (Status synced = syncFile(temporary.name()); !synced)
        return synced;
    if (::rename(temporary.name().constData(), app::localBytesOfPath(path).constData()) != 0)
        return makeError(QStringLiteral("the archive cannot be replaced: %1").arg(app::systemErrorText(errno)), path);
    temporary.keep();
    return {};
}

} // namespace quillon::idml
