#include "app/FilePaths.h"

#include "app/Alerts.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon::app;
using quillon::test::readAll;
using quillon::test::writeAll;

TEST(FinalPath, NumbersCollidingNamesWithAndWithoutExtension)
{
    QTemporaryDir dir;
    const QString d = dir.path();
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("Report.pdf"), d), d + QStringLiteral("/Report.pdf"));
    writeAll(d + QStringLiteral("/Report.pdf"), "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("Report.pdf"), d),
              d + QStringLiteral("/Report_1.pdf"));
    writeAll(d + QStringLiteral("/Report_1.pdf"), "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("Report.pdf"), d),
              d + QStringLiteral("/Report_2.pdf"));

    QDir(d).mkdir(QStringLiteral("Name"));
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("Name"), d), d + QStringLiteral("/Name_1"));
    writeAll(d + QStringLiteral("/Name_1"), "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("Name"), d + u'/'), d + QStringLiteral("/Name_2"));

    // Only the last extension counts; a leading dot is part of the name.
    writeAll(d + QStringLiteral("/a.tar.gz"), "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral("a.tar.gz"), d), d + QStringLiteral("/a.tar_1.gz"));
    writeAll(d + QStringLiteral("/.hidden"), "x");
    EXPECT_EQ(finalPathByAppendingNumberToFileName(QStringLiteral(".hidden"), d), d + QStringLiteral("/.hidden_1"));
}

TEST(SlashCheck, CleanPathsShowNoAlert)
{
    ScriptedAlertSink alerts;
    EXPECT_EQ(checkPathForSlashes(alerts, QString(), QString(), true), SlashCheck::Clean);
    EXPECT_EQ(checkPathForSlashes(alerts, QStringLiteral("/Users/me/Jobs/Doc.indd"), QString(), true),
              SlashCheck::Clean);
    EXPECT_TRUE(checkPathForSlashes(alerts, QStringLiteral("/a/b"), QString()));
    EXPECT_TRUE(alerts.requests().empty());
}

TEST(SlashCheck, AlertWithCancelOffersTwoButtonsAndReportsTheAnswer)
{
    ScriptedAlertSink alerts({kAlertSecondButton, kAlertFirstButton});
    const QString path = QStringLiteral("/Jobs/A:B/Ad 1:2.indd");
    EXPECT_EQ(checkPathForSlashes(alerts, path, QString(), true), SlashCheck::Cancelled);
    EXPECT_EQ(checkPathForSlashes(alerts, path, QString(), true), SlashCheck::Confirmed);
    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 2u);
    const AlertRequest& r = requests[0];
    EXPECT_TRUE(r.critical);
    EXPECT_EQ(*r.buttons, (QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")}));
    // The first offending component is named, with colons shown as slashes.
    EXPECT_TRUE(r.message.contains(QStringLiteral("\n\nUnsafe name: A/B\n\nFile path: /Jobs/A/B/Ad 1/2.indd\n")));
}

TEST(SlashCheck, AlertWithoutCancelHasOnlyOkAndUsesTheGivenMessage)
{
    ScriptedAlertSink alerts({kAlertFirstButton});
    EXPECT_FALSE(checkPathForSlashes(alerts, QStringLiteral("/x/y:z"), QStringLiteral("Rename the folder.")));
    const auto requests = alerts.requests();
    ASSERT_EQ(requests.size(), 1u);
    EXPECT_EQ(*requests[0].buttons, QStringList{QStringLiteral("OK")});
    EXPECT_TRUE(requests[0].message.startsWith(QStringLiteral("Rename the folder.\n\nUnsafe name: y/z")));
    // Even an unexpected answer counts as OK when no Cancel was offered.
    ScriptedAlertSink odd({kAlertSecondButton});
    EXPECT_EQ(checkPathForSlashes(odd, QStringLiteral("/x/y:z"), QString(), false), SlashCheck::Confirmed);
}

TEST(ReplacingCopies, CopyAndMoveReplaceTheDestinationButNeverLoseData)
{
    QTemporaryDir dir;
    const QString d = dir.path();
    writeAll(d + QStringLiteral("/src.txt"), "new");
    writeAll(d + QStringLiteral("/dst.txt"), "old");
    ASSERT_TRUE(copyPathReplacingIt(d + QStringLiteral("/src.txt"), d + QStringLiteral("/dst.txt")).ok());
    EXPECT_EQ(readAll(d + QStringLiteral("/dst.txt")), "new");
    EXPECT_TRUE(QFile::exists(d + QStringLiteral("/src.txt")));

    // A folder replaces a file, recursively.
    QDir(d).mkpath(QStringLiteral("folder/sub"));
    writeAll(d + QStringLiteral("/folder/sub/f"), "deep");
    ASSERT_TRUE(copyPathReplacingIt(d + QStringLiteral("/folder"), d + QStringLiteral("/dst.txt")).ok());
    EXPECT_EQ(readAll(d + QStringLiteral("/dst.txt/sub/f")), "deep");

    ASSERT_TRUE(movePathReplacingIt(d + QStringLiteral("/src.txt"), d + QStringLiteral("/dst.txt")).ok());
    EXPECT_EQ(readAll(d + QStringLiteral("/dst.txt")), "new");
    EXPECT_FALSE(QFile::exists(d + QStringLiteral("/src.txt")));

    // A missing source leaves the destination alone; a folder cannot replace its own contents.
    const Status missing = copyPathReplacingIt(d + QStringLiteral("/nope"), d + QStringLiteral("/dst.txt"));
    EXPECT_FALSE(missing.ok());
    EXPECT_TRUE(missing.error().file.endsWith(QStringLiteral("/nope")));
    EXPECT_EQ(readAll(d + QStringLiteral("/dst.txt")), "new");
    EXPECT_FALSE(copyPathReplacingIt(d + QStringLiteral("/folder"), d + QStringLiteral("/folder/sub")).ok());
    EXPECT_EQ(readAll(d + QStringLiteral("/folder/sub/f")), "deep");
}

TEST(SafeNames, SlashesAndColonsBecomeUnderscores)
{
    EXPECT_EQ(safeFileName(QStringLiteral("a/b:c")), QStringLiteral("a_b_c"));
}
