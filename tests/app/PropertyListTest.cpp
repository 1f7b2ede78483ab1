#include "app/PropertyList.h"

#include "support/TestSupport.h"

#include <QDateTime>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <limits>

using namespace quillon::app;
using quillon::test::readAll;
using quillon::test::writeAll;

namespace {

QVariantMap sampleRecord()
{
    return QVariantMap{
        {QStringLiteral("name"), QStringLiteral("Café <Bold> & \"Co\"")},
        {QStringLiteral("blank"), QStringLiteral(" ")},
        {QStringLiteral("empty"), QString()},
        {QStringLiteral("count"), qint64(-42)},
        {QStringLiteral("big"), quint64(18446744073709551615ULL)},
        {QStringLiteral("ratio"), 0.1},
        {QStringLiteral("whole"), 3.0},
        {QStringLiteral("isDock"), 1},
        {QStringLiteral("flag"), true},
        {QStringLiteral("off"), false},
        {QStringLiteral("when"), QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58), QTimeZone::utc())},
        {QStringLiteral("bytes"), QByteArray("\x00\x01\xff plist", 9)},
        {QStringLiteral("children"), QVariantList{QVariantMap{}, QVariantList{}, QStringLiteral("x")}},
    };
}

QString python()
{
    return QStandardPaths::findExecutable(QStringLiteral("python3"));
}

// Runs a Python snippet with the given arguments; returns its standard output.
QByteArray runPython(const QString& code, const QStringList& args, int* exitCode)
{
    QProcess p;
    p.start(python(), QStringList{QStringLiteral("-c"), code} + args);
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

    Result<QVariant> back = parsePropertyList(*xml, QStringLiteral("mem"));
    ASSERT_TRUE(back.ok()) << back.error().text().toStdString();
    const QVariantMap m = back->toMap();
    EXPECT_EQ(m.value(QStringLiteral("blank")).toString(), QStringLiteral(" "));
    EXPECT_EQ(m.value(QStringLiteral("big")).toULongLong(), 18446744073709551615ULL);
    EXPECT_EQ(m.value(QStringLiteral("whole")).typeId(), QMetaType::Double);
    EXPECT_EQ(m.value(QStringLiteral("when")).toDateTime(), record.value(QStringLiteral("when")).toDateTime());
    EXPECT_EQ(m.value(QStringLiteral("bytes")).toByteArray(), record.value(QStringLiteral("bytes")).toByteArray());
    const QVariantList children = m.value(QStringLiteral("children")).toList();
    ASSERT_EQ(children.size(), 3);
    EXPECT_EQ(children[0].typeId(), QMetaType::QVariantMap);
    EXPECT_EQ(children[1].typeId(), QMetaType::QVariantList);
}

TEST(PropertyList, WriterRefusesValuesAPlistCannotHoldAndNamesWhere)
{
    const QVariantMap bad{{QStringLiteral("list"), QVariantList{1, QVariant()}}};
    Result<QByteArray> xml = toXmlPropertyList(bad);
    ASSERT_FALSE(xml.ok());
    EXPECT_TRUE(xml.error().message.contains(QStringLiteral("list[1]"))) << xml.error().message.toStdString();

    // Control characters cannot stand in XML; they are left out rather than breaking the file.
    Result<QByteArray> ctrl = toXmlPropertyList(QVariantMap{{QStringLiteral("k\x01"), QStringLiteral("a\x07"
                                                                                                     "b\tc\r")}});
    ASSERT_TRUE(ctrl.ok());
    const QVariantMap back = parsePropertyList(*ctrl, QString())->toMap();
    EXPECT_EQ(back.value(QStringLiteral("k")).toString(), QStringLiteral("ab\tc\r"));
}

TEST(PropertyList, FileWriteIsAtomicAndReadable)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("data.plist"));
    ASSERT_TRUE(writePropertyListFile(sampleRecord(), path).ok());
    Result<QVariantMap> m = readPropertyListDictionary(path);
    ASSERT_TRUE(m.ok());
    EXPECT_EQ(m->value(QStringLiteral("count")).toInt(), -42);

    // A failed write leaves the old file as it was.
    EXPECT_FALSE(writePropertyListFile(QVariantMap{{QStringLiteral("x"), QVariant()}}, path).ok());
    EXPECT_TRUE(readPropertyListDictionary(path).ok());

    const Result<QVariantMap> missing = readPropertyListDictionary(dir.filePath(QStringLiteral("none.plist")));
    ASSERT_FALSE(missing.ok());
    EXPECT_TRUE(missing.error().file.endsWith(QStringLiteral("none.plist")));

    writeAll(dir.filePath(QStringLiteral("array.plist")), *toXmlPropertyList(QVariantList{1}));
    EXPECT_FALSE(readPropertyListDictionary(dir.filePath(QStringLiteral("array.plist"))).ok());
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
        const Result<QVariant> r = parsePropertyList(QByteArray(c.xml), QStringLiteral("bad.plist"));
        ASSERT_FALSE(r.ok()) << c.xml;
        EXPECT_EQ(r.error().file, QStringLiteral("bad.plist"));
        EXPECT_TRUE(r.error().message.contains(QLatin1String(c.expectInMessage)))
            << c.xml << " -> " << r.error().text().toStdString();
        if (c.line > 0) {
            EXPECT_EQ(r.error().where, QStringLiteral("line %1").arg(c.line)) << c.xml;
        }
    }
}

TEST(PropertyList, ByteOrderMarksAndEncodings)
{
    const QByteArray body = "<plist><dict><key>k</key><string>é</string></dict></plist>";
    // A leading UTF-8 mark is legal XML and reads the same.
    Result<QVariant> withBom = parsePropertyList("\xEF\xBB\xBF" + body, QStringLiteral("bom.plist"));
    ASSERT_TRUE(withBom.ok()) << withBom.error().text().toStdString();
    EXPECT_EQ(withBom->toMap().value(QStringLiteral("k")).toString(), QStringLiteral("é"));
    // A mark anywhere else is garbage before the document.
    const Result<QVariant> misplaced = parsePropertyList("\n\xEF\xBB\xBF" + body, QStringLiteral("bom.plist"));
    ASSERT_FALSE(misplaced.ok());
    EXPECT_EQ(misplaced.error().file, QStringLiteral("bom.plist"));
    // A mark with nothing after it.
    EXPECT_FALSE(parsePropertyList("\xEF\xBB\xBF", QStringLiteral("bom.plist")).ok());
}

TEST(PropertyList, HostileXmlDoesNotExpandOrRecurseWithoutBound)
{
    const QByteArray laughs =
        "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\">"
        "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">]>"
        "<plist><string>&c;</string></plist>";
    const Result<QVariant> r = parsePropertyList(laughs, QStringLiteral("laughs.plist"));
    if (r.ok()) {
        EXPECT_LT(r->toString().size(), 100);
    }
    QByteArray deep = "<plist>";
    for (int i = 0; i < 5000; ++i)
        deep += "<array>";
    for (int i = 0; i < 5000; ++i)
        deep += "</array>";
    deep += "</plist>";
    const Result<QVariant> d = parsePropertyList(deep, QStringLiteral("deep.plist"));
    ASSERT_FALSE(d.ok());
    EXPECT_TRUE(d.error().message.contains(QStringLiteral("nested")));
}

TEST(PropertyList, PythonReadsWhatWeWriteAndWeReadWhatPythonWrites)
{
    if (python().isEmpty())
        GTEST_SKIP() << "python3 is not installed";
    QTemporaryDir dir;
    const QString ours = dir.filePath(QStringLiteral("ours.plist"));
    ASSERT_TRUE(writePropertyListFile(sampleRecord(), ours).ok());
    int code = 0;
    const QByteArray out = runPython(
        QStringLiteral(
            "import plistlib,sys,datetime\n"
            "d=plistlib.load(open(sys.argv[1],'rb'))\n"
            "assert d['name']=='Café <Bold> & \"Co\"', d['name']\n"
            "assert d['blank']==' ' and d['empty']==''\n"
            "assert d['count']==-42 and d['big']==18446744073709551615\n"
            "assert d['ratio']==0.1 and isinstance(d['whole'],float) and d['flag'] is True and d['off'] is False\n"
            "assert d['when']==datetime.datetime(2024,2,29,23,59,58), d['when']\n"
            "assert d['bytes']==b'\\x00\\x01\\xff plist'\n"
            "assert d['children']==[{},[],'x']\n"
            "print('ok')\n"),
        {ours}, &code);
    EXPECT_EQ(code, 0) << out.toStdString();

    for (const char* fmt : {"FMT_XML", "FMT_BINARY"}) {
        const QString theirs = dir.filePath(QStringLiteral("theirs-%1.plist").arg(QLatin1String(fmt)));
        const QByteArray made = runPython(
            QStringLiteral("import plistlib,sys,datetime\n"
                           "d={'s':'Ünïcode ☃','blank':' ','neg':-7,'i8':200,'i16':60000,'i32':4000000000,'i64':2**62,"
                           "'u64':2**64-1,'minus':-2**63,'r':1.5,'t':True,'f':False,"
                           "'d':datetime.datetime(2001,1,1,0,0,1),'b':b'\\x00\\x10','a':[1,'two',[3.0]],'e':{},"
                           "'long':'x'*300,'shared':['same','same','same']}\n"
                           "open(sys.argv[1],'wb').write(plistlib.dumps(d,fmt=plistlib.%1))\n")
                .arg(QLatin1String(fmt)),
            {theirs}, &code);
        ASSERT_EQ(code, 0) << made.toStdString();
        Result<QVariantMap> r = readPropertyListDictionary(theirs);
        ASSERT_TRUE(r.ok()) << fmt << ": " << r.error().text().toStdString();
        const QVariantMap& m = *r;
        EXPECT_EQ(m.value(QStringLiteral("s")).toString(), QStringLiteral("Ünïcode ☃")) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("i8")).toLongLong(), 200) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("i16")).toLongLong(), 60000) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("i32")).toLongLong(), 4000000000LL) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("i64")).toLongLong(), 1LL << 62) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("u64")).toULongLong(), std::numeric_limits<quint64>::max()) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("minus")).toLongLong(), std::numeric_limits<qint64>::min()) << fmt;
        EXPECT_DOUBLE_EQ(m.value(QStringLiteral("r")).toDouble(), 1.5) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("t")), QVariant(true)) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("f")), QVariant(false)) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("d")).toDateTime(),
                  QDateTime(QDate(2001, 1, 1), QTime(0, 0, 1), QTimeZone::utc()))
            << fmt;
        EXPECT_EQ(m.value(QStringLiteral("b")).toByteArray(), QByteArray("\x00\x10", 2)) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("a")).toList().size(), 3) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("long")).toString().size(), 300) << fmt;
        EXPECT_EQ(m.value(QStringLiteral("shared")).toList().size(), 3) << fmt;
        EXPECT_TRUE(m.value(QStringLiteral("e")).toMap().isEmpty()) << fmt;
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
    Result<QVariant> ok = parsePropertyList(good, QStringLiteral("good.plist"));
    ASSERT_TRUE(ok.ok()) << ok.error().text().toStdString();
    EXPECT_EQ(ok->toMap().value(QStringLiteral("k")).toString(), QStringLiteral("v"));

    // An array that contains itself.
    const Result<QVariant> cycle =
        parsePropertyList(binaryPlist({QByteArray("\xA1\x00", 2)}), QStringLiteral("c.plist"));
    ASSERT_FALSE(cycle.ok());
    EXPECT_TRUE(cycle.error().message.contains(QStringLiteral("contains itself")));
    EXPECT_TRUE(cycle.error().where.startsWith(QStringLiteral("offset ")));

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
    Result<QVariant> wide = parsePropertyList(binaryPlist(objects, 59), QStringLiteral("wide.plist"));
    ASSERT_TRUE(wide.ok());
    EXPECT_EQ(wide->toList().size(), 2);

    // Every prefix of a real file is an error with the file's name, never a crash.
    if (python().isEmpty())
        return;
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("full.plist"));
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
