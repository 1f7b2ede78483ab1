#include "cli/StandardOutput.h"

#include <cerrno>
#include <cstring>
#include <iostream>

#include <unistd.h>

namespace quillon::cli {

namespace {
constexpr size_t kBufferSize = 64 * 1024;
}

StandardOutput::StandardOutput() : m_buffer(kBufferSize)
{
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    m_previous = std::cout.rdbuf(this);
}

StandardOutput::~StandardOutput()
{
    flush();
    std::cout.rdbuf(m_previous);
}

bool StandardOutput::flush()
{
    std::cout.flush();
    sync();
    return m_error == 0;
}

QString StandardOutput::failure() const
{
    if (m_error == 0)
        return {};
    return QStringLiteral("cannot write standard output: %1").arg(QString::fromLocal8Bit(std::strerror(m_error)));
}

bool StandardOutput::writeOut(const char* data, size_t size)
{
    while (size > 0 && m_error == 0) {
        const ssize_t written = ::write(STDOUT_FILENO, data, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            m_error = written < 0 ? errno : EIO;
            break;
        }
        data += written;
        size -= static_cast<size_t>(written);
    }
    return m_error == 0;
}

int StandardOutput::sync()
{
    const bool ok = writeOut(pbase(), static_cast<size_t>(pptr() - pbase()));
    // What could not be written is dropped: the failure is reported once, at the end.
    setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    return ok ? 0 : -1;
}

StandardOutput::int_type StandardOutput::overflow(int_type c)
{
    if (sync() != 0)
        return traits_type::eof();
    if (!traits_type::eq_int_type(c, traits_type::eof())) {
        *pptr() = traits_type::to_char_type(c);
        pbump(1);
    }
    return traits_type::not_eof(c);
}

std::streamsize StandardOutput::xsputn(const char* text, std::streamsize count)
{
    if (count > epptr() - pptr()) {
        if (sync() != 0 || !writeOut(text, static_cast<size_t>(count)))
            return 0;
        return count;
    }
    std::memcpy(pptr(), text, static_cast<size_t>(count));
    pbump(static_cast<int>(count));
    return count;
}

} // namespace quillon::cli
