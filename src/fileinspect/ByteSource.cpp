#include "fileinspect/ByteSource.h"

#include "app/RegularFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace quillon::fileinspect {

struct ByteSource::File {
    app::ReadableFile file;
    int fd() const { return file.descriptor(); }
};

ByteSource::ByteSource() = default;
ByteSource::~ByteSource() = default;
ByteSource::ByteSource(ByteSource&&) noexcept = default;
ByteSource& ByteSource::operator=(ByteSource&&) noexcept = default;

ByteSource ByteSource::openFile(const QString& path)
{
    ByteSource source;
    source.m_path = path;
    app::Result<app::ReadableFile> opened = app::openRegularFile(path);
    if (!opened) {
        source.m_error = opened.error().message;
        return source;
    }
    source.m_file = std::make_unique<File>(File{std::move(opened).value()});
    source.m_size = source.m_file->file.size();
    source.m_bytes.resize(std::min(source.m_size, kHeadSize));
    const qint64 got = source.readInto(source.m_bytes.data(), 0, source.m_bytes.size());
    if (got < 0) {
        source.m_error = QStringLiteral("cannot be read: %1").arg(app::systemErrorText(errno));
        source.m_file.reset();
        source.m_bytes.clear();
        source.m_size = 0;
        return source;
    }
    if (got < source.m_bytes.size()) {
        // The file shrank between the size check and the read: believe the read.
        source.m_bytes.resize(got);
        source.m_size = got;
    }
    source.m_open = true;
    return source;
}

ByteSource ByteSource::fromBytes(QByteArray bytes, const QString& name)
{
    ByteSource source;
    source.m_path = name;
    source.m_size = bytes.size();
    source.m_bytes = std::move(bytes);
    source.m_open = true;
    return source;
}

QString ByteSource::errorString() const
{
    if (!m_error.isEmpty())
        return m_error;
    return m_readFailed ? QStringLiteral("cannot be read to its end") : QString();
}

qint64 ByteSource::readInto(char* buffer, qint64 offset, qint64 length) const
{
    qint64 done = 0;
    while (done < length) {
        const ssize_t got =
            ::pread(m_file->fd(), buffer + done, static_cast<size_t>(length - done), static_cast<off_t>(offset + done));
        if (got < 0) {
            if (errno == EINTR)
                continue;
            m_readFailed = true;
            return done > 0 ? done : -1;
        }
        if (got == 0)
            break;
        done += got;
    }
    if (done < length && m_open)
        m_readFailed = true; // the file is shorter than it was when opened
    return done;
}

QByteArray ByteSource::read(qint64 offset, qint64 length) const
{
    if (offset < 0 || length <= 0 || offset >= m_size)
        return {};
    length = std::min(length, m_size - offset);
    if (offset + length <= m_bytes.size())
        return m_bytes.mid(offset, length);
    QByteArray bytes(length, Qt::Uninitialized);
    const qint64 got = readInto(bytes.data(), offset, length);
    bytes.resize(std::max<qint64>(got, 0));
    return bytes;
}

int ByteSource::byteAt(qint64 offset) const
{
    if (offset < 0 || offset >= m_size)
        return -1;
    if (offset < m_bytes.size())
        return static_cast<unsigned char>(m_bytes[offset]);
    const QByteArray one = read(offset, 1);
    return one.isEmpty() ? -1 : static_cast<unsigned char>(one[0]);
}

qint64 ByteSource::indexOf(QByteArrayView needle, qint64 from, qint64 to) const
{
    if (to < 0 || to > m_size)
        to = m_size;
    from = std::max<qint64>(from, 0);
    const qint64 n = needle.size();
    if (n == 0)
        return from <= to ? from : -1;
    if (to - from < n)
        return -1;

    auto search = [&](const char* data, qint64 base, qint64 length) -> qint64 {
        const qsizetype hit = findBytes(QByteArrayView(data, length), needle);
        return hit < 0 ? -1 : base + hit;
    };

    if (!m_file)
        return search(m_bytes.constData() + from, from, to - from);

    qint64 p = from;
    if (p < m_bytes.size()) {
        const qint64 end = std::min<qint64>(to, m_bytes.size());
        if (const qint64 hit = search(m_bytes.constData() + p, p, end - p); hit >= 0)
            return hit;
        if (end >= to)
            return -1;
        p = std::max(from, end - (n - 1)); // a match may straddle the end of the head
    }
    // One window per thread, kept between scans: a fresh one would cost its page faults each time.
    static thread_local QByteArray buffer;
    const qint64 window = std::max(kWindowSize, 2 * n);
    if (buffer.size() < window)
        buffer.resize(window);
    while (p < to) {
        const qint64 end = std::min(to, p + window);
        const qint64 got = readInto(buffer.data(), p, end - p);
        if (got <= 0)
            return -1;
        if (const qint64 hit = search(buffer.constData(), p, got); hit >= 0)
            return hit;
        if (p + got >= to || got < end - p)
            return -1;
        p += got - (n - 1);
    }
    return -1;
}

qsizetype findBytes(QByteArrayView haystack, QByteArrayView needle, qsizetype from)
{
    if (from < 0 || from > haystack.size() || needle.size() > haystack.size() - from)
        return -1;
    if (needle.isEmpty())
        return from;
    const void* hit = ::memmem(haystack.data() + from, static_cast<size_t>(haystack.size() - from), needle.data(),
                               static_cast<size_t>(needle.size()));
    return hit ? static_cast<const char*>(hit) - haystack.data() : -1;
}

QByteArrayView midView(QByteArrayView bytes, qint64 offset, qint64 length)
{
    if (offset < 0 || offset >= bytes.size() || length == 0)
        return {};
    const qint64 rest = bytes.size() - offset;
    return bytes.sliced(offset, length < 0 ? rest : std::min(length, rest));
}

QString textFromBytes(QByteArrayView bytes)
{
    return QString::fromLatin1(bytes.data(), bytes.size());
}

QString valueTextFromBytes(QByteArrayView bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        if (c >= 0x20 || c == '\t' || c == '\n' || c == '\r')
            text += QChar(c);
    }
    return text;
}

QString withoutControlCharacters(QString text)
{
    text.removeIf([](QChar c) { return c.unicode() < 0x20 && c != u'\t' && c != u'\n' && c != u'\r'; });
    return text;
}

QByteArray bytesFromText(const QString& text)
{
    return text.toLatin1();
}

} // namespace quillon::fileinspect
