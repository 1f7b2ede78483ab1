#include "package/FileCopy.h"
#include "package/FileCopyManager.h"

#include "app/RegularFile.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>

#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace quillon::package;
using quillon::app::localBytesOfPath;
using quillon::test::readAll;
using quillon::test::writeAll;

namespace {

// In the build folder: the file system that the copy meets in real use, not a tmpfs.
QTemporaryDir buildFolderDir()
{
    return QTemporaryDir(QCoreApplication::applicationDirPath() + u"/copy-XXXXXX"_s);
}

QByteArray pattern(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i * 7919) >> 8);
    return bytes;
}

struct stat lstatOf(const QString& path)
{
    struct stat info {};
    EXPECT_EQ(::lstat(localBytesOfPath(path).constData(), &info), 0) << path.toStdString();
    return info;
}

QStringList entries(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

TEST(FileCopy, KeepsDataModeTimesAndExtendedAttributesAndReportsBytesInOrder)
{
    QTemporaryDir dir = buildFolderDir();
    const QString source = dir.filePath(u"photo.tif"_s);
    const QString out = dir.filePath(u"out"_s);
    QDir().mkpath(out);
    const QByteArray data = pattern(5 * 1024 * 1024 + 123);
    writeAll(source, data);
    const QByteArray local = localBytesOfPath(source);
    ASSERT_EQ(::chmod(local.constData(), 0640), 0);
    const bool xattrs = ::setxattr(local.constData(), "user.quillon", "kept", 4, 0) == 0;
    const struct timespec times[2] = {{1000000000, 5}, {999999999, 123456789}};
    ASSERT_EQ(::utimensat(AT_FDCWD, local.constData(), times, 0), 0);

    FileCopyOptions options;
    options.chunkBytes = 1024 * 1024;
    std::vector<qint64> reported;
    options.onBytes = [&](qint64 copied) { reported.push_back(copied); };
    const auto copied = copyFile(source, out + u"/photo.tif"_s, options);
    ASSERT_TRUE(copied.ok()) << copied.error().text().toStdString();

    EXPECT_EQ(copied->destination, out + u"/photo.tif"_s);
    EXPECT_EQ(reported, (std::vector<qint64>{1 << 20, 2 << 20, 3 << 20, 4 << 20, 5 << 20, data.size()}));
    const struct stat kept = lstatOf(copied->destination);
    EXPECT_EQ(kept.st_mode & 07777, 0640u);
    EXPECT_EQ(kept.st_mtim.tv_sec, 999999999);
    EXPECT_EQ(kept.st_mtim.tv_nsec, 123456789);
    EXPECT_EQ(kept.st_atim.tv_sec, 1000000000);
    EXPECT_EQ(readAll(copied->destination), data);        // after the times: reading moves the access time
    EXPECT_EQ(entries(out), QStringList{u"photo.tif"_s}); // no temporary left behind
    EXPECT_TRUE(copied->warnings.isEmpty()) << copied->warnings.join(u'\n').toStdString();
    if (!xattrs)
        GTEST_SKIP() << "this file system refuses extended attributes";
    char value[16] = {};
    EXPECT_EQ(::getxattr(localBytesOfPath(copied->destination).constData(), "user.quillon", value, sizeof value), 4);
    EXPECT_STREQ(value, "kept");
}

TEST(FileCopy, LinkStaysLinkAndTakenNameIsNumberedUnlessReplacingIsAsked)
{
    QTemporaryDir dir = buildFolderDir();
    const QString link = dir.filePath(u"logo.eps"_s);
    ASSERT_EQ(::symlink("../elsewhere/logo.eps", localBytesOfPath(link).constData()), 0);
    const QString out = dir.filePath(u"out"_s);
    QDir().mkpath(out);
    writeAll(out + u"/logo.eps"_s, "the user's own file");

    const auto numbered = copyFile(link, out + u"/logo.eps"_s);
    ASSERT_TRUE(numbered.ok()) << numbered.error().text().toStdString();
    EXPECT_EQ(numbered->destination, out + u"/logo_1.eps"_s);
    EXPECT_TRUE(S_ISLNK(lstatOf(numbered->destination).st_mode));
    char target[64] = {};
    ::readlink(localBytesOfPath(numbered->destination).constData(), target, sizeof target - 1);
    EXPECT_STREQ(target, "../elsewhere/logo.eps");
    EXPECT_EQ(readAll(out + u"/logo.eps"_s), "the user's own file");

    const QString plain = dir.filePath(u"plain.txt"_s);
    writeAll(plain, "new");
    FileCopyOptions replace;
    replace.existing = ExistingDestination::Replace;
    ASSERT_TRUE(copyFile(plain, out + u"/logo.eps"_s, replace).ok());
    EXPECT_EQ(readAll(out + u"/logo.eps"_s), "new");
    EXPECT_EQ(entries(out).size(), 2);
}

TEST(FileCopy, MissingSourceAndUnwritableDestinationNameTheFile)
{
    QTemporaryDir dir = buildFolderDir();
    const auto missing = copyFile(dir.filePath(u"gone.psd"_s), dir.filePath(u"copy.psd"_s));
    ASSERT_FALSE(missing.ok());
    EXPECT_EQ(missing.error().file, dir.filePath(u"gone.psd"_s));
    EXPECT_EQ(missing.error().message, u"the file does not exist"_s);

    const QString source = dir.filePath(u"a.psd"_s);
    writeAll(source, "data");
    writeAll(dir.filePath(u"file"_s), "");
    const auto notFolder = copyFile(source, dir.filePath(u"file/a.psd"_s));
    ASSERT_FALSE(notFolder.ok());
    EXPECT_EQ(notFolder.error().file, dir.filePath(u"file/a.psd"_s));
    EXPECT_TRUE(notFolder.error().message.startsWith(u"cannot be written: not a directory"_s))
        << notFolder.error().message.toStdString();
    if (::geteuid() != 0) {
        const QString locked = dir.filePath(u"locked"_s);
        QDir().mkpath(locked);
        ::chmod(localBytesOfPath(locked).constData(), 0555);
        const auto refused = copyFile(source, locked + u"/a.psd"_s);
        ASSERT_FALSE(refused.ok());
        EXPECT_EQ(refused.error().text(), locked + u"/a.psd: cannot be written: permission denied"_s);
    }
}

namespace {

// Records what the queue tells, and may cancel the queue when a copy starts.
struct RecordingDelegate : FileCopyDelegate {
    std::vector<QString> calls;
    FileCopyManager* cancelOnStart = nullptr;
    int cancelWhenQueued = 0;
    QString removeOnStart; // a source that vanishes while the queue runs
    void fileCopyOperationWillStart(const std::shared_ptr<FileCopyOperation>& operation) override
    {
        calls.push_back(u"start "_s + operation->fName());
        if (!removeOnStart.isEmpty())
            QFile::remove(std::exchange(removeOnStart, QString()));
        if (cancelOnStart != nullptr) {
            // The worker may start the first copy before the test has queued the rest.
            while (cancelOnStart->operationCount() < cancelWhenQueued)
                std::this_thread::yield();
            cancelOnStart->cancelAllOperations();
        }
    }
    void fileCopyOperationDidFinished(const std::shared_ptr<FileCopyOperation>& operation) override
    {
        calls.push_back(u"end %1 %2"_s.arg(operation->fName()).arg(int(operation->fCopyState())));
    }
};

} // namespace

TEST(FileCopyManager, CopiesOneAtATimeInOrderWithStatesAndCounts)
{
    QTemporaryDir dir = buildFolderDir();
    const QString out = dir.filePath(u"Links"_s);
    QDir().mkpath(out);
    RecordingDelegate delegate;
    std::vector<int> counts;
    std::vector<std::shared_ptr<FileCopyOperation>> operations;
    {
        FileCopyManager manager([&](int count) { counts.push_back(count); });
        for (const QString& name : {u"a.tif"_s, u"missing.tif"_s, u"c.tif"_s}) {
            writeAll(dir.filePath(name), pattern(name == u"a.tif"_s ? 3000 : 70000));
            operations.push_back(FileCopyOperation::create(dir.filePath(name), out + u'/' + name, &delegate));
            operations.back()->hashWhileCopying();
            operations.back()->writeInOwnedFolder();
            EXPECT_EQ(operations.back()->fCopyState(), FileCopyState::Created);
        }
        delegate.removeOnStart = dir.filePath(u"missing.tif"_s);
        for (const auto& operation : operations)
            manager.addOPeration(operation);
        manager.waitUntilAllOperationsAreFinished();
        EXPECT_EQ(manager.operationCount(), 0);
    }
    EXPECT_EQ(delegate.calls, (std::vector<QString>{u"start a.tif"_s, u"end a.tif 2"_s, u"start missing.tif"_s,
                                                    u"end missing.tif 3"_s, u"start c.tif"_s, u"end c.tif 2"_s}));
    EXPECT_EQ(operations[0]->bWritten(), 3000);
    EXPECT_EQ(operations[2]->bWritten(), 70000);
    EXPECT_EQ(operations[0]->fSize(), 3000);
    EXPECT_EQ(operations[2]->sha256(), QCryptographicHash::hash(pattern(70000), QCryptographicHash::Sha256).toHex());
    EXPECT_EQ(operations[2]->copiedStamp(), fileStamp(lstatOf(out + u"/c.tif"_s)));
    // The source removed after it was queued fails by name and leaves no file behind.
    EXPECT_EQ(operations[1]->fCopyExitCode(), -1);
    EXPECT_EQ(operations[1]->error()->text(), dir.filePath(u"missing.tif"_s) + u": the file does not exist"_s);
    ASSERT_FALSE(counts.empty());
    EXPECT_EQ(counts.back(), 0);
    EXPECT_EQ(entries(out), (QStringList{u"a.tif"_s, u"c.tif"_s}));
}

TEST(FileCopyManager, CancelStopsTheRunningCopyRemovesItsPartAndSkipsTheRest)
{
    QTemporaryDir dir = buildFolderDir();
    const QString out = dir.filePath(u"Links"_s);
    QDir().mkpath(out);
    const QByteArray big = pattern(3 * kCopyChunkBytes);
    writeAll(dir.filePath(u"big.psd"_s), big);
    writeAll(dir.filePath(u"next.psd"_s), "next");
    // Mid-file: the first chunk is written when the cancel comes.
    quillon::app::CancelFlag cancel;
    FileCopyOptions options;
    options.cancel = &cancel;
    options.onBytes = [&](qint64) { cancel.cancel(); };
    options.ownedFolder = true; // written at its own name, and still removed
    const auto stopped = copyFile(dir.filePath(u"big.psd"_s), out + u"/big.psd"_s, options);
    ASSERT_FALSE(stopped.ok());
    EXPECT_EQ(stopped.error().text(), dir.filePath(u"big.psd"_s) + u": copying was cancelled"_s);

    RecordingDelegate delegate;
    std::shared_ptr<FileCopyOperation> first =
        FileCopyOperation::create(dir.filePath(u"big.psd"_s), out + u"/big.psd"_s, &delegate);
    std::shared_ptr<FileCopyOperation> second =
        FileCopyOperation::create(dir.filePath(u"next.psd"_s), out + u"/next.psd"_s, &delegate);
    {
        FileCopyManager manager;
        delegate.cancelOnStart = &manager;
        delegate.cancelWhenQueued = 2;
        manager.addOPeration(first);
        manager.addOPeration(second);
        manager.waitUntilAllOperationsAreFinished();
    }
    EXPECT_EQ(delegate.calls, (std::vector<QString>{u"start big.psd"_s, u"end big.psd 3"_s}));
    EXPECT_EQ(first->error()->message, u"copying was cancelled"_s);
    EXPECT_EQ(second->fCopyState(), FileCopyState::Failed);
    EXPECT_LT(first->bWritten(), big.size());
    EXPECT_TRUE(entries(out).isEmpty()) << entries(out).join(u' ').toStdString();
    EXPECT_EQ(readAll(dir.filePath(u"big.psd"_s)), big);
}

TEST(FileCopyManager, LongQueueCopiedSeveralAtOnceTellsStartsAndEndsInQueueOrder)
{
    QTemporaryDir dir = buildFolderDir();
    const QString out = dir.filePath(u"Links"_s);
    QDir().mkpath(out);
    RecordingDelegate delegate;
    std::vector<std::shared_ptr<FileCopyOperation>> operations;
    std::vector<int> counts;
    std::vector<QString> starts;
    std::vector<QString> ends;
    {
        FileCopyManager manager([&](int count) { counts.push_back(count); });
        for (int i = 0; i < 80; ++i) {
            const QString name = u"%1.tif"_s.arg(i, 2, 10, QChar(u'0'));
            writeAll(dir.filePath(name), pattern(1000 + i * 997));
            operations.push_back(FileCopyOperation::create(dir.filePath(name), out + u'/' + name, &delegate));
            starts.push_back(u"start "_s + name);
            ends.push_back(u"end "_s + name + u" 2"_s);
        }
        for (const auto& operation : operations)
            manager.addOPeration(operation);
        manager.waitUntilAllOperationsAreFinished();
    }
    std::vector<QString> toldStarts;
    std::vector<QString> toldEnds;
    for (const QString& call : delegate.calls) {
        (call.startsWith(u"start"_s) ? toldStarts : toldEnds).push_back(call);
        EXPECT_GE(toldStarts.size(), toldEnds.size()) << "an end before its start: " << call.toStdString();
    }
    EXPECT_EQ(toldStarts, starts);
    EXPECT_EQ(toldEnds, ends);
    ASSERT_FALSE(counts.empty());
    EXPECT_EQ(counts.back(), 0);
    for (int i = 0; i < 80; i += 7)
        EXPECT_EQ(readAll(operations[i]->copiedTo()), pattern(1000 + i * 997)) << i;
}
