#include "app/RegularFile.h"

#include "app/AppPaths.h"
#include "app/PropertyList.h"
#include "app/Settings.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;
using quillon::test::readAll;
using quillon::test::writeAll;

namespace {

// A listening Unix socket at `path`, closed with the object.
struct Socket {
    int fd = -1;
    explicit Socket(const QString& path)
    {
        fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray bytes = localBytesOfPath(path);
        std::memcpy(address.sun_path, bytes.constData(), std::min<size_t>(bytes.size(), sizeof address.sun_path - 1));
        EXPECT_EQ(::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    ~Socket() { ::close(fd); }
};

} // namespace

TEST(RegularFile, EveryKindOfNonFileIsNamedAndRefusedAtOnce)
{
    QTemporaryDir dir;
    const QString d = dir.path();
    ASSERT_EQ(::mkfifo(localBytesOfPath(d + u"/fifo.qnfp"_s).constData(), 0600), 0);
    const Socket socket(d + u"/socket.qnfp"_s);
    QDir(d).mkdir(u"folder.qnfp"_s);
    ASSERT_EQ(::symlink("loop-b", localBytesOfPath(d + u"/loop-a"_s).constData()), 0);
    ASSERT_EQ(::symlink("loop-a", localBytesOfPath(d + u"/loop-b"_s).constData()), 0);
    ASSERT_EQ(::symlink("/dev/zero", localBytesOfPath(d + u"/zero.qnfp"_s).constData()), 0);

    const struct {
        QString path;
        const char* message;
    } cases[] = {
        {d + u"/fifo.qnfp"_s, "is not a regular file (a FIFO)"},
        {d + u"/socket.qnfp"_s, "is not a regular file (a socket)"},
        {d + u"/folder.qnfp"_s, "is not a regular file (a folder)"},
        {u"/dev/zero"_s, "is not a regular file (a character device)"},
        {d + u"/zero.qnfp"_s, "is not a regular file (a character device)"},
        {d + u"/loop-a"_s, "too many levels of symbolic links"},
        {d + u"/missing"_s, "the file does not exist"},
    };
    for (const auto& c : cases) {
        const Status checked = checkRegularFile(c.path);
        ASSERT_FALSE(checked.ok()) << c.path.toStdString();
        EXPECT_EQ(checked.error().file, c.path);
        EXPECT_TRUE(checked.error().message.contains(QLatin1String(c.message)))
            << c.path.toStdString() << ": " << checked.error().message.toStdString();
        // A preset at such a path fails fast with the same message, however it is read.
        QElapsedTimer timer;
        timer.start();
        const Result<QVariantMap> preset = readPropertyListDictionary(c.path);
        EXPECT_LT(timer.elapsed(), 3000);
        ASSERT_FALSE(preset.ok());
        EXPECT_EQ(preset.error().message, checked.error().message);
        EXPECT_FALSE(readRegularFile(c.path, 1 << 20).ok());
    }
}

TEST(RegularFile, NamesThatAreNotUtf8AreReadAndShownWithTheirBytes)
{
    QTemporaryDir dir;
    const QByteArray raw = localBytesOfPath(dir.path()) + "/caf\xe9 \xff\xfe.qnfp";
    const QString path = pathFromLocalBytes(raw);
    EXPECT_EQ(localBytesOfPath(path), raw);
    EXPECT_TRUE(displayPath(path).endsWith(u"/caf\\xE9 \\xFF\\xFE.qnfp"_s));
    // Valid UTF-8, including characters outside the basic plane, passes unchanged both ways.
    const QByteArray utf8 = "/tmp/\xc3\xa9t\xc3\xa9 \xf0\x9f\x93\x84.qnfp";
    EXPECT_EQ(pathFromLocalBytes(utf8), QString::fromUtf8(utf8));
    EXPECT_EQ(localBytesOfPath(QString::fromUtf8(utf8)), utf8);

    ASSERT_TRUE(writePropertyListFile(QVariantMap{{u"name"_s, u"x"_s}}, path).ok());
    const Result<QVariantMap> read = readPropertyListDictionary(path);
    ASSERT_TRUE(read.ok()) << read.error().text().toStdString();
    EXPECT_EQ(read->value(u"name"_s).toString(), u"x");

    const QString missing = pathFromLocalBytes(localBytesOfPath(dir.path()) + "/\xff.qnfp");
    const Result<QVariant> error = readPropertyListFile(missing);
    ASSERT_FALSE(error.ok());
    EXPECT_TRUE(error.error().text().endsWith(u"/\\xFF.qnfp: the file does not exist"_s))
        << error.error().text().toStdString();
}

TEST(RegularFile, ReadsAreBoundedAndSaySo)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"big.qnfp"_s);
    writeAll(path, QByteArray(2048, 'x'));
    EXPECT_EQ(readRegularFile(path, 2048)->size(), 2048);
    const Result<QByteArray> tooLarge = readRegularFile(path, 1024);
    ASSERT_FALSE(tooLarge.ok());
    EXPECT_EQ(tooLarge.error().file, path);
    EXPECT_EQ(tooLarge.error().message, u"is too large (2048 bytes; at most 1024 bytes are read)");

    // A preset file beyond the bound is refused unread, with the limit in the message.
    ASSERT_EQ(::truncate(localBytesOfPath(path).constData(), kMaxPropertyListBytes + 1), 0);
    const Result<QVariant> preset = readPropertyListFile(path);
    ASSERT_FALSE(preset.ok());
    EXPECT_TRUE(preset.error().message.contains(QLatin1String("at most 16 MiB")))
        << preset.error().text().toStdString();
}

TEST(RegularFile, AFailedWriteKeepsTheOldFileAndGivesTheSystemsReason)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"preset.qnfp"_s);
    writeAll(path, "old contents");
    ASSERT_TRUE(writeFileReplacing(path, "new contents").ok());
    EXPECT_EQ(readAll(path), "new contents");

    // A file-size limit makes the write fail part-way, as a full disk does.
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
    ::getrlimit(RLIMIT_FSIZE, &previous);
    rlimit limited = previous;
    limited.rlim_cur = 4096;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limited), 0);
    const Status failed = writeFileReplacing(path, QByteArray(64 * 1024, 'y'));
    ::setrlimit(RLIMIT_FSIZE, &previous);
    std::signal(SIGXFSZ, previousHandler);

    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.error().file, path);
    EXPECT_EQ(failed.error().message, u"cannot be written: file too large");
    EXPECT_EQ(readAll(path), "new contents");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{u"preset.qnfp"_s});

    // /dev/full is a disk that is always full; it cannot be replaced, and says so.
    const Status full = writeFileReplacing(u"/dev/full"_s, "x");
    ASSERT_FALSE(full.ok());
    EXPECT_TRUE(full.error().message.contains(QLatin1String("not a regular file")));
}

TEST(RegularFile, SettingsAndTemporaryFolderSurviveOddPlaces)
{
    QTemporaryDir dir;
    const QString fifo = dir.filePath(u"settings.ini"_s);
    ASSERT_EQ(::mkfifo(localBytesOfPath(fifo).constData(), 0600), 0);
    QElapsedTimer timer;
    timer.start();
    Settings settings(fifo);
    EXPECT_LT(timer.elapsed(), 3000);
    ASSERT_TRUE(settings.error().has_value());
    EXPECT_EQ(settings.error()->message, u"is not a regular file (a FIFO)");
    EXPECT_EQ(settings.value(u"key"_s, 7).toInt(), 7);
    settings.setValue(u"key"_s, 8); // kept nowhere, and no crash
    EXPECT_FALSE(Settings(dir.filePath(u"fresh.ini"_s)).error().has_value());

    // A TMPDIR that names no folder gives the system default, never the folder above it.
    const QByteArray saved = qgetenv("TMPDIR");
    qputenv("TMPDIR", localBytesOfPath(dir.filePath(u"gone/deeper"_s)));
    const QString temporary = temporaryFolder();
    qputenv("TMPDIR", localBytesOfPath(dir.path()));
    const QString existing = temporaryFolder();
    if (saved.isNull())
        qunsetenv("TMPDIR");
    else
        qputenv("TMPDIR", saved);
    EXPECT_EQ(temporary, u"/tmp");
    EXPECT_EQ(QFileInfo(existing).canonicalFilePath(), QFileInfo(dir.path()).canonicalFilePath());
}
