#include "app/PropertyList.h"

#include "support/TestSupport.h"

#include <QDateTime>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

using namespace quillon::app;
using quillon::test::readAll;
using quillon::test::writeAll;

namespace {

QVariantMap sampleRecord()
{
    return QVariantMap{
        {u"name"_s, u"Café <Bold> & \"Co\""_s},
        {u"blank"_s, u" "_s},
        {u"empty"_s, QString()},
        {u"count"_s, qint64(-42)},
        {u"big"_s, quint64(18446744073709551615ULL)},
        {u"ratio"_s, 0.1},
        {u"whole"_s, 3.0},
        {u"isDock"_s, 1},
        {u"flag"_s, true},
        {u"off"_s, false},
        {u"when"_s, QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58), QTimeZone::utc())},
        {u"bytes"_s, QByteArray("\x00\x01\xff plist", 9)},
        {u"children"_s, QVariantList{QVariantMap{}, QVariantList{}, u"x"_s}},
    };
}

QString python()
{
    return QStandardPaths::findExecutable(u"python3"_s);
}

// Runs a Python snippet with the given arguments; returns its standard output.
QByteArray runPython(const QString& code, const QStringList& args, int* exitCode)
{
    QProcess p;
    p.start(python(), QStringList{u"-c"_s, code} + args);
    p.waitForFinished(30000);
    *exitCode = p.exitCode();
    return p.readAllStandardOutput() + p.readAllStandardError();
}

} // namespace

TEST(PropertyList, XmlRoundTripKeepsEveryType)
{
    const QVariantMap record = sampleRecord();
    Result<QByteArray> xml = toXmlPropertyList(record);
    ASSERT_TRUE(xml.ok()) << xml.error().text().toStdString();
    EXPECT_TRUE(xml->contains("<string> </string>")) << "a lone blank survives";

    Result<QVariant> back = parsePropertyList(*xml, u"mem"_s);
    ASSERT_TRUE(back.ok()) << back.error().text().toStdString();
    const QVariantMap m = back->toMap();
    EXPECT_EQ(m.value(u"blank"_s).toString(), u" "_s);
    EXPECT_EQ(m.value(u"big"_s).toULongLong(), 18446744073709551615ULL);
    EXPECT_EQ(m.value(u"whole"_s).typeId(), QMetaType::Double);
    EXPECT_EQ(m.value(u"when"_s).toDateTime(), record.value(u"when"_s).toDateTime());
    EXPECT_EQ(m.value(u"bytes"_s).toByteArray(), record.value(u"bytes"_s).toByteArray());
    const QVariantList children = m.value(u"children"_s).toList();
    ASSERT_EQ(children.size(), 3);
    EXPECT_EQ(children[0].typeId(), QMetaType::QVariantMap);
    EXPECT_EQ(children[1].typeId(), QMetaType::QVariantList);
}

TEST(PropertyList, WriterRefusesValuesAPlistCannotHoldAndNamesWhere)
{
    const QVariantMap bad{{u"list"_s, QVariantList{1, QVariant()}}};
    Result<QByteArray> xml = toXmlPropertyList(bad);
    ASSERT_FALSE(xml.ok());
    EXPECT_TRUE(xml.error().message.contains(u"list[1]"_s)) << xml.error().message.toStdString();

    // Control characters cannot stand in XML; they are left out rather than breaking the file.
    Result<QByteArray> ctrl = toXmlPropertyList(QVariantMap{{u"k\x01"_s, QStringLiteral("a\x07"
                                                                                        "b\tc\r")}});
    ASSERT_TRUE(ctrl.ok());
    const QVariantMap back = parsePropertyList(*ctrl, QString())->toMap();
    EXPECT_EQ(back.value(u"k"_s).toString(), u"ab\tc\r"_s);
}

// A long array is written a batch at a time on several threads: every item comes back, in order,
// the plain and the escaped alike, and a value that cannot be written is still named by its place.
TEST(PropertyList, LongArraysComeBackWholeAndInOrder)
{
    QVariantList records;
    for (int i = 0; i < 2600; ++i)
        records << QVariantMap{{u"index"_s, i},
                               {u"name"_s, i % 3 == 0 ? u"Ünïcode & <%1>"_s.arg(i) : u"plain %1"_s.arg(i)},
                               {u"nested"_s, QVariantList{i, QString(600, u'x')}}};
    const Result<QByteArray> xml = toXmlPropertyList(QVariantMap{{u"links"_s, records}});
    ASSERT_TRUE(xml.ok()) << xml.error().text().toStdString();
    const Result<QVariant> back = parsePropertyList(*xml, u"mem"_s);
    ASSERT_TRUE(back.ok()) << back.error().text().toStdString();
    EXPECT_EQ(back->toMap().value(u"links"_s).toList(), records);

    QTemporaryDir dir;
    const QString path = dir.filePath(u"links.plist"_s);
    ASSERT_TRUE(writePropertyListFile(records, path, Durability::Unflushed).ok());
    EXPECT_EQ(readAll(path), *toXmlPropertyList(records)) << "written in pieces, the file holds the same text";

    records[2100] = QVariantMap{{u"bad"_s, QVariant()}};
    const Result<QByteArray> refused = toXmlPropertyList(QVariantMap{{u"links"_s, records}});
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(refused.error().message.contains(u"links[2100].bad"_s)) << refused.error().message.toStdString();
}

TEST(PropertyList, FileWriteIsAtomicAndReadable)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(u"data.plist"_s);
    ASSERT_TRUE(writePropertyListFile(sampleRecord(), path).ok());
    Result<QVariantMap> m = readPropertyListDictionary(path);
    ASSERT_TRUE(m.ok());
    EXPECT_EQ(m->value(u"count"_s).toInt(), -42);

    // A failed write leaves the old file as it was.
    EXPECT_FALSE(writePropertyListFile(QVariantMap{{u"x"_s, QVariant()}}, path).ok());
    EXPECT_TRUE(readPropertyListDictionary(path).ok());

    const Result<QVariantMap> missing = readPropertyListDictionary(dir.filePath(u"none.plist"_s));
    ASSERT_FALSE(missing.ok());
    EXPECT_TRUE(missing.error().file.endsWith(u"none.plist"_s));

    writeAll(dir.filePath(u"array.plist"_s), *toXmlPropertyList(QVariantList{1}));
    EXPECT_FALSE(readPropertyListDictionary(dir.filePath(u"array.plist"_s)).ok());
}

TEST(PropertyList, MalformedXmlGivesErrorsWithLineNumbers)
{
    struct Case {
        const char* xml;
        const char* expectInMessage;
        int line;
    };
    const Case cases[] = {
        {"<plist>\n<dict>\n<key>a</key>\n<string>x</dict>\n</plist>", "not well-formed", 4},
        {"<plist>\n<dict>\n<key>a</key>\n<key>b</key><string/>\n</dict></plist>", "key \"a\" has no value", 3},
        {"<plist><dict>\n\n<key>n</key><integer>abc</integer></dict></plist>", "not a whole number", 3},
        {"<plist><array><integer>99999999999999999999</integer></array></plist>", "too large", 1},
        {"<plist><array><real>1.2.3</real></array></plist>", "not a number", 1},
        {"<plist><array><date>yesterday</date></array></plist>", "not a date", 1},
        {"<plist><array><data>!!!</data></array></plist>", "base64", 1},
        {"<plist><dict><string>v</string></dict></plist>", "where a <key> was expected", 1},
        {"<plist><array><widget/></array></plist>", "unknown element <widget>", 1},
        {"<plist><string>a<b/></string></plist>", "<b> inside <string>", 1},
        {"<plist></plist>", "empty", 1},
        {"<plist><true/><false/></plist>", "more than one value", 1},
        {"garbage", "", 1},
        {"", "empty", 0},
    };
    for (const Case& c : cases) {
        const Result<QVariant> r = parsePropertyList(QByteArray(c.xml), u"bad.plist"_s);
        ASSERT_FALSE(r.ok()) << c.xml;
        EXPECT_EQ(r.error().file, u"bad.plist"_s);
        EXPECT_TRUE(r.error().message.contains(QLatin1String(c.expectInMessage)))
            << c.xml << " -> " << r.error().text().toStdString();
        if (c.line > 0) {
            EXPECT_EQ(r.error().where, u"line %1"_s.arg(c.line)) << c.xml;
        }
    }
}

TEST(PropertyList, ByteOrderMarksAndEncodings)
{
    const QByteArray body = "<plist><dict><key>k</key><string>é</string></dict></plist>";
    // A leading UTF-8 mark is legal XML and reads the same.
    Result<QVariant> withBom = parsePropertyList("\xEF\xBB\xBF" + body, u"bom.plist"_s);
    ASSERT_TRUE(withBom.ok()) << withBom.error().text().toStdString();
    EXPECT_EQ(withBom->toMap().value(u"k"_s).toString(), u"é"_s);
    // A mark anywhere else is garbage before the document.
    const Result<QVariant> misplaced = parsePropertyList("\n\xEF\xBB\xBF" + body, u"bom.plist"_s);
    ASSERT_FALSE(misplaced.ok());
    EXPECT_EQ(misplaced.error().file, u"bom.plist"_s);
    // A mark with nothing after it.
    EXPECT_FALSE(parsePropertyList("\xEF\xBB\xBF", u"bom.plist"_s).ok());
}

TEST(PropertyList, HostileXmlDoesNotExpandOrRecurseWithoutBound)
{
    const QByteArray laughs =
        "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">"
        "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">]>"
        "<plist><string>&c;</string></plist>";
    const Result<QVariant> r = parsePropertyList(laughs, u"laughs.plist"_s);
    if (r.ok()) {
        EXPECT_LT(r->toString().size(), 100);
    }
    QByteArray deep = "<plist>";
    for (int i = 0; i < 5000; ++i)
        deep += "<array>";
    for (int i = 0; i < 5000; ++i)
        deep += "</array>";
    deep += "</plist>";
    const Result<QVariant> d = parsePropertyList(deep, u"deep.plist"_s);
    ASSERT_FALSE(d.ok());
    EXPECT_TRUE(d.error().message.contains(u"nested"_s));
}

TEST(PropertyList, WhatPythonWritesWeReadAndWriteBackUnchanged)
{
    if (python().isEmpty())
        GTEST_SKIP() << "python3 is not installed";
    // Every type, at the edges of its range, in both of Python's formats. We read each file and
    // write it back as XML; Python must find its own values in ours, types included (repr tells
    // 3.0 from 3).
    const QString values = QStringLiteral(
        "import plistlib,sys,datetime\n"
        "d={'name':'Café <Bold> & \"Co\"','s':'Ünïcode ☃','blank':' ','empty':'','neg':-42,'i8':200,"
        "'i16':60000,'i32':4000000000,'i64':2**62,'u64':2**64-1,'minus':-2**63,'r':0.1,'whole':3.0,'t':True,"
        "'f':False,'d':datetime.datetime(2024,2,29,23,59,58),'b':b'\\x00\\x01\\xff plist','a':[{},[],'x',[3.0]],"
        "'e':{},'long':'x'*300,'shared':['same','same','same']}\n");
    QTemporaryDir dir;
    const QString theirs = dir.filePath(u"theirs.plist"_s);
    const QString ours = dir.filePath(u"ours.plist"_s);
    for (const char* fmt : {"FMT_XML", "FMT_BINARY"}) {
        int code = 0;
        const QByteArray made = runPython(
            values + u"open(sys.argv[1],'wb').write(plistlib.dumps(d,fmt=plistlib.%1))\n"_s.arg(fmt), {theirs}, &code);
        ASSERT_EQ(code, 0) << made.toStdString();
        const Result<QVariant> read = readPropertyListFile(theirs);
        ASSERT_TRUE(read.ok()) << fmt << ": " << read.error().text().toStdString();
        ASSERT_TRUE(writePropertyListFile(*read, ours).ok());
        const QByteArray checked = runPython(values + QStringLiteral("b=plistlib.load(open(sys.argv[1],'rb'))\n"
                                                                     "assert repr(sorted(b.items()))=="
                                                                     "repr(sorted(d.items())),b\n"),
                                             {ours}, &code);
        EXPECT_EQ(code, 0) << fmt << ": " << checked.toStdString();
    }
}

namespace {

// A binary plist assembled by hand: objects, then the offset table, then the trailer.
QByteArray binaryPlist(const QList<QByteArray>& objects, quint64 top = 0, int refSize = 1)
{
    QByteArray out = "bplist00";
    QList<quint64> offsets;
    for (const QByteArray& o : objects) {
        offsets << quint64(out.size());
        out += o;
    }
    const quint64 tableOffset = quint64(out.size());
    for (quint64 off : offsets)
        out += char(off);
    QByteArray trailer(32, '\0');
    trailer[6] = 1;
    trailer[7] = char(refSize);
    auto put = [&](int at, quint64 v) {
        for (int i = 7; i >= 0; --i, v >>= 8)
            trailer[at + i] = char(v & 0xff);
    };
    put(8, quint64(objects.size()));
    put(16, top);
    put(24, tableOffset);
    return out + trailer;
}

} // namespace

TEST(PropertyList, BinaryDamageGivesOffsetsNotCrashes)
{
    // {"k": "v"} made by hand reads correctly.
    const QByteArray good = binaryPlist({QByteArray("\xD1\x01\x02", 3), QByteArray("\x51k"), QByteArray("\x51v")});
    Result<QVariant> ok = parsePropertyList(good, u"good.plist"_s);
    ASSERT_TRUE(ok.ok()) << ok.error().text().toStdString();
    EXPECT_EQ(ok->toMap().value(u"k"_s).toString(), u"v"_s);

    // An array that contains itself.
    const Result<QVariant> cycle = parsePropertyList(binaryPlist({QByteArray("\xA1\x00", 2)}), u"c.plist"_s);
    ASSERT_FALSE(cycle.ok());
    EXPECT_TRUE(cycle.error().message.contains(u"contains itself"_s));
    EXPECT_TRUE(cycle.error().where.startsWith(u"offset "_s));

    // A reference to an object that does not exist, a key that is not a string, a string too long.
    EXPECT_FALSE(parsePropertyList(binaryPlist({QByteArray("\xA1\x07", 2)}), QString()).ok());
    EXPECT_FALSE(
        parsePropertyList(binaryPlist({QByteArray("\xD1\x01\x01", 3), QByteArray("\x10\x05", 2)}), QString()).ok());
    EXPECT_FALSE(parsePropertyList(binaryPlist({QByteArray("\x5F\x10\x7F"
                                                           "abc",
                                                           6)}),
                                   QString())
                     .ok());
    // A top object past the count.
    EXPECT_FALSE(parsePropertyList(binaryPlist({QByteArray("\x09")}, 3), QString()).ok());

    // Exponential sharing (each array holds the previous one twice) is read once per object.
    QList<QByteArray> objects{QByteArray("\x09")};
    for (int i = 1; i < 60; ++i)
        objects << QByteArray("\xA2", 1) + char(i - 1) + char(i - 1);
    Result<QVariant> wide = parsePropertyList(binaryPlist(objects, 59), u"wide.plist"_s);
    ASSERT_TRUE(wide.ok());
    EXPECT_EQ(wide->toList().size(), 2);

    // Every prefix of a real file is an error with the file's name, never a crash.
    if (python().isEmpty())
        return;
    QTemporaryDir dir;
    const QString path = dir.filePath(u"full.plist"_s);
    int code = 0;
    runPython(QStringLiteral("import plistlib,sys\nopen(sys.argv[1],'wb').write(plistlib.dumps("
                             "{'a':[1,2.5,'x'*40,{'b':b'123'}],'c':'ü'},fmt=plistlib.FMT_BINARY))\n"),
              {path}, &code);
    const QByteArray full = readAll(path);
    ASSERT_GT(full.size(), 40);
    ASSERT_TRUE(parsePropertyList(full, path).ok());
    for (qsizetype n = 0; n < full.size(); ++n) {
        const Result<QVariant> r = parsePropertyList(full.left(n), path);
        if (!r.ok()) {
            EXPECT_EQ(r.error().file, path);
        }
    }
    EXPECT_FALSE(parsePropertyList(full.left(full.size() - 1), path).ok());
}
