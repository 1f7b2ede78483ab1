#include "FakeLinkedFileReader.h"
#include "QtPrinters.h"

#include "links/DefaultApplication.h"
#include "links/QNIDMLLinksProcessor.h"

#include "support/TestSupport.h"
#include "support/UnpackForTest.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::links;

namespace {

// Runs the analysis on a package whose only spread holds `spread`.
qsizetype recordsOfSpread(const QString& package, const QByteArray& spread)
{
    test::writeAll(package + QStringLiteral("/Spreads/Spread_u1.xml"), spread);
    static const DefaultApplications noApps({}, {}, {});
    static const test::FakeLinkedFileReader reader;
    LinksController controller;
    controller.fileReader = &reader;
    controller.defaultApps = &noApps;
    controller.numberOfLinksInDoc = 0;
    QNIDMLLinksProcessor processor(controller);
    return processor.processLinksInIDMLFolder(package, package + QStringLiteral("/doc.idml")).size();
}

struct RealSpread {
    QTemporaryDir dir;
    QString package;
    QByteArray bytes;

    RealSpread()
    {
        const auto unpacked = test::unpackForTest(test::samplePath(QStringLiteral("idml/freshers.idml")));
        EXPECT_TRUE(unpacked);
        if (unpacked)
            bytes = test::readAll(unpacked->filePath(QStringLiteral("Spreads/Spread_u1261.xml")));
        package = dir.filePath(QStringLiteral("pkg"));
        QDir().mkpath(package + QStringLiteral("/Spreads"));
    }
};

} // namespace

TEST(DamagedSpreads, EveryPrefixOfARealSpreadReadsOrYieldsNothing)
{
    RealSpread spread;
    ASSERT_GT(spread.bytes.size(), 10000);
    const qsizetype whole = recordsOfSpread(spread.package, spread.bytes);
    EXPECT_EQ(whole, 6);
    // Every length near the start and the end, and evenly spaced ones between.
    QList<qsizetype> lengths;
    for (qsizetype n = 0; n < 100; ++n)
        lengths << n << spread.bytes.size() - 1 - n;
    for (qsizetype n = 100; n < spread.bytes.size() - 100; n += spread.bytes.size() / 100)
        lengths << n;
    for (const qsizetype length : lengths) {
        // A cut document is not XML and yields nothing, unless only its trailing blanks were cut.
        const qsizetype records = recordsOfSpread(spread.package, spread.bytes.left(length));
        EXPECT_TRUE(records == 0 || (records == whole && spread.bytes.mid(length).trimmed().isEmpty())) << length;
    }
}

TEST(DamagedSpreads, RandomlyDamagedSpreadsNeverCrash)
{
    RealSpread spread;
    QRandomGenerator random(20240301);
    for (int round = 0; round < 100; ++round) {
        QByteArray damaged = spread.bytes;
        const int changes = 1 + static_cast<int>(random.bounded(8));
        for (int c = 0; c < changes; ++c) {
            const auto at = static_cast<qsizetype>(random.bounded(static_cast<quint32>(damaged.size())));
            switch (random.bounded(3)) {
            case 0:
                damaged[at] = static_cast<char>(random.bounded(256));
                break;
            case 1:
                damaged.remove(at, static_cast<qsizetype>(random.bounded(64)));
                break;
            default:
                damaged.insert(
                    at, damaged.mid(static_cast<qsizetype>(random.bounded(static_cast<quint32>(damaged.size()))), 40));
                break;
            }
        }
        EXPECT_LE(recordsOfSpread(spread.package, damaged), 20) << round;
    }
}
