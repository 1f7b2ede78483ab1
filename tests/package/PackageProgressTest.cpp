#include "package/PackageProgress.h"

#include "support/TestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace quillon::package;
using namespace std::chrono_literals;

namespace {

// A clock that moves only when told.
struct FakeClock {
    std::chrono::steady_clock::time_point now{};
    Clock clock()
    {
        return [this] { return now; };
    }
};

} // namespace

TEST(PackageProgress, TimeLeftAtItsBoundariesFromTheLastIntervalOnly)
{
    struct Case {
        long seconds;
        const char* text;
    };
    // The hour form gives the total minutes, on purpose.
    for (const Case& c : {Case{59, "59 sec"}, Case{60, "About 1 min"}, Case{3599, "About 59 min"},
                          Case{3600, "About 1 hr 60 min"}, Case{5400, "About 1 hr 90 min"}, Case{-3, "-3 sec"}}) {
        SCOPED_TRACE(c.seconds);
        EXPECT_EQ(PackageProgress::formatTimeLeftFromSeconds(c.seconds), QString::fromLatin1(c.text));
        // The same through the estimate: 1,000 bytes in the first second, `seconds` worth left.
        FakeClock time;
        PackageProgress progress(PackageMode::Unified, time.clock());
        progress.startLinksPhase(1000 + 1000 * c.seconds);
        progress.prepareProgr2ForFilesArr(1);
        time.now += 899ms;
        progress.setRemainingTimeStrForTotalBytesWritten(500);
        EXPECT_EQ(progress.timeRemainingStr(), u"Calculating time"_s); // too soon to tell
        time.now += 101ms;
        progress.setRemainingTimeStrForTotalBytesWritten(1000);
        EXPECT_EQ(progress.timeRemainingStr(), QString::fromLatin1(c.text));
    }
    FakeClock time;
    PackageProgress progress(PackageMode::Unified, time.clock());
    progress.startLinksPhase(100000);
    progress.prepareProgr2ForFilesArr(1);
    time.now += 1s;
    progress.setRemainingTimeStrForTotalBytesWritten(10000); // 10,000 B/s: 9 s left
    time.now += 2s;
    progress.setRemainingTimeStrForTotalBytesWritten(10000); // no bytes: the old text stays
    EXPECT_EQ(progress.timeRemainingStr(), u"9 sec"_s);
    time.now += 1s;
    progress.setRemainingTimeStrForTotalBytesWritten(90000); // 80,000 B/s now: 0 s left
    EXPECT_EQ(progress.timeRemainingStr(), u"0 sec"_s);
}

TEST(PackageProgress, CopyStatusLineAndStartValueOfUnifiedAndSeparatePackages)
{
    QTemporaryDir dir;
    quillon::test::writeAll(dir.filePath(u"a.tif"_s), QByteArray(5000, 'a'));
    for (const PackageMode mode : {PackageMode::Unified, PackageMode::Separate}) {
        FakeClock time;
        PackageProgress progress(mode, time.clock());
        progress.startLinksPhase(12000);
        progress.prepareProgr2ForFilesArr(2);
        const auto first = FileCopyOperation::create(dir.filePath(u"a.tif"_s), dir.filePath(u"out-a.tif"_s), nullptr);
        progress.fileCopyOperationWillStart(first);
        EXPECT_TRUE(progress.ticksWanted());
        first->main();
        progress.updateProgress();
        EXPECT_EQ(progress.bar2().status, u"a.tif (1 of 2): 5 KB of 12 KB - Calculating time remaining"_s);
        progress.fileCopyOperationDidFinished(first);
        progress.updateProgress();
        EXPECT_EQ(progress.bar2().status, QString()); // between files
        const auto second = FileCopyOperation::create(dir.filePath(u"a.tif"_s), dir.filePath(u"out-b.tif"_s), nullptr);
        progress.fileCopyOperationWillStart(second);
        progress.updateProgress();
        // Separate packages count each file from 0.
        EXPECT_EQ(progress.bar2().value, mode == PackageMode::Unified ? 5000 : 0);
        EXPECT_FALSE(progress.copyQueueDidChange(1));
        EXPECT_TRUE(progress.copyQueueDidChange(0));
        EXPECT_FALSE(progress.ticksWanted());
        EXPECT_EQ(progress.bar2().value, 0);
    }
}

TEST(PackageProgress, StagesOfEachModeAndTheDocumentBar)
{
    PackageProgress unified(PackageMode::Unified);
    PackageProgress separate(PackageMode::Separate);
    for (PackageProgress* progress : {&unified, &separate}) {
        progress->setProgr2ValueToStageOfSingleDoc(u"report"_s);
        progress->setProgr2ValueToStageOfSingleDoc(u"moveDoc"_s); // unified only
    }
    EXPECT_EQ(unified.bar2().value, 4);
    EXPECT_EQ(unified.bar2().status, u"Copying InDesign document..."_s);
    EXPECT_EQ(separate.bar2().value, 4);
    EXPECT_EQ(separate.bar2().status, u"Creating report..."_s);
    EXPECT_EQ(PackageProgress::stageValuesDictProgr2SingleDocOfUnified().size(), 8);
    EXPECT_EQ(PackageProgress::stageValuesDictProgr2SingleDocOfSeparate().value(u"collectFonts"_s).text,
              u"Collecting document and fonts..."_s);
    separate.setProgr2Status(u"Copying..."_s, u"2"_s);
    EXPECT_EQ(separate.bar2().value, 6);
    unified.startProgr1ForDocName(u"Brochure.indd"_s, 2, 3);
    EXPECT_EQ(unified.bar1().status, u"Brochure.indd (2 of 3)..."_s);
    unified.startLinksPhase(10);
    EXPECT_EQ(unified.bar1().status, u"Copying links..."_s);
    EXPECT_EQ(unified.bar1().value, 1);
}
