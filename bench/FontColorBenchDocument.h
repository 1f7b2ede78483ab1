#pragma once

// Writes a large unpacked IDML document for the font, colour and paragraph-style benchmarks:
// `spreads` spreads of two pages, each page with a few coloured frames and a threaded story of
// styled paragraphs, over a style sheet, font list and swatch list of realistic size.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

namespace quillon::bench {

inline void writeBenchFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(path.section(u'/', 0, -2));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

inline QByteArray benchPart(const QByteArray& root, const QByteArray& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<idPkg:" + root +
           " xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"20.0\">\n" + body +
           "\n</idPkg:" + root + ">\n";
}

inline void writeFontColorBenchDocument(const QString& folder, int spreads)
{
    constexpr int kParagraphStyles = 40;
    constexpr int kCharacterStyles = 15;
    constexpr int kSwatches = 60;
    const char* families[] = {"Minion Pro", "Myriad Pro", "DejaVu Sans", "Arno Pro", "Source Serif Pro"};

    QByteArray styles =
        "<RootCharacterStyleGroup Self=\"rc\">\n"
        "<CharacterStyle Self=\"CharacterStyle/$ID/[No character style]\" Name=\"$ID/[No character style]\" />\n";
    for (int i = 0; i < kCharacterStyles; ++i)
        styles += "<CharacterStyle Self=\"CharacterStyle/C" + QByteArray::number(i) + "\" Name=\"C" +
                  QByteArray::number(i) + "\" FontStyle=\"" + (i % 2 ? "Bold" : "Italic") + "\" FillColor=\"Color/S" +
                  QByteArray::number(i) + "\"><Properties><AppliedFont type=\"string\">" + families[i % 5] +
                  "</AppliedFont></Properties></CharacterStyle>\n";
    styles += "</RootCharacterStyleGroup>\n<RootParagraphStyleGroup Self=\"rp\">\n"
              "<ParagraphStyle Self=\"ParagraphStyle/$ID/[No paragraph style]\" Name=\"$ID/[No paragraph style]\" "
              "FontStyle=\"Regular\" PointSize=\"12\" AutoLeading=\"120\" FillColor=\"Color/Black\"><Properties>"
              "<Leading type=\"enumeration\">Auto</Leading><AppliedFont type=\"string\">Minion Pro</AppliedFont>"
              "</Properties></ParagraphStyle>\n";
    for (int i = 0; i < kParagraphStyles; ++i)
        styles += "<ParagraphStyle Self=\"ParagraphStyle/P" + QByteArray::number(i) + "\" Name=\"P" +
                  QByteArray::number(i) + "\" PointSize=\"" + QByteArray::number(8 + i % 12) +
                  "\" FillColor=\"Color/S" + QByteArray::number(20 + i % 20) + "\"><Properties><BasedOn type=\"" +
                  (i ? "object\">ParagraphStyle/P" + QByteArray::number(i / 2)
                     : QByteArray("string\">$ID/[No paragraph style]")) +
                  "</BasedOn><AppliedFont type=\"string\">" + families[i % 5] +
                  "</AppliedFont></Properties></ParagraphStyle>\n";
    styles += "</RootParagraphStyleGroup>\n<RootObjectStyleGroup Self=\"ro\">\n";
    for (int i = 0; i < 5; ++i)
        styles += "<ObjectStyle Self=\"ObjectStyle/O" + QByteArray::number(i) + "\" Name=\"O" + QByteArray::number(i) +
                  "\" StrokeColor=\"Color/S" + QByteArray::number(40 + i) + "\" />\n";
    styles += "</RootObjectStyleGroup>";

    QByteArray fonts;
    for (const char* family : families) {
        fonts += QByteArray("<FontFamily Self=\"ff") + family + "\" Name=\"" + family + "\">\n";
        for (const char* style : {"Regular", "Italic", "Bold", "Bold Italic", "Light", "Semibold"})
            fonts += QByteArray("<Font Self=\"f") + family + style + "\" FontFamily=\"" + family + "\" Name=\"" +
                     family + ' ' + style + "\" PostScriptName=\"" + QByteArray(family).replace(' ', "") + '-' +
                     QByteArray(style).replace(' ', "") + "\" Status=\"Installed\" FontStyleName=\"" + style +
                     "\" FontType=\"OpenTypeCFF\" TypekitID=\"$ID/\" />\n";
        fonts += "</FontFamily>\n";
    }

    QByteArray graphic = "<Color Self=\"Color/Black\" Model=\"Process\" Space=\"CMYK\" ColorValue=\"0 0 0 100\" "
                         "ColorOverride=\"Specialblack\" Name=\"Black\" Visible=\"true\" />\n"
                         "<Color Self=\"Color/Paper\" Model=\"Process\" Space=\"CMYK\" ColorValue=\"0 0 0 0\" "
                         "ColorOverride=\"Specialpaper\" Name=\"Paper\" Visible=\"true\" />\n"
                         "<Color Self=\"Color/Registration\" Model=\"Registration\" Space=\"CMYK\" "
                         "ColorValue=\"100 100 100 100\" ColorOverride=\"Specialregistration\" Name=\"Registration\" "
                         "Visible=\"true\" />\n<Swatch Self=\"Swatch/None\" Name=\"None\" Visible=\"true\" />\n";
    for (int i = 0; i < kSwatches; ++i)
        graphic += "<Color Self=\"Color/S" + QByteArray::number(i) + "\" Model=\"" + (i % 7 ? "Process" : "Spot") +
                   "\" Space=\"" + (i % 3 ? "CMYK\" ColorValue=\"10 20 30 40" : "LAB\" ColorValue=\"50 -10 20") +
                   "\" ColorOverride=\"Normal\" Name=\"S" + QByteArray::number(i) + "\" Visible=\"true\" />\n";
    graphic += "<Tint Self=\"Tint/S1 50\" BaseColor=\"Color/S1\" TintValue=\"50\" Name=\"$ID/\" Visible=\"true\" />\n";

    QByteArray map =
        "<Document xmlns:idPkg=\"http://ns.adobe.com/AdobeInDesign/idml/1.0/packaging\" DOMVersion=\"20.0\">\n"
        "<idPkg:Graphic src=\"Resources/Graphic.xml\" />\n<idPkg:Fonts src=\"Resources/Fonts.xml\" />\n"
        "<idPkg:Styles src=\"Resources/Styles.xml\" />\n";
    for (int s = 0; s < spreads; ++s) {
        const QByteArray id = QByteArray::number(s);
        QByteArray spread = "<Spread Self=\"sp" + id + "\" PageCount=\"2\">\n";
        QByteArray story = "<Story Self=\"st" + id + "\">\n";
        for (int page = 0; page < 2; ++page) {
            spread += "<Page Self=\"pg" + id + '_' + QByteArray::number(page) + "\" />\n";
            for (int frame = 0; frame < 3; ++frame)
                spread += "<Rectangle Self=\"r" + id + '_' + QByteArray::number(page * 3 + frame) +
                          "\" FillColor=\"Color/S" + QByteArray::number((s + frame) % kSwatches) +
                          "\" StrokeColor=\"Swatch/None\" "
                          "AppliedObjectStyle=\"ObjectStyle/O" +
                          QByteArray::number(frame) +
                          "\"><Properties>"
                          "<PathGeometry><GeometryPathType PathOpen=\"false\"><PathPointArray>"
                          "<PathPointType Anchor=\"0 0\" LeftDirection=\"0 0\" RightDirection=\"0 0\" />"
                          "<PathPointType Anchor=\"0 100\" LeftDirection=\"0 100\" RightDirection=\"0 100\" />"
                          "</PathPointArray></GeometryPathType></PathGeometry></Properties></Rectangle>\n";
            spread += "<TextFrame Self=\"tf" + id + '_' + QByteArray::number(page) + "\" ParentStory=\"st" + id +
                      "\" FillColor=\"Swatch/None\" />\n";
        }
        for (int p = 0; p < 12; ++p) {
            const QByteArray style = QByteArray::number((s * 7 + p) % kParagraphStyles);
            story += "<ParagraphStyleRange AppliedParagraphStyle=\"ParagraphStyle/P" + style +
                     "\">\n"
                     "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/$ID/[No character style]\">"
                     "<Content>Paragraph " +
                     QByteArray::number(p) + " of spread " + id +
                     ", long enough to look like body text set in a narrow column.</Content></CharacterStyleRange>\n"
                     "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/C" +
                     QByteArray::number((s + p) % kCharacterStyles) +
                     "\"><Content>emphasis</Content></CharacterStyleRange>\n"
                     "<CharacterStyleRange AppliedCharacterStyle=\"CharacterStyle/$ID/[No character style]\">"
                     "<Content> and the rest of it.</Content><Br /></CharacterStyleRange>\n</ParagraphStyleRange>\n";
        }
        spread += "</Spread>";
        story += "</Story>";
        writeBenchFile(folder + "/Spreads/Spread_sp" + id + ".xml", benchPart("Spread", spread));
        writeBenchFile(folder + "/Stories/Story_st" + id + ".xml", benchPart("Story", story));
        map += "<idPkg:Spread src=\"Spreads/Spread_sp" + id + ".xml\" />\n<idPkg:Story src=\"Stories/Story_st" + id +
               ".xml\" />\n";
    }
    map += "</Document>\n";
    writeBenchFile(folder + "/designmap.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n" + map);
    writeBenchFile(folder + "/Resources/Styles.xml", benchPart("Styles", styles));
    writeBenchFile(folder + "/Resources/Fonts.xml", benchPart("Fonts", fonts));
    writeBenchFile(folder + "/Resources/Graphic.xml", benchPart("Graphic", graphic));
}

} // namespace quillon::bench
