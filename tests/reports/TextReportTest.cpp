#include "reports/TextReport.h"

#include "app/BuildInfo.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>

using namespace quillon::reports;

namespace {

QVariantMap font(const QString& name, const QString& status, const QVariant& embed)
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("type"), QStringLiteral("OpenType CFF")},
            {QStringLiteral("status"), status},
            {QStringLiteral("psfont"), QString(name).remove(u' ')},
            {QStringLiteral("embed"), embed}};
}

QVariantMap link()
{
    return {
        {QStringLiteral("name"), QStringLiteral("a.psd")},     {QStringLiteral("path"), QStringLiteral("/j/a.psd")},
        {QStringLiteral("page"), QStringLiteral("3")},         {QStringLiteral("volume"), QStringLiteral("Jobs")},
        {QStringLiteral("kind"), QStringLiteral("Photoshop")}, {QStringLiteral("size"), QStringLiteral("28 KB")},
        {QStringLiteral("color"), QStringLiteral("CMYK")},     {QStringLiteral("profile"), QStringLiteral("Coated")},
        {QStringLiteral("scale"), QStringLiteral("50")},       {QStringLiteral("ares"), QStringLiteral("300")},
        {QStringLiteral("eres"), QStringLiteral("600")},       {QStringLiteral("status"), QStringLiteral("OK")},
        {QStringLiteral("print"), QStringLiteral("√")}};
}

const ReportDocumentInfo kInfo{QStringLiteral("Brochure.indd"), QStringLiteral("/Jobs/Brochure.indd"),
                               QStringLiteral("1/2/24, 10:00 AM"), QStringLiteral("3/4/24, 11:30 AM")};

} // namespace

TEST(TextReport, RegularLayoutLabelsEachAttributeAndMapsStatusWords)
{
    QNTextReport report(TextReportType::Regular);
    const QVariantList fonts{
        font(QStringLiteral("Minion Pro Regular"), QStringLiteral("installed"), true),
        font(QStringLiteral("Helvetica Bold"), QStringLiteral("substituted"), QStringLiteral("No"))};
    EXPECT_EQ(report.fontsReportFromItems(fonts),
              QStringLiteral("FONTS\n\n"
                             "Name: Minion Pro Regular\nType: OpenType CFF\nStatus: OK\nPostScript font name: "
                             "MinionProRegular\nPDF embedding allowed: Yes\n\n"
                             "Name: Helvetica Bold\nType: OpenType CFF\nStatus: ?\nPostScript font name: "
                             "HelveticaBold\nPDF embedding allowed: No"));
    const QVariantList colors{QVariantMap{{QStringLiteral("name"), QStringLiteral("PANTONE 130 U")},
                                          {QStringLiteral("value"), QStringLiteral("70  40  0")},
                                          {QStringLiteral("spot"), QStringLiteral("spot")},
                                          {QStringLiteral("space"), QStringLiteral("LAB")}}};
    // A missing value is "?"; the model label is "Process" in the regular layout.
    EXPECT_EQ(report.colorsReportFromItems(colors),
              QStringLiteral("COLORS\n\nName: PANTONE 130 U\nValue: 70  40  0\nProcess: Spot\nSpace: LAB\nUsed: ?"));
    EXPECT_EQ(report.linksReportFromItems({}), QStringLiteral("LINKS\n\n<no links>"));
}

TEST(TextReport, TabLayoutHasHeaderRowOnlyWhenThereAreItems)
{
    QNTextReport report(TextReportType::TabDelimited);
    EXPECT_EQ(report.fontsReportFromItems({}), QStringLiteral("FONTS\n<no fonts>"));
    EXPECT_EQ(
        report.linksReportFromItems(QVariantList{link()}),
        QStringLiteral("LINKS\n"
                       "Name\tPath\tPage\tVolume\tKind\tSize\tColor Mode\tICC Profile\tScale\tActual Res\tEffective "
                       "Res\tFonts\tSpot Colors\tStatus\tPrintable\n"
                       "a.psd\t/j/a.psd\t3\tJobs\tPhotoshop\t28 KB\tCMYK\tCoated\t50\t300\t600\t?\t?\tOK\t√"));
    const QVariantList mixed{
        QVariantMap{{QStringLiteral("name"), QStringLiteral("M")},
                    {QStringLiteral("spot"), QStringLiteral("mixedinkmodel")}},
        QVariantMap{{QStringLiteral("name"), QStringLiteral("P")}, {QStringLiteral("spot"), QStringLiteral("process")}},
        QVariantMap{{QStringLiteral("name"), QStringLiteral("X")}, {QStringLiteral("spot"), QStringLiteral("other")}}};
    EXPECT_EQ(
        report.colorsReportFromItems(mixed),
        QStringLiteral("COLORS\nName\tValue\tProcess/Spot\tSpace\tUsed\nM\t?\tMixed Ink\t?\t?\nP\t?\tProcess\t?\t?\n"
                       "X\t?\t?\t?\t?"));
}

TEST(TextReport, StatusWords)
{
    EXPECT_EQ(QNTextReport::fontStatusForString(QStringLiteral("unknown")), QStringLiteral("Unknown"));
    EXPECT_EQ(QNTextReport::fontStatusForString(QStringLiteral("Installed")), QStringLiteral("?"));
}

TEST(TextReport, WholeFileHasHeaderSectionsAndOptionalParagraphStyles)
{
    QTemporaryDir dir;
    const QDateTime date(QDate(2026, 11, 21), QTime(9, 5));
    QNTextReport report;
    const auto path = report.writeReport(dir.path(), {}, {}, QVariantList{link()}, QString(), kInfo, date);
    ASSERT_TRUE(path.ok()) << path.error().text().toStdString();
    EXPECT_TRUE(path->endsWith(QStringLiteral("/Brochure.indd_Quillon_Report.txt")));
    const QString text = QString::fromUtf8(quillon::test::readAll(*path));
    EXPECT_TRUE(
        text.startsWith(QStringLiteral("-----------------Quillon Report-----------------\nCreated with Quillon ") +
                        QLatin1String(quillon::app::kQuillonVersion)));
    const QString documentAndSections =
        QStringLiteral("\nReport date: %1\n\nDocument: Brochure.indd\nPath: /Jobs/Brochure.indd\n"
                       "Creation Date: 1/2/24, 10:00 AM\nModification Date: 3/4/24, 11:30 AM\n"
                       "\n\n\nFONTS\n\n<no fonts>\n\n\nCOLORS\n\n<no colors>\n\n\nLINKS\n\nName: a.psd\n")
            .arg(QLocale().toString(date, QLocale::ShortFormat));
    EXPECT_TRUE(text.contains(documentAndSections)) << text.toStdString();
    EXPECT_TRUE(text.endsWith(QStringLiteral("Printable: √")))
        << "without paragraph styles the file ends after the links";

    const QString withParas = report.reportText({}, {}, {}, QStringLiteral("Body: 12 paragraphs"), kInfo, date);
    EXPECT_TRUE(withParas.endsWith(QStringLiteral("LINKS\n\n<no links>\n\n\nPARAGRAPH STYLES\n\nBody: 12 paragraphs")));

    // An unwritable folder is an error naming the file, not a crash.
    const auto bad =
        report.writeReport(dir.path() + QStringLiteral("/missing/folder"), {}, {}, {}, QString(), kInfo, date);
    ASSERT_FALSE(bad.ok());
    EXPECT_TRUE(bad.error().file.contains(QStringLiteral("missing/folder")));
}

TEST(TextReport, DocumentGroupsAreReportedAsTheirRecords)
{
    QNTextReport report(TextReportType::TabDelimited);
    const QVariantList grouped{QVariantMap{
        {QStringLiteral("name"), QStringLiteral("Doc.indd")},
        {QStringLiteral("isDock"), 1},
        {QStringLiteral("children"), QVariantList{font(QStringLiteral("A"), QStringLiteral("missing"), false)}}}};
    EXPECT_EQ(report.fontsReportFromItems(grouped),
              QStringLiteral("FONTS\nName\tType\tStatus\tPS Name\tPDF Embedding\nA\tOpenType CFF\tMissing\tA\tNo"));
}

TEST(TextReportFile, AFailedWriteLeavesTheEarlierReportWholeAndNumbersInsteadOfReplacing)
{
    QTemporaryDir folder;
    const QString name = QStringLiteral("Doc.idml_Quillon_Report.txt");
    const QString earlier = folder.filePath(name);
    quillon::test::writeAll(earlier, "the earlier report");
    using Existing = QNTextReport::ExistingFile;

    auto saved = QNTextReport::saveReportFile("new", folder.path(), name, Existing::Number);
    ASSERT_TRUE(saved.ok()) << saved.error().text().toStdString();
    EXPECT_EQ(*saved, folder.filePath(QStringLiteral("Doc.idml_Quillon_Report_1.txt")));
    EXPECT_EQ(quillon::test::readAll(earlier), QByteArray("the earlier report"));

    // A disk that fills up half-way through the new report, as a file-size limit makes it.
    struct rlimit before {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit small = before;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    saved = QNTextReport::saveReportFile(QByteArray(100000, 'x'), folder.path(), name, Existing::Replace);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, previousHandler);
    EXPECT_FALSE(saved.ok());
    EXPECT_EQ(quillon::test::readAll(earlier), QByteArray("the earlier report"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden).size(), 2) << "no temporary file is left";

    saved = QNTextReport::saveReportFile("replaced", folder.path(), name, Existing::Replace);
    ASSERT_TRUE(saved.ok());
    EXPECT_EQ(quillon::test::readAll(earlier), QByteArray("replaced"));
}
