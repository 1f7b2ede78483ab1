#include "package/PackageSettings.h"
#include "package/PackageNames.h"

#include "app/Alerts.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace quillon;
using namespace quillon::package;

TEST(PackageNames, FolderNamesWithTheirReplacementsNumbersAndLengthCut)
{
    QTemporaryDir dir;
    const QString base = dir.path();
    const QString longName = QString(300, u'x');
    QDir(base).mkdir(u"Spring_Catalogue"_s);
    QDir(base).mkdir(u"Taken"_s);
    QDir(base).mkdir(longName.left(255));
    PackageFolderNaming naming{base, {}, {}, false};
    EXPECT_EQ(packageFolderNameForUnified(naming, u"/jobs/Brochure.v2.indd"_s), u"Brochure.v2"_s);
    naming.namePart1 = u"Spring:"_s;
    naming.namePart2 = u"Catalogue"_s;
    // Tested for existence before ":" becomes "_": the taken folder is not seen.
    EXPECT_EQ(packageFolderNameForUnified(naming, {}), u"Spring_Catalogue"_s);
    naming.namePart1 = u"Tak"_s;
    naming.namePart2 = u"en"_s;
    EXPECT_EQ(packageFolderNameForUnified(naming, {}), u"Taken_1"_s);
    naming.namePart1 = longName;
    // Taken and too long to number: shortened to leave room for a number, then numbered if need be.
    EXPECT_EQ(packageFolderNameForUnified(naming, {}), longName.left(244));
    QDir(base).mkdir(longName.left(244));
    EXPECT_EQ(packageFolderNameForUnified(naming, {}), longName.left(244) + u"_1"_s);
    naming.overwrite = true;
    EXPECT_EQ(packageFolderNameForUnified(naming, {}), longName.left(255));
    naming.namePart2 = u"/final"_s;
    EXPECT_EQ(separatePackageFolderPath(naming, u"/jobs/Ta:ken.indd"_s), base + u"/Ta_ken_final"_s);
    naming.overwrite = false;
    naming.namePart2.clear();
    EXPECT_EQ(separatePackageFolderPath(naming, u"/jobs/Taken.indd"_s), base + u"/Taken_1"_s);
    // Two bytes a character: the cut falls between characters.
    EXPECT_EQ(cutToFileNameBytes(QString(200, u'é')), QString(127, u'é'));
}

TEST(PackageNames, ReportNameCutAt255Characters)
{
    const QString part = u"_Quillon_Report.pdf"_s;
    const QString fits = QString(236, u'a');
    EXPECT_EQ(reportNameForDocName(fits + u".indd"_s, part), fits + part);
    const QString longer = QString(237, u'a');
    const QString cut = reportNameForDocName(longer + u".indd"_s, part);
    EXPECT_EQ(cut.size(), 255);
    EXPECT_EQ(cut, longer.left(233) + u"..."_s + part);
    EXPECT_LE(reportNameForDocName(QString(250, u'é') + u".indd"_s, part).toUtf8().size(), 255);
}

TEST(PackageSettings, DefaultsChecksAndRoundTrip)
{
    QTemporaryDir dir;
    app::Settings settings(dir.filePath(u"defaults.ini"_s));
    const PackageSettings defaults = loadPackageSettings(settings);
    EXPECT_TRUE(defaults.unified && defaults.packUpdate && defaults.packOpenFolder && defaults.askLocationEveryTime);
    EXPECT_FALSE(defaults.packPlace || defaults.enableDelivery || defaults.dateLastAskedForLocation);
    EXPECT_EQ(defaults.pdfPresetNames, QStringList{u"[Smallest File Size]"_s});

    settings.setValue(u"folderViewOption"_s, u"Gallery"_s);
    settings.setValue(u"selectedPDFPreset"_s, QString());
    settings.setValue(u"pdfPresetNames"_s, QStringList());
    settings.setValue(u"packPlace"_s, u"YES"_s);
    PackageSettings read = loadPackageSettings(settings);
    EXPECT_EQ(read.folderViewOption, u"List"_s);
    EXPECT_EQ(read.selectedPdfPreset, u"[Smallest File Size]"_s);
    EXPECT_EQ(read.pdfPresetNames, QStringList{u"[Smallest File Size]"_s});
    EXPECT_TRUE(read.packPlace);

    read.folderViewOption = u"Columns"_s;
    read.packageLocationPath = dir.path();
    read.dateLastAskedForLocation = QDateTime(QDate(2024, 5, 1), QTime(9, 30), Qt::UTC);
    savePackageSettings(settings, read);
    const PackageSettings again = loadPackageSettings(settings);
    EXPECT_EQ(again.folderViewOption, u"Columns"_s);
    EXPECT_EQ(again.packageLocationPath, dir.path());
    EXPECT_EQ(again.dateLastAskedForLocation, read.dateLastAskedForLocation);

    const QDateTime now = QDateTime::currentDateTimeUtc();
    EXPECT_TRUE(shouldAskForBaseFolderLocation(false, now.addSecs(-60), now)); // daily asks every time too
    EXPECT_FALSE(shouldAskForBaseFolderLocation(false, now.addDays(2), now));
    EXPECT_TRUE(shouldAskForBaseFolderLocation(true, now.addDays(2), now));
}

TEST(PackageSettings, LocationPresetAndFreeSpaceChecksAlert)
{
    QTemporaryDir dir;
    app::ScriptedAlertSink alerts;
    EXPECT_TRUE(checkIfLocationExists(alerts, true, {}));
    EXPECT_TRUE(checkIfLocationExists(alerts, false, dir.path()));
    EXPECT_FALSE(checkIfLocationExists(alerts, false, {}));
    EXPECT_FALSE(checkIfLocationExists(alerts, false, dir.filePath(u"gone"_s)));
    EXPECT_TRUE(checkIfSelectedPDFPresetExists(alerts, false, u"Gone"_s, {}));
    EXPECT_FALSE(checkIfSelectedPDFPresetExists(alerts, true, u"Gone"_s, pdfPresetNamesOrDefault({})));

    const auto space = freeSpaceDict(dir.path());
    ASSERT_TRUE(space.has_value());
    EXPECT_GT(space->sizeBytes, 0);
    EXPECT_TRUE(evaluateFreeSpace(alerts, true, false, space, space->sizeBytes - 1).passes);
    const FreeSpaceCheck full = evaluateFreeSpace(alerts, true, false, space, space->sizeBytes);
    EXPECT_FALSE(full.passes);
    EXPECT_TRUE(full.insufficient);
    EXPECT_EQ(evaluateFreeSpace(alerts, false, true, space, space->sizeBytes).fieldText, u"?"_s);

    QStringList titles;
    for (const app::AlertRequest& request : alerts.requests()) {
        EXPECT_TRUE(request.critical);
        titles << request.title;
    }
    EXPECT_EQ(titles, (QStringList{u"The location for package folders is not selected"_s,
                                   u"The location for package folders could not be found"_s,
                                   u"The selected PDF preset \"Gone\" does not exist"_s,
                                   u"Insufficient free disk space in the target location"_s}));
    EXPECT_TRUE(alerts.requests()[1].message.contains(u":\n\n:"_s + dir.filePath(u"gone"_s)));
}
