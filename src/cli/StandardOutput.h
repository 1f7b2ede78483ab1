#pragma once

#include <QString>

#include <streambuf>
#include <vector>

namespace quillon::cli {

// Standard output that remembers why a write failed: the C library drops the reason (a full disk,
// a reader gone) once its buffer is discarded, so std::cout writes through this buffer instead.
// Used from one thread at a time (the preflight's printer holds its own lock).
class StandardOutput : public std::streambuf {
public:
    // Puts itself behind std::cout; the previous buffer comes back when the object goes.
    StandardOutput();
    ~StandardOutput() override;
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    // Flushes; false when anything written so far could not be delivered.
    bool flush();
    // "cannot write standard output: No space left on device", or "" when all was written.
    QString failure() const;

protected:
    int_type overflow(int_type c) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override;

private:
    bool writeOut(const char* data, size_t size);

    std::vector<char> m_buffer;
    std::streambuf* m_previous = nullptr;
    int m_error = 0;
};

} // namespace quillon::cli
