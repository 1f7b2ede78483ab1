#include "IdmlGenerator.h"

#include "idml/IdmlArchiveWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QStringList>

using namespace quillon::idml;

namespace quillon::bench {

namespace {

const char* const kWords[] = {"prepress",  "bleed", "slug",     "spread",   "master",     "swatch",
                              "overprint", "plate", "cyan",     "magenta",  "yellow",     "black",
                              "trim",      "folio", "gutter",   "baseline", "kerning",    "tracking",
                              "leading",   "glyph", "ligature", "proof",    "imposition", "varnish"};

const char* const kFamilies[] = {"Minion Pro", "Myriad Pro", "DejaVu Sans", "Arno Pro", "Source Serif Pro"};
const char* const kFaces[] = {"Regular", "Italic", "Bold", "Bold Italic", "Light", "Semibold"};

class Writer {
public:
    explicit Writer(const IdmlShape& shape) : m_shape(shape), m_random(shape.seed) {}

    QByteArray number(double low, double high)
    {
        return QByteArray::number(low + m_random.generateDouble() * (high - low), 'f', 10);
    }

    QByteArray words(int count)
    {
        QByteArray text;
        for (int i = 0; i < count; ++i) {
            if (i)
                text += ' ';
            text += kWords[m_random.bounded(int(std::size(kWords)))];
        }
        return text;
    }

    // The file name of a link; every name given is kept in linkNames().
    QByteArray linkName(int spread, int index)
    {
        QByteArray name =
            words(2).replace(' ', '_') + "_" + QByteArray::number(spread) + "_" + QByteArray::number(index) + ".tif";
        m_linkNames << QString::fromLatin1(name);
        return name;
    }
    const QStringList& linkNames() const { return m_linkNames; }

    QByteArray rectangle(int spread, int index)
    {
        const QByteArray id = "u" + QByteArray::number(spread, 16) + "r" + QByteArray::number(index, 16);
        const QByteArray x = number(-600, 600);
        const QByteArray y = number(-400, 400);
        const QByteArray w = number(50, 300);
        const QByteArray h = number(50, 300);
        const QByteArray fill =
            m_shape.swatches > 0
                ? " FillColor=\"Color/S" + QByteArray::number((spread + index) % m_shape.swatches) + "\""
                : QByteArray();
        QByteArray xml = "<Rectangle Self=\"" + id + "\"" + fill +
                         " ContentType=\"GraphicType\" StrokeWeight=\"0\" "
                         "ItemLayer=\"ub3\" Locked=\"false\" ItemTransform=\"1 0 0 1 " +
                         x + " " + y +
                         "\">\n"
                         "<Properties><PathGeometry><GeometryPathType PathOpen=\"false\"><PathPointArray>\n";
        for (int p = 0; p < 4; ++p) {
            const QByteArray anchor = number(-150, 150) + " " + number(-150, 150);
            xml += "<PathPointType Anchor=\"" + anchor + "\" LeftDirection=\"" + anchor + "\" RightDirection=\"" +
                   anchor + "\"/>\n";
        }
        xml += "</PathPointArray></GeometryPathType></PathGeometry></Properties>\n"
               "<FrameFittingOption AutoFit=\"false\" LeftCrop=\"" +
               number(0, 5) + "\" TopCrop=\"" + number(0, 5) + "\"/>\n<Image Self=\"" + id +
               "i\" Space=\"$ID/#Links_CMYK\" ActualPpi=\"300 300\" EffectivePpi=\"" +
               QByteArray::number(m_random.bounded(150, 600)) +
               " 300\" ImageRenderingIntent=\"UseColorSettings\" "
               "ItemTransform=\"" +
               number(0.1, 1) + " 0 0 " + number(0.1, 1) + " " + number(-50, 0) + " " + number(-50, 0) +
               "\">\n<Properties><Profile type=\"string\">$ID/Embedded</Profile>"
               "<GraphicBounds Left=\"0\" Top=\"0\" Right=\"" +
               w + "\" Bottom=\"" + h +
               "\"/></Properties>\n"
               "<Link Self=\"" +
               id +
               "l\" AssetURL=\"$ID/\" AssetID=\"$ID/\" LinkResourceURI=\"file:/Volumes/Jobs/"
               "Catalogue/Links/" +
               linkName(spread, index) +
               "\" LinkResourceFormat=\"$ID/TIFF\" StoredState=\"Normal\" "
               "LinkResourceSize=\"0~" +
               QByteArray::number(m_random.bounded(100000, 9000000), 16) +
               "\"/>\n"
               "</Image>\n</Rectangle>\n";
        return xml;
    }

    QByteArray spread(int spread, const QByteArray& storyId, int links)
    {
        const QByteArray y = QByteArray::number(spread * 900);
        QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                         "<idPkg:Spread xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                         "DOMVersion=\"20.4\">\n<Spread Self=\"sp" +
                         QByteArray::number(spread) +
                         "\" PageCount=\"2\" "
                         "BindingLocation=\"1\" ItemTransform=\"1 0 0 1 0 " +
                         y +
                         "\">\n"
                         "<FlattenerPreference LineArtAndTextResolution=\"300\"/>\n";
        for (int page = 0; page < 2; ++page)
            xml += "<Page Self=\"pg" + QByteArray::number(spread * 2 + page) + "\" Name=\"" +
                   QByteArray::number(spread * 2 + page + 1) +
                   "\" AppliedMaster=\"um1\" GeometricBounds=\"0 0 "
                   "841.8897637795275 595.2755905511812\" ItemTransform=\"1 0 0 1 " +
                   QByteArray(page ? "0" : "-595.2755905511812") +
                   " -420.94488188976375\">\n"
                   "<MarginPreference ColumnCount=\"2\" ColumnGutter=\"12\" Top=\"36\" Bottom=\"36\" Left=\"36\" "
                   "Right=\"36\"/>\n</Page>\n";
        xml += "<TextFrame Self=\"tf" + QByteArray::number(spread) + "\" ParentStory=\"" + storyId +
               "\" ItemTransform=\"1 0 0 1 " + number(-500, 0) + " " + number(-300, 300) +
               "\"><Properties>"
               "<PathGeometry><GeometryPathType PathOpen=\"false\"><PathPointArray>"
               "<PathPointType Anchor=\"0 0\"/><PathPointType Anchor=\"0 500\"/><PathPointType Anchor=\"400 500\"/>"
               "<PathPointType Anchor=\"400 0\"/></PathPointArray></GeometryPathType></PathGeometry></Properties>"
               "</TextFrame>\n";
        for (int i = 0; i < links; ++i)
            xml += rectangle(spread, i);
        return xml + "</Spread>\n</idPkg:Spread>\n";
    }

    QByteArray story(int index, const QByteArray& storyId, int paragraphs)
    {
        QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                         "<idPkg:Story xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                         "DOMVersion=\"20.4\">\n<Story Self=\"" +
                         storyId + "\" AppliedTOCStyle=\"n\">\n";
        for (int p = 0; p < paragraphs; ++p) {
            const QByteArray style = m_shape.paragraphStyles > 0
                                         ? "P" + QByteArray::number((index * 7 + p) % m_shape.paragraphStyles)
                                         : QByteArray("Body");
            xml += "<ParagraphStyleRange AppliedParagraphStyle=\"ParagraphStyle/" + style + "\">\n";
            if (m_shape.characterStyles > 0)
                xml += "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/C" +
                       QByteArray::number((index + p) % m_shape.characterStyles) +
                       "\"><Content>emphasis </Content></CharacterStyleRange>\n";
            xml += "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/$ID/[No character style]\" "
                   "PointSize=\"" +
                   QByteArray::number(m_random.bounded(8, 14)) + "\">\n<Content>" + words(m_random.bounded(20, 60)) +
                   "</Content>\n<Br/>\n</CharacterStyleRange>\n"
                   "</ParagraphStyleRange>\n";
        }
        return xml + "</Story>\n</idPkg:Story>\n";
    }

private:
    const IdmlShape& m_shape;
    QRandomGenerator m_random;
    QStringList m_linkNames;
};

QByteArray part(const char* root, const QByteArray& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<idPkg:" + QByteArray(root) +
           " xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"20.4\">\n" + body +
           "</idPkg:" + root + ">\n";
}

// Paragraph styles based on one another in a tree, each with a font and a colour; character
// styles that change the face, the family and the colour.
QByteArray styles(const IdmlShape& shape)
{
    QByteArray xml = "<RootCharacterStyleGroup Self=\"rc\">\n<CharacterStyle Self=\"CharacterStyle/$ID/[No "
                     "character style]\" Name=\"$ID/[No character style]\"/>\n";
    for (int i = 0; i < shape.characterStyles; ++i)
        xml += "<CharacterStyle Self=\"CharacterStyle/C" + QByteArray::number(i) + "\" Name=\"C" +
               QByteArray::number(i) + "\" FontStyle=\"" + kFaces[i % 6] + "\"" +
               (shape.swatches > 0 ? " FillColor=\"Color/S" + QByteArray::number(i % shape.swatches) + "\""
                                   : QByteArray()) +
               "><Properties><AppliedFont type=\"string\">" + kFamilies[i % 5] +
               "</AppliedFont></Properties></CharacterStyle>\n";
    xml += "</RootCharacterStyleGroup>\n<RootParagraphStyleGroup Self=\"rp\">\n"
           "<ParagraphStyle Self=\"ParagraphStyle/$ID/[No paragraph style]\" Name=\"$ID/[No paragraph style]\" "
           "FontStyle=\"Regular\" PointSize=\"12\" AutoLeading=\"120\"><Properties><Leading "
           "type=\"enumeration\">Auto</Leading><AppliedFont type=\"string\">Minion Pro</AppliedFont></Properties>"
           "</ParagraphStyle>\n";
    for (int i = 0; i < shape.paragraphStyles; ++i)
        xml += "<ParagraphStyle Self=\"ParagraphStyle/P" + QByteArray::number(i) + "\" Name=\"P" +
               QByteArray::number(i) + "\" PointSize=\"" + QByteArray::number(8 + i % 12) + "\"" +
               (shape.swatches > 0 ? " FillColor=\"Color/S" + QByteArray::number((i * 3) % shape.swatches) + "\""
                                   : QByteArray()) +
               "><Properties><BasedOn type=\"" +
               (i > 0 ? "object\">ParagraphStyle/P" + QByteArray::number(i / 2)
                      : QByteArray("string\">$ID/[No paragraph style]")) +
               "</BasedOn><AppliedFont type=\"string\">" + kFamilies[i % 5] +
               "</AppliedFont></Properties></ParagraphStyle>\n";
    return part("Styles", xml + "</RootParagraphStyleGroup>\n");
}

// Every face of the families the styles use, as InDesign lists them, after the extra fonts.
QByteArray fonts(const IdmlShape& shape)
{
    QByteArray xml;
    for (int i = 0; i < shape.extraFonts; ++i) {
        const QByteArray family = "Family " + QByteArray::number(i);
        xml += "<FontFamily Self=\"fx" + QByteArray::number(i) + "\" Name=\"" + family + "\">\n<Font Self=\"fx" +
               QByteArray::number(i) + "r\" FontFamily=\"" + family + "\" Name=\"" + family +
               " Regular\" PostScriptName=\"Family" + QByteArray::number(i) +
               "-Regular\" Status=\"Installed\" FontStyleName=\"Regular\" FontType=\"OpenTypeCFF\" "
               "TypekitID=\"$ID/\"/>\n</FontFamily>\n";
    }
    for (const char* family : kFamilies) {
        xml += QByteArray("<FontFamily Self=\"ff") + family + "\" Name=\"" + family + "\">\n";
        for (const char* face : kFaces)
            xml += QByteArray("<Font Self=\"f") + family + face + "\" FontFamily=\"" + family + "\" Name=\"" + family +
                   ' ' + face + "\" PostScriptName=\"" + QByteArray(family).replace(' ', "") + '-' +
                   QByteArray(face).replace(' ', "") + "\" Status=\"Installed\" FontStyleName=\"" + face +
                   "\" FontType=\"OpenTypeCFF\" TypekitID=\"$ID/\"/>\n";
        xml += "</FontFamily>\n";
    }
    return part("Fonts", xml);
}

// InDesign's own swatches and process, spot and Lab colours, some of them never used.
QByteArray graphic(const IdmlShape& shape)
{
    QByteArray xml = "<Color Self=\"Color/Black\" Model=\"Process\" Space=\"CMYK\" ColorValue=\"0 0 0 100\" "
                     "ColorOverride=\"Specialblack\" Name=\"Black\" Visible=\"true\"/>\n"
                     "<Color Self=\"Color/Paper\" Model=\"Process\" Space=\"CMYK\" ColorValue=\"0 0 0 0\" "
                     "ColorOverride=\"Specialpaper\" Name=\"Paper\" Visible=\"true\"/>\n"
                     "<Color Self=\"Color/Registration\" Model=\"Registration\" Space=\"CMYK\" "
                     "ColorValue=\"100 100 100 100\" ColorOverride=\"Specialregistration\" Name=\"Registration\" "
                     "Visible=\"true\"/>\n<Swatch Self=\"Swatch/None\" Name=\"None\" Visible=\"true\"/>\n";
    for (int i = 0; i < shape.swatches + 5; ++i)
        xml += "<Color Self=\"Color/S" + QByteArray::number(i) + "\" Model=\"" + (i % 7 ? "Process" : "Spot") +
               "\" Space=\"" + (i % 3 ? "CMYK\" ColorValue=\"10 20 30 40" : "LAB\" ColorValue=\"50 -10 20") +
               "\" ColorOverride=\"Normal\" Name=\"S" + QByteArray::number(i) + "\" Visible=\"true\"/>\n";
    return part("Graphic", xml);
}

QByteArray preferences()
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
           "<idPkg:Preferences xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
           "DOMVersion=\"20.4\">\n<DocumentPreference PageHeight=\"841.8897637795275\" PageWidth=\"595.2755905511812\" "
           "FacingPages=\"true\" DocumentBleedTopOffset=\"8.503937007874017\" DocumentBleedUniformSize=\"true\" "
           "SlugTopOffset=\"0\" DocumentSlugUniformSize=\"false\"/>\n<ViewPreference "
           "HorizontalMeasurementUnits=\"Millimeters\" VerticalMeasurementUnits=\"Millimeters\"/>\n"
           "</idPkg:Preferences>\n";
}

// An uncompressed 8 by 8 CMYK TIFF of 300 ppi, little-endian.
QByteArray smallTiff()
{
    constexpr int kSide = 8;
    struct Entry {
        quint16 tag;
        quint16 type;
        quint32 value;
    };
    const quint32 entries = 11;
    const quint32 ifdSize = 2 + entries * 12 + 4;
    const quint32 resolutionOffset = 8 + ifdSize;
    const quint32 pixelOffset = resolutionOffset + 16;
    const Entry table[entries] = {
        {256, 3, kSide},
        {257, 3, kSide},
        {258, 3, 8},
        {259, 3, 1},
        {262, 3, 5},
        {273, 4, pixelOffset},
        {277, 3, 4},
        {279, 4, kSide * kSide * 4},
        {282, 5, resolutionOffset},
        {283, 5, resolutionOffset + 8},
        {296, 3, 2},
    };
    QByteArray bytes("II*\0", 4);
    auto put = [&bytes](quint32 value, int size) {
        for (int i = 0; i < size; ++i)
            bytes += char((value >> (8 * i)) & 0xFF);
    };
    put(8, 4);
    put(entries, 2);
    for (const Entry& entry : table) {
        put(entry.tag, 2);
        put(entry.type, 2);
        put(1, 4);
        put(entry.value, 4);
    }
    put(0, 4);
    for (int i = 0; i < 2; ++i) {
        put(300, 4);
        put(1, 4);
    }
    for (int i = 0; i < kSide * kSide * 4; ++i)
        bytes += char(i * 37);
    return bytes;
}

} // namespace

GeneratedIdml writeGeneratedIdml(const QString& path, const IdmlShape& shape)
{
    auto writer = idml::IdmlArchiveWriter::create(path);
    if (!writer || !writer->addMimetype())
        return {};
    Writer xml(shape);
    GeneratedIdml result;
    auto add = [&](const QString& name, const QByteArray& bytes) {
        result.xmlBytes += bytes.size();
        ++result.entries;
        return writer->addFile(name, bytes).ok();
    };

    QStringList parts{QStringLiteral("Resources/Preferences.xml")};
    const bool styled =
        shape.paragraphStyles > 0 || shape.characterStyles > 0 || shape.swatches > 0 || shape.extraFonts > 0;
    if (styled)
        parts << QStringLiteral("Resources/Styles.xml") << QStringLiteral("Resources/Fonts.xml")
              << QStringLiteral("Resources/Graphic.xml");
    for (int m = 0; m < shape.masterSpreads; ++m)
        parts << QStringLiteral("MasterSpreads/MasterSpread_um%1.xml").arg(m + 1);
    for (int s = 0; s < shape.spreads; ++s)
        parts << QStringLiteral("Spreads/Spread_sp%1.xml").arg(s) << QStringLiteral("Stories/Story_st%1.xml").arg(s);
    QByteArray designmap = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                           "<Document xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                           "DOMVersion=\"20.4\" Self=\"d\">\n";
    for (const QString& part : parts) {
        const char* kind = part.startsWith(QLatin1String("Spreads/"))         ? "Spread"
                           : part.startsWith(QLatin1String("Stories/"))       ? "Story"
                           : part.startsWith(QLatin1String("MasterSpreads/")) ? "MasterSpread"
                           : part.endsWith(QLatin1String("Styles.xml"))       ? "Styles"
                           : part.endsWith(QLatin1String("Fonts.xml"))        ? "Fonts"
                           : part.endsWith(QLatin1String("Graphic.xml"))      ? "Graphic"
                                                                              : "Preferences";
        designmap += "<idPkg:" + QByteArray(kind) + " src=\"" + part.toUtf8() + "\"/>\n";
    }
    designmap += "</Document>\n";

    bool ok = add(QStringLiteral("designmap.xml"), designmap) && add(parts.at(0), preferences());
    if (ok && styled)
        ok = add(QStringLiteral("Resources/Styles.xml"), styles(shape)) &&
             add(QStringLiteral("Resources/Fonts.xml"), fonts(shape)) &&
             add(QStringLiteral("Resources/Graphic.xml"), graphic(shape));
    const int firstMaster = styled ? 4 : 1;
    for (int m = 0; ok && m < shape.masterSpreads; ++m)
        ok = add(parts.at(firstMaster + m), xml.spread(-1 - m, "ums" + QByteArray::number(m), 1));
    for (int s = 0; ok && s < shape.spreads; ++s) {
        const QByteArray storyId = "st" + QByteArray::number(s);
        ok = add(QStringLiteral("Spreads/Spread_sp%1.xml").arg(s), xml.spread(s, storyId, shape.linksPerSpread)) &&
             add(QStringLiteral("Stories/Story_st%1.xml").arg(s), xml.story(s, storyId, shape.paragraphsPerStory));
    }
    if (!ok || !writer->close())
        return {};
    result.archiveBytes = QFileInfo(path).size();
    if (!shape.linkedFilesFolder.isEmpty()) {
        QDir().mkpath(shape.linkedFilesFolder);
        QByteArray tiff = smallTiff();
        if (shape.linkedFileBytes > tiff.size())
            tiff.append(QByteArray(shape.linkedFileBytes - tiff.size(), '\x5a'));
        for (const QString& name : xml.linkNames()) {
            QFile file(QDir(shape.linkedFilesFolder).filePath(name));
            if (!file.open(QIODevice::WriteOnly) || file.write(tiff) != tiff.size())
                return {};
            ++result.linkedFiles;
        }
    }
    return result;
}

namespace {

IdmlShape styledShape(int spreads, int linksPerSpread, int paragraphs, const QString& linksFolder)
{
    IdmlShape shape;
    shape.spreads = spreads;
    shape.linksPerSpread = linksPerSpread;
    shape.paragraphsPerStory = paragraphs;
    shape.paragraphStyles = 40;
    shape.characterStyles = 15;
    shape.swatches = 60;
    shape.linkedFilesFolder = linksFolder;
    return shape;
}

} // namespace

PreflightDocuments writePreflightDocuments(const QString& folder)
{
    const QDir root(folder);
    PreflightDocuments documents;
    documents.large = root.filePath(QStringLiteral("large/Catalogue.idml"));
    QDir().mkpath(QFileInfo(documents.large).path());
    documents.largeFacts =
        writeGeneratedIdml(documents.large, styledShape(1000, 10, 90, root.filePath(QStringLiteral("large/Links"))));
    if (documents.largeFacts.entries == 0)
        return documents;
    QDir().mkpath(root.filePath(QStringLiteral("small")));
    for (int i = 0; i < 100; ++i) {
        const QString path = root.filePath(QStringLiteral("small/Leaflet %1.idml").arg(i));
        IdmlShape shape = styledShape(4, 4, 20, root.filePath(QStringLiteral("small/Links")));
        shape.seed = static_cast<unsigned>(i + 1);
        if (writeGeneratedIdml(path, shape).entries == 0)
            return {documents.large, {}, {}};
        documents.small << path;
    }
    return documents;
}

} // namespace quillon::bench
