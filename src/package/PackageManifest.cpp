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

// Adds every file and symbolic link under the folder `local` (its path relative to the package
// being `prefix`), each with its own status, read relative to the open folder.
void addFilesUnder(const QByteArray& local, const QString& prefix, QList<FileOnDisk>& files)
{
    DIR* dir = ::opendir(local.constData());
    if (dir == nullptr)
        return;
    while (const dirent* entry = ::readdir(dir)) {
        const std::string_view name(entry->d_name);
        if (name == "." || name == "..")
            continue;
        FileOnDisk file;
        if (::fstatat(::dirfd(dir), entry->d_name, &file.info, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        file.relative = prefix + app::pathFromLocalBytes(name);
        if (S_ISDIR(file.info.st_mode))
            addFilesUnder(local + '/' + entry->d_name, file.relative + u'/', files);
        else
            files << file;
    }
    ::closedir(dir);
}

// Every file and symbolic link under `folder` but the manifest, by path relative to it, sorted.
QList<FileOnDisk> filesUnder(const QString& folder)
{
    QList<FileOnDisk> files;
    addFilesUnder(app::localBytesOfPath(folder), QString(), files);
    files.removeIf([](const FileOnDisk& file) { return file.relative == QLatin1String(kManifestFileName); });
    for (FileOnDisk& file : files)
        file.absolute = folder + u'/' + file.relative;
    std::sort(files.begin(), files.end(),
              [](const FileOnDisk& a, const FileOnDisk& b) { return a.relative < b.relative; });
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

// The modification time as "2026-01-15T10:00:00.000Z", written directly: through a date object it
// costs more than the rest of an entry.
QByteArray isoTime(const struct stat& info)
{
    struct tm utc {};
    const time_t seconds = info.st_mtim.tv_sec;
    if (::gmtime_r(&seconds, &utc) == nullptr)
        return {};
    char text[40];
    const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900,
                                     utc.tm_mon + 1, utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec,
                                     static_cast<int>(info.st_mtim.tv_nsec / 1'000'000));
    return QByteArray(text, length);
}

// Hashes the files for which `needed` is true, several at once; a file that cannot be read leaves
// its error in `errors`.
void hashFiles(const QList<FileOnDisk>& files, const std::vector<bool>& needed, std::vector<QByteArray>& hashes,
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

// A JSON string. Paths rarely hold what JSON escapes; those that do go through the JSON writer.
QByteArray jsonString(const QString& text)
{
    const bool plain =
        std::none_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 0x20 || c == u'"' || c == u'\\'; });
    if (plain)
        return '"' + text.toUtf8() + '"';
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
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
    std::vector<bool> needed(count, true);
    std::vector<std::optional<app::Error>> errors(count);
    std::vector<const CopiedFileRecord*> copied(count, nullptr);
    for (size_t i = 0; i < count; ++i) {
        const FileOnDisk& file = files.at(static_cast<qsizetype>(i));
        const auto copy = copies.constFind(file.absolute);
        if (copy == copies.constEnd())
            continue;
        copied[i] = &*copy;
        if (!copy->sha256.isEmpty() && copy->stamp == fileStamp(file.info)) {
            hashes[i] = copy->sha256;
            needed[i] = false;
        }
    }
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
    // Ten thousand entries go straight to text: as JSON objects they cost more than the copy.
    QByteArray list = "[";
    for (size_t i = 0; i < count; ++i) {
        const FileOnDisk& file = files.at(static_cast<qsizetype>(i));
        if (errors[i])
            return *errors[i];
        const QString source = copied[i] != nullptr ? copied[i]->source : documentSources.value(file.absolute);
        list += i == 0 ? "\n" : ",\n";
        list += "        {\"modified\": \"" + isoTime(file.info) + "\", \"path\": " + jsonString(file.relative) +
                ", \"sha256\": \"" + hashes[i] + "\", \"size\": " + QByteArray::number(qint64(file.info.st_size));
        if (!source.isEmpty())
            list += ", \"source\": " + jsonString(source);
        list += '}';
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
    std::vector<bool> needed(static_cast<size_t>(onDisk.size()), false);
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
        needed[static_cast<size_t>(*found)] = true;
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
