#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using quillon::test::jsonEntries;
using quillon::test::rewritten;
using quillon::test::runQuillon;
using quillon::test::samplePath;

namespace {

QStringList texts(const QJsonValue& array)
{
    QStringList list;
    for (const QJsonValue& item : array.toArray())
        list << item.toString();
    return list;
}

} // namespace

TEST(DamagedDocuments, UnreadablePartsAreSkippedNamedAndNeverPass)
{
    QTemporaryDir dir;
    // Freshers has 24 links, one of them on this spread.
    const QString freshers = rewritten(dir, QStringLiteral("idml/freshers.idml"),
                                       {QStringLiteral("Spreads/Spread_uc7f.xml"), QStringLiteral("<Spread><Page></x>"),
                                        QStringLiteral("Stories/Story_u100e.xml"), QStringLiteral("garbage"),
                                        QStringLiteral("Resources/Styles.xml"), QStringLiteral("<Styles><")});
    const QStringList expected{QStringLiteral("Spreads/Spread_uc7f.xml: not readable XML at byte 16"),
                               QStringLiteral("Stories/Story_u100e.xml: not readable XML at byte 6")};
    auto expectNamed = [&](const QStringList& warnings, const char* command) {
        for (const QString& warning : expected)
            EXPECT_TRUE(warnings.contains(warning)) << command << ": " << warnings.join(u'\n').toStdString();
    };

    const auto links =
        runQuillon({QStringLiteral("links"), QStringLiteral("--format"), QStringLiteral("json"), freshers});
    EXPECT_EQ(links.exitCode, 1) << links.err.toStdString();
    const QJsonObject linksDoc = jsonEntries(links.out).at(0).toObject();
    EXPECT_EQ(linksDoc.value(QStringLiteral("links")).toArray().size(), 23);
    expectNamed(texts(linksDoc.value(QStringLiteral("warnings"))), "links");
    EXPECT_TRUE(links.err.contains(expected[0].toUtf8()));

    const auto info =
        runQuillon({QStringLiteral("info"), QStringLiteral("--format"), QStringLiteral("json"), freshers});
    EXPECT_EQ(info.exitCode, 1) << info.err.toStdString();
    expectNamed(texts(jsonEntries(info.out).at(0).toObject().value(QStringLiteral("warnings"))), "info");

    const auto preflight =
        runQuillon({QStringLiteral("preflight"), QStringLiteral("--format"), QStringLiteral("json"), freshers});
    EXPECT_EQ(preflight.exitCode, 1) << preflight.err.toStdString();
    const QJsonObject preflighted = jsonEntries(preflight.out).at(0).toObject();
    EXPECT_EQ(preflighted.value(QStringLiteral("links")).toArray().size(), 23);
    const QStringList preflightWarnings = texts(preflighted.value(QStringLiteral("warnings")));
    expectNamed(preflightWarnings, "preflight");
    // The styles are read by the inspections alone; the fonts and colours of the rest still come.
    EXPECT_EQ(preflightWarnings.filter(QStringLiteral("Resources/Styles.xml: not readable XML at byte")).size(), 1)
        << preflightWarnings.join(u'\n').toStdString();
    EXPECT_GT(preflighted.value(QStringLiteral("fonts")).toArray().size(), 10);
    EXPECT_GT(preflighted.value(QStringLiteral("colors")).toArray().size(), 3);

    // A document that is otherwise clean does not pass either, and its summary says why.
    const QString placeholders =
        rewritten(dir, QStringLiteral("idml/placeholders.idml"),
                  {QStringLiteral("MasterSpreads/MasterSpread_ub8.xml"), QStringLiteral("<MasterSpread"),
                   QStringLiteral("Stories/Story_u1a.xml"), QStringLiteral("<Story><Broken")});
    const auto clean = runQuillon({QStringLiteral("links"), placeholders});
    EXPECT_EQ(clean.exitCode, 1) << clean.err.toStdString();
    EXPECT_TRUE(clean.out.contains("(11 links)")) << clean.out.toStdString();
    EXPECT_TRUE(clean.err.contains("MasterSpreads/MasterSpread_ub8.xml: not readable XML at byte"));
    EXPECT_TRUE(clean.err.contains("Stories/Story_u1a.xml: not readable XML at byte"));
    const auto summary = runQuillon({QStringLiteral("preflight"), placeholders});
    EXPECT_EQ(summary.exitCode, 1) << summary.err.toStdString();
    const qsizetype result = summary.out.indexOf("  Result:");
    EXPECT_GT(summary.out.indexOf("\n  Warnings:", result), result) << summary.out.toStdString();
    EXPECT_TRUE(summary.out.contains("    - MasterSpreads/MasterSpread_ub8.xml: not readable XML at byte"));
}

TEST(DamagedDocuments, ARepairedArchiveAndADocumentWithoutPagesAreWarnedOfAndTheUsersFolderIsLeftAlone)
{
    QTemporaryDir dir;
    const QByteArray whole = quillon::test::readAll(samplePath(QStringLiteral("idml/helloworld-1.idml")));
    const QString damaged = dir.filePath(QStringLiteral("damaged.idml"));
    quillon::test::writeAll(damaged, whole.left(whole.size() - 10));
    const QString pageless =
        rewritten(dir, QStringLiteral("idml/interview.idml"),
                  {QStringLiteral("Spreads/Spread_u165.xml"),
                   QStringLiteral("<idPkg:Spread xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\">"
                                  "<Spread Self=\"u165\"/></idPkg:Spread>")});
    const QStringList before = QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);

    const std::vector<std::pair<QString, QString>> cases{
        {damaged, QStringLiteral("repaired with zip -FF")},
        {pageless, QStringLiteral("the document has no pages")},
    };
    for (const auto& [path, words] : cases) {
        const auto info =
            runQuillon({QStringLiteral("info"), QStringLiteral("--format"), QStringLiteral("json"), path});
        const auto links =
            runQuillon({QStringLiteral("links"), QStringLiteral("--format"), QStringLiteral("json"), path});
        const auto preflight =
            runQuillon({QStringLiteral("preflight"), QStringLiteral("--format"), QStringLiteral("json"), path});
        const QJsonValue found[] = {
            jsonEntries(info.out).at(0).toObject().value(QStringLiteral("warnings")),
            jsonEntries(links.out).at(0).toObject().value(QStringLiteral("warnings")),
            jsonEntries(preflight.out).at(0).toObject().value(QStringLiteral("warnings")),
        };
        for (const QJsonValue& warnings : found)
            EXPECT_EQ(texts(warnings).filter(words).size(), 1)
                << words.toStdString() << ": " << texts(warnings).join(u'\n').toStdString();
        for (const auto* run : {&info, &links, &preflight})
            EXPECT_EQ(run->exitCode, 1) << words.toStdString() << run->err.toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden), before);
}
