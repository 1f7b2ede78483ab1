#include "support/QtPrinters.h"

#include "host/AppleScriptValue.h"
#include "host/OfflineIdmlHost.h"
#include "idml/IdmlDocument.h"
#include "idml/IdmlPackage.h"

#include "app/AppPaths.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::idml;
using namespace quillon::host;

// Random damage to a real IDML, with a fixed seed so a failure repeats: every variant opens,
// unpacks and gives its record, or fails with a message naming the file; nothing is written
// outside the unpacked folder.
TEST(IdmlMutation, DamagedPackagesOpenOrFailCleanly)
{
    QTemporaryDir dir;
    app::setTemporaryFolderOverride(dir.filePath(QStringLiteral("temp")));
    const QByteArray original = test::readAll(test::samplePath(QStringLiteral("idml/helloworld-1.idml")));
    QRandomGenerator random(20240611);
    const QString path = dir.filePath(QStringLiteral("docs/mutant.idml"));
    QDir().mkpath(dir.filePath(QStringLiteral("docs")));
    int opened = 0;
    for (int round = 0; round < 80; ++round) {
        QByteArray bytes = original;
        const int edits = 1 + random.bounded(6);
        for (int e = 0; e < edits; ++e) {
            const qsizetype at = random.bounded(bytes.size());
            switch (random.bounded(3)) {
            case 0:
                bytes[at] = char(random.bounded(256));
                break;
            case 1:
                bytes.remove(at, 1 + random.bounded(64));
                break;
            default:
                bytes.insert(at, QByteArray(1 + random.bounded(16), char(random.bounded(256))));
            }
        }
        test::writeAll(path, bytes);
        const QString unpacked = dir.filePath(QStringLiteral("out/%1").arg(round));
        const auto archive = openIdmlPackage(path, dir.filePath(QStringLiteral("repaired.zip")));
        if (archive.ok()) {
            ++opened;
            const auto extracted = archive->extractTo(unpacked);
            if (!extracted.ok()) {
                EXPECT_EQ(extracted.error().file, path);
            }
        } else {
            EXPECT_EQ(archive.error().file, path) << archive.error().text().toStdString();
        }
        const auto record = idmlDocumentRecord(path);
        if (!record.ok()) {
            EXPECT_FALSE(record.error().message.isEmpty());
        }
    }
    app::setTemporaryFolderOverride(QString());
    // Only the document, its repaired copy, the unpacked folders and the work folder exist.
    QStringList top = QDir(dir.path()).entryList(QDir::NoDotAndDotDot | QDir::AllEntries);
    top.removeAll(QStringLiteral("repaired.zip"));
    EXPECT_EQ(top, (QStringList{QStringLiteral("docs"), QStringLiteral("out"), QStringLiteral("temp")}));
    EXPECT_EQ(QDir(dir.filePath(QStringLiteral("docs"))).entryList(QDir::NoDotAndDotDot | QDir::AllEntries),
              QStringList{QStringLiteral("mutant.idml")});
    EXPECT_GT(opened, 0);
}

namespace {

// A random value of the kinds the script runner answers with, and its source form.
QVariant randomValue(QRandomGenerator& random, int depth, QString& source)
{
    switch (random.bounded(depth > 2 ? 3 : 4)) {
    case 0: {
        QString text;
        for (int i = random.bounded(8); i > 0; --i)
            text += QStringLiteral("a\"\\,{}: ").at(random.bounded(8));
        source +=
            u'"' + QString(text).replace(u'\\', QStringLiteral("\\\\")).replace(u'"', QStringLiteral("\\\"")) + u'"';
        return text;
    }
    case 1: {
        const qlonglong n = random.bounded(-1000, 1000);
        source += QString::number(n);
        return n;
    }
    case 2:
        source += random.bounded(2) ? QStringLiteral("true") : QStringLiteral("false");
        return source.endsWith(QStringLiteral("true"));
    default: {
        QVariantList list;
        source += u'{';
        for (int i = random.bounded(4); i > 0; --i) {
            if (!list.isEmpty())
                source += QStringLiteral(", ");
            list << randomValue(random, depth + 1, source);
        }
        source += u'}';
        return list;
    }
    }
}

} // namespace

// The script runner's answers are parsed from text: what it prints reads back as the value it
// stands for, and odd text gives a plain value, never a broken one.
TEST(IdmlMutation, ScriptValuesReadBackAndOddTextIsHarmless)
{
    QRandomGenerator random(7);
    for (int round = 0; round < 500; ++round) {
        QString source;
        const QVariant value = randomValue(random, 0, source);
        EXPECT_EQ(parseAppleScriptValue(source), value) << source.toStdString();
    }
    const QString alphabet = QStringLiteral("{}\",:|\\ abc123.-e«»\n");
    const QList<int> kinds{QMetaType::QString, QMetaType::LongLong,     QMetaType::Double,
                           QMetaType::Bool,    QMetaType::QVariantList, QMetaType::QVariantMap};
    for (int round = 0; round < 2000; ++round) {
        QString text;
        for (int i = random.bounded(40); i > 0; --i)
            text += alphabet.at(random.bounded(alphabet.size()));
        const QVariant value = parseAppleScriptValue(text);
        EXPECT_TRUE(value.isNull() || kinds.contains(value.typeId())) << text.toStdString();
    }
}

// A document too large to keep its parts is counted from their text: the same pages, links and
// unreadable parts as from the parsed parts, a part the text scan cannot read included.
TEST(IdmlRecord, CountsTheSameWhetherThePartsAreKeptOrNot)
{
    QTemporaryDir dir;
    test::ArchiveEntries entries = test::minimalIdml();
    const QStringList parts{QStringLiteral("MasterSpreads/MasterSpread_m.xml"), QStringLiteral("Spreads/Spread_s1.xml"),
                            QStringLiteral("Stories/Story_a.xml"), QStringLiteral("Stories/Story_b.xml")};
    entries[0].second = test::designmapXml(parts);
    entries.emplace_back(parts[0], "<MasterSpread><Page/><Link LinkResourceURI=\"file:/m.tif\"/></MasterSpread>");
    for (auto& [name, bytes] : entries)
        if (name == parts[1])
            bytes = test::spreadXml({QString(), QString()},
                                    "<Rectangle><Image><Link LinkResourceURI=\"file:/a.tif\"/></Image>"
                                    "<Image><Link LinkResourceURI=\"http://b\"/></Image></Rectangle>");
    entries.emplace_back(parts[2], "<Story><!-- x --><Link LinkResourceURI=\"file:/c.tif\"/></Story>");
    entries.emplace_back(parts[3], "<Story><Broken");
    const QString path = dir.filePath(QStringLiteral("Doc.idml"));
    test::writeIdml(path, entries);
    QList<QList<app::Error>> warnings(2);
    QList<inspection::DocumentRecord> records;
    for (const qint64 keptLimit : {IdmlDocument::kDefaultKeptTextLimit, qint64(0)}) {
        const auto document = IdmlDocument::open(path, dir.path());
        ASSERT_TRUE(document.ok());
        (*document)->setKeptTextLimit(keptLimit);
        records << idmlDocumentRecord(**document, path, &warnings[records.size()]);
    }
    EXPECT_EQ(records[1].logText(), records[0].logText());
    EXPECT_EQ(records[0].pageCount, QStringLiteral("2"));
    EXPECT_EQ(records[0].linkCount, QStringLiteral("3"));
    ASSERT_EQ(warnings[0].size(), 1);
    EXPECT_EQ(warnings[1].size(), 1);
    EXPECT_EQ(warnings[1].value(0).text(), warnings[0][0].text());
}
