#include "inspection/FontsFromIdml.h"

#include "inspection/FontFiles.h"
#include "inspection/FontRecordKeys.h"

#include "support/FontColorFragment.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;

namespace {

const QByteArray kStyles = R"(
<RootCharacterStyleGroup Self="rc">
  <CharacterStyle Self="CharacterStyle/$ID/[No character style]" Name="$ID/[No character style]" />
  <CharacterStyle Self="CharacterStyle/Emph" Name="Emph" FontStyle="Italic">
    <Properties><BasedOn type="string">$ID/[No character style]</BasedOn></Properties>
  </CharacterStyle>
  <CharacterStyle Self="CharacterStyle/Drop" Name="Drop" FontStyle="Bold">
    <Properties><AppliedFont type="string">Drop Family</AppliedFont></Properties>
  </CharacterStyle>
  <CharacterStyle Self="CharacterStyle/Unapplied" Name="Unapplied">
    <Properties><AppliedFont type="string">Never Used</AppliedFont></Properties>
  </CharacterStyle>
</RootCharacterStyleGroup>
<RootParagraphStyleGroup Self="rp">
  <ParagraphStyle Self="ParagraphStyle/$ID/[No paragraph style]" Name="$ID/[No paragraph style]" FontStyle="Regular" PointSize="12" AutoLeading="120">
    <Properties><Leading type="enumeration">Auto</Leading><AppliedFont type="string">Default Family</AppliedFont></Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/$ID/NormalParagraphStyle" Name="$ID/NormalParagraphStyle">
    <Properties><BasedOn type="string">$ID/[No paragraph style]</BasedOn></Properties>
  </ParagraphStyle>
  <ParagraphStyleGroup Self="ParagraphStyleGroup/Heads" Name="Heads">
    <ParagraphStyle Self="ParagraphStyle/Heads%3aH1" Name="Heads:H1" FontStyle="Bold" PointSize="24">
      <Properties>
        <BasedOn type="object">ParagraphStyle/$ID/NormalParagraphStyle</BasedOn>
        <AppliedFont type="string">Head Family</AppliedFont>
        <Leading type="unit">28</Leading>
        <AllNestedStyles type="list"><ListItem type="record"><AppliedCharacterStyle type="object">CharacterStyle/Drop</AppliedCharacterStyle></ListItem></AllNestedStyles>
      </Properties>
    </ParagraphStyle>
  </ParagraphStyleGroup>
  <ParagraphStyle Self="ParagraphStyle/Bullets" Name="Bullets" BulletsAndNumberingListType="BulletList">
    <Properties>
      <BasedOn type="object">ParagraphStyle/$ID/NormalParagraphStyle</BasedOn>
      <BulletsFont type="string">Bullet Family</BulletsFont>
    </Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/Unused" Name="Unused">
    <Properties><AppliedFont type="string">Never Used</AppliedFont></Properties>
  </ParagraphStyle>
</RootParagraphStyleGroup>)";

QStringList names(const QVariantList& records)
{
    QStringList out;
    for (const QVariant& record : records)
        out.append(record.toMap().value(kFontNameKey).toString());
    return out;
}

QVariantMap recordNamed(const QVariantList& records, const QString& name)
{
    for (const QVariant& record : records)
        if (record.toMap().value(kFontNameKey).toString() == name)
            return record.toMap();
    return {};
}

QString installedPath(const QString& postScriptName)
{
    FontFileFinder finder({});
    const auto file = finder.find(postScriptName, {}, {});
    return file ? file->path : QString();
}

} // namespace

TEST(FontsFromIdml, TakesTheFontsOfTextRunsAndTheStylesTheyApply)
{
    test::FontColorFragment doc;
    doc.styles(kStyles).story(R"(
<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/$ID/NormalParagraphStyle">
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]"><Content>Body</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/Emph"><Content>italic</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]" FontStyle="Bold">
    <Properties><AppliedFont type="string">Local Family</AppliedFont></Properties>
    <XMLElement Self="x1" MarkupTag="XMLTag/b"><Content>local</Content></XMLElement><Br />
  </CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]">
    <Properties><AppliedFont type="string">Empty Range Family</AppliedFont></Properties>
  </CharacterStyleRange>
</ParagraphStyleRange>
<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Heads%3aH1">
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]"><Content>Title</Content><Br /></CharacterStyleRange>
</ParagraphStyleRange>
<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Bullets">
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]"><Content>Item</Content></CharacterStyleRange>
</ParagraphStyleRange>)");
    FontFileFinder finder(doc.documentPath());
    const auto fonts = fontRecordsFromIdml(*test::readPackage(doc.write()), finder);
    ASSERT_TRUE(fonts.ok()) << fonts.error().text().toStdString();
    // Sorted by name; the unapplied styles' font and the empty range's font are not used. The
    // bullet font takes the paragraph's style; the nested style's font comes from its paragraph style.
    EXPECT_EQ(names(fonts->found),
              (QStringList{"Bullet Family Regular", "Default Family Italic", "Default Family Regular",
                           "Drop Family Bold", "Head Family Bold", "Local Family Bold"}));
    const QVariantMap head = recordNamed(fonts->found, QStringLiteral("Head Family Bold"));
    EXPECT_EQ(head.value(kFontStatusKey), QStringLiteral("missing"));
    EXPECT_EQ(head.value(kFontPathKey), QStringLiteral("?"));
}

TEST(FontsFromIdml, StatusIsJudgedOnThisMachine)
{
    const QString sansPath = installedPath(QStringLiteral("DejaVuSans"));
    ASSERT_FALSE(sansPath.isEmpty()) << "fonts-dejavu-core is not installed";
    test::FontColorFragment doc;
    QDir().mkpath(doc.documentFontsFolder());
    const QString local = doc.documentFontsFolder() + QStringLiteral("/Serif.ttf");
    test::writeAll(local, test::readAll(installedPath(QStringLiteral("DejaVuSerif"))));

    auto run = [](const char* family, const char* style) {
        return QByteArray("<CharacterStyleRange FontStyle=\"") + style +
               "\"><Properties><AppliedFont type=\"string\">" + family + "</AppliedFont></Properties>" +
               "<Content>x</Content></CharacterStyleRange>";
    };
    doc.fonts(R"(
<FontFamily Self="f1" Name="DejaVu Sans">
  <Font Self="f1a" FontFamily="DejaVu Sans" Name="DejaVu Sans Book" PostScriptName="DejaVuSans" Status="Substituted" FontStyleName="Book" FontType="TrueType" TypekitID="$ID/" />
  <Font Self="f1b" FontFamily="DejaVu Sans" Name="DejaVu Sans Bold" PostScriptName="DejaVuSans-Bold" Status="Fauxed" FontStyleName="Bold" FontType="OpenTypeTT" TypekitID="$ID/" />
  <Font Self="f1c" FontFamily="DejaVu Sans" Name="DejaVu Sans Oblique" PostScriptName="DejaVuSans-Oblique" Status="Installed" FontStyleName="Oblique" FontType="TrueType" />
</FontFamily>
<FontFamily Self="f2" Name="DejaVu Serif">
  <Font Self="f2a" FontFamily="DejaVu Serif" Name="DejaVu Serif Book" PostScriptName="DejaVuSerif" Status="NotAvailable" FontStyleName="Book" FontType="Type1" />
</FontFamily>
<FontFamily Self="f3" Name="Minion Pro">
  <Font Self="f3a" FontFamily="Minion Pro" Name="Minion Pro Regular" PostScriptName="MinionPro-Regular" Status="Installed" FontStyleName="Regular" FontType="OpenTypeCFF" />
</FontFamily>
<FontFamily Self="f4" Name="Cloud Sans">
  <Font Self="f4a" FontFamily="Cloud Sans" Name="Cloud Sans Regular" PostScriptName="CloudSans-Regular" Status="Installed" FontStyleName="Regular" FontType="Bitmap" TypekitID="TkD-1-abc" />
</FontFamily>
<CompositeFont Self="CompositeFont/Mix" Name="Mix">
  <CompositeFontEntry Self="e1" Name="$ID/Kanji" FontStyle="Book"><Properties><AppliedFont type="string">DejaVu Serif</AppliedFont></Properties></CompositeFontEntry>
  <CompositeFontEntry Self="e2" Name="$ID/Roman" FontStyle="Regular"><Properties><AppliedFont type="string">Minion Pro</AppliedFont></Properties></CompositeFontEntry>
</CompositeFont>)")
        .story("<ParagraphStyleRange>" + run("DejaVu Sans", "Book") + run("DejaVu Sans", "Bold") +
               run("Mix", "Regular") + run("Cloud Sans", "Regular") + "</ParagraphStyleRange>");
    FontFileFinder finder(doc.documentPath());
    const auto fonts = fontRecordsFromIdml(*test::readPackage(doc.write()), finder);
    ASSERT_TRUE(fonts.ok()) << fonts.error().text().toStdString();
    ASSERT_EQ(names(fonts->found), (QStringList{"Cloud Sans Regular", "DejaVu Sans Bold", "DejaVu Sans Book",
                                                "DejaVu Serif Book", "Minion Pro Regular"}));

    // Found on the machine, but the document says it was substituted or fauxed.
    const QVariantMap book = recordNamed(fonts->found, QStringLiteral("DejaVu Sans Book"));
    EXPECT_EQ(book.value(kFontStatusKey), QStringLiteral("substituted"));
    EXPECT_EQ(book.value(kFontPathKey), sansPath);
    EXPECT_EQ(book.value(kFontEmbedKey), QStringLiteral("Yes"));
    const QVariantMap bold = recordNamed(fonts->found, QStringLiteral("DejaVu Sans Bold"));
    EXPECT_EQ(bold.value(kFontStatusKey), QStringLiteral("fauxed"));
    EXPECT_EQ(bold.value(kFontTypeKey), QStringLiteral("OpenType TT"));

    // Not available where it was made, but the Document fonts folder beside the document has it.
    const QVariantMap serif = recordNamed(fonts->found, QStringLiteral("DejaVu Serif Book"));
    EXPECT_EQ(serif.value(kFontStatusKey), QStringLiteral("installed"));
    EXPECT_EQ(serif.value(kFontPathKey), local);
    EXPECT_EQ(serif.value(kFontTypeKey), QStringLiteral("type 1"));

    const QVariantMap minion = recordNamed(fonts->found, QStringLiteral("Minion Pro Regular"));
    if (installedPath(QStringLiteral("MinionPro-Regular")).isEmpty()) {
        EXPECT_EQ(minion.value(kFontStatusKey), QStringLiteral("missing"));
        EXPECT_EQ(minion.value(kFontPathKey), QStringLiteral("?"));
    }
    EXPECT_EQ(minion.value(kFontTypeKey), QStringLiteral("OpenType CFF"));

    const QVariantMap cloud = recordNamed(fonts->found, QStringLiteral("Cloud Sans Regular"));
    EXPECT_EQ(cloud.value(kFontPathKey), QStringLiteral("Activated from Adobe Fonts"));
    EXPECT_EQ(cloud.value(kFontTypeKey), QStringLiteral("bitmap"));
}

TEST(FontsFromIdml, RealDocumentsListOnlyTheFacesTheirTextUses)
{
    const QString path = test::samplePath(QStringLiteral("idml/tripple.idml"));
    FontFileFinder finder(path);
    const auto fonts = fontRecordsFromIdml(*test::readPackage(path), finder);
    ASSERT_TRUE(fonts.ok());
    // Fonts.xml lists 250 faces of the families; the text uses eight.
    EXPECT_EQ(names(fonts->found),
              (QStringList{"Flama Semicondensed Semibold", "Galaxie Polaris Book", "Kepler Std Black Semicondensed",
                           "Polaris Condensed Bold", "Polaris Condensed Heavy", "Polaris Condensed Light",
                           "Polaris Condensed Medium", "Publico Text Roman"}));
    // Substituted where the document was made, and not on this machine either: missing here.
    const QVariantMap galaxie = recordNamed(fonts->found, QStringLiteral("Galaxie Polaris Book"));
    if (installedPath(QStringLiteral("GalaxiePolaris-Book")).isEmpty()) {
        EXPECT_EQ(galaxie.value(kFontStatusKey), QStringLiteral("missing"));
    }

    // Fonts activated from Adobe Fonts say so in their path.
    const QString parser = test::samplePath(QStringLiteral("idml/parser.idml"));
    FontFileFinder parserFinder(parser);
    const auto parserFonts = fontRecordsFromIdml(*test::readPackage(parser), parserFinder);
    ASSERT_TRUE(parserFonts.ok());
    ASSERT_EQ(parserFonts->found.size(), 3);
    for (const QVariant& record : parserFonts->found)
        EXPECT_TRUE(record.toMap().value(kFontPathKey).toString().contains(QStringLiteral("from Adobe Fonts")));
}

// Ranges are remembered per story: a story read after another is freed may reuse its memory.
TEST(FontsFromIdml, EveryStoryCountsHoweverMemoryIsReused)
{
    test::FontColorFragment doc;
    doc.styles(kStyles);
    QStringList expected{QStringLiteral("Default Family Regular")};
    for (int i = 1; i <= 20; ++i) {
        const QByteArray family = "Family " + QByteArray::number(i);
        doc.story(R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/$ID/NormalParagraphStyle">
<CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]">
<Properties><AppliedFont type="string">)" +
                  family +
                  "</AppliedFont></Properties><Content>x</Content></CharacterStyleRange></ParagraphStyleRange>");
        expected.append(QString::fromLatin1(family + " Regular"));
    }
    FontFileFinder finder(doc.documentPath());
    const auto fonts = fontRecordsFromIdml(*test::readPackage(doc.write()), finder);
    ASSERT_TRUE(fonts.ok());
    QStringList found = names(fonts->found);
    found.sort();
    expected.sort();
    EXPECT_EQ(found, expected);
}

TEST(FontsFromIdml, BrokenStyleChainsAndLocalParagraphSettingsKeepTheirFonts)
{
    // No Preferences.xml: the defaults come from the root paragraph style alone.
    const QByteArray styles = QByteArray(kStyles).replace("</RootParagraphStyleGroup>", R"(
  <ParagraphStyle Self="ParagraphStyle/Orphan" Name="Orphan" PointSize="9" />
  <ParagraphStyle Self="ParagraphStyle/Lost" Name="Lost"><Properties><BasedOn type="object">ParagraphStyle/Gone</BasedOn></Properties></ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/Listed" Name="Listed" BulletsAndNumberingListType="BulletList">
    <Properties><BasedOn type="object">ParagraphStyle/$ID/NormalParagraphStyle</BasedOn><BulletsFont type="string">Style Bullet</BulletsFont><BulletsFontStyle type="enumeration">Nothing</BulletsFontStyle></Properties>
  </ParagraphStyle>
</RootParagraphStyleGroup>)");
    const struct {
        const char* story;
        const char* font; // the font the story must add to those of the styles
    } cases[] = {
        {R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Orphan"><Content>a</Content></ParagraphStyleRange>)",
         "Default Family Regular"},
        {R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Lost"><Content>a</Content></ParagraphStyleRange>)",
         "Default Family Regular"},
        {R"(<CharacterStyleRange AppliedCharacterStyle="CharacterStyle/Emph"><Content>outside</Content></CharacterStyleRange>)",
         "Default Family Italic"},
        {R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/$ID/NormalParagraphStyle" BulletsAndNumberingListType="BulletList">
<Properties><BulletChar BulletCharacterType="UnicodeWithFont" BulletCharacterValue="9632" /><BulletsFont type="string">Local Bullet</BulletsFont><BulletsFontStyle type="string">Black</BulletsFontStyle></Properties>
<Content>a</Content></ParagraphStyleRange>)",
         "Local Bullet Black"},
        {R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/$ID/NormalParagraphStyle">
<Properties><AllNestedStyles type="list"><ListItem type="record"><AppliedCharacterStyle type="object">CharacterStyle/Drop</AppliedCharacterStyle></ListItem></AllNestedStyles></Properties>
<Content>a</Content></ParagraphStyleRange>)",
         "Drop Family Bold"},
        {R"(<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Listed" FontStyle="Light"><Content>a</Content></ParagraphStyleRange>)",
         "Style Bullet Light"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.story);
        test::FontColorFragment doc;
        doc.styles(styles).story(c.story);
        FontFileFinder finder(doc.documentPath());
        const auto fonts = fontRecordsFromIdml(*test::readPackage(doc.write()), finder);
        ASSERT_TRUE(fonts.ok());
        EXPECT_TRUE(names(fonts->found).contains(QLatin1String(c.font)))
            << names(fonts->found).join(", ").toStdString();
        for (const QString& name : names(fonts->found))
            EXPECT_FALSE(name.endsWith(QLatin1String("Nothing")));
    }
}
