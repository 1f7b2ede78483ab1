#include "app/RegularFile.h"

#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::app {

namespace {

// The code points that stand for stray bytes 0x80..0xFF of a name.
constexpr char16_t kStrayByteBase = 0xDC00;

bool isStrayByte(const QString& text, qsizetype i)
{
    const char16_t unit = text.at(i).unicode();
    return unit >= kStrayByteBase + 0x80 && unit <= kStrayByteBase + 0xFF &&
           (i == 0 || !text.at(i - 1).isHighSurrogate());
}

// The length of the valid UTF-8 sequence at `i`, or 0.
qsizetype utf8SequenceLength(QByteArrayView bytes, qsizetype i)
{
    const auto byte = [&](qsizetype at) { return static_cast<unsigned char>(bytes[at]); };
    const unsigned char lead = byte(i);
    qsizetype length = 0;
    char32_t point = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        point = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        point = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        point = lead & 0x07;
    } else {
        return 0;
    }
    if (i + length > bytes.size())
        return 0;
    for (qsizetype k = 1; k < length; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80)
            return 0;
        point = (point << 6) | (byte(i + k) & 0x3F);
    }
    const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
    const bool surrogate = point >= 0xD800 && point <= 0xDFFF;
    return overlong || surrogate || point > 0x10FFFF ? 0 : length;
}

QString nonRegularKind(mode_t mode)
{
    if (S_ISDIR(mode))
        return QStringLiteral("a folder");
    if (S_ISFIFO(mode))
        return QStringLiteral("a FIFO");
    if (S_ISSOCK(mode))
        return QStringLiteral("a socket");
    if (S_ISCHR(mode))
        return QStringLiteral("a character device");
    if (S_ISBLK(mode))
        return QStringLiteral("a block device");
    return QStringLiteral("of an unknown type");
}

QString sizeText(qint64 bytes)
{
    constexpr qint64 kMiB = 1024 * 1024;
    return bytes % kMiB == 0 ? QStringLiteral("%1 MiB").arg(bytes / kMiB) : QStringLiteral("%1 bytes").arg(bytes);
}

bool writeAll(int fd, QByteArrayView bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(fd, bytes.data() + done, static_cast<size_t>(bytes.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

} // namespace

QString pathFromLocalBytes(QByteArrayView bytes)
{
    QString path;
    path.reserve(bytes.size());
    qsizetype runStart = 0;
    qsizetype i = 0;
    while (i < bytes.size()) {
        if (static_cast<unsigned char>(bytes[i]) < 0x80) {
            ++i;
            continue;
        }
        if (const qsizetype length = utf8SequenceLength(bytes, i); length > 0) {
            i += length;
            continue;
        }
        path += QString::fromUtf8(bytes.sliced(runStart, i - runStart));
        path += QChar(char16_t(kStrayByteBase + static_cast<unsigned char>(bytes[i])));
        runStart = ++i;
    }
    path += QString::fromUtf8(bytes.sliced(runStart));
    return path;
}

QByteArray localBytesOfPath(const QString& path)
{
    QByteArray bytes;
    qsizetype runStart = 0;
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (!isStrayByte(path, i))
            continue;
        bytes += QStringView(path).sliced(runStart, i - runStart).toUtf8();
        bytes += static_cast<char>(path.at(i).unicode() - kStrayByteBase);
        runStart = i + 1;
    }
    bytes += QStringView(path).sliced(runStart).toUtf8();
    return bytes;
}

QString displayPath(const QString& path)
{
    QString shown;
    for (qsizetype i = 0; i < path.size(); ++i) {
        if (isStrayByte(path, i))
            shown += QStringLiteral("\\x") +
                     QString::number(path.at(i).unicode() - kStrayByteBase, 16).toUpper().rightJustified(2, u'0');
        else
            shown += path.at(i);
    }
    return shown;
}

QString systemErrorText(int errorNumber)
{
    QString text = QString::fromLocal8Bit(std::strerror(errorNumber));
    if (!text.isEmpty())
        text[0] = text[0].toLower();
    return text;
}

Error openError(const QString& path, int errorNumber)
{
    if (errorNumber == ENOENT)
        return makeError(QStringLiteral("the file does not exist"), path);
    if (errorNumber == ENOTDIR)
        return makeError(QStringLiteral("the file does not exist (a folder on its path is a file)"), path);
    return makeError(QStringLiteral("cannot be opened: %1").arg(systemErrorText(errorNumber)), path);
}

ReadableFile::~ReadableFile()
{
    if (m_fd >= 0)
        ::close(m_fd);
}

ReadableFile::ReadableFile(ReadableFile&& other) noexcept
    : m_fd(std::exchange(other.m_fd, -1)), m_size(std::exchange(other.m_size, 0))
{
}

ReadableFile& ReadableFile::operator=(ReadableFile&& other) noexcept
{
    if (this != &other) {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = std::exchange(other.m_fd, -1);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

Result<ReadableFile> openRegularFile(const QString& path)
{
    if (path.isEmpty())
        return makeError(QStringLiteral("no file was named"));
    // Non-blocking, so that a FIFO cannot stall the open; fstat then tells what was opened.
    const QByteArray local = localBytesOfPath(path);
    const auto notRegular = [&](mode_t mode) {
        return makeError(QStringLiteral("is not a regular file (%1)").arg(nonRegularKind(mode)), path);
    };
    ReadableFile file;
    struct stat info {};
    file.m_fd = ::open(local.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file.m_fd < 0) {
        const int errorNumber = errno;
        // A socket cannot be opened at all ("no such device or address"): say what it is.
        if (::stat(local.constData(), &info) == 0 && !S_ISREG(info.st_mode))
            return notRegular(info.st_mode);
        return openError(path, errorNumber);
    }
    if (::fstat(file.m_fd, &info) != 0)
        return openError(path, errno);
    if (!S_ISREG(info.st_mode))
        return notRegular(info.st_mode);
    // Reads of a regular file do not block anyway; clear the flag so later reads behave plainly.
    ::fcntl(file.m_fd, F_SETFL, ::fcntl(file.m_fd, F_GETFL) & ~O_NONBLOCK);
    file.m_size = info.st_size;
    return file;
}

Status checkRegularFile(const QString& path)
{
    Result<ReadableFile> file = openRegularFile(path);
    if (!file)
        return file.error();
    return {};
}

Result<QByteArray> readRegularFile(const QString& path, qint64 maxBytes)
{
    Result<ReadableFile> file = openRegularFile(path);
    if (!file)
        return file.error();
    return readOpenedFile(*file, path, maxBytes);
}

Result<QByteArray> readOpenedFile(const ReadableFile& file, const QString& path, qint64 maxBytes)
{
    const auto tooLarge = [&](qint64 size) {
        return makeError(
            QStringLiteral("is too large (%1; at most %2 are read)").arg(sizeText(size), sizeText(maxBytes)), path);
    };
    if (file.size() > maxBytes)
        return tooLarge(file.size());
    // One byte more than the bound, so a file that grew since the stat is still caught.
    QByteArray bytes(file.size() + 1, Qt::Uninitialized);
    qint64 done = 0;
    while (true) {
        if (done == bytes.size()) {
            if (done > maxBytes)
                return tooLarge(done);
            bytes.resize(std::min<qint64>(done * 2 + 4096, maxBytes + 1));
        }
        const ssize_t got = ::read(file.descriptor(), bytes.data() + done, static_cast<size_t>(bytes.size() - done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return makeError(QStringLiteral("cannot be read: %1").arg(systemErrorText(errno)), path);
        if (got == 0)
            break;
        done += got;
    }
    if (done > maxBytes)
        return tooLarge(done);
    bytes.resize(done);
    return bytes;
}

Status writeFileReplacing(const QString& path, QByteArrayView bytes)
{
    return writeFileReplacing(path, [bytes](const ChunkWriter& write) {
        write(bytes);
        return Status();
    });
}

Status writeFileReplacing(const QString& path, const std::function<Status(const ChunkWriter& write)>& produce,
                          Durability durability)
{
    const QByteArray target = localBytesOfPath(path);
    struct stat existing {};
    const bool replacing = ::stat(target.constData(), &existing) == 0;
    if (replacing && !S_ISREG(existing.st_mode))
        return makeError(
            QStringLiteral("cannot be written: it is not a regular file (%1)").arg(nonRegularKind(existing.st_mode)),
            path);
    const auto failed = [&](int errorNumber) {
        return makeError(QStringLiteral("cannot be written: %1").arg(systemErrorText(errorNumber)), path);
    };
    QByteArray temporary;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        temporary = target + ".tmp-" + QByteArray::number(QRandomGenerator::global()->generate(), 16);
        fd = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, replacing ? 0600 : 0666);
        if (fd < 0 && errno != EEXIST)
            return failed(errno);
    }
    if (fd < 0)
        return failed(EEXIST);
    int writeError = 0;
    const ChunkWriter write = [fd, &writeError](QByteArrayView bytes) {
        if (writeError == 0 && !writeAll(fd, bytes))
            writeError = errno != 0 ? errno : EIO;
        return writeError == 0;
    };
    const Status produced = produce(write);
    bool ok = produced && writeError == 0 && (durability == Durability::Unflushed || ::fsync(fd) == 0);
    if (ok && replacing)
        ok = ::fchmod(fd, existing.st_mode & 07777) == 0;
    int errorNumber = ok ? 0 : (writeError != 0 ? writeError : errno);
    if (::close(fd) != 0 && ok) {
        ok = false;
        errorNumber = errno;
    }
    if (ok && ::rename(temporary.constData(), target.constData()) != 0) {
        ok = false;
        errorNumber = errno;
    }
    if (!ok) {
        ::unlink(temporary.constData());
        return produced ? failed(errorNumber) : produced;
    }
    return {};
}

} // namespace quillon::app
