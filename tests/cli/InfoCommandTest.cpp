#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quillon::test::everythingBelow;
using quillon::test::jsonEntries;
using quillon::test::runQuillon;
using quillon::test::samplePath;

TEST(InfoCommand, PrintsTheDocumentInformationAsTextAndJson)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const auto text = runQuillon({QStringLiteral("info"), interview});
    ASSERT_EQ(text.exitCode, 0) << text.err.toStdString();
    EXPECT_TRUE(text.out.startsWith("interview.idml\n")) << text.out.toStdString();
    for (const char* line :
         {"  Pages:     1\n", "  Links:     0\n", "  Version:   15.1\n", "  Units:     Millimeters / Millimeters\n",
          "  Page size: 230 x 297 mm\n", "  Bleed:     5 mm\n", "  Slug:      -\n"})
        EXPECT_TRUE(text.out.contains(line)) << line;

    const auto json = runQuillon({QStringLiteral("info"), QStringLiteral("--format"), QStringLiteral("json"), interview,
                                  samplePath(QStringLiteral("idml/freshers.idml"))});
    ASSERT_EQ(json.exitCode, 0) << json.err.toStdString();
    const QJsonArray documents = jsonEntries(json.out);
    ASSERT_EQ(documents.size(), 2);
    const QJsonObject freshers = documents.at(1).toObject().value(QStringLiteral("info")).toObject();
    EXPECT_EQ(freshers.value(QStringLiteral("numberOfPagesStr")).toString(), QStringLiteral("8"));
    EXPECT_EQ(freshers.value(QStringLiteral("numberOfPages")).toDouble(), 8);
    EXPECT_EQ(freshers.value(QStringLiteral("numberOfLinksStr")).toString(), QStringLiteral("24"));
    EXPECT_EQ(freshers.value(QStringLiteral("fileSize")).toDouble(), 363249);
    EXPECT_EQ(freshers.value(QStringLiteral("InDesignVersion")).toString(), QStringLiteral("6.0"));
    EXPECT_EQ(freshers.value(QStringLiteral("pageSizeStr")).toString(), QStringLiteral("?"));
    EXPECT_EQ(freshers.value(QStringLiteral("hfsPath")).toString(), QString());
    const QJsonObject interviewInfo = documents.at(0).toObject().value(QStringLiteral("info")).toObject();
    EXPECT_EQ(interviewInfo.value(QStringLiteral("bleedStr")).toString(), QStringLiteral("5 mm"));
    EXPECT_NEAR(interviewInfo[QStringLiteral("bleed")][QStringLiteral("top")].toDouble(), 14.1732, 1e-4);
    EXPECT_NEAR(interviewInfo[QStringLiteral("pageSizes")][0][QStringLiteral("width")].toDouble(), 651.9685, 1e-4);
}

TEST(InfoCommand, BrokenFilesFailWithTheirNameAndWriteNothingOutsideTheWorkFolder)
{
    QTemporaryDir docs;
    QTemporaryDir temp; // the command's temporary folder
    const QByteArray whole = quillon::test::readAll(samplePath(QStringLiteral("idml/tripple.idml")));
    const QString truncated = docs.filePath(QStringLiteral("truncated.idml"));
    quillon::test::writeAll(truncated, whole.left(whole.size() / 2));
    const QString notZip = docs.filePath(QStringLiteral("notzip.idml"));
    quillon::test::writeAll(notZip, QByteArray("<Document/>").repeated(100));
    const QString empty = docs.filePath(QStringLiteral("empty.idml"));
    quillon::test::writeAll(empty, {});
    const QString missing = docs.filePath(QStringLiteral("missing.idml"));
    // An archive with an entry that would land outside the folder it is unpacked into.
    const QString climbing =
        quillon::test::rewritten(docs, QStringLiteral("idml/helloworld-1.idml"),
                                 {QStringLiteral("../../../../escaped.txt"), QStringLiteral("outside")});
    const QStringList docsBefore = everythingBelow(docs.path());

    for (const QString& path : {truncated, notZip, empty, missing, climbing}) {
        const auto run = runQuillon({QStringLiteral("info"), path}, {QStringLiteral("TMPDIR=") + temp.path()}, 30000);
        EXPECT_EQ(run.exitCode, 2) << path.toStdString();
        EXPECT_TRUE(run.err.startsWith("quillon info: " + path.toUtf8() + ": ") ||
                    run.err.startsWith("quillon info: " + path.toUtf8() + " ("))
            << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_EQ(everythingBelow(docs.path()), docsBefore);
    EXPECT_EQ(everythingBelow(temp.path()), QStringList());
    EXPECT_FALSE(QFileInfo::exists(QDir(temp.path()).filePath(QStringLiteral("../escaped.txt"))));

    // A good file after a bad one is still read; the status reports the failure.
    const auto mixed = runQuillon({QStringLiteral("info"), empty, samplePath(QStringLiteral("idml/parser.idml"))});
    EXPECT_EQ(mixed.exitCode, 2);
    EXPECT_TRUE(mixed.out.contains("Bleed:     3 mm"));
}

TEST(InfoCommand, RefusesPathsThatAreNotIdmlFiles)
{
    QTemporaryDir docs;
    const QString indd = docs.filePath(QStringLiteral("Book.indd"));
    quillon::test::writeAll(indd, "not really");
    // The folder holds no .idml file, so it adds nothing to the documents.
    const auto run = runQuillon({QStringLiteral("info"), indd, docs.path()});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("Book.indd: is an InDesign file")) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("InDesign Markup (IDML)"));

    // A name that is not UTF-8 is refused as such, with its bytes shown, and no work copy is left.
    QTemporaryDir tmp;
    QProcess process;
    quillon::test::startQuillon(
        process,
        {QStringLiteral("-c"),
         QStringLiteral("f=\"$2/caf$(printf '\\351').idml\"; cp \"$1\" \"$f\"; \"$0\" info \"$f\""),
         QStringLiteral(QUILLON_CLI_PATH), samplePath(QStringLiteral("idml/helloworld-1.idml")), docs.path()},
        {QStringLiteral("TMPDIR=") + tmp.path()}, QStringLiteral("bash"));
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_TRUE(process.readAllStandardError().contains("caf\\xE9.idml: the path is not valid UTF-8"));
    EXPECT_TRUE(QDir(tmp.path()).isEmpty());
}
