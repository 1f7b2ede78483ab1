#include "inspection/ColorsFromIdml.h"

#include "inspection/ColorRecordKeys.h"

#include "support/FontColorFragment.h"
#include "support/IdmlFixtures.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::inspection;

namespace {

const QByteArray kGraphic = R"(
<Color Self="Color/Black" Model="Process" Space="CMYK" ColorValue="0 0 0 100" ColorOverride="Specialblack" Name="Black" Visible="true" />
<Color Self="Color/Registration 2" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" ColorOverride="Normal" Name="Registration 2" Visible="true" />
<Color Self="Color/Paper" Model="Process" Space="CMYK" ColorValue="0 0 0 0" ColorOverride="Specialpaper" Name="Paper" Visible="true" />
<Color Self="Color/Registration" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" ColorOverride="Specialregistration" Name="Passermarken" Visible="true" />
<Color Self="Color/Cyan" Model="Process" Space="CMYK" ColorValue="100 0 0 0" ColorOverride="Hiddenreserved" Name="Cyan" Visible="false" />
<Color Self="Color/u85" Model="Process" Space="CMYK" ColorValue="0 0 0 0" ColorOverride="Normal" Name="$ID/" Visible="false" />
<Color Self="Color/Frame Red" Model="Process" Space="RGB" ColorValue="255 0 0" ColorOverride="Normal" Name="Frame Red" Visible="true" />
<Color Self="Color/Style Green" Model="Process" Space="CMYK" ColorValue="80 0 100 0" ColorOverride="Normal" Name="Style Green" Visible="true" />
<Color Self="Color/Unapplied Blue" Model="Process" Space="CMYK" ColorValue="100 50 0 0" ColorOverride="Normal" Name="Unapplied Blue" Visible="true" />
<Color Self="Color/Para Teal" Model="Process" Space="HSB" ColorValue="180 50 100" ColorOverride="Normal" Name="Para Teal" Visible="true" />
<Color Self="Color/PANTONE 130 U" Model="Spot" Space="LAB" ColorValue="72.94117647058823 32 68" ColorOverride="Normal" Name="PANTONE 130 U" Visible="true" />
<Color Self="Color/Stop A" Model="Process" Space="CMYK" ColorValue="0 20 0 0" ColorOverride="Normal" Name="Stop A" Visible="true" />
<Color Self="Color/Ink B" Model="Spot" Space="LAB" ColorValue="50 -10 -39" ColorOverride="Normal" Name="Ink B" Visible="true" />
<Color Self="Color/Lonely" Model="Process" Space="CMYK" ColorValue="1 2 3 4" ColorOverride="Normal" Name="Lonely" Visible="true" />
<Tint Self="Tint/PANTONE 130 U 40" BaseColor="Color/PANTONE 130 U" TintValue="40" Name="$ID/" Visible="true" />
<Tint Self="Tint/Registration 50" BaseColor="Color/Registration" TintValue="50" Name="$ID/" Visible="true" />
<Gradient Self="Gradient/Sky" Type="Linear" Name="Sky" Visible="true">
  <GradientStop Self="g1" StopColor="Color/Stop A" Location="0" />
  <GradientStop Self="g2" StopColor="Color/Black" Location="100" />
</Gradient>
<Gradient Self="Gradient/u9" Type="Linear" Name="$ID/" Visible="false">
  <GradientStop Self="g3" StopColor="Color/Lonely" Location="0" />
</Gradient>
<MixedInk Self="MixedInk/Mix" Model="Mixedinkmodel" Space="MixedInk" InkList="Ink/PANTONE%20130%20U Ink/Ink%20B" InkPercentages="25 66" BaseColor="n" MixedInkSpotColorList="Color/PANTONE%20130%20U Color/Ink%20B" Name="Mix" Visible="true" />
<Swatch Self="Swatch/None" Name="None" Visible="true" />)";

const QByteArray kStyles = R"(
<RootCharacterStyleGroup Self="rc">
  <CharacterStyle Self="CharacterStyle/$ID/[No character style]" Name="$ID/[No character style]" />
  <CharacterStyle Self="CharacterStyle/Reg" Name="Reg" FillColor="Color/Registration" />
</RootCharacterStyleGroup>
<RootParagraphStyleGroup Self="rp">
  <ParagraphStyle Self="ParagraphStyle/$ID/[No paragraph style]" Name="$ID/[No paragraph style]" FillColor="Color/Black" StrokeColor="Swatch/None" />
  <ParagraphStyle Self="ParagraphStyle/Parent" Name="Parent" FillColor="Color/Para Teal">
    <Properties><BasedOn type="string">$ID/[No paragraph style]</BasedOn></Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/Child" Name="Child">
    <Properties><BasedOn type="string">Parent</BasedOn></Properties>
  </ParagraphStyle>
  <ParagraphStyle Self="ParagraphStyle/Lonely" Name="Lonely" FillColor="Color/Unapplied Blue" />
</RootParagraphStyleGroup>
<RootObjectStyleGroup Self="ro">
  <ObjectStyle Self="ObjectStyle/Green" Name="Green">
    <Properties><FillColor type="object">Color/Style Green</FillColor></Properties>
  </ObjectStyle>
  <ObjectStyle Self="ObjectStyle/Unused" Name="Unused" FillColor="Color/Lonely" />
</RootObjectStyleGroup>)";

const QByteArray kStory = R"(
<ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/Child">
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]"><Content>Color/Lonely is only text</Content><Br /></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/Reg"><Content>set by its character style</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]" StrokeColor="Tint/Registration 50"><Content>a tint of it as stroke</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]" FillColor="Color/Registration 2"><Content>a copy, not the swatch</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/$ID/[No character style]" FillColor="Tint/PANTONE 130 U 40"><Content>tinted</Content></CharacterStyleRange>
  <CharacterStyleRange AppliedCharacterStyle="CharacterStyle/Reg" />
</ParagraphStyleRange>
<XMLElement Self="x1" MarkupTag="XMLTag/p">
  <ParagraphStyleRange AppliedParagraphStyle="ParagraphStyle/$ID/[No paragraph style]" FillColor="Color/Registration">
    <CharacterStyleRange><Content>set on the paragraph</Content></CharacterStyleRange>
  </ParagraphStyleRange>
</XMLElement>)";

const QByteArray kColorGroups = R"(
<ColorGroup Self="cg" Name="[Root Color Group]" IsRootColorGroup="true">
  <ColorGroupSwatch Self="cg0" SwatchItemRef="Swatch/None" />
  <ColorGroupSwatch Self="cg1" SwatchItemRef="Color/Registration" />
  <ColorGroupSwatch Self="cg2" SwatchItemRef="Color/Paper" />
  <ColorGroupSwatch Self="cg3" SwatchItemRef="Color/Black" />
  <ColorGroupSwatch Self="cg4" SwatchItemRef="Color/Cyan" />
</ColorGroup>)";

QString buildFragment(test::FontColorFragment& doc)
{
    return doc.graphic(kGraphic)
        .styles(kStyles)
        .story(kStory)
        .spread(
            R"(<Rectangle Self="r1" FillColor="Color/Frame Red" StrokeColor="Swatch/None" AppliedObjectStyle="ObjectStyle/Green" />)")
        .designMapExtra(kColorGroups)
        .write();
}

QVariantMap recordNamed(const QVariantList& records, const QString& name)
{
    for (const QVariant& record : records)
        if (record.toMap().value(kColorNameKey).toString() == name)
            return record.toMap();
    return {};
}

QVariantList numbers(std::initializer_list<double> values)
{
    QVariantList list;
    for (double v : values)
        list.append(v);
    return list;
}

} // namespace

TEST(ColorsFromIdml, ListsThePanelsSwatchesInOrderWithTheirUse)
{
    test::FontColorFragment doc;
    const auto colors = colorInspectionFromIdml(*test::readPackage(buildFragment(doc)), QStringLiteral("0"));
    ASSERT_TRUE(colors.ok()) << colors.error().text().toStdString();

    QStringList order;
    QStringList used;
    for (const QVariant& value : colors->found.records) {
        order.append(value.toMap().value(kColorNameKey).toString());
        used.append(value.toMap().value(kColorUsedKey).toString());
    }
    // The colour groups' order first, then the file's; hidden and unnamed colours are not swatches.
    EXPECT_EQ(order, (QStringList{"None", "Registration", "Paper", "Black", "Registration 2", "Frame Red",
                                  "Style Green", "Unapplied Blue", "Para Teal", "PANTONE 130 U", "Stop A", "Ink B",
                                  "Lonely", "PANTONE 130 U 40%", "Registration 50%", "Sky", "Mix"}));
    const QString y = QStringLiteral("\u221A");
    const QString n = QStringLiteral("-");
    EXPECT_EQ(used, (QStringList{y, y, y, y, y, y, y, n, y, y, y, y, n, y, y, n, n}));
    EXPECT_EQ(colors->found.namesOfUnusedColors, (QStringList{"Unapplied Blue", "Lonely", "Sky", "Mix"}));
    EXPECT_EQ(colors->found.registrationInTextCount, 0); // not asked to count
}

TEST(ColorsFromIdml, RecordsCarryModelSpaceAndValuesAsGiven)
{
    test::FontColorFragment doc;
    const auto colors = colorInspectionFromIdml(*test::readPackage(buildFragment(doc)), QStringLiteral("0"));
    ASSERT_TRUE(colors.ok());
    const QVariantMap registration = recordNamed(colors->found.records, QStringLiteral("Registration"));
    EXPECT_EQ(registration.value(kColorModelKey), QStringLiteral("registration"));
    EXPECT_EQ(registration.value(kColorValuesListKey).toList(), numbers({100, 100, 100, 100}));
    EXPECT_TRUE(recordNamed(colors->found.records, QStringLiteral("Passermarken")).isEmpty());

    const QVariantMap spot = recordNamed(colors->found.records, QStringLiteral("PANTONE 130 U"));
    EXPECT_EQ(spot.value(kColorModelKey), QStringLiteral("spot"));
    EXPECT_EQ(spot.value(kColorValuesListKey).toList(), numbers({72.94117647058823, 32, 68}));
    const QVariantMap tint = recordNamed(colors->found.records, QStringLiteral("PANTONE 130 U 40%"));
    EXPECT_EQ(tint.value(kColorValuesListKey), spot.value(kColorValuesListKey));
    EXPECT_EQ(recordNamed(colors->found.records, QStringLiteral("Para Teal")).value(kColorSpaceKey),
              QStringLiteral("HSB"));

    const QVariantMap mix = recordNamed(colors->found.records, QStringLiteral("Mix"));
    EXPECT_EQ(mix.value(kColorModelKey), QStringLiteral("mixedinkmodel"));
    EXPECT_EQ(mix.value(kColorValuesListKey).toList(), numbers({25, 66}));
    const QVariantMap sky = recordNamed(colors->found.records, QStringLiteral("Sky"));
    EXPECT_EQ(sky.value(kColorModelKey), QStringLiteral("gradient"));
    EXPECT_EQ(sky.value(kColorSpaceKey), QStringLiteral("CMYK")); // both stops
    EXPECT_TRUE(sky.value(kColorValuesListKey).toList().isEmpty());
}

TEST(ColorsFromIdml, CountsTextSetInTheRegistrationSwatchWhenAsked)
{
    test::FontColorFragment doc;
    const QString folder = buildFragment(doc);
    const auto counted = colorInspectionFromIdml(*test::readPackage(folder), QStringLiteral("1"));
    ASSERT_TRUE(counted.ok());
    // By character style, a tint as stroke, set on the paragraph; not the copy named
    // "Registration 2", not the empty range.
    EXPECT_EQ(counted->found.registrationInTextCount, 3);
    EXPECT_EQ(colorInspectionFromIdml(*test::readPackage(folder), QStringLiteral("yes"))->found.registrationInTextCount,
              0);
}

TEST(ColorsFromIdml, MixedInksUseTheirSpotInksHoweverListed)
{
    test::FontColorFragment doc;
    doc.graphic(R"(
<Color Self="Color/u1" Model="Spot" Space="LAB" ColorValue="50 10 10" Name="Ink A" Visible="true" />
<Color Self="Color/u2" Model="Spot" Space="LAB" ColorValue="50 10 10" Name="Ink B" Visible="true" />
<Color Self="Color/u3" Model="Spot" Space="LAB" ColorValue="50 10 10" Name="Ink C" Visible="true" />
<MixedInk Self="MixedInk/One" Model="Mixedinkmodel" Space="MixedInk" InkList="Ink/Ink%20A Ink/$ID/Process%20Cyan" InkPercentages="25 66" Name="One" Visible="true" />
<MixedInkGroup Self="MixedInkGroup/Two" Model="Mixedinkmodel" Space="MixedInk" InkList="Ink/Ink%20B" Name="Two" Visible="true" />)");
    const auto colors = colorInspectionFromIdml(*test::readPackage(doc.write()), QStringLiteral("0"));
    ASSERT_TRUE(colors.ok());
    EXPECT_EQ(colors->found.namesOfUnusedColors, (QStringList{"Ink C", "One", "Two"}));
}

TEST(ColorsFromIdml, RegistrationIsCountedInEveryStory)
{
    test::FontColorFragment doc;
    doc.graphic(
        R"(<Color Self="Color/Registration" Model="Registration" Space="CMYK" ColorValue="100 100 100 100" ColorOverride="Specialregistration" Name="Registration" />)");
    for (int i = 0; i < 20; ++i)
        doc.story(
            R"(<ParagraphStyleRange><CharacterStyleRange FillColor="Color/Registration"><Content>x</Content></CharacterStyleRange></ParagraphStyleRange>)");
    const auto colors = colorInspectionFromIdml(*test::readPackage(doc.write()), QStringLiteral("1"));
    ASSERT_TRUE(colors.ok());
    EXPECT_EQ(colors->found.registrationInTextCount, 20);
}

TEST(ColorsFromIdml, RealDocuments)
{
    struct Case {
        const char* sample;
        const char* swatch;
        const char* model;
        const char* space;
        const char* used;
    };
    const Case cases[] = {
        // A copy of the Registration swatch, unused: it is an ordinary swatch.
        {"idml/interview.idml", "Registration 2", "registration", "CMYK", "-"},
        {"idml/interview.idml", "Registration", "registration", "CMYK", "\u221A"},
        {"idml/interview.idml", "Bleu", "spot", "RGB", "-"},
        // Spot colours defined in Lab, one of them in a mixed ink.
        {"idml/manual_template_test2.idml", "PANTONE 292 U", "spot", "LAB", "\u221A"},
        {"idml/manual_template_test2.idml", "tab_01", "mixedinkmodel", "MixedInk", "\u221A"},
        {"idml/manual_template_example_mixed_ink.idml", "example_stop", "mixedinkmodel", "MixedInk", "-"},
        {"idml/tripple.idml", "Burgunder", "process", "CMYK", "-"},
        {"idml/freshers.idml", "Arts", "process", "CMYK", "\u221A"},
    };
    QString readSample;
    ColorInspection colors;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.swatch);
        if (readSample != QLatin1String(c.sample)) {
            readSample = QLatin1String(c.sample);
            auto read = colorInspectionFromIdml(*test::readPackage(test::samplePath(readSample)), QStringLiteral("1"));
            ASSERT_TRUE(read.ok());
            colors = read->found;
        }
        const QVariantMap record = recordNamed(colors.records, QString::fromUtf8(c.swatch));
        ASSERT_FALSE(record.isEmpty());
        EXPECT_EQ(record.value(kColorModelKey).toString(), QLatin1String(c.model));
        EXPECT_EQ(record.value(kColorSpaceKey).toString(), QLatin1String(c.space));
        EXPECT_EQ(record.value(kColorUsedKey).toString(), QString::fromUtf8(c.used));
        EXPECT_EQ(colors.namesOfUnusedColors.contains(QString::fromUtf8(c.swatch)), QLatin1String(c.used) == "-");
    }
    const QVariantMap arts = recordNamed(colors.records, QStringLiteral("Arts"));
    EXPECT_EQ(arts.value(kColorValuesListKey).toList(), numbers({0, 50, 100, 0}));
}
