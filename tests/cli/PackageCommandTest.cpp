#include "CliRunner.h"
#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using quillon::test::CliRun;
using quillon::test::repoPath;
using quillon::test::runQuillon;
using quillon::test::samplePath;

TEST(PackageCommand, PackagesTheSampleAndKeepsTheExitStatusContract)
{
    QTemporaryDir config, tmp, out;
    const QStringList environment{u"XDG_CONFIG_HOME="_s + config.path(), u"TMPDIR="_s + tmp.path(), u"LC_ALL=C"_s};
    const QString lenient = out.filePath(u"Lenient.qnfp"_s);
    quillon::test::writeAll(lenient, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                                     "<key>name</key><string>Lenient</string></dict></plist>\n");
    const QString brochure = repoPath(u"resources/sample/sample-brochure.idml"_s);
    const QString interview = samplePath(u"idml/interview.idml"_s);
    const QString to = out.filePath(u"packages"_s);
    const QStringList common{u"package"_s, brochure,       interview, u"--to"_s,          to,     u"--preset-file"_s,
                             lenient,      u"--unified"_s, u"Job:"_s, u"--name-suffix"_s, u"7"_s, u"--no-relink"_s};

    CliRun run = runQuillon(common + QStringList{u"--text-report"_s, u"--pdf-report"_s}, environment);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString() << run.out.toStdString();
    const QString folder = to + u"/Job_7"_s;
    EXPECT_TRUE(run.out.startsWith(u"Package folder: %1\n"_s.arg(folder).toUtf8())) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Links copied: 4\n"));
    EXPECT_EQ(QDir(folder + u"/Links"_s).entryList(QDir::Files).size(), 4);
    for (const QString& file :
         {u"sample-brochure.idml"_s, u"interview.idml"_s, u"interview.idml_Quillon_Report.txt"_s,
          u"interview_Quillon_Report.pdf"_s, u"sample-brochure_Quillon_Report.pdf"_s, u"Document fonts"_s})
        EXPECT_TRUE(QFile::exists(folder + u'/' + file)) << file.toStdString();
    EXPECT_TRUE(QDir(tmp.path()).isEmpty()); // the staging and work folders went

    // A PDF only InDesign can make is a warning; the package is made anyway. The name is tested
    // before ":" is replaced, so the first folder is used, but nothing in it is replaced.
    run = runQuillon(common + QStringList{u"--pdf"_s, u"[High Quality Print]"_s}, environment);
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains("Warnings: 2\n")) << run.out.toStdString();
    EXPECT_TRUE(QFile::exists(folder + u"/sample-brochure_1.idml"_s));
    EXPECT_TRUE(QFile::exists(folder + u"/Links/scan-gray_1.tif"_s));
    EXPECT_EQ(runQuillon(common.mid(0, 5) + QStringList{u"--no-relink"_s}, environment).exitCode, 1);
    EXPECT_TRUE(QFile::exists(to + u"/sample-brochure/sample-brochure.idml"_s));

    run = runQuillon({u"package"_s, out.filePath(u"gone.idml"_s), u"--to"_s, to}, environment);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("gone.idml")) << run.err.toStdString();
    // A file where the folder for packages should be.
    EXPECT_EQ(runQuillon({u"package"_s, interview, u"--to"_s, lenient}, environment).exitCode, 2);
}

TEST(PackageCommand, ManifestProvesThePackageAndTheRelinkedCopyFindsEveryLinkInside)
{
    QTemporaryDir config, tmp, out;
    const QStringList environment{u"XDG_CONFIG_HOME="_s + config.path(), u"TMPDIR="_s + tmp.path(), u"LC_ALL=C"_s};
    const QString brochure = quillon::test::copyBundledSample(out.path());
    const QString to = out.filePath(u"packages"_s), hot = out.filePath(u"hot"_s);
    QDir().mkpath(hot);
    CliRun run = runQuillon({u"package"_s, brochure, u"--to"_s, to, u"--unified"_s, u"Job"_s, u"--hot-folder"_s, hot,
                             u"--format"_s, u"json"_s},
                            environment);
    ASSERT_LE(run.exitCode, 1) << run.err.toStdString();
    EXPECT_EQ(quillon::test::schemaViolations(run.out), QString());
    const QString folder = to + u"/Job"_s;
    EXPECT_EQ(QJsonDocument::fromJson(run.out)["package"]["folders"][0].toString(), folder);
    EXPECT_TRUE(QFile::exists(hot + u"/Job/package-manifest.json"_s)); // handed over whole, manifest included
    // The manifest names each document with the status line its preflight gave.
    QFile manifest(folder + u"/package-manifest.json"_s);
    ASSERT_TRUE(manifest.open(QIODevice::ReadOnly));
    const QString summary = QJsonDocument::fromJson(manifest.readAll())["documents"][0]["summary"].toString();
    EXPECT_TRUE(summary.contains(u"errors found"_s)) << summary.toStdString();
    EXPECT_EQ(
        summary,
        QJsonDocument::fromJson(
            runQuillon({u"preflight"_s, brochure, u"--format"_s, u"json"_s}, environment).out)["documents"][0]["status"]
            .toString());

    // The packaged copy opened again: every link that was found at home is found in the package.
    const auto linksOf = [&](const QString& document) {
        return QJsonDocument::fromJson(runQuillon({u"links"_s, document, u"--format"_s, u"json"_s}, environment)
                                           .out)["documents"][0]["links"]
            .toArray();
    };
    const QJsonArray original = linksOf(brochure), packaged = linksOf(folder + u"/sample-brochure.idml"_s);
    ASSERT_EQ(packaged.size(), original.size());
    int inside = 0;
    for (qsizetype i = 0; i < packaged.size(); ++i) {
        if (original[i]["status"].toString() != u"OK"_s)
            continue;
        EXPECT_EQ(packaged[i]["status"].toString(), u"OK"_s) << packaged[i]["path"].toString().toStdString();
        EXPECT_TRUE(packaged[i]["path"].toString().startsWith(folder + u"/Links/"_s));
        ++inside;
    }
    EXPECT_GT(inside, 0);

    run = runQuillon({u"verify"_s, folder}, environment);
    EXPECT_EQ(run.exitCode, 0) << run.out.toStdString();
    EXPECT_TRUE(run.out.startsWith("Intact: ")) << run.out.toStdString();
    // A changed byte, a missing file and an extra one, one line each.
    const QStringList links = QDir(folder + u"/Links"_s).entryList(QDir::Files, QDir::Name);
    ASSERT_GE(links.size(), 2);
    QByteArray bytes = quillon::test::readAll(folder + u"/Links/"_s + links[0]);
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    quillon::test::writeAll(folder + u"/Links/"_s + links[0], bytes);
    QFile::remove(folder + u"/Links/"_s + links[1]);
    quillon::test::writeAll(folder + u"/notes.txt"_s, "extra");
    run = runQuillon({u"verify"_s, folder}, environment);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.startsWith(
        u"missing: Links/%1\nchanged: Links/%2 (content differs)\nunexpected: notes.txt\n"_s.arg(links[1], links[0])
            .toUtf8()))
        << run.out.toStdString();
    run = runQuillon({u"verify"_s, folder, u"--format"_s, u"json"_s}, environment);
    EXPECT_EQ(quillon::test::schemaViolations(run.out), QString());
    EXPECT_FALSE(QJsonDocument::fromJson(run.out)["verify"]["intact"].toBool(true));

    // Without a manifest there is nothing to prove: a clear message and status 2.
    ASSERT_LE(
        runQuillon({u"package"_s, brochure, u"--to"_s, to, u"--unified"_s, u"Bare"_s, u"--no-manifest"_s}, environment)
            .exitCode,
        1);
    run = runQuillon({u"verify"_s, to + u"/Bare"_s}, environment);
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.contains("package-manifest.json: the package has no manifest")) << run.err.toStdString();
}

TEST(PackageCommand, DocumentsPreflightedAtOnceGiveTheSamePackage)
{
    QTemporaryDir config, tmp, out;
    const QStringList environment{u"XDG_CONFIG_HOME="_s + config.path(), u"TMPDIR="_s + tmp.path(), u"LC_ALL=C"_s};
    const QStringList documents{repoPath(u"resources/sample/sample-brochure.idml"_s),
                                samplePath(u"idml/interview.idml"_s), samplePath(u"idml/helloworld-1.idml"_s)};
    // The manifest and the summary of a run, without what differs between runs: the times and
    // the private work folder. Both runs package into the same folder, moved aside after the first.
    const QString to = out.filePath(u"packages"_s);
    const auto packageWith = [&](const QString& jobs) {
        const CliRun run = runQuillon(
            QStringList{u"package"_s} + documents +
                QStringList{u"--to"_s, to, u"--unified"_s, u"Job"_s, u"--jobs"_s, jobs, u"--format"_s, u"json"_s},
            environment);
        EXPECT_LE(run.exitCode, 1) << run.err.toStdString();
        QFile file(to + u"/Job/package-manifest.json"_s);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        QJsonObject manifest = QJsonDocument::fromJson(file.readAll()).object();
        manifest.remove(u"created"_s);
        QJsonArray files;
        for (const QJsonValue& entry : manifest[u"files"_s].toArray()) {
            QJsonObject kept = entry.toObject();
            kept.remove(u"modified"_s);
            files.append(kept);
        }
        manifest[u"files"_s] = files;
        EXPECT_TRUE(QDir().rename(to + u"/Job"_s, out.filePath(u"Job-"_s + jobs)));
        return std::pair{QString::fromUtf8(run.out).replace(QRegularExpression(u"quillon-package-\\w+"_s), u"work"_s),
                         manifest};
    };
    const auto [oneSummary, oneManifest] = packageWith(u"1"_s);
    const auto [twoSummary, twoManifest] = packageWith(u"2"_s);
    EXPECT_EQ(oneManifest[u"documents"_s].toArray().size(), 3);
    EXPECT_GT(oneManifest[u"files"_s].toArray().size(), 3);
    EXPECT_EQ(twoSummary, oneSummary);
    EXPECT_EQ(twoManifest, oneManifest);
}
