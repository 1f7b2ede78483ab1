#include "fileinspect/ByteSource.h"

#include "Fixtures.h"

#include <QFile>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace quillon::fileinspect;

namespace {

// A file bigger than the kept head and one scan window, with markers across both boundaries
// and at the very end.
QByteArray markedBytes()
{
    QByteArray bytes(ByteSource::kHeadSize + 2 * ByteSource::kWindowSize + 1000, '.');
    bytes.replace(ByteSource::kHeadSize - 3, 6, "MARKER");
    bytes.replace(ByteSource::kHeadSize + ByteSource::kWindowSize - 5, 6, "MARKER");
    bytes.replace(bytes.size() - 6, 6, "MARKER");
    return bytes;
}

} // namespace

TEST(ByteSource, ScansFindMarkersAcrossWindowsOfAFile)
{
    quillon::test::TempFiles files;
    const QByteArray bytes = markedBytes();
    const ByteSource file = ByteSource::openFile(files.write(QStringLiteral("big.bin"), bytes));
    const ByteSource memory = ByteSource::fromBytes(bytes);
    for (const ByteSource* source : {&file, &memory}) {
        ASSERT_TRUE(source->isOpen());
        EXPECT_EQ(source->size(), bytes.size());
        qint64 at = -1;
        QList<qint64> found;
        while ((at = source->indexOf("MARKER", at + 1)) >= 0)
            found << at;
        EXPECT_EQ(found, QList<qint64>({ByteSource::kHeadSize - 3, ByteSource::kHeadSize + ByteSource::kWindowSize - 5,
                                        bytes.size() - 6}));
        // A range that ends inside a marker does not find it.
        EXPECT_EQ(source->indexOf("MARKER", 0, ByteSource::kHeadSize + 2), -1);
        EXPECT_EQ(source->indexOf("MARKER", 0, ByteSource::kHeadSize + 3), ByteSource::kHeadSize - 3);
        // Reads across the head, and at and beyond the end.
        EXPECT_EQ(source->read(ByteSource::kHeadSize - 10, 20), bytes.mid(ByteSource::kHeadSize - 10, 20));
        EXPECT_EQ(source->read(bytes.size() - 3, 100), QByteArray("KER"));
        EXPECT_TRUE(source->read(bytes.size(), 1).isEmpty());
        EXPECT_TRUE(source->read(-5, 10).isEmpty());
        EXPECT_EQ(source->byteAt(bytes.size() - 1), 'R');
        EXPECT_EQ(source->byteAt(bytes.size()), -1);
        EXPECT_FALSE(source->readFailed());
    }
}

TEST(ByteSource, WhatCannotBeOpenedReadsAsNothing)
{
    quillon::test::TempFiles files;
    const ByteSource missing = ByteSource::openFile(files.path(QStringLiteral("missing")));
    EXPECT_FALSE(missing.isOpen());
    EXPECT_FALSE(missing.errorString().isEmpty());
    EXPECT_EQ(missing.size(), 0);
    EXPECT_EQ(missing.path(), files.path(QStringLiteral("missing")));

    files.write(QStringLiteral("keep"), "x");
    const ByteSource folder = ByteSource::openFile(files.path(QString()));
    EXPECT_FALSE(folder.isOpen());
    EXPECT_TRUE(folder.errorString().contains(QLatin1String("folder")));

    // A named pipe where a file should be must not block the open.
    const QString pipe = files.path(QStringLiteral("pipe"));
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const ByteSource fifo = ByteSource::openFile(pipe);
    EXPECT_FALSE(fifo.isOpen());
    EXPECT_FALSE(fifo.errorString().isEmpty());
}

TEST(ByteSource, ValueTextsDropPaddingAndControlCharacters)
{
    EXPECT_EQ(valueTextFromBytes(QByteArray("Black\0\0\0\x0f", 9)), u"Black");
    EXPECT_EQ(valueTextFromBytes(QByteArray("A\tB\r\nC\x7f\xe9", 8)), QString::fromLatin1("A\tB\r\nC\x7f\xe9"));
    EXPECT_EQ(textFromBytes(QByteArray("a\0b", 3)).size(), 3);
    EXPECT_EQ(bytesFromText(textFromBytes(QByteArray("\x00\xff\x80", 3))), QByteArray("\x00\xff\x80", 3));
    EXPECT_EQ(midView("abcdef", 2, 3), QByteArrayView("cde"));
    EXPECT_TRUE(midView("abc", 5, 2).isEmpty());
}
