#include "package/PackageManifest.h"

#include "package/Sha256.h"

#include "app/BuildInfo.h"
#include "app/ParallelFor.h"
#include "app/RegularFile.h"

#include <QDateTime>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::package {

namespace {

// Far larger than any real manifest (10,000 files take about 3 MB), small enough to read whole.
constexpr qint64 kMaxManifestBytes = 512LL * 1024 * 1024;

struct FileOnDisk {
    QString relative;
    QString absolute;
    struct stat info {};
};

// A file or symbolic link met in a folder: its name, and the folder it is in.
struct ListedName {
    std::string name;
    size_t folder = 0;
};

// A folder met, open for the statuses of its files to be read relative to it.
struct ListedFolder {
    QString relative; // "" or "Links/"
    DIR* dir = nullptr;
};

// Lists every file and symbolic link under `local` (`prefix` being its path relative to the
// package) into `names`, and the folders into `folders`, left open.
void listFilesUnder(const QByteArray& local, const QString& prefix, std::vector<ListedFolder>& folders,
                    std::vector<ListedName>& names)
{
    DIR* dir = ::opendir(local.constData());
    if (dir == nullptr)
        return;
    const size_t folder = folders.size();
    folders.push_back({prefix, dir});
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        bool isFolder = entry->d_type == DT_DIR;
        if (entry->d_type == DT_UNKNOWN) {
            struct stat info {};
            if (::fstatat(::dirfd(dir), entry->d_name, &info, AT_SYMLINK_NOFOLLOW) != 0)
                continue;
            isFolder = S_ISDIR(info.st_mode);
        }
        if (isFolder)
            listFilesUnder(local + '/' + entry->d_name, prefix + app::pathFromLocalBytes(name) + u'/', folders, names);
        else
            names.push_back({std::string(name), folder});
    }
}

// Every file and symbolic link under `folder` but the manifest, by path relative to it, sorted,
// each with its own status. A package holds thousands of links: their names are made and their
// statuses read side by side, each relative to its open folder.
QList<FileOnDisk> filesUnder(const QString& folder)
{
    std::vector<ListedFolder> folders;
    std::vector<ListedName> names;
    listFilesUnder(app::localBytesOfPath(folder), QString(), folders, names);
    std::vector<std::optional<FileOnDisk>> found(names.size());
    app::parallelFor(static_cast<qsizetype>(names.size()), {.itemsPerThread = 256}, [&](int, qsizetype index) {
        const ListedName& listed = names[static_cast<size_t>(index)];
        FileOnDisk file;
        // A file that went between the listing and its status is not there.
        if (::fstatat(::dirfd(folders[listed.folder].dir), listed.name.c_str(), &file.info, AT_SYMLINK_NOFOLLOW) != 0)
            return;
        file.relative = folders[listed.folder].relative + app::pathFromLocalBytes(listed.name);
        file.absolute = folder + u'/' + file.relative;
        found[static_cast<size_t>(index)] = std::move(file);
    });
    for (const ListedFolder& listed : folders)
        ::closedir(listed.dir);
    // Sorted by index: the entries themselves are large to move.
    std::vector<size_t> order;
    order.reserve(found.size());
    for (size_t index = 0; index < found.size(); ++index)
        if (found[index] && found[index]->relative != QLatin1String(kManifestFileName))
            order.push_back(index);
    std::sort(order.begin(), order.end(),
              [&found](size_t a, size_t b) { return found[a]->relative < found[b]->relative; });
    QList<FileOnDisk> files;
    files.reserve(static_cast<qsizetype>(order.size()));
    for (const size_t index : order)
        files.append(std::move(*found[index]));
    return files;
}

// The SHA-256 (hex) of a file's data, or of a symbolic link's target text.
app::Result<QByteArray> sha256OfFile(const QString& path, const struct stat& info)
{
    Sha256 hash;
    const QByteArray local = app::localBytesOfPath(path);
    if (S_ISLNK(info.st_mode)) {
        QByteArray target(static_cast<qsizetype>(info.st_size) + 1, Qt::Uninitialized);
        const ssize_t length = ::readlink(local.constData(), target.data(), static_cast<size_t>(target.size()));
        if (length < 0)
            return app::openError(path, errno);
        hash.addData(QByteArrayView(target.constData(), length));
        return hash.hexResult();
    }
    app::Result<app::ReadableFile> file = app::openRegularFile(path);
    if (!file)
        return file.error();
    // No larger than the file: clearing a megabyte for each of thousands of small files costs more
    // than reading them.
    std::vector<char> buffer(static_cast<size_t>(std::clamp<qint64>(file->size() + 1, 1, 1 << 20)));
    while (true) {
        const ssize_t got = ::read(file->descriptor(), buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return app::makeError(QStringLiteral("cannot be read: %1").arg(app::systemErrorText(errno)), path);
        if (got == 0)
            return hash.hexResult();
        hash.addData(QByteArrayView(buffer.data(), got));
    }
}

// Appends the modification time as "2026-01-15T10:00:00.000Z", written directly: through a date
// object it costs more than the rest of an entry.
void appendIsoTime(QByteArray& out, const struct stat& info)
{
    struct tm utc {};
    const time_t seconds = info.st_mtim.tv_sec;
    if (::gmtime_r(&seconds, &utc) == nullptr)
        return;
    char text[40];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                                     utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                                     static_cast<int>(info.st_mtim.tv_nsec / 1'000'000));
    out.append(text, length);
}

// Hashes the files for which `needed` is set, several at once; a file that cannot be read leaves
// its error in `errors`. One byte a file, not a bit, so that threads may set them side by side.
void hashFiles(const QList<FileOnDisk>& files, const std::vector<char>& needed, std::vector<QByteArray>& hashes,
               std::vector<std::optional<app::Error>>& errors, const app::CancelFlag* cancel)
{
    app::parallelFor(files.size(), {.itemsPerThread = 16, .cancel = cancel}, [&](int, qsizetype index) {
        if (!needed[static_cast<size_t>(index)])
            return;
        const FileOnDisk& file = files.at(index);
        if (app::Result<QByteArray> hash = sha256OfFile(file.absolute, file.info))
            hashes[static_cast<size_t>(index)] = *hash;
        else
            errors[static_cast<size_t>(index)] = hash.error();
    });
}

// Appends a JSON string. Paths rarely hold what JSON escapes; those that do go through the JSON
// writer.
void appendJsonString(QByteArray& out, const QString& text)
{
    const bool plain =
        std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x20 || c == u'"' || c == u'\\'; });
    if (plain) {
        out += '"';
        out += text.toUtf8();
        out += '"';
        return;
    }
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    out.append(array.constData() + 1, array.size() - 2);
}

app::Error manifestError(const QString& manifest, const QString& problem)
{
    return app::makeError(problem, manifest);
}

} // namespace

app::Status writePackageManifest(const QString& folder, const ManifestHeader& header, const CopiedFileRecords& copies,
                                 const app::CancelFlag* cancel)
{
    const QList<FileOnDisk> files = filesUnder(folder);
    const auto count = static_cast<size_t>(files.size());
    std::vector<QByteArray> hashes(count);
    // A file copied with its hash taken, and not changed since, is not read again.
    std::vector<char> needed(count, 1);
    std::vector<std::optional<app::Error>> errors(count);
    std::vector<const CopiedFileRecord*> copied(count, nullptr);
    app::parallelFor(files.size(), {.itemsPerThread = 256}, [&](int, qsizetype index) {
        const auto i = static_cast<size_t>(index);
        const FileOnDisk& file = files.at(index);
        const auto copy = copies.constFind(file.absolute);
        if (copy == copies.constEnd())
            return;
        copied[i] = &*copy;
        if (!copy->sha256.isEmpty() && copy->stamp == fileStamp(file.info)) {
            hashes[i] = copy->sha256;
            needed[i] = 0;
        }
    });
    hashFiles(files, needed, hashes, errors, cancel);
    if (cancel != nullptr && cancel->isCancelled())
        return app::makeError(QStringLiteral("writing the package manifest was cancelled"), folder);

    QHash<QString, QString> documentSources;
    QJsonArray documents;
    for (const ManifestDocument& document : header.documents) {
        documentSources.insert(document.packaged, document.source);
        documents.append(QJsonObject{{QStringLiteral("source"), document.source},
                                     {QStringLiteral("path"), QDir(folder).relativeFilePath(document.packaged)},
                                     {QStringLiteral("summary"), document.summary}});
    }
    // Ten thousand entries go straight to text, side by side: as JSON objects they cost more than
    // the copy.
    for (size_t i = 0; i < count; ++i)
        if (errors[i])
            return *errors[i];
    std::vector<QByteArray> entries(count);
    app::parallelFor(files.size(), {.itemsPerThread = 256}, [&](int, qsizetype index) {
        const auto i = static_cast<size_t>(index);
        const FileOnDisk& file = files.at(index);
        const QString source = copied[i] != nullptr ? copied[i]->source : documentSources.value(file.absolute);
        QByteArray& entry = entries[i];
        entry.reserve(160 + 3 * (file.relative.size() + source.size()));
        entry += "        {\"modified\": \"";
        appendIsoTime(entry, file.info);
        entry += "\", \"path\": ";
        appendJsonString(entry, file.relative);
        entry += ", \"sha256\": \"";
        entry += hashes[i];
        entry += "\", \"size\": ";
        entry += QByteArray::number(qint64(file.info.st_size));
        if (!source.isEmpty()) {
            entry += ", \"source\": ";
            appendJsonString(entry, source);
        }
        entry += '}';
    });
    qsizetype listBytes = 16;
    for (const QByteArray& entry : entries)
        listBytes += entry.size() + 2;
    QByteArray list;
    list.reserve(listBytes);
    list += "[";
    for (size_t i = 0; i < count; ++i) {
        list += i == 0 ? "\n" : ",\n";
        list += entries[i];
    }
    list += "\n    ]";
    const QJsonObject manifest{{QStringLiteral("manifestFormat"), 1},
                               {QStringLiteral("quillonVersion"), QString::fromLatin1(app::kQuillonVersion)},
                               {QStringLiteral("created"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                               {QStringLiteral("preset"), header.preset},
                               {QStringLiteral("documents"), documents},
                               {QStringLiteral("files"), QJsonArray()}};
    // The list takes the place the header's writer gives the empty one.
    QByteArray text = QJsonDocument(manifest).toJson(QJsonDocument::Indented);
    text.replace("\"files\": [\n    ]", "\"files\": " + list);
    return app::writeFileReplacing(QDir(folder).filePath(QLatin1String(kManifestFileName)), text);
}

app::Result<PackageCheck> verifyPackage(const QString& folder)
{
    const QString manifestPath = QDir(folder).filePath(QLatin1String(kManifestFileName));
    if (!QFileInfo(folder).isDir())
        return app::makeError(QStringLiteral("is not a folder"), folder);
    if (!QFileInfo::exists(manifestPath))
        return manifestError(manifestPath, QStringLiteral("the package has no manifest (packaged with --no-manifest, "
                                                          "or not a package folder)"));
    const app::Result<QByteArray> text = app::readRegularFile(manifestPath, kMaxManifestBytes);
    if (!text)
        return text.error();
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(*text, &parseError);
    const QJsonValue listed = json.object().value(QStringLiteral("files"));
    if (json.isNull())
        return manifestError(manifestPath, QStringLiteral("is not a package manifest: %1 at byte %2")
                                               .arg(parseError.errorString())
                                               .arg(parseError.offset));
    if (!listed.isArray())
        return manifestError(manifestPath, QStringLiteral("is not a package manifest: it has no \"files\" list"));

    const QList<FileOnDisk> onDisk = filesUnder(folder);
    QHash<QString, qsizetype> indexOnDisk;
    for (qsizetype i = 0; i < onDisk.size(); ++i)
        indexOnDisk.insert(onDisk.at(i).relative, i);
    PackageCheck check;
    std::vector<char> needed(static_cast<size_t>(onDisk.size()), 0);
    std::vector<QByteArray> expected(static_cast<size_t>(onDisk.size()));
    QSet<QString> listedPaths;
    for (const QJsonValue& value : listed.toArray()) {
        const QJsonObject entry = value.toObject();
        const QString path = entry.value(QStringLiteral("path")).toString();
        const qint64 size = entry.value(QStringLiteral("size")).toInteger(-1);
        const QByteArray sha256 = entry.value(QStringLiteral("sha256")).toString().toLatin1();
        if (path.isEmpty() || size < 0 || sha256.isEmpty())
            return manifestError(manifestPath,
                                 QStringLiteral("is not a package manifest: a file entry lacks its path, size or "
                                                "SHA-256"));
        ++check.filesListed;
        listedPaths.insert(path);
        const auto found = indexOnDisk.constFind(path);
        if (found == indexOnDisk.constEnd()) {
            check.missing << path;
            continue;
        }
        const FileOnDisk& file = onDisk.at(*found);
        if (file.info.st_size != size) {
            check.changed << ChangedFile{path,
                                         QStringLiteral("size %1, listed as %2").arg(file.info.st_size).arg(size)};
            continue;
        }
        needed[static_cast<size_t>(*found)] = 1;
        expected[static_cast<size_t>(*found)] = sha256;
    }
    std::vector<QByteArray> hashes(static_cast<size_t>(onDisk.size()));
    std::vector<std::optional<app::Error>> errors(static_cast<size_t>(onDisk.size()));
    hashFiles(onDisk, needed, hashes, errors, nullptr);
    for (qsizetype i = 0; i < onDisk.size(); ++i) {
        const auto slot = static_cast<size_t>(i);
        if (!listedPaths.contains(onDisk.at(i).relative))
            check.unexpected << onDisk.at(i).relative;
        else if (errors[slot])
            check.changed << ChangedFile{onDisk.at(i).relative, errors[slot]->message};
        else if (needed[slot] && hashes[slot] != expected[slot])
            check.changed << ChangedFile{onDisk.at(i).relative, QStringLiteral("content differs")};
    }
    return check;
}

} // namespace quillon::package
