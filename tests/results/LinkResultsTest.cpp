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

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

QVariantMap link(const QVariantMap& overrides = {})
{
    QVariantMap record{{u"id"_s, u"419"_s},
                       {u"name"_s, u"photo.tif"_s},
                       {u"path"_s, u"/jobs/photo.tif"_s},
                       {u"status"_s, u"OK"_s},
                       {u"kind"_s, u"TIFF LZW"_s},
                       {u"color"_s, u"CMYK"_s},
                       {u"profile"_s, u"Coated FOGRA39"_s},
                       {u"sizebytes"_s, QVariant::fromValue<quint64>(180000)},
                       {u"eres"_s, u"300"_s},
                       {u"horScale"_s, u"100"_s},
                       {u"vertScale"_s, u"100"_s},
                       {u"print"_s, u"√"_s},
                       {u"epsfontlist"_s, QString()},
                       {u"docPath"_s, u"/jobs/brochure.indd"_s}};
    for (auto it = overrides.cbegin(); it != overrides.cend(); ++it)
        record.insert(it.key(), it.value());
    return record;
}

QVariantMap rule(const QString& attribute, const QString& condition, const QVariant& value)
{
    return {{u"attribute"_s, attribute},
            {u"attributeKey"_s, linkAttributeKey(attribute)},
            {u"condition"_s, condition},
            {u"value"_s, value}};
}

QVariantMap linksPreset(const QVariantMap& links)
{
    return {{u"Links"_s, links}};
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
    const QVariantMap rules{{u"conditions"_s, QVariantList{rule(u"Color Mode"_s, u"is"_s, u"cmyk"_s),
                                                           rule(u"Color Mode"_s, u"contains"_s, u"cmyk"_s),
                                                           rule(u"Color Mode"_s, u"is"_s, u"CMYK"_s),
                                                           rule(u"Color Mode"_s, u"doesn't contain"_s, u"RGB"_s)}}};
    EXPECT_EQ(alertsOf(link(), rules).value(u"color"_s).toStringList(),
              (QStringList{u"Color Mode contains \"cmyk\""_s, u"Color Mode is \"CMYK\""_s,
                           u"Color Mode doesn't contain \"RGB\""_s}));
    // No diacritic folding on links, and the font engine's wildcard means nothing here.
    const QVariantMap other{{u"conditions"_s, QVariantList{rule(u"Name"_s, u"contains"_s, u"cafe"_s),
                                                           rule(u"Name"_s, u"is"_s, u"Café*"_s)}}};
    EXPECT_TRUE(alertsOf(link({{u"name"_s, u"Café.tif"_s}}), other).isEmpty());
}

TEST(LinkRules, ColorModeNeedsTwoCharactersAndNonTextIsNeverTested)
{
    const QVariantMap rules{{u"conditions"_s, QVariantList{rule(u"Color Mode"_s, u"doesn't contain"_s, u"CMYK"_s),
                                                           rule(u"ICC Profile"_s, u"doesn't contain"_s, u"FOGRA"_s)}}};
    EXPECT_TRUE(alertsOf(link({{u"color"_s, u"G"_s}, {u"profile"_s, QString()}}), rules).isEmpty());
    EXPECT_TRUE(alertsOf(link({{u"color"_s, 42}, {u"profile"_s, QVariant()}}), rules).isEmpty());
    EXPECT_EQ(alertsOf(link({{u"color"_s, u"   -"_s}, {u"profile"_s, u"sRGB"_s}}), rules).keys(),
              (QStringList{u"color"_s, u"profile"_s}));
}

TEST(LinkRules, NumericStatusValuesReadAsStatusNames)
{
    const QVariantMap rules{{u"conditions"_s, QVariantList{rule(u"Status"_s, u"is"_s, 1), rule(u"Status"_s, u"is"_s, 7),
                                                           rule(u"Kind"_s, u"is"_s, 1)}}};
    EXPECT_EQ(alertsOf(link({{u"status"_s, u"Modified"_s}}), rules).value(u"status"_s).toStringList(),
              QStringList{u"Status is \"Modified\""_s});
}

QVariantMap sizeLimits(const QString& below, const QString& above, const QString& unit = u"MB"_s)
{
    return {{u"sizeBelowField"_s, below},
            {u"sizeBelowBytes"_s, QVariant::fromValue(sizeLimitBytes(below, unit))},
            {u"sizeBelowUnitsPopup"_s, unit},
            {u"sizeAboveField"_s, above},
            {u"sizeAboveBytes"_s, QVariant::fromValue(sizeLimitBytes(above, unit))},
            {u"sizeAboveUnitsPopup"_s, unit}};
}

TEST(LinkThresholds, SizesWrapAt32Bits)
{
    const QVariantMap threeGiB{{u"sizebytes"_s, QVariant::fromValue<quint64>(3221225472ULL)}};
    EXPECT_EQ(alertText(link(threeGiB), sizeLimits(QString(), u"100"_s), u"size"_s), u"Size > 100 MB"_s);
    EXPECT_TRUE(alertsOf(link(threeGiB), sizeLimits(u"100"_s, QString())).isEmpty());
    // Both limits crossed at once (a nonsense preset): the lower one is reported.
    EXPECT_EQ(alertText(link(), sizeLimits(u"1"_s, u"0.1"_s), u"size"_s), u"Size < 1 MB"_s);
    EXPECT_TRUE(alertsOf(link(), sizeLimits(QString(), QString())).isEmpty());
}

QVariantMap resolution(const QString& below, const QString& above, const QString& bwBelow = {},
                       const QString& bwAbove = {})
{
    return {{u"resBelowField"_s, below},
            {u"resAboveField"_s, above},
            {u"resBWBelowField"_s, bwBelow},
            {u"resBWAboveField"_s, bwAbove}};
}

TEST(LinkThresholds, ResolutionWithItsBlackAndWhiteSplit)
{
    const auto eres = [](const QString& value, const QString& color = u"CMYK"_s) {
        return link({{u"eres"_s, value}, {u"color"_s, color}});
    };
    const QVariantMap colourOnly = resolution(u"250"_s, u"450"_s);
    EXPECT_EQ(alertsOf(eres(u"200"_s), colourOnly).value(u"eres"_s).toString(), u"Effective res < 250 dpi"_s);
    EXPECT_EQ(alertsOf(eres(u"600"_s), colourOnly).value(u"eres"_s).toString(), u"Effective res > 450 dpi"_s);
    EXPECT_TRUE(alertsOf(eres(u"300"_s), colourOnly).isEmpty());
    EXPECT_TRUE(alertsOf(eres(u"-"_s), colourOnly).isEmpty());
    // Black and White with only colour limits is not checked at all.
    EXPECT_TRUE(alertsOf(eres(u"100"_s, u"Black and White"_s), colourOnly).isEmpty());

    const QVariantMap bwOnly = resolution(QString(), QString(), u"1200"_s, QString());
    EXPECT_EQ(alertText(eres(u"600"_s, u"Black and White"_s), bwOnly, u"eres"_s), u"Effective res < 1200 dpi"_s);
    // An upper limit alone: no lower bound.
    EXPECT_TRUE(alertsOf(eres(u"5"_s), resolution(QString(), u"400"_s)).isEmpty());
}

TEST(LinkThresholds, EpsFontsScaleAndPrinting)
{
    const QVariantMap checks{
        {u"fontsEpsBtn"_s, 1}, {u"fontsEpsMtrx"_s, 1}, {u"scaledNonPropBtn"_s, 1}, {u"nonPrintBtn"_s, 1}};
    const QVariantMap flagged = alertsOf(link({{u"epsfontlist"_s, u"Helvetica E\rTimes"_s},
                                               {u"horScale"_s, u"62.5"_s},
                                               {u"vertScale"_s, u"50"_s},
                                               {u"print"_s, u"-"_s}}),
                                         checks);
    EXPECT_EQ(flagged, (QVariantMap{{u"epsfonts"_s, u"Contains embedded fonts"_s},
                                    {u"scale"_s, u"Non-proportional scale"_s},
                                    {u"print"_s, u"Non-printing"_s}}));
    // Only the integer parts of the scales count; an unembedded list passes "embedded only".
    EXPECT_TRUE(
        alertsOf(
            link({{u"epsfontlist"_s, u"Helvetica\rTimes"_s}, {u"horScale"_s, u"62.5"_s}, {u"vertScale"_s, u"62.1"_s}}),
            checks)
            .isEmpty());
    QVariantMap anyFont = checks;
    anyFont.insert(u"fontsEpsMtrx"_s, 0);
    EXPECT_EQ(alertText(link({{u"epsfontlist"_s, u"Helvetica"_s}}), anyFont, u"epsfonts"_s), u"Contains fonts"_s);
    EXPECT_TRUE(alertsOf(link({{u"epsfontlist"_s, u"-"_s}}), anyFont).isEmpty());
}

TEST(LinkRules, DisplayKeysAndThePlainCopyWithoutLinks)
{
    const QVariantList records{link(), link({{u"path"_s, u"?"_s}, {u"status"_s, u"<unknown>"_s}})};
    EXPECT_EQ(QNLinksOutline::applyCurrPresetToArray(records, {}), records);
    const QVariantList judged = QNLinksOutline::applyCurrPresetToArray(records, linksPreset({}));
    EXPECT_EQ(judged[0].toMap().value(kIconKey).toString(), kImageFileIcon);
    EXPECT_EQ(judged[1].toMap().value(kIconKey).toString(), u"blank"_s);
    EXPECT_EQ(judged[1].toMap().value(kStatusImgKey).toString(), u"blank"_s);
}

TEST(LinkRules, ALongListIsJudgedInOrderAsEachRecordAlone)
{
    // Long lists are judged on several threads; the result must not show it.
    QVariantList records;
    for (int i = 0; i < 4500; ++i)
        records.append(link({{u"id"_s, QString::number(i)}, {u"eres"_s, QString::number(i % 600)}}));
    const QVariantMap preset = linksPreset(resolution(u"100"_s, u"500"_s));
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
    const QVariantMap data{
        {u"/jobs/a.indd"_s,
         QVariantMap{{u"children"_s, QVariantList{link({{u"name"_s, u"b.tif"_s}}), link({{u"name"_s, u"a10.tif"_s}}),
                                                  link({{u"name"_s, u"a9.tif"_s}})}}}}};
    QNLinksOutline outline;
    outline.setItems(data, linksPreset({}), {SortDescriptor{u"name"_s, true, SortDescriptor::Comparison::Natural}});
    QStringList names;
    for (const QVariant& r : outline.items())
        names.append(r.toMap().value(u"name"_s).toString());
    EXPECT_EQ(names, (QStringList{u"a9.tif"_s, u"a10.tif"_s, u"b.tif"_s}));
}

TEST(LinkResults, RowsToActOnLeaveOutMissingUnlessGoingToTheLink)
{
    const QVariantList top{link(), link({{u"status"_s, u"Missing"_s}, {u"id"_s, u"7"_s}})};
    OutlineSelection selection;
    selection.rows = top;
    selection.selected = {0};
    selection.clickedRow = 1;
    EXPECT_TRUE(QNLinksOutline::itemsForAction(selection, top, u"revealInFinder"_s).isEmpty());
    const QVariantList goTo = QNLinksOutline::itemsForAction(selection, top, u"goToLink"_s);
    const auto target = QNLinksOutline::goToLinkTarget(goTo);
    ASSERT_TRUE(target);
    EXPECT_EQ(target->linkId, u"7"_s);
    EXPECT_EQ(target->docName, u"brochure.indd"_s);
    EXPECT_FALSE(QNLinksOutline::goToLinkTarget({}));

    selection.selected = {0, 1};
    EXPECT_EQ(QNLinksOutline::itemsForAction(selection, top, u"open"_s).size(), 1);
    EXPECT_EQ(QNLinksOutline::itemsForAction(selection, top, u"goToLink"_s).size(), 2);
}

TEST(LinkResults, CellHelpers)
{
    EXPECT_TRUE(QNLinksOutline::emptyOrDash(u"   -"_s));
    EXPECT_FALSE(QNLinksOutline::emptyOrDash(3));
    const QVariantMap eps =
        link({{u"epscols"_s, u"2"_s}, {u"epscollist"_s, u"PANTONE 185 C\rPANTONE 300 C"_s}, {u"epsfonts"_s, u"-"_s}});
    EXPECT_EQ(QNLinksOutline::epsPullDownItems(eps, u"epscols"_s),
              (QStringList{u"PANTONE 185 C"_s, u"PANTONE 300 C"_s}));
    EXPECT_TRUE(QNLinksOutline::epsPullDownItems(eps, u"epsfonts"_s).isEmpty());
    EXPECT_TRUE(QNLinksOutline::shouldEditName(link(), u"name"_s, false));
    EXPECT_FALSE(QNLinksOutline::shouldEditName(link({{u"status"_s, u"Embedded"_s}}), u"name"_s, false));
    EXPECT_FALSE(QNLinksOutline::shouldEditName(link(), u"name"_s, true));
}

TEST(LinkResults, MetadataIsReadOnceAndOpeningIsRemembered)
{
    QVariantMap record = link();
    int reads = 0;
    const auto reader = [&reads](const QString& path) {
        ++reads;
        return QVariantList{QVariantMap{{u"file"_s, path}}};
    };
    QNLinksOutline::acquireMetadata(record, reader);
    QNLinksOutline::acquireMetadata(record, reader);
    EXPECT_EQ(reads, 1);
    EXPECT_EQ(record.value(u"metadata"_s).toList().size(), 1);

    QTemporaryDir dir;
    app::Settings settings(dir.filePath(u"s.ini"_s));
    EXPECT_EQ(defaultAppForType(settings, u"tif"_s), QString());
    setDefaultAppForType(settings, u"/Applications/Preview.app"_s, u"tif"_s);
    setDefaultAppForType(settings, u"/Applications/Acrobat.app"_s, u"pdf"_s);
    EXPECT_EQ(defaultAppForType(settings, u"tif"_s), u"/Applications/Preview.app"_s);
}

TEST(LinkRulesEditor, OperationsHaveTheEditorsEffects)
{
    QNLinkRulesTable table;
    table.startup();
    table.plusBtn();
    EXPECT_EQ(table.items()[0].toMap(), rule(u"Kind"_s, u"contains"_s, QString()));
    table.setObjectValue(u"value"_s, 0, u"JPEG"_s);
    table.setObjectValue(u"attribute"_s, 0, u"Color Mode"_s);
    QVariantMap r = table.items()[0].toMap();
    EXPECT_EQ(r.value(u"attributeKey"_s).toString(), u"color"_s);
    EXPECT_EQ(r.value(u"value"_s).toString(), u"JPEG"_s); // kept: only "Status" resets

    table.setObjectValue(u"attribute"_s, 0, u"Status"_s);
    r = table.items()[0].toMap();
    EXPECT_EQ(r.value(u"condition"_s).toString(), u"is"_s);
    EXPECT_EQ(r.value(u"value"_s).toString(), u"Missing"_s);
    table.setObjectValue(u"value"_s, 0, 2);
    EXPECT_EQ(table.items()[0].toMap().value(u"value"_s).toString(), u"Embedded"_s);

    table.minusBtn(-1);
    EXPECT_EQ(table.items().size(), 1);
    table.minusBtn(0);
    EXPECT_TRUE(table.emptyTableNoteVisible());
}

} // namespace
} // namespace quillon::results
