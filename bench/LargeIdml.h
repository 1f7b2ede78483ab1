#pragma once

// A generator of large unpacked IDML documents with their linked files on disk, for the link
// analysis benchmarks. Header-only so that each benchmark program can include it.

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QString>
#include <QUrl>

#include <cstdint>
#include <string>

namespace quillon::bench {

struct LargeIdmlOptions {
    int spreads = 1000;      // facing spreads of two pages
    int links = 10000;       // placed files in all, each a file of its own
    int anchoredLinks = 100; // of those, placed in stories (read by the story pass)
    int stories = 200;       // text stories, each with a frame on some spread
};

struct LargeIdml {
    QString packageFolder; // the unpacked package
    QString documentPath;  // the document the package stands for
    QString linksFolder;   // the linked files
    int links = 0;
};

namespace detail {

inline void put16(QByteArray& bytes, int offset, std::uint16_t value, bool bigEndian)
{
    for (int i = 0; i < 2; ++i)
        bytes[offset + i] = static_cast<char>(value >> (8 * (bigEndian ? 1 - i : i)));
}

inline void put32(QByteArray& bytes, int offset, std::uint32_t value, bool bigEndian)
{
    for (int i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(value >> (8 * (bigEndian ? 3 - i : i)));
}

inline QByteArray be32(std::uint32_t value)
{
    QByteArray bytes(4, '\0');
    put32(bytes, 0, value, true);
    return bytes;
}

// A small display profile whose description tag names it.
inline QByteArray iccProfile(const QByteArray& name)
{
    QByteArray desc = "desc" + QByteArray(4, '\0') + be32(static_cast<std::uint32_t>(name.size() + 1)) + name + '\0';
    desc += QByteArray(4 + 4 + 2 + 1 + 67, '\0'); // empty Unicode and ScriptCode parts
    while (desc.size() % 4)
        desc += '\0';
    QByteArray profile(128, '\0');
    profile += be32(1) + QByteArray("desc") + be32(144) + be32(static_cast<std::uint32_t>(desc.size()));
    profile += desc;
    put32(profile, 0, static_cast<std::uint32_t>(profile.size()), true);
    put32(profile, 8, 0x02100000, true);
    profile.replace(12, 4, "mntr");
    profile.replace(16, 4, "RGB ");
    profile.replace(20, 4, "XYZ ");
    profile.replace(36, 4, "acsp");
    put32(profile, 68, 0x0000F6D6, true); // D50 illuminant
    put32(profile, 72, 0x00010000, true);
    put32(profile, 76, 0x0000D32D, true);
    return profile;
}

inline QByteArray jpegFile(bool withProfile)
{
    QByteArray bytes("\xFF\xD8", 2);
    bytes += QByteArray("\xFF\xE0\x00\x10JFIF\x00\x01\x01\x00\x00\x48\x00\x48\x00\x00", 18);
    if (withProfile) {
        const QByteArray icc = iccProfile("Generated RGB Profile");
        QByteArray segment = QByteArray("ICC_PROFILE\0", 12) + char(1) + char(1) + icc;
        QByteArray length(2, '\0');
        put16(length, 0, static_cast<std::uint16_t>(segment.size() + 2), true);
        bytes += QByteArray("\xFF\xE2", 2) + length + segment;
    }
    bytes += QByteArray("\xFF\xC0\x00\x11\x08\x00\x10\x00\x10\x03\x01\x22\x00\x02\x11\x01\x03\x11\x01", 19);
    bytes += QByteArray(2048, '\x55');
    return bytes + QByteArray("\xFF\xD9", 2);
}

// A little-endian LZW RGB TIFF of 16 x 16 pixels with a profile.
inline QByteArray tiffFile()
{
    const QByteArray icc = iccProfile("Generated TIFF Profile");
    struct Entry {
        std::uint16_t tag, type;
        std::uint32_t count, value;
    };
    const int entries = 8;
    const int ifdSize = 2 + entries * 12 + 4;
    const std::uint32_t iccOffset = 8 + ifdSize;
    const std::uint32_t dataOffset = iccOffset + static_cast<std::uint32_t>(icc.size());
    const Entry table[entries] = {{256, 3, 1, 16},  {257, 3, 1, 16},
                                  {258, 3, 1, 8},   {259, 3, 1, 5},
                                  {262, 3, 1, 2},   {273, 4, 1, dataOffset},
                                  {279, 4, 1, 768}, {34675, 7, static_cast<std::uint32_t>(icc.size()), iccOffset}};
    QByteArray bytes("II*\0", 4);
    bytes += QByteArray(4 + ifdSize, '\0');
    put32(bytes, 4, 8, false);
    put16(bytes, 8, entries, false);
    for (int i = 0; i < entries; ++i) {
        const int at = 10 + i * 12;
        put16(bytes, at, table[i].tag, false);
        put16(bytes, at + 2, table[i].type, false);
        put32(bytes, at + 4, table[i].count, false);
        if (table[i].type == 3)
            put16(bytes, at + 8, static_cast<std::uint16_t>(table[i].value), false);
        else
            put32(bytes, at + 8, table[i].value, false);
    }
    return bytes + icc + QByteArray(768, '\x20');
}

// An RGB Photoshop file whose resources hold an odd-sized one before the profile (1039).
inline QByteArray psdFile()
{
    QByteArray header("8BPS", 4);
    header += QByteArray("\x00\x01", 2) + QByteArray(6, '\0') + QByteArray("\x00\x03", 2) + be32(16) + be32(16) +
              QByteArray("\x00\x08\x00\x03", 4);
    const QByteArray icc = iccProfile("Generated PSD Profile");
    QByteArray resources = QByteArray("8BIM\x04\x04\x00\x00", 8) + be32(7) + QByteArray(7, 'i') + '\0';
    resources += QByteArray("8BIM\x04\x0F\x00\x00", 8) + be32(static_cast<std::uint32_t>(icc.size())) + icc;
    return header + be32(0) + be32(static_cast<std::uint32_t>(resources.size())) + resources + be32(0) +
           QByteArray("\x00\x00", 2) + QByteArray(768, '\x7F');
}

inline QByteArray epsFile()
{
    return "%!PS-Adobe-3.0 EPSF-3.0\r%%Creator: Adobe Illustrator(R) 8.0\r%%BoundingBox: 0 0 200 100\r"
           "%%DocumentProcessColors: Cyan Magenta Yellow Black\r%%DocumentCustomColors: (PANTONE 185 C)\r"
           "%%+ (PANTONE 300 C)\r%%CMYKCustomColor: 0 0.91 0.76 0 (PANTONE 185 C)\r"
           "%%DocumentFonts: Helvetica\r%%+ Times-Roman\r%%DocumentNeededFonts: Helvetica\r%%EndComments\r" +
           QByteArray(3000, ' ') + "\r%%EOF\r";
}

inline QByteArray aiFile()
{
    return "%PDF-1.5\r%\xE2\xE3\xCF\xD3\r1 0 obj\r<</Type/Catalog>>\rendobj\r%!PS-Adobe-3.0 \r"
           "%%Creator: Adobe Illustrator(R) 17.0\r%AI9_ColorModel: 2\r%%DocumentCustomColors: (PANTONE 185 C)\r"
           "%%CMYKCustomColor: 0 0.91 0.76 0 (PANTONE 185 C)\r" +
           QByteArray(4000, ' ') + "\r%%EOF\r";
}

inline std::string packet(const std::string& body)
{
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n<x:xmpmeta xmlns:x=\"adobe:ns:meta/\" "
           "x:xmptk=\"Adobe XMP Core 5.6-c067\">\n <rdf:RDF "
           "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">\n"
           "  <rdf:Description rdf:about=\"\" xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\" "
           "xmlns:photoshop=\"http://ns.adobe.com/photoshop/1.0/\" xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\" "
           "xmlns:xmpMM=\"http://ns.adobe.com/xap/1.0/mm/\" xmlns:xmpTPg=\"http://ns.adobe.com/xap/1.0/t/pg/\">\n"
           "   <xmp:CreatorTool>Adobe Photoshop 2024 (Macintosh)</xmp:CreatorTool>\n"
           "   <xmp:CreateDate>2024-02-27T10:12:13+01:00</xmp:CreateDate>\n"
           "   <xmp:ModifyDate>2024-02-27T10:12:13+01:00</xmp:ModifyDate>\n"
           "   <xmpMM:DocumentID>adobe:docid:photoshop:5c2b1c3e-8d1f-11ee-9a0b-e3f1c1b1a1a1</xmpMM:DocumentID>\n"
           "   <xmpMM:InstanceID>xmp.iid:0b7d1a2e-5f4c-4a2b-9e3d-1c2b3a4d5e6f</xmpMM:InstanceID>\n" +
           body + "  </rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n<?xpacket end=\"w\"?>";
}

// "prefix" followed by the number; built by appending, which GCC 12 does not misread as overlapping.
inline std::string tagged(const char* prefix, long long value)
{
    std::string text(prefix);
    text += std::to_string(value);
    return text;
}

inline std::string number(double value)
{
    return QString::number(value, 'g', 12).toStdString();
}

inline std::string frame(const std::string& self, double x, double y, const std::string& inner, const std::string& kind,
                         const std::string& attributes = {})
{
    const std::string point = [&](double px, double py) {
        return "<PathPointType Anchor=\"" + number(px) + " " + number(py) + "\" LeftDirection=\"" + number(px) + " " +
               number(py) + "\" RightDirection=\"" + number(px) + " " + number(py) + "\"/>";
    }(x, y);
    return "\t\t<" + kind + " Self=\"" + self + "\" " + attributes +
           " ContentType=\"GraphicType\" StoryTitle=\"$ID/\" ItemLayer=\"ub3\" "
           "Locked=\"false\" LocalDisplaySetting=\"Default\" AppliedObjectStyle=\"ObjectStyle/$ID/[None]\" "
           "ItemTransform=\"1 0 0 1 0 0\">\n\t\t\t<Properties><PathGeometry><GeometryPathType PathOpen=\"false\">"
           "<PathPointArray>" +
           point + point + point + point +
           "</PathPointArray></GeometryPathType></PathGeometry>"
           "</Properties>\n\t\t\t<TextWrapPreference Inverse=\"false\" ApplyToMasterPageOnly=\"false\" "
           "TextWrapSide=\"BothSides\" TextWrapMode=\"None\"><Properties><TextWrapOffset Top=\"0\" Left=\"0\" "
           "Bottom=\"0\" Right=\"0\"/></Properties></TextWrapPreference>\n\t\t\t<FrameFittingOption LeftCrop=\"0\" "
           "TopCrop=\"0\" RightCrop=\"0\" BottomCrop=\"0\" FittingOnEmptyFrame=\"None\"/>\n" +
           inner + "\t\t</" + kind + ">\n";
}

inline QDateTime linkTime()
{
    return QDateTime(QDate(2024, 2, 27), QTime(9, 12, 13), Qt::UTC);
}

// The graphic, its packet and its Link for file number `index`.
inline std::string placedFile(int index, const QString& path, const std::string& id)
{
    static const char* const kinds[] = {"jpg", "jpg", "jpg", "jpg", "tif", "tif", "psd", "psd", "eps", "ai"};
    const std::string extension = kinds[index % 10];
    std::string graphic = "Image";
    std::string format = "$ID/JPEG";
    std::string space = "$ID/#Links_RGB";
    std::string body = "   <photoshop:ColorMode>3</photoshop:ColorMode>\n";
    if (extension == "jpg" && index % 2 == 0)
        body += "   <photoshop:ICCProfile>sRGB IEC61966-2.1</photoshop:ICCProfile>\n";
    if (extension == "tif") {
        format = "$ID/TIFF";
        body += "   <tiff:Compression>5</tiff:Compression>\n   <tiff:XResolution>3000000/10000</tiff:XResolution>\n";
    } else if (extension == "psd") {
        format = "$ID/Photoshop";
        space = "$ID/#Links_CMYK";
    } else if (extension == "eps") {
        graphic = "EPS";
        format = "$ID/EPS";
        space = "";
    } else if (extension == "ai") {
        graphic = "PDF";
        format = "$ID/Adobe Portable Document Format (PDF)";
        space = "";
        body += "   <xmpTPg:PlateNames><rdf:Seq><rdf:li>Cyan</rdf:li><rdf:li>Magenta</rdf:li><rdf:li>Yellow</rdf:li>"
                "<rdf:li>Black</rdf:li><rdf:li>PANTONE 185 C</rdf:li></rdf:Seq></xmpTPg:PlateNames>\n";
    }
    const std::string uri = "file:" + QUrl::toPercentEncoding(path, "/").toStdString();
    const qint64 filetime = (linkTime().toSecsSinceEpoch() + 11644473600LL) * 10'000'000LL;
    std::string graphicAttributes = "Self=\"" + id + "g\" ItemTransform=\"0.5 0 0 0.5 -10 -10\"";
    if (!space.empty())
        graphicAttributes += " Space=\"" + space + "\" ActualPpi=\"300 300\" EffectivePpi=\"600 600\"";
    return "\t\t\t<" + graphic + " " + graphicAttributes + " ImageRenderingIntent=\"UseColorSettings\">\n" +
           "\t\t\t\t<Properties><Profile type=\"string\">$ID/Embedded</Profile><GraphicBounds Left=\"0\" Top=\"0\" "
           "Right=\"400\" Bottom=\"300\"/></Properties>\n\t\t\t\t<MetadataPacketPreference><Properties><Contents>"
           "<![CDATA[" +
           packet(body) + "]]></Contents></Properties></MetadataPacketPreference>\n\t\t\t\t<Link Self=\"" + id +
           "\" AssetURL=\"$ID/\" AssetID=\"$ID/\" LinkResourceURI=\"" + uri + "\" LinkResourceFormat=\"" + format +
           "\" StoredState=\"Normal\" LinkClassID=\"35906\" LinkClientID=\"257\" LinkResourceModified=\"false\" "
           "LinkObjectModified=\"false\" ShowInUI=\"true\" CanEmbed=\"true\" CanUnembed=\"true\" CanPackage=\"true\" "
           "ImportPolicy=\"NoAutoImport\" ExportPolicy=\"NoAutoExport\" LinkImportStamp=\"file " +
           std::to_string(filetime) +
           " 4096\" LinkImportModificationTime=\"2024-02-27T10:12:13\" "
           "LinkImportTime=\"2024-02-27T10:20:00\" LinkResourceSize=\"0~1000\"/>\n\t\t\t</" +
           graphic + ">\n";
}

inline QByteArray fileBytes(int index)
{
    switch (index % 10) {
    case 4:
    case 5:
        return tiffFile();
    case 6:
    case 7:
        return psdFile();
    case 8:
        return epsFile();
    case 9:
        return aiFile();
    default:
        return jpegFile(index % 2 == 1);
    }
}

inline QString fileName(int index)
{
    static const char* const kinds[] = {"jpg", "jpg", "jpg", "jpg", "tif", "tif", "psd", "psd", "eps", "ai"};
    return QStringLiteral("image_%1.%2").arg(index, 5, 10, QLatin1Char('0')).arg(QLatin1String(kinds[index % 10]));
}

inline void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

} // namespace detail

// The paths of a document written under `root` by writeLargeIdml with the same options.
inline LargeIdml describeLargeIdml(const QString& root, const LargeIdmlOptions& options = {})
{
    return {root + QStringLiteral("/package"), root + QStringLiteral("/Large Document.indd"),
            root + QStringLiteral("/Links"), options.links};
}

// Writes the package and the linked files under `root` (which must exist). Each linked file's
// modification time matches its link's recorded date, so every link reads "OK".
inline LargeIdml writeLargeIdml(const QString& root, const LargeIdmlOptions& options = {})
{
    using namespace detail;
    const LargeIdml doc = describeLargeIdml(root, options);
    for (const char* folder : {"Spreads", "MasterSpreads", "Stories", "Resources"})
        QDir().mkpath(doc.packageFolder + u'/' + QLatin1String(folder));
    QDir().mkpath(doc.linksFolder);

    QByteArray bytesByKind[10];
    for (int kind = 0; kind < 10; ++kind)
        bytesByKind[kind] = fileBytes(kind);
    for (int i = 0; i < options.links; ++i) {
        const QString path = doc.linksFolder + u'/' + fileName(i);
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(i % 10 < 4 ? jpegFile(i % 2 == 1) : bytesByKind[i % 10]);
            file.setFileTime(linkTime(), QFileDevice::FileModificationTime);
        }
    }

    std::string designmap =
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<Document "
        "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"19.0\">\n"
        "\t<idPkg:MasterSpread src=\"MasterSpreads/MasterSpread_ua.xml\"/>\n";
    write(doc.packageFolder + QStringLiteral("/MasterSpreads/MasterSpread_ua.xml"),
          "<idPkg:MasterSpread xmlns:idPkg=\"p\"><MasterSpread Self=\"ua\" Name=\"A-Master\" PageCount=\"2\">"
          "<Page Self=\"ua1\" Name=\"L\" GeometricBounds=\"0 0 792 612\"/></MasterSpread></idPkg:MasterSpread>");

    const int onSpreads = options.links - options.anchoredLinks;
    int next = 0;
    for (int s = 0; s < options.spreads; ++s) {
        const std::string self = tagged("us", s);
        const double y = s * 900.0;
        std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<idPkg:Spread "
                          "xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"19.0\">\n"
                          "\t<Spread Self=\"" +
                          self + "\" PageCount=\"2\" BindingLocation=\"1\" ItemTransform=\"1 0 0 1 0 " + number(y) +
                          "\" ShowMasterItems=\"true\" AllowPageShuffle=\"true\">\n\t\t<FlattenerPreference "
                          "LineArtAndTextResolution=\"300\"><Properties><RasterVectorBalance type=\"double\">50"
                          "</RasterVectorBalance></Properties></FlattenerPreference>\n";
        for (int p = 0; p < 2; ++p)
            xml += "\t\t<Page Self=\"" + self + "p" + std::to_string(p) + "\" Name=\"" + std::to_string(2 * s + p + 1) +
                   "\" AppliedMaster=\"ua\" GeometricBounds=\"0 0 792 612\" ItemTransform=\"1 0 0 1 " +
                   (p ? "0" : "-612") +
                   " -396\"><Properties><Descriptor type=\"list\"><ListItem type=\"string\"></ListItem><ListItem "
                   "type=\"enumeration\">Arabic</ListItem><ListItem type=\"boolean\">true</ListItem><ListItem "
                   "type=\"boolean\">false</ListItem><ListItem type=\"long\">" +
                   std::to_string(2 * s + p + 1) +
                   "</ListItem></Descriptor></Properties><MarginPreference "
                   "ColumnCount=\"2\" Top=\"36\" Bottom=\"36\" Left=\"36\" Right=\"36\"/></Page>\n";
        const int here = (onSpreads - next) / (options.spreads - s);
        for (int l = 0; l < here; ++l, ++next) {
            const std::string id = tagged("u", 0x1000 + next);
            xml += frame(id + "f", (l % 2 ? 20.0 : -560.0) + l * 3, -300 + l * 40,
                         placedFile(next, doc.linksFolder + u'/' + fileName(next), id), "Rectangle");
        }
        if (s < options.stories)
            xml += frame(tagged("ut", s), 40, 0, "", "TextFrame", tagged("ParentStory=\"ust", s) + "\"");
        xml += "\t</Spread>\n</idPkg:Spread>\n";
        const QString relative = QStringLiteral("Spreads/Spread_%1.xml").arg(QString::fromStdString(self));
        write(doc.packageFolder + u'/' + relative, QByteArray::fromStdString(xml));
        designmap += "\t<idPkg:Spread src=\"" + relative.toStdString() + "\"/>\n";
    }

    for (int s = 0; s < options.stories; ++s) {
        std::string body;
        for (int l = s; l < options.anchoredLinks; l += options.stories, ++next) {
            const std::string id = tagged("u", 0x1000 + next);
            body += frame(id + "f", 0, 0, placedFile(next, doc.linksFolder + u'/' + fileName(next), id), "Rectangle");
        }
        std::string text;
        for (int w = 0; w < 40; ++w)
            text += "Lorem ipsum dolor sit amet, consectetur adipiscing elit. ";
        const std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<idPkg:Story "
                                "xmlns:idPkg=\"p\">\n\t<Story Self=\"ust" +
                                std::to_string(s) +
                                "\">\n"
                                "\t\t<ParagraphStyleRange><CharacterStyleRange><Content>" +
                                text + "</Content>\n" + body +
                                "\t\t</CharacterStyleRange></ParagraphStyleRange>\n\t</Story>\n</idPkg:Story>\n";
        write(doc.packageFolder + QStringLiteral("/Stories/Story_ust%1.xml").arg(s), QByteArray::fromStdString(xml));
        designmap += "\t<idPkg:Story src=\"Stories/Story_ust" + std::to_string(s) + ".xml\"/>\n";
    }
    write(doc.packageFolder + QStringLiteral("/designmap.xml"), QByteArray::fromStdString(designmap + "</Document>\n"));
    write(doc.packageFolder + QStringLiteral("/mimetype"), "application/vnd.adobe.indesign-idml-package");
    return doc;
}

} // namespace quillon::bench
