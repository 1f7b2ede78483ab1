#include "reportpdf/PdfReport.h"

#include "app/Alerts.h"
#include "app/BuildInfo.h"
#include "app/Progress.h"
#include "host/OfflineIdmlHost.h"
#include "package/DocumentPreflight.h"
#include "reportpdf/PdfAnnotations.h"
#include "reports/PreflightResults.h"
#include "results/Presets.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

using namespace quillon;
using reportpdf::PlacedAnnotation;
using reports::QNTextReport;

namespace {

// A document preflighted with the default preset, as the command line does it, and its report
// at a fixed time by a fixed user.
reportpdf::ReportSection preflightedReport(const QString& path, const QString& workFolder)
{
    host::OfflineIdmlHost host;
    EXPECT_TRUE(host.openDocument(path, true));
    app::ScriptedAlertSink alerts;
    app::NullProgressSink progress;
    const QVariantMap preset = results::defaultPreset();
    reports::PreflightResults results(reports::PreflightResults::fixedPreset(preset));
    const package::DocumentPreflightRequest request{
        host, preflight::PreflightFolders::inside(workFolder), preset, {}, nullptr};
    host.setWorkFolder(request.folders.workFolder);
    const auto outcome = package::preflightActiveDocument(request, alerts, progress, results);
    EXPECT_TRUE(outcome) << path.toStdString();
    if (!outcome)
        return {};
    reportpdf::ReportInputs inputs =
        reportpdf::reportInputs(results.fontItems(), results.colorItems(), results.linkItems(), outcome->docInfo);
    inputs.userName = QStringLiteral("Ada Tester");
    inputs.reportDate = QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53));
    return reportpdf::reportSection(inputs);
}

QString run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(60000);
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString() << process.readAllStandardError().toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

// The rows of `pdftotext -layout`, blanks collapsed, the document's dates and the places of the
// repository and of a copied document on this machine masked.
QStringList textRows(const QString& pdf, const QString& copyFolder = {})
{
    QString text = run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    if (!copyFolder.isEmpty())
        text.replace(QDir(copyFolder).absolutePath(), QStringLiteral("<copy>"));
    text.replace(QDir(test::samplePath({})).absolutePath(), QStringLiteral("<samples>"));
    text.replace(QLatin1String(app::kQuillonVersion), QStringLiteral("<version>"));
    text.replace(QDir(test::repoPath({})).absolutePath(), QStringLiteral("<repo>"));
    text.replace(QRegularExpression(QStringLiteral("\\d{1,2} \\w{3} \\d{4} \\d\\d:\\d\\d:\\d\\d")),
                 QStringLiteral("<date>"));
    QStringList rows;
    for (const QString& row : text.split(u'\n'))
        rows << row.simplified();
    while (!rows.isEmpty() && rows.constLast().isEmpty())
        rows.removeLast();
    return rows;
}

} // namespace

class PdfReport : public testing::Test {
protected:
    void SetUp() override
    {
        QLocale::setDefault(QLocale::c());
        ASSERT_TRUE(m_dir.isValid());
    }
    QString writeReport(const QString& sample, const QString& name)
    {
        const QString path = QFileInfo(sample).isAbsolute() ? sample : test::repoPath(sample);
        const reportpdf::ReportSection section = preflightedReport(path, m_dir.filePath(name));
        const app::Result<QString> written = reportpdf::writePdfReport(
            {section}, m_dir.path(), reportpdf::pdfReportFileName(name), QNTextReport::ExistingFile::Number);
        EXPECT_TRUE(written) << (written ? "" : written.error().text().toStdString());
        return written ? *written : QString();
    }
    QTemporaryDir m_dir;
};

TEST_F(PdfReport, TheContentKeepsTheSummaryQuirksAndTheNoteTexts)
{
    results::QNSummaryOutlineController summary;
    summary.startup();
    summary.loadSummary({QStringLiteral("a.indd"), QStringLiteral("/x/a.indd"), QStringLiteral("1 Jan"),
                         QStringLiteral("2 Jan"), QStringLiteral("18.0"), QStringLiteral("0"), QStringLiteral("3 mm"),
                         QStringLiteral("-")},
                        {}, {}, {}, [](std::uint64_t) { return QString(); });
    QStringList field1;
    for (const reportpdf::SummaryLine& line : reportpdf::summaryField1(summary.items()))
        field1 << (line.bold ? u'*' + line.text : line.text);
    EXPECT_EQ(field1,
              (QStringList{"*Document", "\tDate Created:  1 Jan", "\tDate Modified:  2 Jan",
                           "\tInDesign Version:  18.0", "\tPages:  -", "\tBleed:  3 mm", "\tSlug:  -", "*Fonts",
                           "\tMissing:  -", "\tType 1:  -", "\tTrueType:  -", "\tOpenType:  -", "\tTotal:  -"}));
    QStringList field2;
    for (const reportpdf::SummaryLine& line : reportpdf::summaryField2(summary.items()))
        if (line.bold)
            field2 << line.text;
    EXPECT_EQ(field2, (QStringList{"Colors", "Fonts"})) << "the Fonts block twice, no Links block";

    reportpdf::ReportInputs inputs;
    inputs.links = {QVariantMap{{"name", "a.eps"},
                                {"path", "/l/a.eps"},
                                {"app", "Viewer"},
                                {"epsfontlist", "Helvetica\rTimes"},
                                {"alerts", QVariantMap{{"status", QStringList{"Status is \"Missing\""}}}}},
                    QVariantMap{{"name", "b.tif"}, {"path", "/l/b.tif"}}};
    inputs.docName = QStringLiteral("a.indd");
    inputs.userName = QStringLiteral("Ada");
    inputs.reportDate = QDateTime(QDate(2026, 3, 14), QTime(9, 26, 53));
    reportpdf::ReportSection first = reportpdf::reportSection(inputs);
    EXPECT_EQ(first.presetLine, QStringLiteral("[Default]"));
    EXPECT_TRUE(first.pathLabel.isEmpty()) << "no document path, no path line";
    EXPECT_EQ(first.userLine, QStringLiteral("Ada \u2022 14 Mar 2026 09:26:53"));
    EXPECT_TRUE(first.creditLine.startsWith(QStringLiteral("Created with Quillon ")));
    EXPECT_EQ(first.links.rows.at(0).alertedColumns, QList<int>{9});
    inputs.links.removeFirst();
    inputs.docName = QStringLiteral("b.indd");
    QList<reportpdf::ReportSection> batch{first, reportpdf::reportSection(inputs)};
    reportpdf::markSharedLinks(batch);
    EXPECT_EQ(batch.at(0).linkNotes.at(0).contents(),
              QStringLiteral("Name: a.eps\nApplication: Viewer\nFonts: Helvetica, Times\nColors: -\nDocument: "
                             "a.indd\nPreflight Warning: Status is \"Missing\"\n\nPath: /l/a.eps"));
    EXPECT_EQ(batch.at(0).linkNotes.at(1).document, QStringLiteral("Multiple documents"));
}

TEST_F(PdfReport, ReportsOfTheBundledAndRealSamplesMatchTheirPinnedTextsRowByRow)
{
    QTemporaryDir bundled;
    const QStringList samples{
        test::copyBundledSample(bundled.path()),
        test::samplePath(QStringLiteral("idml/sets/simpleidml/tests/regressiontests/IDML/article-1photo.idml")),
        test::samplePath(QStringLiteral("idml/tripple.idml"))};
    for (const QString& sample : samples) {
        const QString name = QFileInfo(sample).fileName();
        const QString pdf = writeReport(sample, name);
        EXPECT_EQ(reportpdf::pdfStructureProblems(pdf), QString()) << name.toStdString();
        if (!QStandardPaths::findExecutable(QStringLiteral("qpdf")).isEmpty())
            run(QStringLiteral("qpdf"), {QStringLiteral("--check"), pdf});
        const QString pinned = test::repoPath(QStringLiteral("tests/reportpdf/pinned/%1.txt").arg(name));
        const QStringList rows = textRows(pdf, bundled.path());
        if (qEnvironmentVariableIsSet("QUILLON_PIN_REPORTS"))
            test::writeAll(pinned, rows.join(u'\n').toUtf8() + '\n');
        const QStringList expected = QString::fromUtf8(test::readAll(pinned)).trimmed().split(u'\n');
        for (qsizetype i = 0; i < std::max(rows.size(), expected.size()); ++i)
            EXPECT_EQ(rows.value(i), expected.value(i)) << name.toStdString() << " row " << i + 1;
    }
    // Page 1 of the bundled sample as a print buyer sees it.
    const QString png = QCoreApplication::applicationDirPath() + QStringLiteral("/report-page1");
    run(QStringLiteral("pdftoppm"),
        {QStringLiteral("-r"), QStringLiteral("80"), QStringLiteral("-png"), QStringLiteral("-f"), QStringLiteral("1"),
         QStringLiteral("-l"), QStringLiteral("1"), QStringLiteral("-singlefile"),
         m_dir.filePath(QStringLiteral("sample-brochure.idml_Quillon_Report.pdf")), png});
    EXPECT_TRUE(test::readAll(png + QStringLiteral(".png")).startsWith("\x89PNG"));
}

TEST_F(PdfReport, EveryPageLinksItsAddressesAndEveryLinkRowCarriesItsNote)
{
    const QString pdf = writeReport(test::samplePath(QStringLiteral("idml/tripple.idml")), QStringLiteral("t.idml"));
    const QList<PlacedAnnotation> annotations = reportpdf::pdfAnnotations(pdf);
    QMap<int, QStringList> uris;
    QStringList notes;
    for (const PlacedAnnotation& a : annotations) {
        EXPECT_TRUE(QRectF(0, 0, 595.3, 841.9).contains(a.rect)) << a.value.toStdString();
        if (a.kind == PlacedAnnotation::Kind::Uri) {
            uris[a.page] << a.value;
            EXPECT_LT(a.rect.top(), 30) << "in the footer";
        } else {
            notes << a.value;
            EXPECT_GT(a.rect.top(), 40) << "a row above the footer, never cut by it";
        }
    }
    ASSERT_EQ(uris.size(), 2) << "the links run onto a second page";
    for (const QStringList& pageUris : uris)
        EXPECT_EQ(pageUris, (QStringList{"https://www.tornvale.com", "mailto:support@tornvale.com"}));
    ASSERT_EQ(notes.size(), 15);
    EXPECT_TRUE(notes.at(0).startsWith(QStringLiteral("Name: "))) << notes.at(0).toStdString();
    EXPECT_TRUE(notes.at(0).contains(QStringLiteral("\nDocument: tripple.idml\nPreflight Warning: ")));

    // A continued outline repeats its header; the footer counts the pages.
    const QString last = QString::number(uris.size());
    const QString page2 =
        run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), QStringLiteral("-f"), QStringLiteral("2"),
                                          QStringLiteral("-l"), QStringLiteral("2"), pdf, QStringLiteral("-")});
    EXPECT_TRUE(page2.contains(QStringLiteral("(continued)"))) << page2.toStdString();
    EXPECT_TRUE(page2.contains(QStringLiteral("Page 2 of ") + last));

    // A batch: one section per document, each from a new page with its own name in the footer.
    const QList<reportpdf::ReportSection> batch{
        preflightedReport(test::repoPath(QStringLiteral("resources/sample/sample-brochure.idml")), m_dir.filePath("a")),
        preflightedReport(test::samplePath(QStringLiteral("idml/interview.idml")), m_dir.filePath("b"))};
    const app::Result<QString> both =
        reportpdf::writePdfReport(batch, m_dir.path(), QStringLiteral("batch.pdf"), QNTextReport::ExistingFile::Number);
    ASSERT_TRUE(both);
    const QString second = run(QStringLiteral("pdftotext"), {QStringLiteral("-layout"), QStringLiteral("-f"),
                                                             QStringLiteral("2"), *both, QStringLiteral("-")});
    EXPECT_TRUE(second.trimmed().startsWith(QStringLiteral("Quillon Report"))) << second.toStdString();
    EXPECT_TRUE(second.contains(QStringLiteral("interview.idml ")) && second.contains(QStringLiteral("Page 2 of ")))
        << second.toStdString();
}

TEST_F(PdfReport, AFailedWriteKeepsTheEarlierReportAndLeavesNoIntermediateFile)
{
    const QString pdf = writeReport(QStringLiteral("resources/sample/sample-brochure.idml"), QStringLiteral("s.idml"));
    const QByteArray earlier = test::readAll(pdf);
    const reportpdf::ReportSection section =
        preflightedReport(test::repoPath(QStringLiteral("resources/sample/sample-brochure.idml")), m_dir.filePath("w"));
    QDir(m_dir.filePath(QStringLiteral("w"))).removeRecursively();

    // Files may not grow past 8 KB: the new report cannot be written whole.
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small{8192, limit.rlim_max};
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const app::Result<QString> failed = reportpdf::writePdfReport({section}, m_dir.path(), QFileInfo(pdf).fileName(),
                                                                  QNTextReport::ExistingFile::Replace);
    setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(failed);
    EXPECT_EQ(test::readAll(pdf), earlier);
    EXPECT_EQ(QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList{QFileInfo(pdf).fileName()});

    // Without leave to replace, a second report is numbered.
    const app::Result<QString> numbered = reportpdf::writePdfReport({section}, m_dir.path(), QFileInfo(pdf).fileName(),
                                                                    QNTextReport::ExistingFile::Number);
    ASSERT_TRUE(numbered);
    EXPECT_TRUE(numbered->endsWith(QStringLiteral("s.idml_Quillon_Report_1.pdf")));
    EXPECT_EQ(test::readAll(pdf), earlier);
}

TEST(PdfReportAlert, NoDocumentPreflightedMeansTheInformationalAlertAndNoReport)
{
    app::ScriptedAlertSink alerts;
    EXPECT_TRUE(reportpdf::documentReadyForReport(QStringLiteral("/docs/a.indd"), alerts));
    EXPECT_TRUE(alerts.requests().empty());
    EXPECT_FALSE(reportpdf::documentReadyForReport({}, alerts));
    ASSERT_EQ(alerts.requests().size(), 1u);
    EXPECT_EQ(alerts.requests().at(0).title, QStringLiteral("Please preflight a document first"));
    EXPECT_EQ(alerts.requests().at(0).message, QStringLiteral("Please preflight a document before setting up report."));
    EXPECT_FALSE(alerts.requests().at(0).critical);
}
