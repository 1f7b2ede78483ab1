#include "package/FileMetadata.h"

#include "app/RegularFile.h"

#include <QString>

#include <cerrno>
#include <cstring>
#include <functional>
#include <vector>

#include <fcntl.h>
#include <sys/xattr.h>

namespace quillon::package {

namespace {

// The calls that reach one file's attributes, by descriptor or by a link's own path.
struct AttributeAccess {
    std::function<ssize_t(char* names, size_t size)> list;
    std::function<ssize_t(const char* name, void* value, size_t size)> get;
    std::function<int(const char* name, const void* value, size_t size)> set;
};

// Reads a name list or a value whose size may change between asking and reading.
std::vector<char> readGrowing(const std::function<ssize_t(char*, size_t)>& read, bool& ok)
{
    // Most files have no attributes or a few short ones: one call with a small buffer says so.
    std::vector<char> bytes(256);
    if (const ssize_t got = read(bytes.data(), bytes.size()); got >= 0) {
        bytes.resize(static_cast<size_t>(got));
        ok = true;
        return bytes;
    }
    if (errno != ERANGE) {
        ok = false;
        return {};
    }
    for (int attempt = 0; attempt < 4; ++attempt) {
        const ssize_t size = read(nullptr, 0);
        if (size < 0)
            break;
        bytes.resize(static_cast<size_t>(size));
        const ssize_t got = read(bytes.data(), bytes.size());
        if (got >= 0) {
            bytes.resize(static_cast<size_t>(got));
            ok = true;
            return bytes;
        }
        if (errno != ERANGE)
            break;
    }
    ok = false;
    return {};
}

QString lostAttribute(const QString& name, int errorNumber)
{
    return QStringLiteral("extended attribute %1 not kept: %2").arg(name, app::systemErrorText(errorNumber));
}

QStringList copyAttributes(const AttributeAccess& from, const AttributeAccess& to)
{
    bool listed = false;
    const std::vector<char> names = readGrowing(from.list, listed);
    if (!listed)
        return errno == ENOTSUP ? QStringList() : QStringList{lostAttribute(QStringLiteral("list"), errno)};
    QStringList lost;
    for (size_t at = 0; at < names.size();) {
        const char* name = names.data() + at;
        const size_t length = ::strnlen(name, names.size() - at);
        at += length + 1;
        const QString shownName = QString::fromUtf8(name, static_cast<qsizetype>(length));
        // Security labels belong to the system where the file lies; it sets its own on the copy.
        if (shownName.startsWith(QLatin1String("security.")))
            continue;
        bool read = false;
        const std::vector<char> value =
            readGrowing([&](char* bytes, size_t size) { return from.get(name, bytes, size); }, read);
        if (!read || to.set(name, value.data(), value.size()) != 0)
            lost << lostAttribute(shownName, errno);
    }
    return lost;
}

} // namespace

QStringList keepFileMetadata(int from, int to, const struct stat& source)
{
    QStringList lost = copyAttributes(
        {[from](char* names, size_t size) { return ::flistxattr(from, names, size); },
         [from](const char* name, void* value, size_t size) { return ::fgetxattr(from, name, value, size); },
         {}},
        {{}, {}, [to](const char* name, const void* value, size_t size) {
             return ::fsetxattr(to, name, value, size, 0);
         }});
    if (::fchmod(to, source.st_mode & 07777) != 0)
        lost << QStringLiteral("permissions not kept: %1").arg(app::systemErrorText(errno));
    const struct timespec times[2] = {source.st_atim, source.st_mtim};
    if (::futimens(to, times) != 0)
        lost << QStringLiteral("modification time not kept: %1").arg(app::systemErrorText(errno));
    return lost;
}

QStringList keepLinkMetadata(const QByteArray& from, const QByteArray& to, const struct stat& source)
{
    QStringList lost =
        copyAttributes({[&from](char* names, size_t size) { return ::llistxattr(from.constData(), names, size); },
                        [&from](const char* name, void* value, size_t size) {
                            return ::lgetxattr(from.constData(), name, value, size);
                        },
                        {}},
                       {{}, {}, [&to](const char* name, const void* value, size_t size) {
                            return ::lsetxattr(to.constData(), name, value, size, 0);
                        }});
    const struct timespec times[2] = {source.st_atim, source.st_mtim};
    if (::utimensat(AT_FDCWD, to.constData(), times, AT_SYMLINK_NOFOLLOW) != 0)
        lost << QStringLiteral("modification time not kept: %1").arg(app::systemErrorText(errno));
    return lost;
}

} // namespace quillon::package
