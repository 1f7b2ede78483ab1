#include "idml/IdmlArchive.h"

#include "app/Numbers.h"
#include "app/ParallelFor.h"
#include "app/RegularFile.h"

#include <QFile>

#include <zip.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <unordered_set>

namespace quillon::idml {

namespace fs = std::filesystem;
using app::makeError;
using app::Result;
using app::Status;

struct IdmlArchive::Handle {
    zip_t* zip = nullptr;
    ~Handle()
    {
        if (zip)
            zip_discard(zip);
    }
};

namespace {

constexpr quint32 kFileTypeMask = 0170000;
constexpr quint32 kRegularFile = 0100000;
constexpr quint32 kDirectory = 0040000;
constexpr quint32 kSymbolicLink = 0120000;

bool isFolderEntry(const QString& name)
{
    return name.endsWith(u'/') || name.endsWith(u'\\');
}

// "./", "." and the like: the unpacked folder itself, which needs no entry.
bool namesTheFolderItself(const QString& name)
{
    QString path = name;
    path.replace(u'\\', u'/');
    const QStringList parts = path.split(u'/', Qt::SkipEmptyParts);
    return !path.startsWith(u'/') && isFolderEntry(name) && !parts.isEmpty() &&
           parts.count(QStringLiteral(".")) == parts.size();
}

bool isFolder(const IdmlArchive::Entry& entry)
{
    return isFolderEntry(entry.name) || (entry.unixMode & kFileTypeMask) == kDirectory;
}

Result<zip_t*> openZip(const QString& path, const QString& name)
{
    int code = 0;
    zip_t* zip = zip_open(app::localBytesOfPath(path).constData(), ZIP_RDONLY, &code);
    if (!zip)
        return makeError(QStringLiteral("cannot be read as a zip archive (%1); an IDML file is a zip archive, so "
                                        "this one is damaged, truncated or not an IDML file at all")
                             .arg(zipOpenErrorText(code)),
                         name);
    return zip;
}

QString errnoText()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Writes all of `bytes` to the descriptor.
bool writeFully(int fd, const char* bytes, qint64 size)
{
    while (size > 0) {
        const ssize_t written = ::write(fd, bytes, static_cast<size_t>(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        bytes += written;
        size -= written;
    }
    return true;
}

// Makes folders below `root`, each once.
class FolderMaker {
public:
    FolderMaker(fs::path root, QString archiveName) : m_root(std::move(root)), m_archiveName(std::move(archiveName)) {}

    Status make(const QString& relative)
    {
        const fs::path folder = m_root / fs::path(app::localBytesOfPath(relative).toStdString());
        if (!m_made.insert(folder.native()).second)
            return {};
        std::error_code ec;
        fs::create_directories(folder, ec);
        if (ec)
            return makeError(
                QStringLiteral("the folder could not be made: %1").arg(QString::fromStdString(ec.message())),
                m_archiveName, relative);
        return {};
    }

private:
    fs::path m_root;
    QString m_archiveName;
    std::unordered_set<std::string> m_made;
};

struct FileJob {
    const IdmlArchive::Entry* entry;
    fs::path target;
};

// Writes file entries through one libzip handle (a handle is never shared between threads),
// counting the bytes against a budget shared by all writers.
class FileWriter {
public:
    FileWriter(zip_t* zip, const QString& archiveName, std::atomic<qint64>& budget)
        : m_zip(zip), m_archiveName(archiveName), m_budget(budget), m_buffer(256 * 1024)
    {
    }

    Status write(const FileJob& job)
    {
        const IdmlArchive::Entry& entry = *job.entry;
        zip_file_t* file = zip_fopen_index(m_zip, entry.index, 0);
        if (!file)
            return makeError(QStringLiteral("the entry cannot be read: %1").arg(QString::fromUtf8(zip_strerror(m_zip))),
                             m_archiveName, entry.name);
        const int fd = ::open(job.target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644);
        if (fd < 0) {
            const QString reason = errnoText();
            zip_fclose(file);
            return makeError(QStringLiteral("the file could not be written: %1").arg(reason), m_archiveName,
                             entry.name);
        }
        Status status = copy(file, fd, entry);
        zip_fclose(file);
        if (::close(fd) != 0 && status)
            status = makeError(QStringLiteral("the file could not be written: %1").arg(errnoText()), m_archiveName,
                               entry.name);
        return status;
    }

private:
    Status copy(zip_file_t* file, int fd, const IdmlArchive::Entry& entry)
    {
        qint64 total = 0;
        for (;;) {
            const zip_int64_t got = zip_fread(file, m_buffer.data(), m_buffer.size());
            if (got < 0)
                return makeError(
                    QStringLiteral("the entry is damaged: %1").arg(QString::fromUtf8(zip_file_strerror(file))),
                    m_archiveName, entry.name);
            if (got == 0)
                return {};
            total += got;
            if (total > entry.size)
                return makeError(QStringLiteral("the entry unpacks to more than it declares; the archive was not "
                                                "unpacked further"),
                                 m_archiveName, entry.name);
            if (m_budget.fetch_sub(got) - got < 0)
                return makeError(QStringLiteral("the archive unpacks to more than an IDML file plausibly holds; it "
                                                "was not unpacked further"),
                                 m_archiveName, entry.name);
            if (!writeFully(fd, m_buffer.data(), got))
                return makeError(QStringLiteral("the file could not be written: %1").arg(errnoText()), m_archiveName,
                                 entry.name);
        }
    }

    zip_t* m_zip;
    const QString& m_archiveName;
    std::atomic<qint64>& m_budget;
    std::vector<char> m_buffer;
};

// Archives with fewer files are unpacked on the calling thread alone.
constexpr qsizetype kFilesPerExtraWorker = 64;
constexpr int kMaxWorkers = 4;

} // namespace

// libzip handles are not shared between threads: a reader borrows an idle one, or opens another
// on the same file, and gives it back when done.
class IdmlArchive::Handles {
public:
    Handles(QString path, QString name, std::unique_ptr<Handle> first)
        : m_path(std::move(path)), m_name(std::move(name))
    {
        m_idle.push_back(std::move(first));
    }

    class Lease {
    public:
        Lease(Handles& owner, std::unique_ptr<Handle> handle) : m_owner(owner), m_handle(std::move(handle)) {}
        Lease(Lease&&) = default;
        ~Lease()
        {
            if (m_handle) {
                const std::lock_guard lock(m_owner.m_mutex);
                m_owner.m_idle.push_back(std::move(m_handle));
            }
        }
        zip_t* zip() const { return m_handle->zip; }

    private:
        Handles& m_owner;
        std::unique_ptr<Handle> m_handle;
    };

    Result<Lease> borrow()
    {
        {
            const std::lock_guard lock(m_mutex);
            if (!m_idle.empty()) {
                std::unique_ptr<Handle> handle = std::move(m_idle.back());
                m_idle.pop_back();
                return Lease(*this, std::move(handle));
            }
        }
        Result<zip_t*> zip = openZip(m_path, m_name);
        if (!zip)
            return zip.error();
        auto handle = std::make_unique<Handle>();
        handle->zip = *zip;
        return Lease(*this, std::move(handle));
    }

private:
    QString m_path;
    QString m_name;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<Handle>> m_idle;
};

std::optional<QString> safeRelativeEntryPath(const QString& entryName)
{
    QString name = entryName;
    name.replace(u'\\', u'/');
    if (name.startsWith(u'/'))
        return std::nullopt;
    if (name.size() >= 2 && name.at(1) == u':' && name.at(0).isLetter())
        return std::nullopt;
    QStringList parts;
    for (const QString& part : name.split(u'/', Qt::SkipEmptyParts)) {
        if (part == QLatin1String(".."))
            return std::nullopt;
        if (part != QLatin1String("."))
            parts << part;
    }
    if (parts.isEmpty())
        return std::nullopt;
    return parts.join(u'/');
}

IdmlArchive::IdmlArchive(QString path, QString name, std::unique_ptr<Handle> handle, std::vector<Entry> entries)
    : m_path(std::move(path)), m_name(std::move(name)),
      m_handles(std::make_unique<Handles>(m_path, m_name, std::move(handle))), m_entries(std::move(entries))
{
    m_indexByPath.reserve(static_cast<qsizetype>(m_entries.size()));
    for (size_t i = 0; i < m_entries.size(); ++i)
        if (!m_entries[i].path.isEmpty() && !m_indexByPath.contains(m_entries[i].path))
            m_indexByPath.insert(m_entries[i].path, i);
}

IdmlArchive::IdmlArchive(IdmlArchive&&) noexcept = default;
IdmlArchive& IdmlArchive::operator=(IdmlArchive&&) noexcept = default;
IdmlArchive::~IdmlArchive() = default;

Result<IdmlArchive> IdmlArchive::open(const QString& path, const QString& reportedName)
{
    const QString name = reportedName.isEmpty() ? path : reportedName;
    // By the name's bytes, so that a name that is not UTF-8 is found.
    const QByteArray local = app::localBytesOfPath(path);
    struct stat info {};
    if (::stat(local.constData(), &info) != 0)
        return app::openError(name, errno);
    if (S_ISDIR(info.st_mode))
        return makeError(QStringLiteral("is a folder, not an IDML file"), name);
    if (info.st_size == 0)
        return makeError(QStringLiteral("the file is empty (0 bytes), so it is not an IDML file"), name);
    if (::access(local.constData(), R_OK) != 0)
        return makeError(QStringLiteral("the file cannot be read: permission denied"), name);

    Result<zip_t*> zip = openZip(path, name);
    if (!zip)
        return zip.error();
    auto handle = std::make_unique<Handle>();
    handle->zip = *zip;

    const zip_int64_t count = zip_get_num_entries(handle->zip, 0);
    std::vector<Entry> entries;
    entries.reserve(static_cast<size_t>(std::max<zip_int64_t>(count, 0)));
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t stat;
        if (zip_stat_index(handle->zip, static_cast<zip_uint64_t>(i), 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME))
            return makeError(QStringLiteral("entry %1 of the archive cannot be read: %2")
                                 .arg(i)
                                 .arg(QString::fromUtf8(zip_strerror(handle->zip))),
                             name);
        Entry entry;
        entry.name = QString::fromUtf8(stat.name);
        entry.path = safeRelativeEntryPath(entry.name).value_or(QString());
        entry.index = static_cast<quint64>(i);
        entry.size =
            (stat.valid & ZIP_STAT_SIZE) ? static_cast<qint64>(std::min<zip_uint64_t>(stat.size, INT64_MAX)) : 0;
        zip_uint8_t system = 0;
        zip_uint32_t attributes = 0;
        if (zip_file_get_external_attributes(handle->zip, static_cast<zip_uint64_t>(i), 0, &system, &attributes) == 0 &&
            system == ZIP_OPSYS_UNIX)
            entry.unixMode = attributes >> 16;
        entries.push_back(std::move(entry));
    }
    return IdmlArchive(path, name, std::move(handle), std::move(entries));
}

const IdmlArchive::Entry* IdmlArchive::entry(const QString& name) const
{
    const std::optional<QString> path = safeRelativeEntryPath(name);
    if (!path)
        return nullptr;
    const auto it = m_indexByPath.constFind(*path);
    return it == m_indexByPath.cend() ? nullptr : &m_entries[*it];
}

bool IdmlArchive::contains(const QString& name) const
{
    return entry(name) != nullptr;
}

Result<QByteArray> IdmlArchive::readEntry(const QString& name, qint64 maxBytes) const
{
    const Entry* it = entry(name);
    if (!it)
        return makeError(QStringLiteral("the archive holds no %1").arg(name), m_name);
    if (it->size > maxBytes)
        return makeError(QStringLiteral("the entry is too large to read (%1)").arg(app::fileSizeStrFromBytes(it->size)),
                         m_name, name);
    Result<Handles::Lease> handle = m_handles->borrow();
    if (!handle)
        return handle.error();
    zip_file_t* file = zip_fopen_index(handle->zip(), it->index, 0);
    if (!file)
        return makeError(
            QStringLiteral("the entry cannot be read: %1").arg(QString::fromUtf8(zip_strerror(handle->zip()))), m_name,
            name);
    // One byte more than declared, to notice an entry longer than it declares without growing the
    // buffer (a grown buffer would be copied and take up to twice the part's size).
    QByteArray bytes(it->size + 1, Qt::Uninitialized);
    qint64 total = 0;
    while (total < bytes.size()) {
        const zip_int64_t got = zip_fread(file, bytes.data() + total, static_cast<zip_uint64_t>(bytes.size() - total));
        if (got < 0) {
            const QString reason = QString::fromUtf8(zip_file_strerror(file));
            zip_fclose(file);
            return makeError(QStringLiteral("the entry is damaged: %1").arg(reason), m_name, name);
        }
        if (got == 0)
            break;
        total += got;
        if (total > it->size) {
            zip_fclose(file);
            return makeError(QStringLiteral("the entry holds more than it declares"), m_name, name);
        }
    }
    zip_fclose(file);
    bytes.truncate(total);
    return bytes;
}

Status IdmlArchive::checkEntriesAreSafe(const UnpackLimits& limits) const
{
    if (static_cast<qint64>(m_entries.size()) > limits.maxEntries)
        return makeError(QStringLiteral("the archive holds %1 entries, more than an IDML file plausibly holds (%2); it "
                                        "was not unpacked")
                             .arg(m_entries.size())
                             .arg(limits.maxEntries),
                         m_name);
    qint64 total = 0;
    QHash<QString, const Entry*> seen;
    seen.reserve(static_cast<qsizetype>(m_entries.size()));
    for (const Entry& entry : m_entries) {
        const quint32 type = entry.unixMode & kFileTypeMask;
        if (type == kSymbolicLink)
            return makeError(QStringLiteral("the archive holds a symbolic link, which an IDML file never does; it was "
                                            "not unpacked"),
                             m_name, entry.name);
        if (type != 0 && type != kRegularFile && type != kDirectory)
            return makeError(QStringLiteral("the archive holds a special file, which an IDML file never does; it was "
                                            "not unpacked"),
                             m_name, entry.name);
        if (entry.path.isEmpty() && namesTheFolderItself(entry.name))
            continue; // "./" as written by some zip tools
        if (entry.path.isEmpty())
            return makeError(QStringLiteral("the archive holds an entry whose path leads outside its folder (an "
                                            "absolute path or \"..\"); it was not unpacked"),
                             m_name, entry.name);
        const Entry*& first = seen[entry.path];
        if (!first)
            first = &entry;
        else if (!(isFolder(*first) && isFolder(entry)))
            return makeError(QStringLiteral("the archive holds two entries for one path (\"%1\" and \"%2\"), "
                                            "which an IDML file never does; it was not unpacked")
                                 .arg(first->name, entry.name),
                             m_name, entry.name);
        if (entry.size > limits.maxTotalBytes - total)
            return makeError(QStringLiteral("the archive would unpack to more than %1, far more than an IDML file "
                                            "holds; it was not unpacked")
                                 .arg(app::fileSizeStrFromBytes(static_cast<quint64>(limits.maxTotalBytes))),
                             m_name);
        total += entry.size;
    }
    return {};
}

Status IdmlArchive::extractTo(const QString& folder, const UnpackLimits& limits) const
{
    if (Status safe = checkEntriesAreSafe(limits); !safe)
        return safe;
    std::error_code ec;
    const fs::path root(app::localBytesOfPath(folder).toStdString());
    fs::create_directories(root, ec);
    if (ec)
        return makeError(
            QStringLiteral("the folder to unpack into could not be made: %1").arg(QString::fromStdString(ec.message())),
            folder);

    // Folders first, so the file writers only write files.
    FolderMaker folders(root, m_name);
    std::vector<FileJob> jobs;
    jobs.reserve(m_entries.size());
    for (const Entry& entry : m_entries) {
        const QString& relative = entry.path;
        if (relative.isEmpty())
            continue; // the folder itself
        if (isFolder(entry)) {
            if (Status made = folders.make(relative); !made)
                return made;
            continue;
        }
        if (const qsizetype slash = relative.lastIndexOf(u'/'); slash > 0)
            if (Status made = folders.make(relative.left(slash)); !made)
                return made;
        jobs.push_back({&entry, root / fs::path(app::localBytesOfPath(relative).toStdString())});
    }

    // Inflating and writing the files is spread over a few threads, each with its own handle.
    std::atomic<qint64> budget{limits.maxTotalBytes};
    std::atomic<bool> stop{false};
    const int workers = app::parallelThreadLimit(kMaxWorkers);
    std::vector<std::pair<size_t, Status>> failures(static_cast<size_t>(workers), {jobs.size(), Status()});
    std::vector<std::optional<Handles::Lease>> leases(static_cast<size_t>(workers));
    std::vector<std::unique_ptr<FileWriter>> writers(static_cast<size_t>(workers));
    app::ParallelOptions options;
    options.maxThreads = kMaxWorkers;
    options.itemsPerThread = kFilesPerExtraWorker;
    app::parallelFor(static_cast<qsizetype>(jobs.size()), options, [&](int worker, qsizetype index) {
        const auto w = static_cast<size_t>(worker);
        const auto i = static_cast<size_t>(index);
        if (stop.load())
            return;
        if (!writers[w]) {
            Result<Handles::Lease> lease = m_handles->borrow();
            if (!lease) {
                failures[w] = {i, lease.error()};
                stop = true;
                return;
            }
            leases[w].emplace(std::move(*lease));
            writers[w] = std::make_unique<FileWriter>(leases[w]->zip(), m_name, budget);
        }
        if (Status written = writers[w]->write(jobs[i]); !written) {
            if (i < failures[w].first)
                failures[w] = {i, written};
            stop = true;
        }
    });
    writers.clear();
    // Of several failures, the one of the earliest entry is reported.
    const auto first = std::min_element(failures.begin(), failures.end(),
                                        [](const auto& a, const auto& b) { return a.first < b.first; });
    return first->second;
}

QString zipOpenErrorText(int code)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text;
}

} // namespace quillon::idml
