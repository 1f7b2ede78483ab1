#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

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
    const QStringList common{u"package"_s, brochure,    interview, u"--to"_s,          to,     u"--preset-file"_s,
                             lenient,      u"--name"_s, u"Job:"_s, u"--name-suffix"_s, u"7"_s, u"--no-relink"_s};

    CliRun run = runQuillon(common + QStringList{u"--text-report"_s}, environment);
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString() << run.out.toStdString();
    const QString folder = to + u"/Job_7"_s;
    EXPECT_TRUE(run.out.startsWith(u"Package folder: %1\n"_s.arg(folder).toUtf8())) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Links copied: 4\n"));
    EXPECT_EQ(QDir(folder + u"/Links"_s).entryList(QDir::Files).size(), 4);
    for (const QString& file :
         {u"sample-brochure.idml"_s, u"interview.idml"_s, u"interview.idml_Quillon_Report.txt"_s, u"Document fonts"_s})
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
