#include "app/FilePaths.h"

#include "app/Alerts.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;
using quillon::test::readAll;
using quillon::test::writeAll;

TEST(FinalPath, NumbersCollidingNamesWithAndWithoutExtension)
{
    QTemporaryDir dir;
    const QString d = dir.path();
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"Report.pdf"_s, d), d + u"/Report.pdf"_s);
    writeAll(d + u"/Report.pdf"_s, "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"Report.pdf"_s, d), d + u"/Report_1.pdf"_s);
    writeAll(d + u"/Report_1.pdf"_s, "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"Report.pdf"_s, d), d + u"/Report_2.pdf"_s);

    QDir(d).mkdir(u"Name"_s);
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"Name"_s, d), d + u"/Name_1"_s);
    writeAll(d + u"/Name_1"_s, "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"Name"_s, d + u'/'), d + u"/Name_2"_s);

    // Only the last extension counts; a leading dot is part of the name.
    writeAll(d + u"/a.tar.gz"_s, "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u"a.tar.gz"_s, d), d + u"/a.tar_1.gz"_s);
    writeAll(d + u"/.hidden"_s, "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(u".hidden"_s, d), d + u"/.hidden_1"_s);
}

TEST(SlashCheck, CleanPathsShowNoAlert)
{
    ScriptedAlertSink alerts;
    EXPECT_EQ(checkPathForSlashes(alerts, QString(), QString(), true), SlashCheck::Clean);
    EXPECT_EQ(checkPathForSlashes(alerts, u"/Users/me/Jobs/Doc.indd"_s, QString(), true), SlashCheck::Clean);
    EXPECT_TRUE(checkPathForSlashes(alerts, u"/a/b"_s, QString()));
    EXPECT_TRUE(alerts.requests().empty());
}

TEST(SlashCheck, AlertWithCancelOffersTwoButtonsAndReportsTheAnswer)
{
    ScriptedAlertSink alerts({kAlertSecondButton, kAlertFirstButton});
    const QString path = u"/Jobs/A:B/Ad 1:2.indd"_s;
    EXPECT_EQ(checkPathForSlashes(alerts, path, QString(), true), SlashCheck::Cancelled);
    EXPECT_EQ(checkPathForSlashes(alerts, path, QString(), true), SlashCheck::Confirmed);
    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 2u);
    const AlertRequest& r = requests[0];
    EXPECT_TRUE(r.critical);
    EXPECT_EQ(*r.buttons, (QStringList{u"OK"_s, u"Cancel"_s}));
    // The first offending component is named, with colons shown as slashes.
    EXPECT_TRUE(r.message.contains(u"\n\nUnsafe name: A/B\n\nFile path: /Jobs/A/B/Ad 1/2.indd\n"_s));
}

TEST(SlashCheck, AlertWithoutCancelHasOnlyOkAndUsesTheGivenMessage)
{
    ScriptedAlertSink alerts({kAlertFirstButton});
    EXPECT_FALSE(checkPathForSlashes(alerts, u"/x/y:z"_s, u"Rename the folder."_s));
    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(*requests[0].buttons, QStringList{u"OK"_s});
    EXPECT_TRUE(requests[0].message.startsWith(u"Rename the folder.\n\nUnsafe name: y/z"_s));
    // Even an unexpected answer counts as OK when no Cancel was offered.
    ScriptedAlertSink odd({kAlertSecondButton});
    EXPECT_EQ(checkPathForSlashes(odd, u"/x/y:z"_s, QString(), false), SlashCheck::Confirmed);
}

TEST(ReplacingCopies, CopyReplacesTheDestinationButNeverLosesData)
{
    QTemporaryDir dir;
    const QString d = dir.path();
    writeAll(d + u"/src.txt"_s, "new");
    writeAll(d + u"/dst.txt"_s, "old");
    ASSERT_TRUE(copyPathReplacingIt(d + u"/src.txt"_s, d + u"/dst.txt"_s).ok());
    EXPECT_EQ(readAll(d + u"/dst.txt"_s), "new");
    EXPECT_TRUE(QFile::exists(d + u"/src.txt"_s));

    // A folder replaces a file, recursively.
    QDir(d).mkpath(u"folder/sub"_s);
    writeAll(d + u"/folder/sub/f"_s, "deep");
    ASSERT_TRUE(copyPathReplacingIt(d + u"/folder"_s, d + u"/dst.txt"_s).ok());
    EXPECT_EQ(readAll(d + u"/dst.txt/sub/f"_s), "deep");
    ASSERT_TRUE(copyPathReplacingIt(d + u"/src.txt"_s, d + u"/dst.txt"_s).ok());

    // A missing source leaves the destination alone; a folder cannot replace its own contents.
    const Status missing = copyPathReplacingIt(d + u"/nope"_s, d + u"/dst.txt"_s);
    EXPECT_FALSE(missing.ok());
    EXPECT_TRUE(missing.error().file.endsWith(u"/nope"_s));
    EXPECT_EQ(readAll(d + u"/dst.txt"_s), "new");
    EXPECT_FALSE(copyPathReplacingIt(d + u"/folder"_s, d + u"/folder/sub"_s).ok());
    EXPECT_EQ(readAll(d + u"/folder/sub/f"_s), "deep");
}

TEST(SafeNames, SlashesAndColonsBecomeUnderscores)
{
    EXPECT_EQ(safeFileName(u"a/b:c"_s), u"a_b_c"_s);
}
