#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quillon::test {
namespace {

// The "Path:" lines of `quillon info`, the documents in the order they were read.
QStringList infoPaths(const QByteArray& out)
{
    QStringList paths;
    for (const QRegularExpressionMatch& m : QRegularExpression(QStringLiteral("Path: +(.*)")).globalMatch(out))
        paths << m.captured(1);
    return paths;
}

void copySample(const QString& sample, const QString& target)
{
    QDir().mkpath(QFileInfo(target).absolutePath());
    ASSERT_TRUE(QFile::copy(samplePath(sample), target)) << target.toStdString();
}

TEST(BatchInput, FoldersGiveTheirDocumentsByNameOnceEachAndEmptyOnesAreUsageErrors)
{
    QTemporaryDir dir;
    const QString hello = QStringLiteral("idml/helloworld-1.idml");
    for (const char* name : {"B.idml", "a.IDML", ".hidden.idml", "sub/c.idml", ".hid/d.idml"})
        copySample(hello, dir.filePath(QLatin1String(name)));
    QFile(dir.filePath(QStringLiteral("notes.txt"))).open(QIODevice::WriteOnly);
    ASSERT_EQ(symlink("..", dir.filePath(QStringLiteral("sub/loop")).toUtf8().constData()), 0);
    const QStringList top{dir.filePath(QStringLiteral("a.IDML")), dir.filePath(QStringLiteral("B.idml"))};

    CliRun run = runQuillon({QStringLiteral("info"), dir.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(infoPaths(run.out), top);
    // Through the loop the folder is reached again, and read only once.
    run = runQuillon({QStringLiteral("info"), QStringLiteral("--recursive"), dir.path()}, {}, 20000);
    EXPECT_EQ(infoPaths(run.out), top + QStringList{dir.filePath(QStringLiteral("sub/c.idml"))});

    QDir(dir.path()).mkdir(QStringLiteral("empty"));
    for (const QString& command : {QStringLiteral("info"), QStringLiteral("links"), QStringLiteral("preflight")}) {
        run = runQuillon({command, dir.filePath(QStringLiteral("empty"))});
        EXPECT_EQ(run.exitCode, 64) << command.toStdString();
        EXPECT_TRUE(run.err.contains(dir.filePath(QStringLiteral("empty: no .idml files")).toUtf8()))
            << run.err.toStdString();
    }
}

TEST(BatchInput, FilesFromReadsStandardInputAndRefusesWhatIsNoList)
{
    QTemporaryDir dir;
    const QString doc = dir.filePath(QStringLiteral("job one/doc.idml"));
    copySample(QStringLiteral("idml/helloworld-1.idml"), doc);

    QProcess process;
    startQuillon(process, {QStringLiteral("info"), QStringLiteral("--files-from"), QStringLiteral("-")}, {});
    process.write(doc.toUtf8() + "\r\n\n  \r\n" + dir.filePath(QStringLiteral("job one")).toUtf8() + "\n");
    process.closeWriteChannel();
    ASSERT_TRUE(process.waitForFinished(20000));
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    EXPECT_EQ(infoPaths(process.readAllStandardOutput()), (QStringList{doc, doc}));

    const QString fifo = dir.filePath(QStringLiteral("list"));
    ASSERT_EQ(mkfifo(fifo.toUtf8().constData(), 0600), 0);
    const QString blank = dir.filePath(QStringLiteral("blank.txt"));
    writeAll(blank, "\n\r\n");
    const struct {
        QString list;
        int status;
        const char* message;
    } refusals[] = {
        {dir.filePath(QStringLiteral("gone.txt")), 2, "gone.txt: the file does not exist"},
        {fifo, 2, "list: is not a regular file"}, // and does not wait for a writer
        {blank, 64, "blank.txt: the list names no documents"},
    };
    for (const auto& refusal : refusals) {
        const CliRun run =
            runQuillon({QStringLiteral("preflight"), QStringLiteral("--files-from"), refusal.list}, {}, 10000);
        EXPECT_EQ(run.exitCode, refusal.status) << refusal.message;
        EXPECT_TRUE(run.err.contains(refusal.message)) << run.err.toStdString();
    }
}

TEST(BatchInput, SearchLinksFindsAMovedLinkInTheJobFolderAtTheDepthAsked)
{
    QTemporaryDir dir;
    const QString doc = dir.filePath(QStringLiteral("job/doc.idml"));
    copySample(QStringLiteral("idml/Untitled-2.idml"), doc);
    copySample(QStringLiteral("other/PNG.png"),
               dir.filePath(QStringLiteral("job/art/Screenshot 2025-07-15 032335.png")));
    const auto statusAt = [&](const char* depth) {
        const CliRun run =
            runQuillon({QStringLiteral("links"), QStringLiteral("--search-links"), QLatin1String(depth), doc});
        EXPECT_NE(run.exitCode, 2) << run.err.toStdString();
        return run.out.contains("Missing");
    };
    EXPECT_TRUE(statusAt("0"));
    EXPECT_FALSE(statusAt("1"));
}

} // namespace
} // namespace quillon::test
