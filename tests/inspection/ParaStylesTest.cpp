#include "inspection/ParaStylesFromIdml.h"
#include "inspection/ParaStylesReport.h"

#include "support/FontColorFragment.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;

namespace {

const QByteArray kStyles = R"(
<RootParagraphStyleGroup Self="rp">
  <ParagraphStyle Self="ParagraphStyle/$ID/[No paragraph style]" Name="$ID/[No paragraph style]" FontStyle="Regular" PointSize="12" AutoLeading="120">
    <Properties><Leading type="enumeration">Auto</Leading><AppliedFont type="string">Minion Pro</AppliedFont></Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/$ID/NormalParagraphStyle" Name="$ID/NormalParagraphStyle">
    <Properties><BasedOn type="string">$ID/[No paragraph style]</BasedOn></Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/Body" Name="Body" PointSize="9.5">
    <Properties><BasedOn type="object">ParagraphStyle/$ID/NormalParagraphStyle</BasedOn></Properties>
  </ParagraphStyle>
  <ParagraphStyleGroup Self="ParagraphStyleGroup/Heads" Name="Heads">
    <ParagraphStyle Self="ParagraphStyle/Heads%3aH1" Name="Heads:H1" FontStyle="Bold" PointSize="24">
      <Properties><BasedOn type="object">ParagraphStyle/Body</BasedOn><AppliedFont type="string">Myriad Pro</AppliedFont><Leading type="unit">28.8</Leading></Properties>
    </ParagraphStyle>
  </ParagraphStyleGroup>
  <ParagraphStyle Self="ParagraphStyle/Caption" Name="Caption">
    <Properties><BasedOn type="object">ParagraphStyle/Body</BasedOn></Properties>
  </ParagraphStyle>
</RootParagraphStyleGroup>)";

QString range(const char* style, const QByteArray& inside)
{
    return QStringLiteral("<ParagraphStyleRange AppliedParagraphStyle=\"ParagraphStyle/%1\"><CharacterStyleRange>%2"
                          "</CharacterStyleRange></ParagraphStyleRange>")
        .arg(QLatin1String(style), QString::fromUtf8(inside));
}

QHash<QString, int> counts(const QList<ParaStyleUse>& uses)
{
    QHash<QString, int> out;
    for (const ParaStyleUse& use : uses)
        out.insert(use.name, use.paragraphs);
    return out;
}

} // namespace

TEST(ParaStyles, ParagraphsEndAtReturnsWhereverTheRangesSplit)
{
    test::FontColorFragment doc;
    doc.styles(kStyles)
        // Three paragraphs in one range; the last has no return of its own.
        .story(
            range("Body", "<Content>one</Content><Br /><Content>two</Content><Br /><Content>three</Content>").toUtf8())
        // One paragraph split over ranges inside XML elements, then an empty last paragraph.
        .story(R"(<XMLElement Self="x1" MarkupTag="XMLTag/p">
  <ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Heads%3aH1"><CharacterStyleRange><Content>A head </Content></CharacterStyleRange></ParagraphStyleRange>
  <XMLElement Self="x2" MarkupTag="XMLTag/b">
    <ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Heads%3aH1"><CharacterStyleRange><Content>in bold</Content></CharacterStyleRange></ParagraphStyleRange>
  </XMLElement>
  <ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Heads%3aH1"><CharacterStyleRange><Br /></CharacterStyleRange></ParagraphStyleRange>
</XMLElement>)")
        // A table: its cells' paragraphs count, the graphic cell's frame does not, and the paragraph
        // holding the table is one more; a footnote's paragraph counts; a note's text does not.
        .story(R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Body"><CharacterStyleRange>
  <Content>see</Content>
  <Footnote><ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Caption"><CharacterStyleRange><Content>note</Content></CharacterStyleRange></ParagraphStyleRange></Footnote>
  <Note><ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Caption"><CharacterStyleRange><Content>hidden</Content><Br /></CharacterStyleRange></ParagraphStyleRange></Note>
  <Br />
  <Table Self="t1">
    <Row Self="r0" /><Column Self="c0" />
    <Cell Self="c1"><ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Caption"><CharacterStyleRange><Content>a</Content><Br /><Content>b</Content></CharacterStyleRange></ParagraphStyleRange></Cell>
    <Cell Self="c2" CellType="GraphicTypeCell"><Rectangle Self="g1" /></Cell>
    <Cell Self="c3"><ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Caption"><CharacterStyleRange /></ParagraphStyleRange></Cell>
  </Table>
</CharacterStyleRange></ParagraphStyleRange>)")
        // A style the document lacks, and a change of style without a return between them.
        .story((range("Gone%3aOld", "<Content>x</Content>") + range("Body", "<Content>y</Content>")).toUtf8());
    const auto uses = paraStyleUsesFromIdml(*test::readPackage(doc.write()));
    ASSERT_TRUE(uses.ok()) << uses.error().text().toStdString();
    const QHash<QString, int> found = counts(uses->found);
    EXPECT_EQ(found.value(QStringLiteral("Body")), 3 + 2 + 1);
    EXPECT_EQ(found.value(QStringLiteral("Heads:H1")), 1);
    EXPECT_EQ(found.value(QStringLiteral("Caption")), 1 + 2);
    EXPECT_EQ(found.value(QStringLiteral("[Basic Paragraph]")), 0);
    EXPECT_EQ(found.value(QStringLiteral("Gone:Old")), 1);
    // The root style is listed only when a paragraph uses it.
    EXPECT_FALSE(found.contains(QStringLiteral("[No Paragraph Style]")));
}

TEST(ParaStyles, StylesAreDescribedThroughTheirBasedOnChain)
{
    test::FontColorFragment doc;
    doc.styles(kStyles).story(range("Body", "<Content>x</Content>").toUtf8());
    const auto uses = paraStyleUsesFromIdml(*test::readPackage(doc.write()));
    ASSERT_TRUE(uses.ok());
    ASSERT_EQ(uses->found.size(), 4);
    const ParaStyleUse& head = uses->found[2];
    EXPECT_EQ(head.basedOn, QStringLiteral("Body"));
    EXPECT_EQ(head.font, QStringLiteral("Myriad Pro Bold"));
    EXPECT_EQ(head.leading, QStringLiteral("28.8 pt"));
    const ParaStyleUse& caption = uses->found[3];
    EXPECT_EQ(caption.font, QStringLiteral("Minion Pro Regular"));
    EXPECT_EQ(caption.size, QStringLiteral("9.5 pt"));
    EXPECT_EQ(caption.leading, QStringLiteral("Auto (11.4 pt)"));

    EXPECT_EQ(leadingText(QStringLiteral("Auto"), {}, QStringLiteral("120")), QStringLiteral("Auto"));
    EXPECT_EQ(leadingText(QStringLiteral("auto"), QStringLiteral("10"), QStringLiteral("125")),
              QStringLiteral("Auto (12.5 pt)"));
    EXPECT_EQ(pointsText(QStringLiteral("13.2600001")), QStringLiteral("13.26 pt"));
}

TEST(ParaStyles, ReportListsUsedStylesWithCountsThenTheUnused)
{
    const QList<ParaStyleUse> uses{
        {QStringLiteral("[Basic Paragraph]"), QStringLiteral("[No Paragraph Style]"),
         QStringLiteral("Minion Pro Regular"), QStringLiteral("12 pt"), QStringLiteral("Auto (14.4 pt)"), 0},
        {QStringLiteral("Body"), QStringLiteral("[Basic Paragraph]"), QStringLiteral("Minion Pro Regular"),
         QStringLiteral("9.5 pt"), QStringLiteral("11 pt"), 12},
        {QStringLiteral("Gone"), {}, {}, {}, {}, 1},
    };
    EXPECT_EQ(paraStylesReportText(uses), QStringLiteral("Paragraph styles in use (2)\n"
                                                         "\n"
                                                         "Body: 12 paragraphs\n"
                                                         "  Based on: [Basic Paragraph]\n"
                                                         "  Font: Minion Pro Regular\n"
                                                         "  Size: 9.5 pt\n"
                                                         "  Leading: 11 pt\n"
                                                         "\n"
                                                         "Gone: 1 paragraph\n"
                                                         "\n"
                                                         "Paragraph styles no paragraph uses (1)\n"
                                                         "\n"
                                                         "[Basic Paragraph]\n"
                                                         "  Based on: [No Paragraph Style]\n"
                                                         "  Font: Minion Pro Regular\n"
                                                         "  Size: 12 pt\n"
                                                         "  Leading: Auto (14.4 pt)"));
    EXPECT_EQ(paraStylesReportText({}), QString());
}

TEST(ParaStyles, RealDocument)
{
    const auto uses =
        paraStyleUsesFromIdml(*test::readPackage(test::samplePath(QStringLiteral("idml/sample-with-table-more.idml"))));
    ASSERT_TRUE(uses.ok());
    const QHash<QString, int> found = counts(uses->found);
    // Body text, table cells (two of them graphic cells), a footnote and an endnote story.
    EXPECT_EQ(found.value(QStringLiteral("[Basic Paragraph]")), 28);
    EXPECT_EQ(found.value(QStringLiteral("[No Paragraph Style]")), 1);
}
