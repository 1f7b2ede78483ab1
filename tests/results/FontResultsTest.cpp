#include "results/FontResults.h"

#include "results/FontRuleTable.h"
#include "results/ResultKeys.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

QVariantMap font(const QString& name, const QString& status, const QString& type = u"OpenType CFF"_s,
                 const QString& psfont = u"Font-PS"_s, const QString& path = u"/f.otf"_s,
                 const QVariant& embed = u"Yes"_s)
{
    return {{u"name"_s, name},     {u"status"_s, status}, {u"type"_s, type},
            {u"psfont"_s, psfont}, {u"path"_s, path},     {u"embed"_s, embed}};
}

QVariantMap rule(const QString& attribute, const QString& condition, const QVariant& value)
{
    return {
        {u"attribute"_s, attribute}, {u"attributeKey"_s, u"name"_s}, {u"condition"_s, condition}, {u"value"_s, value}};
}

QVariantMap presetWithFontRules(const QVariantList& rules, const QVariantMap& extra = {})
{
    QVariantMap fonts = extra;
    fonts.insert(u"conditions"_s, rules);
    return {{u"Fonts"_s, fonts}};
}

QVariantMap alertsOf(const QVariant& record)
{
    return record.toMap().value(kAlertsKey).toMap();
}

TEST(FontRules, EachConditionByTheRuleTable)
{
    const QVariantList records{font(u"Café Sans Bold"_s, u"installed"_s), font(u"Arial Bold"_s, u"installed"_s)};
    const QVariantMap preset = presetWithFontRules({
        rule(u"Name"_s, u"contains"_s, u"CAFE"_s),
        rule(u"Name"_s, u"doesn't contain"_s, u"arial"_s),
        rule(u"Name"_s, u"is"_s, u"arial*"_s),
    });
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(records, preset);
    ASSERT_EQ(judged.size(), 2);
    EXPECT_EQ(alertsOf(judged[0]).value(u"name"_s).toStringList(),
              (QStringList{u"Name contains \"CAFE\""_s, u"Name doesn't contain \"arial\""_s}));
    EXPECT_EQ(alertsOf(judged[1]).value(u"name"_s).toStringList(), QStringList{u"Name is \"arial*\""_s});
    EXPECT_EQ(judged[1].toMap().value(kAlertNameKey).toString(), u"warning"_s);
}

TEST(FontRules, EmptyValuesAndEmptyAttributesNeverMatch)
{
    const QVariantMap preset = presetWithFontRules({
        rule(u"Name"_s, u"contains"_s, QString()),
        rule(u"Name"_s, u"doesn't contain"_s, QString()),
        rule(u"PostScript Name"_s, u"doesn't contain"_s, u"Zapf"_s),
        rule(u"Location"_s, u"doesn't contain"_s, u"/Library"_s),
    });
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(u"Any"_s, u"installed"_s, u"TrueType"_s, QString(), QString())}, preset);
    EXPECT_TRUE(alertsOf(judged[0]).isEmpty());

    // With a PostScript name the same rule does raise its alert.
    const QVariantList withPs = QNFontsOutlineController::applyCurrPresetToArray(
        {font(u"Any"_s, u"installed"_s, u"TrueType"_s, u"Any-PS"_s)}, preset);
    EXPECT_EQ(alertsOf(withPs[0]).keys(), (QStringList{u"path"_s, u"psfont"_s}));
}

TEST(FontRules, OnlyTheAttributeDecidesWhatIsTested)
{
    // "attributeKey" is not read: a "Type" rule whose key still says "name" tests the type.
    const QVariantMap preset = presetWithFontRules({rule(u"Type"_s, u"is"_s, u"TrueType"_s)});
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(u"TrueType Lookalike"_s, u"installed"_s, u"truetype"_s)}, preset);
    EXPECT_EQ(alertsOf(judged[0]).keys(), QStringList{u"type"_s});
}

TEST(FontRules, EmbeddingIsCheckedUnderEmbedNeverUnderEmbedBtn)
{
    const QVariantList records{font(u"A"_s, u"installed"_s, u"TrueType"_s, u"A"_s, u"/a"_s, u"No"_s),
                               font(u"B"_s, u"installed"_s, u"TrueType"_s, u"B"_s, u"/b"_s, 0),
                               font(u"C"_s, u"installed"_s, u"TrueType"_s, u"C"_s, u"/c"_s, u"Yes"_s)};
    const QVariantList withBtn =
        QNFontsOutlineController::applyCurrPresetToArray(records, presetWithFontRules({}, {{u"embedBtn"_s, 1}}));
    for (const QVariant& r : withBtn)
        EXPECT_TRUE(alertsOf(r).isEmpty());

    const QVariantList withEmbed =
        QNFontsOutlineController::applyCurrPresetToArray(records, presetWithFontRules({}, {{u"embed"_s, true}}));
    EXPECT_EQ(alertsOf(withEmbed[0]).value(u"embed"_s).toString(), u"PDF embedding not allowed"_s);
    EXPECT_FALSE(alertsOf(withEmbed[1]).isEmpty());
    EXPECT_TRUE(alertsOf(withEmbed[2]).isEmpty());
}

TEST(FontRules, WithoutFontsNothingIsAddedWithoutConditionsOnlyIcons)
{
    const QVariantList records{font(u"Minion Pro RegularRegular"_s, u"missing"_s)};
    const QVariantList plain = QNFontsOutlineController::applyCurrPresetToArray(records, {});
    EXPECT_EQ(plain, records);

    const QVariantList iconsOnly =
        QNFontsOutlineController::applyCurrPresetToArray(records, {{u"Fonts"_s, QVariantMap()}});
    const QVariantMap r = iconsOnly[0].toMap();
    EXPECT_EQ(r.value(kTypeIconKey).toString(), u"fontOpenType"_s);
    EXPECT_EQ(r.value(u"name"_s).toString(), u"Minion Pro Regular"_s);
    EXPECT_TRUE(r.value(kAlertsKey).toMap().isEmpty());
}

TEST(FontRules, NameRulesSeeTheCleanedName)
{
    const QVariantMap preset = presetWithFontRules({rule(u"Name"_s, u"is"_s, u"Minion Pro Regular"_s)});
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(u"Minion Pro RegularRegular"_s, u"missing"_s), font(u"Minion Pro RegularRegular"_s, u"installed"_s)},
        preset);
    EXPECT_FALSE(alertsOf(judged[0]).isEmpty());
    EXPECT_EQ(judged[1].toMap().value(u"name"_s).toString(), u"Minion Pro RegularRegular"_s);
    EXPECT_TRUE(alertsOf(judged[1]).isEmpty());
}

TEST(FontRules, CleanMissingFontNameFirstTestWins)
{
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(u"Minion Pro RegularRegular"_s), u"Minion Pro Regular"_s);
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(u"X MediumMedium MediumMedium"_s), u"X Medium Medium"_s);
    // "RegularReg" without the whole doubling ends the tests: the BoldBold stays.
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(u"X RegularRegu BoldBold"_s), u"X RegularRegu BoldBold"_s);
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(u"Garamond Italic"_s), u"Garamond Italic"_s);
}

TEST(FontRules, ToolTipJoinsEveryAttributesTexts)
{
    const QVariantMap alerts{{u"embed"_s, u"PDF embedding not allowed"_s},
                             {u"name"_s, QStringList{u"Name contains \"a\""_s, u"Name is \"b\""_s}},
                             {u"type"_s, QStringList{}}};
    EXPECT_EQ(allAlertsOfItemForToolTip(alerts), u"PDF embedding not allowed\nName contains \"a\"\nName is \"b\""_s);
}

QVariantMap dataFileOf(const QStringList& docPaths, const QVariantList& fonts)
{
    QVariantMap file;
    for (const QString& path : docPaths)
        file.insert(path,
                    QVariantMap{{u"name"_s, path.section(u'/', -1)}, {u"isDock"_s, true}, {u"children"_s, fonts}});
    return file;
}

TEST(FontResults, OneDocumentIsFlatSeveralAreGroups)
{
    const QVariantList fonts{font(u"A"_s, u"installed"_s), font(u"B"_s, u"missing"_s)};
    QNFontsOutlineController controller;
    controller.startup();
    controller.setItems(dataFileOf({u"/docs/one.indd"_s}, fonts), presetWithFontRules({}));
    EXPECT_EQ(controller.items().size(), 2);

    controller.setItems(dataFileOf({u"/docs/one.indd"_s, u"/docs/two.indd"_s}, fonts), presetWithFontRules({}));
    ASSERT_EQ(controller.items().size(), 2);
    EXPECT_EQ(controller.headerTitle(), u"FONTS \u2022 2"_s);
    const QVariantMap group = controller.items()[1].toMap();
    EXPECT_EQ(group.value(u"docPath"_s).toString(), u"/docs/two.indd"_s);
    EXPECT_TRUE(isGroupRow(group));
    EXPECT_EQ(group.value(u"children"_s).toList()[0].toMap().value(kTypeIconKey).toString(), u"fontOpenType"_s);
}

TEST(FontResults, ReapplyingAPresetStartsFromTheRecordsAsLoaded)
{
    QNFontsOutlineController controller;
    controller.setItems(dataFileOf({u"/d.indd"_s}, {font(u"A"_s, u"missing"_s)}),
                        presetWithFontRules({rule(u"Status"_s, u"is"_s, u"Missing"_s)}));
    EXPECT_TRUE(hasAlerts(controller.items()[0].toMap()));
    controller.reapplyPreset({}); // the preset could not be found: no judging at all
    EXPECT_FALSE(controller.items()[0].toMap().contains(kAlertsKey));
}

TEST(FontResults, RowsToActOnAndTheRevealItem)
{
    OutlineSelection selection;
    selection.rows = {font(u"A"_s, u"installed"_s, u"TrueType"_s, u"A"_s, u"/a.ttf"_s),
                      font(u"B"_s, u"missing"_s, u"TrueType"_s, u"B"_s, u"?"_s),
                      font(u"C"_s, u"installed"_s, u"OpenType"_s, u"C"_s, u"C (from Adobe Fonts)"_s)};
    EXPECT_TRUE(QNFontsOutlineController::itemsForAction(selection).isEmpty());

    // A right-click on an unselected row whose path is "?" acts on nothing.
    selection.selected = {0};
    selection.clickedRow = 1;
    const QVariantList none = QNFontsOutlineController::itemsForAction(selection);
    EXPECT_TRUE(none.isEmpty());
    EXPECT_FALSE(QNFontsOutlineController::revealMenuItem(none).enabled);

    // A right-click inside the selection acts on the selection, in row order, paths only.
    selection.selected = {2, 1, 0};
    selection.clickedRow = 1;
    const QVariantList rows = QNFontsOutlineController::itemsForAction(selection);
    EXPECT_TRUE(QNFontsOutlineController::revealMenuItem(rows).enabled);
    EXPECT_EQ(QNFontsOutlineController::pathsToReveal(rows), (QStringList{u"/a.ttf"_s, u"C (from Adobe Fonts)"_s}));

    selection.selected = {};
    selection.clickedRow = 2;
    const auto adobe = QNFontsOutlineController::revealMenuItem(QNFontsOutlineController::itemsForAction(selection));
    EXPECT_EQ(adobe.title, u"Activated from Adobe Fonts"_s);
    EXPECT_FALSE(adobe.enabled);
}

TEST(FontRulesEditor, OperationsHaveTheEditorsEffects)
{
    QNFontRulesTableController editor;
    editor.startup();
    editor.loadPresetData({});
    editor.plusBtn();
    EXPECT_EQ(editor.items()[0].toMap(), rule(u"Name"_s, u"contains"_s, QString()));

    editor.controlTextDidChange(0, u"Comic"_s);
    editor.conditionsPopup(0, u"doesn't contain"_s);
    EXPECT_EQ(editor.items()[0].toMap().value(u"value"_s).toString(), u"Comic"_s);

    // Choosing "Type" resets condition and value; "attributeKey" keeps what it had.
    editor.attributePopup(0, u"Type"_s);
    QVariantMap r = editor.items()[0].toMap();
    EXPECT_EQ(r.value(u"condition"_s).toString(), u"is"_s);
    EXPECT_EQ(r.value(u"value"_s).toString(), u"TrueType"_s);
    EXPECT_EQ(r.value(u"attributeKey"_s).toString(), u"name"_s);
    EXPECT_FALSE(QNFontRulesTableController::conditionIsChoosable(r));
    EXPECT_EQ(QNFontRulesTableController::valueEntryForRule(r), FontRuleValueEntry::TypeMenu);

    editor.attributePopup(0, u"Location"_s);
    r = editor.items()[0].toMap();
    EXPECT_EQ(r.value(u"condition"_s).toString(), u"contains"_s);
    EXPECT_EQ(r.value(u"value"_s).toString(), QString());

    editor.minusBtn(5); // outside the rows: nothing
    EXPECT_EQ(editor.items().size(), 1);
    editor.minusBtn(0);
    EXPECT_TRUE(editor.emptyTableNoteVisible());
}

TEST(FontRulesEditor, MenuTitlesMatchTheRecordValues)
{
    const QVariantMap records[] = {
        font(u"a"_s, u"missing"_s, u"TrueType"_s), font(u"b"_s, u"installed"_s, u"OpenType PS"_s),
        font(u"c"_s, u"installed"_s, u"type 1"_s), font(u"d"_s, u"substituted"_s, u"bitmap"_s)};
    QVariantList rules;
    for (const QString& title : QNFontRulesTableController::typeMenuTitles())
        rules.append(rule(u"Type"_s, u"is"_s, title));
    for (const QString& title : QNFontRulesTableController::statusMenuTitles())
        rules.append(rule(u"Status"_s, u"is"_s, title));
    QVariantList list;
    for (const auto& r : records)
        list.append(r);
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(list, presetWithFontRules(rules));
    for (const QVariant& r : judged)
        EXPECT_TRUE(alertsOf(r).contains(u"type"_s)) << r.toMap().value(u"type"_s).toString().toStdString();
    EXPECT_TRUE(alertsOf(judged[0]).contains(u"status"_s));
    EXPECT_TRUE(alertsOf(judged[3]).contains(u"status"_s));
}

} // namespace
} // namespace quillon::results
