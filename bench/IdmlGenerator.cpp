#include "IdmlGenerator.h"

#include "preflight/IdmlArchiveWriter.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QStringList>

namespace quillon::bench {

namespace {

const char* const kWords[] = {"prepress",  "bleed", "slug",     "spread",   "master",     "swatch",
                              "overprint", "plate", "cyan",     "magenta",  "yellow",     "black",
                              "trim",      "folio", "gutter",   "baseline", "kerning",    "tracking",
                              "leading",   "glyph", "ligature", "proof",    "imposition", "varnish"};

class Writer {
public:
    explicit Writer(unsigned seed) : m_random(seed) {}

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

    QByteArray rectangle(int spread, int index)
    {
        const QByteArray id = "u" + QByteArray::number(spread, 16) + "r" + QByteArray::number(index, 16);
        const QByteArray x = number(-600, 600);
        const QByteArray y = number(-400, 400);
        const QByteArray w = number(50, 300);
        const QByteArray h = number(50, 300);
        QByteArray xml = "<Rectangle Self=\"" + id +
                         "\" ContentType=\"GraphicType\" StrokeWeight=\"0\" "
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
               words(2).replace(' ', '_') + "_" + QByteArray::number(spread) + "_" + QByteArray::number(index) +
               ".tif\" LinkResourceFormat=\"$ID/TIFF\" StoredState=\"Normal\" "
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

    QByteArray story(const QByteArray& storyId, int paragraphs)
    {
        QByteArray xml = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
                         "<idPkg:Story xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" "
                         "DOMVersion=\"20.4\">\n<Story Self=\"" +
                         storyId + "\" AppliedTOCStyle=\"n\">\n";
        for (int p = 0; p < paragraphs; ++p)
            xml += "<ParagraphStyleRange AppliedParagraphStyle=\"ParagraphStyle/Body\">\n"
                   "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/$ID/[No character style]\" "
                   "PointSize=\"" +
                   QByteArray::number(m_random.bounded(8, 14)) + "\">\n<Content>" + words(m_random.bounded(20, 60)) +
                   "</Content>\n<Br/>\n</CharacterStyleRange>\n"
                   "</ParagraphStyleRange>\n";
        return xml + "</Story>\n</idPkg:Story>\n";
    }

private:
    QRandomGenerator m_random;
};

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

} // namespace

GeneratedIdml writeGeneratedIdml(const QString& path, const IdmlShape& shape)
{
    auto writer = preflight::IdmlArchiveWriter::create(path);
    if (!writer || !writer->addMimetype())
        return {};
    Writer xml(shape.seed);
    GeneratedIdml result;
    auto add = [&](const QString& name, const QByteArray& bytes) {
        result.xmlBytes += bytes.size();
        ++result.entries;
        return writer->addFile(name, bytes).ok();
    };

    QStringList parts{QStringLiteral("Resources/Preferences.xml")};
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
                                                                              : "Preferences";
        designmap += "<idPkg:" + QByteArray(kind) + " src=\"" + part.toUtf8() + "\"/>\n";
    }
    designmap += "</Document>\n";

    bool ok = add(QStringLiteral("designmap.xml"), designmap) && add(parts.at(0), preferences());
    for (int m = 0; ok && m < shape.masterSpreads; ++m)
        ok = add(parts.at(1 + m), xml.spread(-1 - m, "ums" + QByteArray::number(m), 1));
    for (int s = 0; ok && s < shape.spreads; ++s) {
        const QByteArray storyId = "st" + QByteArray::number(s);
        ok = add(QStringLiteral("Spreads/Spread_sp%1.xml").arg(s), xml.spread(s, storyId, shape.linksPerSpread)) &&
             add(QStringLiteral("Stories/Story_st%1.xml").arg(s), xml.story(storyId, shape.paragraphsPerStory));
    }
    if (!ok || !writer->close())
        return {};
    result.archiveBytes = QFileInfo(path).size();
    return result;
}

} // namespace quillon::bench
