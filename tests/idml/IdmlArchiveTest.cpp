#include "support/IdmlFixtures.h"
#include "support/QtPrinters.h"

#include "app/Progress.h"
#include "idml/IdmlArchive.h"
#include "idml/IdmlArchiveWriter.h"
#include "idml/IdmlPackage.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

using namespace quillon;
using namespace quillon::idml;

namespace {

QStringList filesBelow(const QString& folder)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext())
        files << QDir(folder).relativeFilePath(it.next());
    files.sort();
    return files;
}

// An archive with one hostile entry beside a harmless one.
QString hostileArchive(const QTemporaryDir& dir, const QString& name,
                       quint32 mode = IdmlArchiveWriter::kRegularFileMode)
{
    const QString path = dir.filePath(QStringLiteral("hostile.idml"));
    auto writer = IdmlArchiveWriter::create(path);
    EXPECT_TRUE(writer->addMimetype().ok());
    EXPECT_TRUE(writer->addFile(QStringLiteral("designmap.xml"), test::designmapXml({})).ok());
    EXPECT_TRUE(writer->addFile(name, "/etc/passwd", true, mode).ok());
    EXPECT_TRUE(writer->close().ok());
    return path;
}

} // namespace

TEST(IdmlArchive, EntryPathsThatLeaveTheFolderAreRefused)
{
    EXPECT_EQ(safeRelativeEntryPath(QStringLiteral("Spreads/Spread_u1.xml")), QStringLiteral("Spreads/Spread_u1.xml"));
    EXPECT_EQ(safeRelativeEntryPath(QStringLiteral("./Stories\\Story_u2.xml")), QStringLiteral("Stories/Story_u2.xml"));
    EXPECT_EQ(safeRelativeEntryPath(QStringLiteral("a..b/c")), QStringLiteral("a..b/c"));
    for (const char* bad : {"../x", "Spreads/../../x", "..\\x", "/etc/passwd", "\\x", "C:/x", "c:x", ""})
        EXPECT_FALSE(safeRelativeEntryPath(QString::fromLatin1(bad)).has_value()) << bad;
}

TEST(IdmlArchive, OnePathTwiceIsRefusedAndDotSlashNamesAreRead)
{
    // The story designmap.xml lists is stored as "./Stories/Story_a.xml"; other entries beside it.
    const QString story = QStringLiteral("Stories/Story_a.xml");
    const QString twin = QStringLiteral("./Stories/Story_z.xml"); // renamed to the story's own name below
    struct Case {
        QStringList names;
        bool refused;
    };
    const std::vector<Case> cases{
        {{twin}, true},
        {{story}, true},
        {{QStringLiteral("Stories//Story_a.xml")}, true},
        {{QStringLiteral("Stories/./Story_a.xml")}, true},
        {{QStringLiteral("Stories/STORY_a.xml")}, false}, // another file on this system
        {{QStringLiteral("./"), QStringLiteral("./Stories/"), QStringLiteral("Stories/Story_b.xml")}, false},
    };
    for (const Case& c : cases) {
        const std::string label = c.names.join(u' ').toStdString();
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("doc.idml"));
        test::ArchiveEntries entries{{QStringLiteral("designmap.xml"), test::designmapXml({story})},
                                     {QStringLiteral("./") + story, "<Story n=\"first\"/>"}};
        for (const QString& name : c.names)
            entries.emplace_back(name, "<Story n=\"second\"/>");
        test::writeIdml(path, entries);
        QByteArray bytes = test::readAll(path);
        test::writeAll(path, bytes.replace("Story_z.xml", "Story_a.xml"));

        const auto archive = openIdmlPackage(path, dir.filePath(QStringLiteral("repaired.zip")));
        ASSERT_EQ(archive.ok(), !c.refused) << label;
        if (!archive.ok()) {
            EXPECT_TRUE(archive.error().message.contains(QStringLiteral("two entries for one path"))) << label;
            continue;
        }
        EXPECT_EQ(*archive->readEntry(story), QByteArray("<Story n=\"first\"/>")) << label;
        ASSERT_TRUE(archive->extractTo(dir.filePath(QStringLiteral("out"))).ok()) << label;
        EXPECT_EQ(test::readAll(dir.filePath(QStringLiteral("out/")) + story), "<Story n=\"first\"/>") << label;
    }
}

TEST(IdmlArchive, UnpacksARealIdmlLikeUnzip)
{
    QTemporaryDir dir;
    const QString sample = test::samplePath(QStringLiteral("idml/tripple.idml"));
    auto archive = IdmlArchive::open(sample);
    ASSERT_TRUE(archive.ok()) << archive.error().text().toStdString();
    EXPECT_EQ(archive->entries().size(), 45u);
    ASSERT_TRUE(archive->extractTo(dir.filePath(QStringLiteral("ours"))).ok());

    QProcess unzip;
    unzip.start(QStringLiteral("unzip"),
                {QStringLiteral("-q"), sample, QStringLiteral("-d"), dir.filePath(QStringLiteral("theirs"))});
    ASSERT_TRUE(unzip.waitForFinished());
    const QStringList files = filesBelow(dir.filePath(QStringLiteral("ours")));
    ASSERT_EQ(files, filesBelow(dir.filePath(QStringLiteral("theirs"))));
    for (const QString& file : files)
        EXPECT_EQ(test::readAll(dir.filePath(QStringLiteral("ours/") + file)),
                  test::readAll(dir.filePath(QStringLiteral("theirs/") + file)))
            << file.toStdString();

    EXPECT_FALSE(archive->readEntry(QStringLiteral("nope.xml")).ok());
    EXPECT_FALSE(archive->readEntry(QStringLiteral("designmap.xml"), 10).ok());
}

TEST(IdmlArchive, HostileArchivesWriteNothing)
{
    const std::vector<std::pair<QString, quint32>> cases{
        {QStringLiteral("../../escaped.txt"), IdmlArchiveWriter::kRegularFileMode},
        {QStringLiteral("/tmp/escaped.txt"), IdmlArchiveWriter::kRegularFileMode},
        {QStringLiteral("Resources/link"), IdmlArchiveWriter::kSymbolicLinkMode},
        {QStringLiteral("Resources/fifo"), 0010644},
    };
    for (const auto& [name, mode] : cases) {
        QTemporaryDir dir;
        const QString path = hostileArchive(dir, name, mode);
        auto archive = IdmlArchive::open(path);
        ASSERT_TRUE(archive.ok());
        const auto unpacked = archive->extractTo(dir.filePath(QStringLiteral("a/b/out")));
        ASSERT_FALSE(unpacked.ok()) << name.toStdString();
        EXPECT_EQ(unpacked.error().file, path);
        EXPECT_EQ(unpacked.error().where, name);
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("a")))) << name.toStdString();
        EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("escaped.txt"))));
    }
}

TEST(IdmlArchive, ArchivesThatWouldFillTheDiskAreRefused)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bomb.idml"));
    test::ArchiveEntries entries = test::minimalIdml();
    entries.emplace_back(QStringLiteral("Stories/zeros.xml"), QByteArray(4 << 20, '\0'));
    test::writeIdml(path, entries);
    EXPECT_LT(QFileInfo(path).size(), 64 * 1024);

    auto archive = IdmlArchive::open(path);
    ASSERT_TRUE(archive.ok());
    UnpackLimits small;
    small.maxTotalBytes = 1 << 20;
    const auto refused = archive->extractTo(dir.filePath(QStringLiteral("out")), small);
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(refused.error().message.contains(QStringLiteral("more than")));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("out"))));

    UnpackLimits few;
    few.maxEntries = 3;
    EXPECT_FALSE(archive->checkEntriesAreSafe(few).ok());
    EXPECT_TRUE(archive->extractTo(dir.filePath(QStringLiteral("whole"))).ok());
    EXPECT_EQ(QFileInfo(dir.filePath(QStringLiteral("whole/Stories/zeros.xml"))).size(), 4 << 20);
}

TEST(IdmlArchive, UnpackingNeverFollowsALinkAlreadyInTheFolder)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("doc.idml"));
    test::writeIdml(path, test::minimalIdml());
    const QString outside = dir.filePath(QStringLiteral("outside.txt"));
    test::writeAll(outside, "keep");
    QDir().mkpath(dir.filePath(QStringLiteral("out")));
    ASSERT_TRUE(QFile::link(outside, dir.filePath(QStringLiteral("out/designmap.xml"))));

    auto archive = IdmlArchive::open(path);
    EXPECT_FALSE(archive->extractTo(dir.filePath(QStringLiteral("out"))).ok());
    EXPECT_EQ(test::readAll(outside), QByteArray("keep"));
}

TEST(IdmlPackage, BrokenFilesGiveMessagesNamingTheFile)
{
    QTemporaryDir dir;
    const QString repaired = dir.filePath(QStringLiteral("repaired.zip"));
    auto expectError = [&](const QString& path, const QString& words) {
        const auto opened = openIdmlPackage(path, repaired);
        ASSERT_FALSE(opened.ok()) << path.toStdString();
        EXPECT_EQ(opened.error().file, path);
        EXPECT_TRUE(opened.error().message.contains(words)) << opened.error().text().toStdString();
    };
    expectError(dir.filePath(QStringLiteral("missing.idml")), QStringLiteral("does not exist"));
    expectError(dir.path(), QStringLiteral("folder"));
    const QString empty = dir.filePath(QStringLiteral("empty.idml"));
    test::writeAll(empty, {});
    expectError(empty, QStringLiteral("empty"));
    const QString text = dir.filePath(QStringLiteral("text.idml"));
    test::writeAll(text, QByteArray("this is not a zip archive at all\n").repeated(20));
    expectError(text, QStringLiteral("not an IDML file"));

    const QString truncated = dir.filePath(QStringLiteral("truncated.idml"));
    test::writeAll(truncated, test::readAll(test::samplePath(QStringLiteral("idml/tripple.idml"))).left(120'000));
    expectError(truncated, QStringLiteral("truncated"));

    const QString otherZip = dir.filePath(QStringLiteral("other.idml"));
    test::writeIdml(otherZip, {{QStringLiteral("readme.txt"), "hello"}});
    expectError(otherZip, QStringLiteral("no designmap.xml"));

    const QString badXml = dir.filePath(QStringLiteral("badxml.idml"));
    test::writeIdml(badXml, {{QStringLiteral("designmap.xml"), "<Document><unclosed></Document>"}});
    expectError(badXml, QStringLiteral("not readable XML"));
}

TEST(IdmlPackage, EveryPrefixOfARealIdmlOpensOrFailsCleanly)
{
    QTemporaryDir dir;
    const QByteArray whole = test::readAll(test::samplePath(QStringLiteral("idml/interview.idml")));
    const QString path = dir.filePath(QStringLiteral("prefix.idml"));
    const QString repaired = dir.filePath(QStringLiteral("prefix.idml_tmp.zip"));
    int opened = 0;
    for (qsizetype length = 0; length <= whole.size(); length += whole.size() / 23 + 1) {
        test::writeAll(path, whole.left(length));
        const auto result = openIdmlPackage(path, repaired);
        if (result.ok()) {
            ++opened;
            EXPECT_TRUE(result->extractTo(dir.filePath(QStringLiteral("out%1").arg(length))).ok());
        } else {
            EXPECT_EQ(result.error().file, path);
            EXPECT_FALSE(result.error().message.isEmpty());
        }
    }
    test::writeAll(path, whole);
    EXPECT_TRUE(openIdmlPackage(path, repaired).ok());
    EXPECT_LE(opened, 1); // only a prefix that lost nothing but the end record can be whole
}

TEST(IdmlArchive, ADamagedEntryAmongManyIsNamed)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("many.idml"));
    {
        auto writer = IdmlArchiveWriter::create(path);
        ASSERT_TRUE(writer->addMimetype().ok());
        for (int i = 0; i < 300; ++i)
            ASSERT_TRUE(
                writer
                    ->addFile(QStringLiteral("Stories/Story_%1.xml").arg(i),
                              QStringLiteral("<Story n=\"%1\">plain text kept as it is</Story>").arg(i).toUtf8(), false)
                    .ok());
        ASSERT_TRUE(writer->close().ok());
    }
    QByteArray bytes = test::readAll(path);
    const qsizetype at = bytes.indexOf("<Story n=\"217\">plain");
    ASSERT_GT(at, 0);
    bytes[at + 17] = 'X'; // the stored text no longer matches its checksum
    test::writeAll(path, bytes);

    auto archive = IdmlArchive::open(path);
    ASSERT_TRUE(archive.ok());
    const auto unpacked = archive->extractTo(dir.filePath(QStringLiteral("out")));
    ASSERT_FALSE(unpacked.ok());
    EXPECT_EQ(unpacked.error().where, QStringLiteral("Stories/Story_217.xml"));
    EXPECT_TRUE(unpacked.error().message.contains(QStringLiteral("damaged")));
}

TEST(IdmlPackage, ADamagedArchiveIsReadFromARepairedCopyInTheWorkFolderAndARepairCanBeStopped)
{
    QTemporaryDir docs; // the user's folder
    QTemporaryDir work;
    // Trailing junk after the end record hides the central directory from a strict reader but
    // loses no entry.
    const QString sample = test::samplePath(QStringLiteral("idml/helloworld-1.idml"));
    const QByteArray whole = test::readAll(sample);
    const QString damaged = docs.filePath(QStringLiteral("damaged.idml"));
    test::writeAll(damaged, whole.left(whole.size() - 10));
    ArchiveRepair repair;
    repair.repairedPath = work.filePath(QStringLiteral("damaged.idml_tmp.zip"));
    bool wasRepaired = false;
    const auto opened = openIdmlPackage(damaged, repair, &wasRepaired);
    ASSERT_TRUE(opened.ok()) << opened.error().text().toStdString();
    EXPECT_TRUE(wasRepaired);
    EXPECT_EQ(opened->entries().size(), IdmlArchive::open(sample)->entries().size());
    EXPECT_EQ(filesBelow(docs.path()), QStringList{QStringLiteral("damaged.idml")});
    EXPECT_EQ(filesBelow(work.path()), QStringList{QStringLiteral("damaged.idml_tmp.zip")});

    // Without the zip tool there is no repair, and the message says so.
    const auto noTool = openIdmlPackage(damaged, repair.repairedPath + QStringLiteral("2"), nullptr,
                                        work.filePath(QStringLiteral("no/zip")));
    ASSERT_FALSE(noTool.ok());
    EXPECT_TRUE(noTool.error().message.contains(QStringLiteral("repairing it failed")));
    EXPECT_FALSE(QFileInfo::exists(repair.repairedPath + QStringLiteral("2")));

    // A large file that is no zip archive at all fails at once, with nothing copied.
    const QString huge = docs.filePath(QStringLiteral("huge.idml"));
    {
        QFile file(huge);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("GARBAGE!") == 8 && file.resize(qint64(3) << 30));
    }
    QElapsedTimer clock;
    clock.start();
    const auto notZip = openIdmlPackage(huge, repair);
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_FALSE(notZip.ok());
    EXPECT_TRUE(notZip.error().message.contains(QStringLiteral("not a zip archive")))
        << notZip.error().text().toStdString();
    QFile::remove(huge);

    // A zip tool that would run long, leaving a temporary file and a process of its own, is
    // stopped with everything it started when the run is cancelled.
    const QString pids = work.filePath(QStringLiteral("pids"));
    const QString slowZip = work.filePath(QStringLiteral("slowzip"));
    test::writeAll(slowZip, "#!/bin/sh\ntouch zi12345\nsleep 30 &\necho $! > '" + pids.toUtf8() + "'\nwait\n");
    QFile(slowZip).setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    app::CancelFlag cancel;
    repair.zipTool = slowZip;
    repair.cancel = &cancel;
    QElapsedTimer sinceCancel;
    std::thread canceller([&] {
        while (!QFileInfo::exists(pids) || test::readAll(pids).isEmpty())
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        sinceCancel.start();
        cancel.cancel();
    });
    const auto stopped = openIdmlPackage(damaged, repair);
    const qint64 stopMs = sinceCancel.elapsed();
    canceller.join();
    ASSERT_FALSE(stopped.ok());
    EXPECT_LT(stopMs, 3000);
    EXPECT_TRUE(stopped.error().message.contains(QStringLiteral("cancelled"))) << stopped.error().text().toStdString();
    // The kill is sent at once, but the child dies on the kernel's time: give it a moment.
    const QString sleeper = QStringLiteral("/proc/%1/stat").arg(QString::fromLatin1(test::readAll(pids).trimmed()));
    const auto childGone = [&] { return !QFileInfo::exists(sleeper) || test::readAll(sleeper).contains(") Z "); };
    for (int waited = 0; !childGone() && waited < 100; ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(childGone()) << "the tool's child still runs: " << test::readAll(sleeper).toStdString();
    EXPECT_EQ(filesBelow(docs.path()), QStringList{QStringLiteral("damaged.idml")});
    EXPECT_EQ(filesBelow(work.path()), (QStringList{QStringLiteral("pids"), QStringLiteral("slowzip")}));
}
