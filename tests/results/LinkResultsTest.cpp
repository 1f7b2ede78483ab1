#include "results/LinkResults.h"

#include "app/AppPaths.h"
#include "app/PropertyList.h"
#include "app/Settings.h"
#include "results/LinkOpening.h"
#include "results/LinkRuleTable.h"
#include "results/Presets.h"
#include "results/ResultKeys.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

QVariantMap link(const QVariantMap& overrides = {})
{
    QVariantMap record{{QStringLiteral("id"), QStringLiteral("419")},
                       {QStringLiteral("name"), QStringLiteral("photo.tif")},
                       {QStringLiteral("path"), QStringLiteral("/jobs/photo.tif")},
                       {QStringLiteral("status"), QStringLiteral("OK")},
                       {QStringLiteral("kind"), QStringLiteral("TIFF LZW")},
                       {QStringLiteral("color"), QStringLiteral("CMYK")},
                       {QStringLiteral("profile"), QStringLiteral("Coated FOGRA39")},
                       {QStringLiteral("sizebytes"), QVariant::fromValue<quint64>(180000)},
                       {QStringLiteral("eres"), QStringLiteral("300")},
                       {QStringLiteral("horScale"), QStringLiteral("100")},
                       {QStringLiteral("vertScale"), QStringLiteral("100")},
                       {QStringLiteral("print"), QStringLiteral("√")},
                       {QStringLiteral("epsfontlist"), QString()},
                       {QStringLiteral("docPath"), QStringLiteral("/jobs/brochure.indd")}};
    for (auto it = overrides.cbegin(); it != overrides.cend(); ++it)
        record.insert(it.key(), it.value());
    return record;
}

QVariantMap rule(const QString& attribute, const QString& condition, const QVariant& value)
{
    return {{QStringLiteral("attribute"), attribute},
            {QStringLiteral("attributeKey"), linkAttributeKey(attribute)},
            {QStringLiteral("condition"), condition},
            {QStringLiteral("value"), value}};
}

QVariantMap linksPreset(const QVariantMap& links)
{
    return {{QStringLiteral("Links"), links}};
}

QVariantMap alertsOf(const QVariantMap& record, const QVariantMap& links)
{
    return QNLinksOutline::applyCurrPresetToArray({record}, linksPreset(links))[0].toMap().value(kAlertsKey).toMap();
}

QString alertText(const QVariantMap& record, const QVariantMap& links, const QString& key)
{
    return alertsOf(record, links).value(key).toString();
}

TEST(LinkRules, IsIsExactWhileContainsIgnoresCase)
{
    const QVariantMap rules{
        {QStringLiteral("conditions"),
         QVariantList{rule(QStringLiteral("Color Mode"), QStringLiteral("is"), QStringLiteral("cmyk")),
                      rule(QStringLiteral("Color Mode"), QStringLiteral("contains"), QStringLiteral("cmyk")),
                      rule(QStringLiteral("Color Mode"), QStringLiteral("is"), QStringLiteral("CMYK")),
                      rule(QStringLiteral("Color Mode"), QStringLiteral("doesn't contain"), QStringLiteral("RGB"))}}};
    EXPECT_EQ(alertsOf(link(), rules).value(QStringLiteral("color")).toStringList(),
              (QStringList{QStringLiteral("Color Mode contains \"cmyk\""), QStringLiteral("Color Mode is \"CMYK\""),
                           QStringLiteral("Color Mode doesn't contain \"RGB\"")}));
    // No diacritic folding on links, and the font engine's wildcard means nothing here.
    const QVariantMap other{
        {QStringLiteral("conditions"),
         QVariantList{rule(QStringLiteral("Name"), QStringLiteral("contains"), QStringLiteral("cafe")),
                      rule(QStringLiteral("Name"), QStringLiteral("is"), QStringLiteral("Café*"))}}};
    EXPECT_TRUE(alertsOf(link({{QStringLiteral("name"), QStringLiteral("Café.tif")}}), other).isEmpty());
}

TEST(LinkRules, ColorModeNeedsTwoCharactersAndNonTextIsNeverTested)
{
    const QVariantMap rules{
        {QStringLiteral("conditions"),
         QVariantList{
             rule(QStringLiteral("Color Mode"), QStringLiteral("doesn't contain"), QStringLiteral("CMYK")),
             rule(QStringLiteral("ICC Profile"), QStringLiteral("doesn't contain"), QStringLiteral("FOGRA"))}}};
    EXPECT_TRUE(
        alertsOf(link({{QStringLiteral("color"), QStringLiteral("G")}, {QStringLiteral("profile"), QString()}}), rules)
            .isEmpty());
    EXPECT_TRUE(
        alertsOf(link({{QStringLiteral("color"), 42}, {QStringLiteral("profile"), QVariant()}}), rules).isEmpty());
    EXPECT_EQ(alertsOf(link({{QStringLiteral("color"), QStringLiteral("   -")},
                             {QStringLiteral("profile"), QStringLiteral("sRGB")}}),
                       rules)
                  .keys(),
              (QStringList{QStringLiteral("color"), QStringLiteral("profile")}));
}

TEST(LinkRules, NumericStatusValuesReadAsStatusNames)
{
    const QVariantMap rules{
        {QStringLiteral("conditions"), QVariantList{rule(QStringLiteral("Status"), QStringLiteral("is"), 1),
                                                    rule(QStringLiteral("Status"), QStringLiteral("is"), 7),
                                                    rule(QStringLiteral("Kind"), QStringLiteral("is"), 1)}}};
    EXPECT_EQ(alertsOf(link({{QStringLiteral("status"), QStringLiteral("Modified")}}), rules)
                  .value(QStringLiteral("status"))
                  .toStringList(),
              QStringList{QStringLiteral("Status is \"Modified\"")});
}

QVariantMap sizeLimits(const QString& below, const QString& above, const QString& unit = QStringLiteral("MB"))
{
    return {{QStringLiteral("sizeBelowField"), below},
            {QStringLiteral("sizeBelowBytes"), QVariant::fromValue(sizeLimitBytes(below, unit))},
            {QStringLiteral("sizeBelowUnitsPopup"), unit},
            {QStringLiteral("sizeAboveField"), above},
            {QStringLiteral("sizeAboveBytes"), QVariant::fromValue(sizeLimitBytes(above, unit))},
            {QStringLiteral("sizeAboveUnitsPopup"), unit}};
}

TEST(LinkThresholds, SizesWrapAt32Bits)
{
    const QVariantMap threeGiB{{QStringLiteral("sizebytes"), QVariant::fromValue<quint64>(3221225472ULL)}};
    EXPECT_EQ(alertText(link(threeGiB), sizeLimits(QString(), QStringLiteral("100")), QStringLiteral("size")),
              QStringLiteral("Size > 100 MB"));
    EXPECT_TRUE(alertsOf(link(threeGiB), sizeLimits(QStringLiteral("100"), QString())).isEmpty());
    // Both limits crossed at once (a nonsense preset): the lower one is reported.
    EXPECT_EQ(alertText(link(), sizeLimits(QStringLiteral("1"), QStringLiteral("0.1")), QStringLiteral("size")),
              QStringLiteral("Size < 1 MB"));
    EXPECT_TRUE(alertsOf(link(), sizeLimits(QString(), QString())).isEmpty());
}

QVariantMap resolution(const QString& below, const QString& above, const QString& bwBelow = {},
                       const QString& bwAbove = {})
{
    return {{QStringLiteral("resBelowField"), below},
            {QStringLiteral("resAboveField"), above},
            {QStringLiteral("resBWBelowField"), bwBelow},
            {QStringLiteral("resBWAboveField"), bwAbove}};
}

TEST(LinkThresholds, ResolutionWithItsBlackAndWhiteSplit)
{
    const auto eres = [](const QString& value, const QString& color = QStringLiteral("CMYK")) {
        return link({{QStringLiteral("eres"), value}, {QStringLiteral("color"), color}});
    };
    const QVariantMap colourOnly = resolution(QStringLiteral("250"), QStringLiteral("450"));
    EXPECT_EQ(alertsOf(eres(QStringLiteral("200")), colourOnly).value(QStringLiteral("eres")).toString(),
              QStringLiteral("Effective res < 250 dpi"));
    EXPECT_EQ(alertsOf(eres(QStringLiteral("600")), colourOnly).value(QStringLiteral("eres")).toString(),
              QStringLiteral("Effective res > 450 dpi"));
    EXPECT_TRUE(alertsOf(eres(QStringLiteral("300")), colourOnly).isEmpty());
    EXPECT_TRUE(alertsOf(eres(QStringLiteral("-")), colourOnly).isEmpty());
    // Black and White with only colour limits is not checked at all.
    EXPECT_TRUE(alertsOf(eres(QStringLiteral("100"), QStringLiteral("Black and White")), colourOnly).isEmpty());

    const QVariantMap bwOnly = resolution(QString(), QString(), QStringLiteral("1200"), QString());
    EXPECT_EQ(alertText(eres(QStringLiteral("600"), QStringLiteral("Black and White")), bwOnly, QStringLiteral("eres")),
              QStringLiteral("Effective res < 1200 dpi"));
    // An upper limit alone: no lower bound.
    EXPECT_TRUE(alertsOf(eres(QStringLiteral("5")), resolution(QString(), QStringLiteral("400"))).isEmpty());
}

TEST(LinkThresholds, EpsFontsScaleAndPrinting)
{
    const QVariantMap checks{{QStringLiteral("fontsEpsBtn"), 1},
                             {QStringLiteral("fontsEpsMtrx"), 1},
                             {QStringLiteral("scaledNonPropBtn"), 1},
                             {QStringLiteral("nonPrintBtn"), 1}};
    const QVariantMap flagged = alertsOf(link({{QStringLiteral("epsfontlist"), QStringLiteral("Helvetica E\rTimes")},
                                               {QStringLiteral("horScale"), QStringLiteral("62.5")},
                                               {QStringLiteral("vertScale"), QStringLiteral("50")},
                                               {QStringLiteral("print"), QStringLiteral("-")}}),
                                         checks);
    EXPECT_EQ(flagged, (QVariantMap{{QStringLiteral("epsfonts"), QStringLiteral("Contains embedded fonts")},
                                    {QStringLiteral("scale"), QStringLiteral("Non-proportional scale")},
                                    {QStringLiteral("print"), QStringLiteral("Non-printing")}}));
    // Only the integer parts of the scales count; an unembedded list passes "embedded only".
    EXPECT_TRUE(alertsOf(link({{QStringLiteral("epsfontlist"), QStringLiteral("Helvetica\rTimes")},
                               {QStringLiteral("horScale"), QStringLiteral("62.5")},
                               {QStringLiteral("vertScale"), QStringLiteral("62.1")}}),
                         checks)
                    .isEmpty());
    QVariantMap anyFont = checks;
    anyFont.insert(QStringLiteral("fontsEpsMtrx"), 0);
    EXPECT_EQ(alertText(link({{QStringLiteral("epsfontlist"), QStringLiteral("Helvetica")}}), anyFont,
                        QStringLiteral("epsfonts")),
              QStringLiteral("Contains fonts"));
    EXPECT_TRUE(alertsOf(link({{QStringLiteral("epsfontlist"), QStringLiteral("-")}}), anyFont).isEmpty());
}

TEST(LinkRules, DisplayKeysAndThePlainCopyWithoutLinks)
{
    const QVariantList records{link(), link({{QStringLiteral("path"), QStringLiteral("?")},
                                             {QStringLiteral("status"), QStringLiteral("<unknown>")}})};
    EXPECT_EQ(QNLinksOutline::applyCurrPresetToArray(records, {}), records);
    const QVariantList judged = QNLinksOutline::applyCurrPresetToArray(records, linksPreset({}));
    EXPECT_EQ(judged[0].toMap().value(kIconKey).toString(), kImageFileIcon);
    EXPECT_EQ(judged[1].toMap().value(kIconKey).toString(), QStringLiteral("blank"));
    EXPECT_EQ(judged[1].toMap().value(kStatusImgKey).toString(), QStringLiteral("blank"));
}

TEST(LinkRules, ALongListIsJudgedInOrderAsEachRecordAlone)
{
    // Long lists are judged on several threads; the result must not show it.
    QVariantList records;
    for (int i = 0; i < 4500; ++i)
        records.append(
            link({{QStringLiteral("id"), QString::number(i)}, {QStringLiteral("eres"), QString::number(i % 600)}}));
    const QVariantMap preset = linksPreset(resolution(QStringLiteral("100"), QStringLiteral("500")));
    const QVariantList judged = QNLinksOutline::applyCurrPresetToArray(records, preset);
    ASSERT_EQ(judged.size(), records.size());
    for (qsizetype i = 0; i < records.size(); i += 499)
        EXPECT_EQ(judged[i], QNLinksOutline::applyCurrPresetToArray({records[i]}, preset)[0]) << i;
    // The caller's records are left as they were; only records handed over are reused.
    EXPECT_FALSE(records.first().toMap().contains(kAlertsKey));
    EXPECT_EQ(QNLinksOutline::applyCurrPresetToArray(std::move(records), preset), judged);
}

TEST(LinkResults, LoadingSortsTheTopLevelRows)
{
    const QVariantMap data{{QStringLiteral("/jobs/a.indd"),
                            QVariantMap{{QStringLiteral("children"),
                                         QVariantList{link({{QStringLiteral("name"), QStringLiteral("b.tif")}}),
                                                      link({{QStringLiteral("name"), QStringLiteral("a10.tif")}}),
                                                      link({{QStringLiteral("name"), QStringLiteral("a9.tif")}})}}}}};
    QNLinksOutline outline;
    outline.setItems(data, linksPreset({}),
                     {SortDescriptor{QStringLiteral("name"), true, SortDescriptor::Comparison::Natural}});
    QStringList names;
    for (const QVariant& r : outline.items())
        names.append(r.toMap().value(QStringLiteral("name")).toString());
    EXPECT_EQ(names, (QStringList{QStringLiteral("a9.tif"), QStringLiteral("a10.tif"), QStringLiteral("b.tif")}));
}

TEST(LinkResults, RowsToActOnLeaveOutMissingUnlessGoingToTheLink)
{
    const QVariantList top{link(), link({{QStringLiteral("status"), QStringLiteral("Missing")},
                                         {QStringLiteral("id"), QStringLiteral("7")}})};
    OutlineSelection selection;
    selection.rows = top;
    selection.selected = {0};
    selection.clickedRow = 1;
    EXPECT_TRUE(QNLinksOutline::itemsForAction(selection, top, QStringLiteral("revealInFinder")).isEmpty());
    const QVariantList goTo = QNLinksOutline::itemsForAction(selection, top, QStringLiteral("goToLink"));
    const auto target = QNLinksOutline::goToLinkTarget(goTo);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->linkId, QStringLiteral("7"));
    EXPECT_EQ(target->docName, QStringLiteral("brochure.indd"));
    EXPECT_FALSE(QNLinksOutline::goToLinkTarget({}));

    selection.selected = {0, 1};
    EXPECT_EQ(QNLinksOutline::itemsForAction(selection, top, QStringLiteral("open")).size(), 1);
    EXPECT_EQ(QNLinksOutline::itemsForAction(selection, top, QStringLiteral("goToLink")).size(), 2);
}

TEST(LinkResults, CellHelpers)
{
    EXPECT_TRUE(QNLinksOutline::emptyOrDash(QStringLiteral("   -")));
    EXPECT_FALSE(QNLinksOutline::emptyOrDash(3));
    const QVariantMap eps = link({{QStringLiteral("epscols"), QStringLiteral("2")},
                                  {QStringLiteral("epscollist"), QStringLiteral("PANTONE 185 C\rPANTONE 300 C")},
                                  {QStringLiteral("epsfonts"), QStringLiteral("-")}});
    EXPECT_EQ(QNLinksOutline::epsPullDownItems(eps, QStringLiteral("epscols")),
              (QStringList{QStringLiteral("PANTONE 185 C"), QStringLiteral("PANTONE 300 C")}));
    EXPECT_TRUE(QNLinksOutline::epsPullDownItems(eps, QStringLiteral("epsfonts")).isEmpty());
    EXPECT_TRUE(QNLinksOutline::shouldEditName(link(), QStringLiteral("name"), false));
    EXPECT_FALSE(QNLinksOutline::shouldEditName(link({{QStringLiteral("status"), QStringLiteral("Embedded")}}),
                                                QStringLiteral("name"), false));
    EXPECT_FALSE(QNLinksOutline::shouldEditName(link(), QStringLiteral("name"), true));
}

TEST(LinkResults, MetadataIsReadOnceAndOpeningIsRemembered)
{
    QVariantMap record = link();
    int reads = 0;
    const auto reader = [&reads](const QString& path) {
        ++reads;
        return QVariantList{QVariantMap{{QStringLiteral("file"), path}}};
    };
    QNLinksOutline::acquireMetadata(record, reader);
    QNLinksOutline::acquireMetadata(record, reader);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(record.value(QStringLiteral("metadata")).toList().size(), 1);

    QTemporaryDir dir;
    app::Settings settings(dir.filePath(QStringLiteral("s.ini")));
    EXPECT_EQ(defaultAppForType(settings, QStringLiteral("tif")), QString());
    setDefaultAppForType(settings, QStringLiteral("/Applications/Preview.app"), QStringLiteral("tif"));
    setDefaultAppForType(settings, QStringLiteral("/Applications/Acrobat.app"), QStringLiteral("pdf"));
    EXPECT_EQ(defaultAppForType(settings, QStringLiteral("tif")), QStringLiteral("/Applications/Preview.app"));
}

TEST(LinkResults, DataFilesAreReadFromTheTemporaryFolder)
{
    QTemporaryDir dir;
    app::setTemporaryFolderOverride(dir.path());
    EXPECT_TRUE(readDataFile(QStringLiteral("qnf_tmpLinkData.plist")).isEmpty());
    const QVariantMap data{
        {QStringLiteral("/jobs/a.indd"), QVariantMap{{QStringLiteral("children"), QVariantList{link()}}}}};
    ASSERT_TRUE(app::writePropertyListFile(data, dir.filePath(QStringLiteral("qnf_tmpLinkData.plist"))).ok());
    EXPECT_EQ(readDataFile(QStringLiteral("qnf_tmpLinkData.plist")).keys(), data.keys());
    app::setTemporaryFolderOverride({});
}

TEST(LinkRulesEditor, OperationsHaveTheEditorsEffects)
{
    QNLinkRulesTable table;
    table.startup();
    table.plusBtn();
    EXPECT_EQ(table.items()[0].toMap(), rule(QStringLiteral("Kind"), QStringLiteral("contains"), QString()));
    table.setObjectValue(QStringLiteral("value"), 0, QStringLiteral("JPEG"));
    table.setObjectValue(QStringLiteral("attribute"), 0, QStringLiteral("Color Mode"));
    QVariantMap r = table.items()[0].toMap();
    EXPECT_EQ(r.value(QStringLiteral("attributeKey")).toString(), QStringLiteral("color"));
    EXPECT_EQ(r.value(QStringLiteral("value")).toString(), QStringLiteral("JPEG")); // kept: only "Status" resets

    table.setObjectValue(QStringLiteral("attribute"), 0, QStringLiteral("Status"));
    r = table.items()[0].toMap();
    EXPECT_EQ(r.value(QStringLiteral("condition")).toString(), QStringLiteral("is"));
    EXPECT_EQ(r.value(QStringLiteral("value")).toString(), QStringLiteral("Missing"));
    table.setObjectValue(QStringLiteral("value"), 0, 2);
    EXPECT_EQ(table.items()[0].toMap().value(QStringLiteral("value")).toString(), QStringLiteral("Embedded"));
    EXPECT_EQ(QNLinkRulesTable::statusMenuIndex(QStringLiteral("Embedded")), 2);

    table.minusBtn(-1);
    EXPECT_EQ(table.items().size(), 1);
    table.minusBtn(0);
    EXPECT_TRUE(table.emptyTableNoteVisible());
}

} // namespace
} // namespace quillon::results
