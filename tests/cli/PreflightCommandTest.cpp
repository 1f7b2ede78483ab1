#include "CliRunner.h"

#include "support/TestSupport.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>

using quillon::test::CliRun;
using quillon::test::repoPath;
using quillon::test::runQuillon;
using quillon::test::samplePath;

namespace {

QStringList idmlFilesBelow(const QString& folder)
{
    QStringList found;
    QDirIterator it(folder, {QStringLiteral("*.idml")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found << it.next();
    found.sort();
    return found;
}

// Each test has user settings, presets and a temporary folder of its own; afterwards the
// temporary folder must hold nothing the command left.
class PreflightCommand : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_config.isValid() && m_tmp.isValid() && m_out.isValid()); }

    void TearDown() override
    {
        EXPECT_TRUE(QDir(m_tmp.path()).isEmpty())
            << QDir(m_tmp.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join(u' ').toStdString();
    }

    QStringList environment() const
    {
        return {QStringLiteral("XDG_CONFIG_HOME=") + m_config.path(), QStringLiteral("TMPDIR=") + m_tmp.path(),
                QStringLiteral("LC_ALL=C")};
    }

    CliRun preflight(QStringList arguments, int timeoutMs = 120000) const
    {
        arguments.prepend(QStringLiteral("preflight"));
        return runQuillon(arguments, environment(), timeoutMs);
    }

    // A preset that checks nothing.
    QString lenientPreset() const
    {
        const QString path = m_out.filePath(QStringLiteral("Lenient.qnfp"));
        quillon::test::writeAll(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                                      "<key>name</key><string>Lenient</string></dict></plist>\n");
        return path;
    }

    QTemporaryDir m_config;
    QTemporaryDir m_tmp;
    QTemporaryDir m_out;
};

QString samplePreset()
{
    return repoPath(QStringLiteral("resources/sample/Sample Print Checks.qnfp"));
}

} // namespace

TEST_F(PreflightCommand, EverySampleDocumentGivesTheJsonEnvelope)
{
    const QStringList documents = idmlFilesBelow(samplePath(QStringLiteral("idml")));
    ASSERT_GE(documents.size(), 13);
    const CliRun run = preflight(
        QStringList{QStringLiteral("--format"), QStringLiteral("json"), QStringLiteral("--jobs"), QStringLiteral("2")} +
        documents);
    ASSERT_TRUE(run.exitCode == 0 || run.exitCode == 1) << run.exitCode << run.err.toStdString();

    QJsonParseError parsed;
    const QJsonObject envelope = QJsonDocument::fromJson(run.out, &parsed).object();
    ASSERT_EQ(parsed.error, QJsonParseError::NoError) << parsed.errorString().toStdString();
    EXPECT_FALSE(envelope.value(QStringLiteral("quillonVersion")).toString().isEmpty());
    EXPECT_EQ(envelope.value(QStringLiteral("preset")).toString(), QStringLiteral("[Default]"));
    const QJsonArray array = envelope.value(QStringLiteral("documents")).toArray();
    ASSERT_EQ(array.size(), documents.size());
    int links = 0;
    for (qsizetype i = 0; i < array.size(); ++i) {
        const QJsonObject document = array.at(i).toObject();
        SCOPED_TRACE(documents.at(i).toStdString());
        EXPECT_EQ(document.value(QStringLiteral("path")).toString(), documents.at(i));
        EXPECT_EQ(document.value(QStringLiteral("name")).toString(), QFileInfo(documents.at(i)).fileName());
        ASSERT_FALSE(document.contains(QStringLiteral("error")))
            << document.value(QStringLiteral("error")).toString().toStdString();
        const QJsonObject info = document.value(QStringLiteral("info")).toObject();
        for (const char* key :
             {"docName", "docPath", "numberOfPagesStr", "InDesignVersion", "fileSizeStr", "creationDateStr",
              "modDateStr", "bleedStr", "slugStr", "horizMeasurementUnits", "vertMeasurementUnits", "pageSizeStr"})
            EXPECT_TRUE(info.value(QLatin1String(key)).isString()) << key;
        EXPECT_TRUE(info.value(QStringLiteral("docPageSizes")).isArray());
        for (const char* list : {"links", "fonts", "colors"})
            EXPECT_TRUE(document.value(QLatin1String(list)).isArray()) << list;
        for (const QJsonValue& link : document.value(QStringLiteral("links")).toArray()) {
            EXPECT_FALSE(link.toObject().contains(QStringLiteral("icon")));
            ++links;
        }
        EXPECT_EQ(document.value(QStringLiteral("summary")).toObject().keys(),
                  (QStringList{QStringLiteral("Colors"), QStringLiteral("Document"), QStringLiteral("Fonts"),
                               QStringLiteral("Links")}));
        EXPECT_TRUE(document.value(QStringLiteral("status")).isString());
        EXPECT_TRUE(document.value(QStringLiteral("errorCount")).isDouble());
        const bool alerted = document.value(QStringLiteral("errorCount")).toInt() > 0;
        EXPECT_EQ(document.value(QStringLiteral("status")).toString() == QLatin1String("No errors found"), !alerted);
    }
    EXPECT_GT(links, 0);
}

TEST_F(PreflightCommand, ExitStatusesAndADocumentThatCannotBePreflighted)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const QString missing = m_out.filePath(QStringLiteral("gone.idml"));
    const QString broken = m_out.filePath(QStringLiteral("broken.idml"));
    quillon::test::writeAll(broken, "PK\x03\x04 not really a zip");

    // A document with no alerts under a preset that checks nothing.
    CliRun run = preflight({interview, QStringLiteral("--preset-file"), lenientPreset()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith("interview.idml\n")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("  Preset:     Lenient\n  Result:     No errors found\n")) << run.out.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString(); // no progress line off a terminal

    // One that cannot be read stops nothing else; its message names it.
    run = preflight({missing, broken, interview, QStringLiteral("--format"), QStringLiteral("json"),
                     QStringLiteral("--jobs"), QStringLiteral("1")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(
        run.err.contains(QStringLiteral("quillon preflight: %1: the file does not exist").arg(missing).toUtf8()))
        << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("quillon preflight: %1: ").arg(broken).toUtf8()));
    const QJsonArray documents = QJsonDocument::fromJson(run.out).object().value(QStringLiteral("documents")).toArray();
    ASSERT_EQ(documents.size(), 3);
    for (int i : {0, 1}) {
        const QJsonObject failed = documents.at(i).toObject();
        EXPECT_FALSE(failed.value(QStringLiteral("error")).toString().isEmpty());
        EXPECT_FALSE(failed.contains(QStringLiteral("links")));
    }
    EXPECT_TRUE(documents.at(2).toObject().contains(QStringLiteral("links")));

    // Refusals before any document is read.
    EXPECT_EQ(preflight({interview, QStringLiteral("--preset"), QStringLiteral("No Such Preset")}).exitCode, 2);
    EXPECT_EQ(preflight({interview, QStringLiteral("--links-dir"), missing}).exitCode, 2);
    EXPECT_EQ(preflight({interview, QStringLiteral("--preset-file"), broken}).exitCode, 2);
}

TEST_F(PreflightCommand, ReportsGoToStandardOutputAndIntoTheReportFolder)
{
    const QString interview = samplePath(QStringLiteral("idml/interview.idml"));
    const QString copy = m_out.filePath(QStringLiteral("again/interview.idml"));
    QDir().mkpath(QFileInfo(copy).path());
    ASSERT_TRUE(QFile::copy(interview, copy));
    const QString reports = m_out.filePath(QStringLiteral("reports"));

    CliRun run = preflight({interview, copy, QStringLiteral("--format"), QStringLiteral("tab"),
                            QStringLiteral("--jobs"), QStringLiteral("2"), QStringLiteral("--report-dir"), reports,
                            QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList written = QDir(reports).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(written, (QStringList{QStringLiteral("interview.idml_Quillon_Report.txt"),
                                    QStringLiteral("interview.idml_Quillon_Report_1.txt")}));
    const QByteArray first = quillon::test::readAll(QDir(reports).filePath(written.at(0)));
    const QByteArray second = quillon::test::readAll(QDir(reports).filePath(written.at(1)));
    EXPECT_EQ(run.out, first + "\n\n" + second + "\n");
    EXPECT_TRUE(first.contains("\nCOLORS\nName\tValue\tProcess/Spot\tSpace\tUsed\n")) << first.toStdString();
    EXPECT_TRUE(second.contains(("Path: " + copy + "\n").toUtf8()));

    // The summary with a report folder writes the regular report.
    run = preflight(
        {interview, QStringLiteral("--report-dir"), reports, QStringLiteral("--preset-file"), lenientPreset()});
    ASSERT_EQ(run.exitCode, 0);
    EXPECT_TRUE(quillon::test::readAll(QDir(reports).filePath(written.at(0))).contains("\n\nCOLORS\n\nName: "));
}

TEST_F(PreflightCommand, CtrlCCancelsAndLeavesNothingBehind)
{
    // Enough work to be interrupted: the largest sample, many times over, one at a time.
    const QString manual = samplePath(QStringLiteral("idml/manual_template_test2.idml"));
    QStringList arguments{QStringLiteral("preflight"), QStringLiteral("--jobs"), QStringLiteral("1"),
                          QStringLiteral("--format"), QStringLiteral("json")};
    for (int i = 0; i < 40; ++i)
        arguments << manual;
    QProcess process;
    process.setWorkingDirectory(repoPath(QString()));
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& variable : environment())
        env.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(QUILLON_CLI_PATH), arguments);
    ASSERT_TRUE(process.waitForStarted());
    QThread::msleep(1500);
    ::kill(static_cast<pid_t>(process.processId()), SIGINT);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130) << process.readAllStandardError().toStdString();
    const QJsonArray documents =
        QJsonDocument::fromJson(process.readAllStandardOutput()).object().value(QStringLiteral("documents")).toArray();
    EXPECT_EQ(documents.size(), 40);
    EXPECT_EQ(documents.last().toObject().value(QStringLiteral("error")).toString(),
              QStringLiteral("the preflight was cancelled"));
}

TEST_F(PreflightCommand, TheBundledSampleRaisesTheProblemsItWasMadeFor)
{
    const CliRun run = preflight({repoPath(QStringLiteral("resources/sample/sample-brochure.idml")),
                                  QStringLiteral("--preset-file"), samplePreset()});
    EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    for (const char* line : {"  Preset:     Sample Print Checks\n", "    Garamond Premier Pro Italic\n",
                             "    Web Blue\n      - Color space is RGB\n", "    Sea Green\n      - Unused color\n"})
        EXPECT_TRUE(run.out.contains(line)) << line << "\n" << run.out.toStdString();
    EXPECT_FALSE(run.out.contains("DejaVu")) << "an installed font raises nothing";
}
