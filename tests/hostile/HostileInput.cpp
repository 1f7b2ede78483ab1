#include "hostile/HostileInput.h"

#include <QtEndian>

#include <zlib.h>

using namespace Qt::StringLiterals;

namespace quillon::hostile {

namespace {

void put16(QByteArray& out, quint16 value)
{
    char bytes[2];
    qToLittleEndian(value, bytes);
    out.append(bytes, 2);
}

void put32(QByteArray& out, quint32 value)
{
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

const QByteArray kPackaging = "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\"";

QByteArray designmap(const QByteArray& extra = {})
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Document " + kPackaging +
           " DOMVersion=\"18.0\" Self=\"d\"><idPkg:Spread src=\"Spreads/Spread_u1.xml\"/>"
           "<idPkg:Story src=\"Stories/Story_u2.xml\"/>" +
           extra + "</Document>";
}

QByteArray spread()
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<idPkg:Spread " + kPackaging +
           " DOMVersion=\"18.0\"><Spread Self=\"u1\"><Page Self=\"p1\" GeometricBounds=\"0 0 792 612\"/>"
           "<Rectangle Self=\"r1\"><Image Self=\"i1\"><Link Self=\"l1\" LinkResourceURI=\"file:/tmp/a.psd\"/>"
           "</Image></Rectangle></Spread></idPkg:Spread>";
}

QByteArray story(const QByteArray& content = "Hello")
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<idPkg:Story " + kPackaging +
           " DOMVersion=\"18.0\"><Story Self=\"u2\"><ParagraphStyleRange><CharacterStyleRange "
           "AppliedFont=\"Minion Pro\"><Content>" +
           content + "</Content></CharacterStyleRange></ParagraphStyleRange></Story></idPkg:Story>";
}

QList<ZipEntry> soundPackage()
{
    return {{"mimetype", "application/vnd.adobe.indesign-idml-package"},
            {"designmap.xml", designmap()},
            {"Spreads/Spread_u1.xml", spread()},
            {"Stories/Story_u2.xml", story()}};
}

// Ten levels of ten references each: 10^10 characters when expanded.
QByteArray entityBomb(const QByteArray& root)
{
    QByteArray doctype = "<?xml version=\"1.0\"?>\n<!DOCTYPE " + root + " [<!ENTITY e0 \"lol\">";
    for (int level = 1; level < 10; ++level) {
        doctype += "<!ENTITY e" + QByteArray::number(level) + " \"";
        for (int k = 0; k < 10; ++k)
            doctype += "&e" + QByteArray::number(level - 1) + ";";
        doctype += "\">";
    }
    return doctype + "]><" + root + ">&e9;</" + root + ">";
}

QByteArray deepXml(const QByteArray& element, int depth)
{
    return "<?xml version=\"1.0\"?>\n" + ("<" + element + ">").repeated(depth) + ("</" + element + ">").repeated(depth);
}

QByteArray presetPlist(const QByteArray& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\"><dict>" +
           body + "</dict></plist>";
}

} // namespace

QByteArray zipArchive(const QList<ZipEntry>& entries)
{
    QByteArray out;
    QByteArray directory;
    for (const ZipEntry& entry : entries) {
        const quint32 offset = quint32(out.size());
        const quint32 crc =
            quint32(::crc32(0, reinterpret_cast<const Bytef*>(entry.data.constData()), uInt(entry.data.size())));
        auto header = [&](QByteArray& to, bool central) {
            put32(to, central ? 0x02014b50 : 0x04034b50);
            if (central)
                put16(to, 20); // made by
            put16(to, 20);     // needed to extract
            put16(to, 0);      // flags
            put16(to, 0);      // stored
            put16(to, 0);      // time
            put16(to, 0x21);   // date
            put32(to, crc);
            put32(to, quint32(entry.data.size()));
            put32(to, quint32(entry.data.size()));
            put16(to, quint16(entry.name.size()));
            put16(to, 0); // extra
            if (central) {
                put16(to, 0); // comment
                put16(to, 0); // disk
                put16(to, 0); // internal attributes
                put32(to, 0); // external attributes
                put32(to, offset);
            }
            to += entry.name;
        };
        header(out, false);
        out += entry.data;
        header(directory, true);
    }
    const quint32 directoryOffset = quint32(out.size());
    out += directory;
    put32(out, 0x06054b50);
    put16(out, 0);
    put16(out, 0);
    put16(out, quint16(entries.size()));
    put16(out, quint16(entries.size()));
    put32(out, quint32(directory.size()));
    put32(out, directoryOffset);
    put16(out, 0);
    return out;
}

QByteArray Generator::randomBytes(int count)
{
    QByteArray bytes(count, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = static_cast<char>(below(256));
    return bytes;
}

QByteArray Generator::mutated(QByteArray bytes)
{
    if (bytes.isEmpty())
        return randomBytes(1 + below(64));
    switch (below(4)) {
    case 0: // a few bytes overwritten
        for (int k = 1 + below(8); k > 0; --k)
            bytes[below(int(bytes.size()))] = static_cast<char>(below(256));
        return bytes;
    case 1: // cut short
        return bytes.left(below(int(bytes.size())));
    case 2: { // a slice doubled
        const int at = below(int(bytes.size()));
        return bytes.insert(at, bytes.mid(at, 1 + below(256)));
    }
    default: // random bytes spliced in
        return bytes.insert(below(int(bytes.size())), randomBytes(1 + below(32)));
    }
}

QByteArray Generator::part()
{
    switch (below(8)) {
    case 0:
        return entityBomb("Document");
    case 1:
        return deepXml("Story", 20000 + below(80000));
    case 2: // one very large attribute
        return "<?xml version=\"1.0\"?><Document Self=\"" + QByteArray(4 << 20, 'A') + "\"/>";
    case 3: // very many elements
        return "<?xml version=\"1.0\"?><Document>" + QByteArray("<Page Self=\"p\"/>").repeated(100000) + "</Document>";
    case 4:
        return randomBytes(below(4096));
    case 5: // an external entity that must not be fetched
        return "<?xml version=\"1.0\"?><!DOCTYPE d [<!ENTITY x SYSTEM "
               "\"file:///etc/passwd\">]><Document>&x;</Document>";
    case 6: // text in the wrong encoding
        return "<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + story("\xff\xfe\xc3\x28");
    default:
        return mutated(story());
    }
}

QList<Case> Generator::archives(int count)
{
    QList<Case> cases;
    const QByteArray sound = zipArchive(soundPackage());
    for (int i = 0; i < count; ++i) {
        QList<ZipEntry> entries = soundPackage();
        QString what;
        switch (below(9)) {
        case 0:
            what = u"zip-slip entry"_s;
            entries.append(ZipEntry{below(2) ? "../../escaped.xml" : "Stories/../../../escaped.xml", "x"});
            break;
        case 1:
            what = u"absolute entry name"_s;
            entries.append(ZipEntry{"/tmp/absolute.xml", "x"});
            break;
        case 2:
            what = u"duplicate entry"_s;
            entries.append(ZipEntry{"Stories/Story_u2.xml", story("second copy")});
            break;
        case 3:
            what = u"entity bomb designmap"_s;
            entries[1].data = entityBomb("Document");
            break;
        case 4:
            what = u"hostile story part"_s;
            entries[3].data = part();
            break;
        case 5:
            what = u"hostile spread part"_s;
            entries[2].data = part();
            break;
        case 6:
            what = u"designmap names a missing part"_s;
            entries[1].data = designmap("<idPkg:Story src=\"Stories/Story_missing.xml\"/>");
            break;
        case 7:
            what = u"truncated archive"_s;
            cases.append({what, "truncated.idml", sound.left(below(int(sound.size())))});
            continue;
        default:
            what = u"damaged archive bytes"_s;
            cases.append({what, "damaged.idml", mutated(sound)});
            continue;
        }
        cases.append({what, "hostile.idml", zipArchive(entries)});
    }
    return cases;
}

QList<Case> Generator::parts(int count)
{
    QList<Case> cases;
    for (int i = 0; i < count; ++i)
        cases.append({u"XML part"_s, "Story_u" + QByteArray::number(i) + ".xml", part()});
    return cases;
}

QByteArray Generator::preset()
{
    switch (below(12)) {
    case 0: // rules that are not a list of rules
        return presetPlist("<key>fontRules</key><string>all of them</string><key>colorRules</key><integer>7</integer>");
    case 1: // numbers out of every range
        return presetPlist("<key>minRes</key><integer>99999999999999999999999999</integer>"
                           "<key>maxSize</key><real>-1e400</real><key>embedBtn</key><integer>-5</integer>");
    case 2: // values of the wrong kind everywhere
        return presetPlist("<key>linkRules</key><dict><key>a</key><date>not a date</date></dict>"
                           "<key>scaledBtn</key><data>!!not base64!!</data><key></key><true/>");
    case 3:
        return deepXml("array", 50000);
    case 4:
        return entityBomb("plist");
    case 5:
        return randomBytes(below(2048));
    case 6: // a binary plist with a damaged trailer and offset table
        return "bplist00" + randomBytes(below(256)) + randomBytes(32);
    case 7:
        return QByteArray();
    case 8: // a string far beyond any preset
        return presetPlist("<key>name</key><string>" + QByteArray(17 << 20, 'x') + "</string>");
    case 9: // control characters and bytes that are not UTF-8
        return presetPlist("<key>na\x01me</key><string>\x1b]0;title\x07\xff\xfe</string>");
    case 10: // a top that is not a dictionary
        return "<?xml version=\"1.0\"?><plist version=\"1.0\"><array><string>x</string></array></plist>";
    default:
        return mutated(presetPlist("<key>fontRules</key><array><dict><key>attribute</key><string>Font</string>"
                                   "<key>condition</key><string>contains</string><key>value</key><string>Arial"
                                   "</string></dict></array>"));
    }
}

QList<Case> Generator::presets(int count)
{
    QList<Case> cases;
    for (int i = 0; i < count; ++i)
        cases.append({u"preset"_s, "hostile" + QByteArray::number(i) + ".qnfp", preset()});
    return cases;
}

QList<QByteArray> Generator::names(int count)
{
    static const QList<QByteArray> kinds{"\x1b]0;retitled\x07",
                                         "\x1b[2J",
                                         "line\nbreak",
                                         "tab\there",
                                         "\xff\xfe",
                                         "caf\xe9",
                                         "-rf",
                                         "--help",
                                         " leading",
                                         "\xc3\x28",
                                         "\xe2\x80\xae"
                                         "fdp"};
    QList<QByteArray> names;
    for (int i = 0; i < count; ++i) {
        QByteArray name = kinds[below(int(kinds.size()))];
        if (below(4) == 0)
            name += QByteArray(200 + below(40), 'n'); // near the 255-byte limit of a name
        name += QByteArray::number(i);
        names.append(name);
    }
    return names;
}

} // namespace quillon::hostile
