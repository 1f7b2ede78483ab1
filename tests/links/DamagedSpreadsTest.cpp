#include "FakeLinkedFileReader.h"
#include "IdmlFragments.h"
#include "support/QtPrinters.h"

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
    test::writePackage(package, {{"Spreads/Spread_u1.xml", spread.toStdString()}});
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

TEST(DamagedSpreads, UnreadablePartsAreSkippedAndNamedWhileTheOthersAreRead)
{
    RealSpread spread;
    test::writePackage(spread.package, {{"Spreads/Spread_u1.xml", spread.bytes.toStdString()},
                                        {"Spreads/Spread_u2.xml", "<Spread><Page></Spread>"},
                                        {"Stories/Story_u3.xml", "\x89PNG garbage"},
                                        {"Stories/Story_u4.xml", ""}});
    // Far larger than a part may be; refused by its size alone, without being read.
    QFile huge(spread.package + QStringLiteral("/Stories/Story_u4.xml"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly) && huge.resize(qint64(500) << 20));
    huge.close();

    static const DefaultApplications noApps({}, {}, {});
    static const test::FakeLinkedFileReader reader;
    LinksController controller;
    controller.fileReader = &reader;
    controller.defaultApps = &noApps;
    QNIDMLLinksProcessor processor(controller); // the link count is not known: the stories are read too
    EXPECT_EQ(processor.processLinksInIDMLFolder(spread.package, spread.package + QStringLiteral("/doc.idml")).size(),
              6);
    QStringList warnings;
    for (const app::Error& warning : processor.warnings())
        warnings << warning.text();
    ASSERT_EQ(warnings.size(), 3) << warnings.join(u'\n').toStdString();
    EXPECT_EQ(warnings[0], QStringLiteral("Spreads/Spread_u2.xml: not readable XML at byte 16"));
    EXPECT_EQ(warnings[1], QStringLiteral("Stories/Story_u3.xml: not readable XML at byte 11"));
    EXPECT_TRUE(warnings[2].startsWith(QStringLiteral("Stories/Story_u4.xml: too large to read (524.3 MB")))
        << warnings[2].toStdString();
}
