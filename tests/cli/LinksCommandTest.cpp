#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

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
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(run.out, &error);
    ASSERT_EQ(error.error, QJsonParseError::NoError) << run.out.toStdString();
    const QJsonArray documents = json.array();
    ASSERT_EQ(documents.size(), 1);
    const QJsonArray links = documents[0].toObject().value(QStringLiteral("links")).toArray();
    ASSERT_EQ(links.size(), 24);
    const QJsonObject first = links[0].toObject();
    EXPECT_EQ(first.value(QStringLiteral("page")).toString(), QStringLiteral("A-Master"));
    EXPECT_EQ(first.value(QStringLiteral("status")).toString(), QStringLiteral("Missing"));
    EXPECT_TRUE(first.value(QStringLiteral("date")).toString().endsWith(u'Z'));
    EXPECT_TRUE(first.value(QStringLiteral("sizebytes")).isDouble());
}

TEST(CliLinks, LinksDirFindsLinksAndUnreadableDocumentsAreNamed)
{
    const QString sets = QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML/");
    const auto found = runQuillon({QStringLiteral("links"), samplePath(sets + QStringLiteral("article-1photo.idml")),
                                   QStringLiteral("--links-dir"), samplePath(sets + QStringLiteral("media")),
                                   QStringLiteral("--format"), QStringLiteral("json")});
    EXPECT_NE(found.exitCode, 2) << found.err.toStdString();
    const QJsonObject link =
        QJsonDocument::fromJson(found.out).array()[0].toObject().value(QStringLiteral("links")).toArray()[0].toObject();
    EXPECT_EQ(link.value(QStringLiteral("path")).toString(), samplePath(sets + QStringLiteral("media/default.jpg")));

    const QString notIdml = samplePath(QStringLiteral("tiff/hopper.tif"));
    const auto broken =
        runQuillon({QStringLiteral("links"), notIdml, samplePath(QStringLiteral("idml/interview.idml"))});
    EXPECT_EQ(broken.exitCode, 2);
    EXPECT_TRUE(broken.err.contains(notIdml.toUtf8())) << broken.err.toStdString();
    EXPECT_TRUE(broken.out.contains("interview.idml")) << "the other documents are still listed";

    const auto wrongFormat = runQuillon({QStringLiteral("links"), QStringLiteral("--format"), QStringLiteral("xml"),
                                         samplePath(QStringLiteral("idml/interview.idml"))});
    EXPECT_NE(wrongFormat.exitCode, 0);
}
