#include "reports/TextReport.h"

#include "app/BuildInfo.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

using namespace quillon::reports;

namespace {

QVariantMap font(const QString& name, const QString& status, const QVariant& embed)
{
    return {{u"name"_s, name},
            {u"type"_s, u"OpenType CFF"_s},
            {u"status"_s, status},
            {u"psfont"_s, QString(name).remove(u' ')},
            {u"embed"_s, embed}};
}

QVariantMap link()
{
    return {{u"name"_s, u"a.psd"_s},  {u"path"_s, u"/j/a.psd"_s},  {u"page"_s, u"3"_s},
            {u"volume"_s, u"Jobs"_s}, {u"kind"_s, u"Photoshop"_s}, {u"size"_s, u"28 KB"_s},
            {u"color"_s, u"CMYK"_s},  {u"profile"_s, u"Coated"_s}, {u"scale"_s, u"50"_s},
            {u"ares"_s, u"300"_s},    {u"eres"_s, u"600"_s},       {u"status"_s, u"OK"_s},
            {u"print"_s, u"√"_s}};
}

const ReportDocumentInfo kInfo{u"Brochure.indd"_s, u"/Jobs/Brochure.indd"_s, u"1/2/24, 10:00 AM"_s,
                               u"3/4/24, 11:30 AM"_s};

} // namespace

TEST(TextReport, RegularLayoutLabelsEachAttributeAndMapsStatusWords)
{
    QNTextReport report(TextReportType::Regular);
    const QVariantList fonts{font(u"Minion Pro Regular"_s, u"installed"_s, true),
                             font(u"Helvetica Bold"_s, u"substituted"_s, u"No"_s)};
    EXPECT_EQ(report.fontsReportFromItems(fonts),
              QStringLiteral("FONTS\n\n"
                             "Name: Minion Pro Regular\nType: OpenType CFF\nStatus: OK\nPostScript font name: "
                             "MinionProRegular\nPDF embedding allowed: Yes\n\n"
                             "Name: Helvetica Bold\nType: OpenType CFF\nStatus: ?\nPostScript font name: "
                             "HelveticaBold\nPDF embedding allowed: No"));
    const QVariantList colors{QVariantMap{
        {u"name"_s, u"PANTONE 130 U"_s}, {u"value"_s, u"70  40  0"_s}, {u"spot"_s, u"spot"_s}, {u"space"_s, u"LAB"_s}}};
    // A missing value is "?"; the model label is "Process" in the regular layout.
    EXPECT_EQ(report.colorsReportFromItems(colors),
              u"COLORS\n\nName: PANTONE 130 U\nValue: 70  40  0\nProcess: Spot\nSpace: LAB\nUsed: ?"_s);
    EXPECT_EQ(report.linksReportFromItems({}), u"LINKS\n\n<no links>"_s);
}

TEST(TextReport, TabLayoutHasHeaderRowOnlyWhenThereAreItems)
{
    QNTextReport report(TextReportType::TabDelimited);
    EXPECT_EQ(report.fontsReportFromItems({}), u"FONTS\n<no fonts>"_s);
    EXPECT_EQ(
        report.linksReportFromItems(QVariantList{link()}),
        QStringLiteral("LINKS\n"
                       "Name\tPath\tPage\tVolume\tKind\tSize\tColor Mode\tICC Profile\tScale\tActual Res\tEffective "
                       "Res\tFonts\tSpot Colors\tStatus\tPrintable\n"
                       "a.psd\t/j/a.psd\t3\tJobs\tPhotoshop\t28 KB\tCMYK\tCoated\t50\t300\t600\t?\t?\tOK\t√"));
    const QVariantList mixed{QVariantMap{{u"name"_s, u"M"_s}, {u"spot"_s, u"mixedinkmodel"_s}},
                             QVariantMap{{u"name"_s, u"P"_s}, {u"spot"_s, u"process"_s}},
                             QVariantMap{{u"name"_s, u"X"_s}, {u"spot"_s, u"other"_s}}};
    EXPECT_EQ(
        report.colorsReportFromItems(mixed),
        QStringLiteral("COLORS\nName\tValue\tProcess/Spot\tSpace\tUsed\nM\t?\tMixed Ink\t?\t?\nP\t?\tProcess\t?\t?\n"
                       "X\t?\t?\t?\t?"));
}

TEST(TextReport, StatusWords)
{
    EXPECT_EQ(QNTextReport::fontStatusForString(u"unknown"_s), u"Unknown"_s);
    EXPECT_EQ(QNTextReport::fontStatusForString(u"Installed"_s), u"?"_s);
}

TEST(TextReport, WholeFileHasHeaderSectionsAndOptionalParagraphStyles)
{
    QTemporaryDir dir;
    const QDateTime date(QDate(2026, 11, 21), QTime(9, 5));
    QNTextReport report;
    const auto path = report.writeReport(dir.path(), {}, {}, QVariantList{link()}, QString(), kInfo, date);
    ASSERT_TRUE(path.ok()) << path.error().text().toStdString();
    EXPECT_TRUE(path->endsWith(u"/Brochure.indd_Quillon_Report.txt"_s));
    const QString text = QString::fromUtf8(quillon::test::readAll(*path));
    EXPECT_TRUE(text.startsWith(u"-----------------Quillon Report-----------------\nCreated with Quillon "_s +
                                QLatin1String(quillon::app::kQuillonVersion)));
    const QString documentAndSections =
        QStringLiteral("\nReport date: %1\n\nDocument: Brochure.indd\nPath: /Jobs/Brochure.indd\n"
                       "Creation Date: 1/2/24, 10:00 AM\nModification Date: 3/4/24, 11:30 AM\n"
                       "\n\n\nFONTS\n\n<no fonts>\n\n\nCOLORS\n\n<no colors>\n\n\nLINKS\n\nName: a.psd\n")
            .arg(QLocale().toString(date, QLocale::ShortFormat));
    EXPECT_TRUE(text.contains(documentAndSections)) << text.toStdString();
    EXPECT_TRUE(text.endsWith(u"Printable: √"_s)) << "without paragraph styles the file ends after the links";

    const QString withParas = report.reportText({}, {}, {}, u"Body: 12 paragraphs"_s, kInfo, date);
    EXPECT_TRUE(withParas.endsWith(u"LINKS\n\n<no links>\n\n\nPARAGRAPH STYLES\n\nBody: 12 paragraphs"_s));

    // An unwritable folder is an error naming the file, not a crash.
    const auto bad = report.writeReport(dir.path() + u"/missing/folder"_s, {}, {}, {}, QString(), kInfo, date);
    ASSERT_FALSE(bad.ok());
    EXPECT_TRUE(bad.error().file.contains(u"missing/folder"_s));
}

TEST(TextReport, DocumentGroupsAreReportedAsTheirRecords)
{
    QNTextReport report(TextReportType::TabDelimited);
    const QVariantList grouped{QVariantMap{{u"name"_s, u"Doc.indd"_s},
                                           {u"isDock"_s, 1},
                                           {u"children"_s, QVariantList{font(u"A"_s, u"missing"_s, false)}}}};
    EXPECT_EQ(report.fontsReportFromItems(grouped),
              u"FONTS\nName\tType\tStatus\tPS Name\tPDF Embedding\nA\tOpenType CFF\tMissing\tA\tNo"_s);
}

TEST(TextReportFile, AFailedWriteLeavesTheEarlierReportWholeAndNumbersInsteadOfReplacing)
{
    QTemporaryDir folder;
    const QString name = u"Doc.idml_Quillon_Report.txt"_s;
    const QString earlier = folder.filePath(name);
    quillon::test::writeAll(earlier, "the earlier report");
    using Existing = QNTextReport::ExistingFile;

    auto saved = QNTextReport::saveReportFile("new", folder.path(), name, Existing::Number);
    ASSERT_TRUE(saved.ok()) << saved.error().text().toStdString();
    EXPECT_EQ(*saved, folder.filePath(u"Doc.idml_Quillon_Report_1.txt"_s));
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
