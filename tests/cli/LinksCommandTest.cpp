#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quillon::test::jsonEntries;
using quillon::test::runQuillon;
using quillon::test::samplePath;

TEST(CliLinks, ListsTheLinksOfDocumentsAsATable)
{
    const auto run = runQuillon({QStringLiteral("links"), samplePath(QStringLiteral("idml/placeholders.idml")),
                                 samplePath(QStringLiteral("idml/interview.idml"))});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("placeholders.idml  (11 links)")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("interview.idml  (0 links)")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("ph standard.png")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Embedded"));
}

TEST(CliLinks, JsonCarriesTheRecordsAndMissingLinksSetTheExitStatus)
{
    const auto run = runQuillon({QStringLiteral("links"), QStringLiteral("--format"), QStringLiteral("json"),
                                 samplePath(QStringLiteral("idml/freshers.idml"))});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    const QJsonArray documents = jsonEntries(run.out);
    ASSERT_EQ(documents.size(), 1);
    const QJsonArray links = documents[0].toObject().value(QStringLiteral("links")).toArray();
    ASSERT_EQ(links.size(), 24);
    const QJsonObject first = links[0].toObject();
    EXPECT_EQ(first.value(QStringLiteral("page")).toString(), QStringLiteral("A-Master"));
    EXPECT_EQ(first.value(QStringLiteral("status")).toString(), QStringLiteral("Missing"));
    EXPECT_EQ(first.value(QStringLiteral("effectivePpi")).toDouble(), 710) << "the number beside \"eres\"";
    EXPECT_EQ(first.value(QStringLiteral("alerts")).toArray(), QJsonArray()) << "not judged, yet an array";
}

TEST(CliLinks, LinksDirFindsLinksAndUnreadableDocumentsAreNamed)
{
    const QString sets = QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML/");
    const auto found = runQuillon({QStringLiteral("links"), samplePath(sets + QStringLiteral("article-1photo.idml")),
                                   QStringLiteral("--links-dir"), samplePath(sets + QStringLiteral("media")),
                                   QStringLiteral("--format"), QStringLiteral("json")});
    EXPECT_NE(found.exitCode, 2) << found.err.toStdString();
    const QJsonObject link =
        jsonEntries(found.out)[0].toObject().value(QStringLiteral("links")).toArray()[0].toObject();
    EXPECT_EQ(link.value(QStringLiteral("path")).toString(), samplePath(sets + QStringLiteral("media/default.jpg")));

    // --links-dir takes one folder: the documents after it are listed.
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const auto both =
        runQuillon({QStringLiteral("links"), QStringLiteral("--links-dir"), samplePath(sets + QStringLiteral("media")),
                    interview, samplePath(QStringLiteral("idml/helloworld-1.idml"))});
    EXPECT_EQ(both.exitCode, 0) << both.err.toStdString();
    EXPECT_TRUE(both.out.contains("interview.idml  (0 links)") && both.out.contains("helloworld-1.idml  (0 links)"))
        << both.out.toStdString();

    // Unreadable and missing documents are named; the others are still listed, and in JSON each
    // has an entry with its error.
    const QString notIdml = samplePath(QStringLiteral("tiff/hopper.tif"));
    const QString missing = QStringLiteral("/nonexistent/gone.idml");
    const auto broken = runQuillon({QStringLiteral("links"), notIdml, missing, interview});
    EXPECT_EQ(broken.exitCode, 2);
    EXPECT_TRUE(broken.err.contains(notIdml.toUtf8())) << broken.err.toStdString();
    EXPECT_TRUE(broken.err.contains("gone.idml: the file does not exist")) << broken.err.toStdString();
    EXPECT_TRUE(broken.out.contains("interview.idml")) << "the other documents are still listed";
    const auto json =
        runQuillon({QStringLiteral("links"), QStringLiteral("--format"), QStringLiteral("json"), missing});
    EXPECT_EQ(json.exitCode, 2);
    const QJsonObject entry = jsonEntries(json.out)[0].toObject();
    EXPECT_EQ(entry.value(QStringLiteral("path")).toString(), missing) << json.out.toStdString();
    EXPECT_TRUE(entry.value(QStringLiteral("error")).toString().contains(QStringLiteral("does not exist")));
}

TEST(CliLinks, ControlCharactersInNamesReachTheTerminalEscaped)
{
    QTemporaryDir folder;
    const QString hostile = folder.filePath(QStringLiteral("a\x1b]0;owned\x07\x9b"
                                                           "2Jb.idml"));
    ASSERT_TRUE(QFile::copy(samplePath(QStringLiteral("idml/interview.idml")), hostile));
    for (const char* command : {"links", "info"}) {
        const auto run = runQuillon({QLatin1String(command), hostile});
        EXPECT_EQ(run.exitCode, 0) << command << run.err.toStdString();
        EXPECT_TRUE(run.out.contains("a\\x1b]0;owned\\x07\\x9b2Jb.idml")) << command << run.out.toStdString();
        EXPECT_FALSE(run.out.contains('\x1b') || run.out.contains('\x07')) << command;
    }
    const auto missing = runQuillon({QStringLiteral("preflight"), hostile + QStringLiteral(".gone")});
    EXPECT_TRUE(missing.err.contains("a\\x1b]0;owned")) << missing.err.toStdString();
    EXPECT_FALSE(missing.err.contains('\x1b'));
    // JSON keeps the name, escaped as JSON escapes it.
    const auto json = runQuillon({QStringLiteral("info"), QStringLiteral("--format"), QStringLiteral("json"), hostile});
    EXPECT_EQ(jsonEntries(json.out)[0].toObject().value(QStringLiteral("path")).toString(), hostile);
    // The preflight writes its records' text itself: the name in each link record comes back whole.
    const QString withLinks = hostile + QStringLiteral(" links.idml");
    ASSERT_TRUE(QFile::copy(samplePath(QStringLiteral("idml/tripple.idml")), withLinks));
    const auto preflight =
        runQuillon({QStringLiteral("preflight"), QStringLiteral("--format"), QStringLiteral("json"), withLinks});
    EXPECT_TRUE(preflight.out.contains("a\\u001b]0;owned\\u0007")) << preflight.out.toStdString();
    const QJsonArray links = jsonEntries(preflight.out)[0].toObject().value(QStringLiteral("links")).toArray();
    ASSERT_FALSE(links.isEmpty());
    for (const QJsonValue& link : links)
        EXPECT_EQ(link.toObject().value(QStringLiteral("docPath")).toString(), withLinks);
}
