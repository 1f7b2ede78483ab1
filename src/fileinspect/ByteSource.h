#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>

namespace quillon::fileinspect {

// The bytes of a linked file (or of a buffer, for tests and fuzzing), read in bounded pieces.
//
// A file is never read whole: `read` returns at most what was asked for, and `indexOf` scans in
// windows of fixed size, so even a file of several gigabytes costs a few hundred kilobytes of
// memory. The head of a file is kept after opening, because nearly every question is about it.
//
// A source that could not be opened reads as no bytes: size 0, empty reads, nothing found.
// One source belongs to one thread at a time; open one per thread.
class ByteSource {
public:
    // Bytes kept from the start of a file on opening.
    static constexpr qint64 kHeadSize = 64 * 1024;
    // The window of a scan beyond the head.
    static constexpr qint64 kWindowSize = 256 * 1024;

    ByteSource();
    ~ByteSource();
    ByteSource(ByteSource&&) noexcept;
    ByteSource& operator=(ByteSource&&) noexcept;

    static ByteSource openFile(const QString& path);
    // `name` stands for the path in messages.
    static ByteSource fromBytes(QByteArray bytes, const QString& name = QStringLiteral("(memory)"));

    // The file's path, or the name given to a buffer.
    const QString& path() const { return m_path; }
    bool isOpen() const { return m_open; }
    // True for a file on disk, false for a buffer.
    bool isFile() const { return m_file != nullptr; }
    // Why the file could not be opened or read, to follow its name ("is not a regular file (a
    // FIFO)", "does not exist"); empty when all went well.
    QString errorString() const;
    // True once a read of the file failed after opening (an I/O error, a file that shrank).
    bool readFailed() const { return m_readFailed; }

    qint64 size() const { return m_size; }

    // Up to `length` bytes from `offset`; fewer at the end, none outside the source.
    QByteArray read(qint64 offset, qint64 length) const;
    // The byte at `offset`, or -1 outside the source.
    int byteAt(qint64 offset) const;

    // Where `needle` first starts in [from, to) (to < 0 means the end), or -1.
    qint64 indexOf(QByteArrayView needle, qint64 from = 0, qint64 to = -1) const;

private:
    struct File;
    qint64 readInto(char* buffer, qint64 offset, qint64 length) const;

    std::unique_ptr<File> m_file;
    QString m_path;
    QByteArray m_bytes; // the whole buffer, or the head of a file
    qint64 m_size = 0;
    bool m_open = false;
    QString m_error;
    mutable bool m_readFailed = false;
};

// Where `needle` first starts in `haystack` at or after `from`, or -1 (a fast byte search).
qsizetype findBytes(QByteArrayView haystack, QByteArrayView needle, qsizetype from = 0);

// The part of `bytes` from `offset`, at most `length` long (all the rest when negative); empty
// outside it. QByteArray::mid for views.
QByteArrayView midView(QByteArrayView bytes, qint64 offset, qint64 length = -1);

// Bytes as the readers' text: one character per byte (bytes above 127 as Latin-1), nothing
// dropped, so offsets into the text are offsets into the bytes.
QString textFromBytes(QByteArrayView bytes);

// A value the readers hand out (a profile name, an ink, a font or colour name): as above, but
// without NUL characters, which are padding in these files, nor the other control characters
// (a Pascal length byte caught in a fixed field), which neither a property list nor a display
// can carry. Tabs and line breaks stay: lists are separated by them.
QString valueTextFromBytes(QByteArrayView bytes);

// The same rule for a text already decoded.
QString withoutControlCharacters(QString text);

// A reader text as bytes again (characters above 255 become "?"): the inverse of textFromBytes.
QByteArray bytesFromText(const QString& text);

} // namespace quillon::fileinspect
