#include "results/FontResults.h"

#include "results/FontRuleTable.h"
#include "results/ResultKeys.h"

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

QVariantMap font(const QString& name, const QString& status, const QString& type = QStringLiteral("OpenType CFF"),
                 const QString& psfont = QStringLiteral("Font-PS"), const QString& path = QStringLiteral("/f.otf"),
                 const QVariant& embed = QStringLiteral("Yes"))
{
    return {{QStringLiteral("name"), name},     {QStringLiteral("status"), status}, {QStringLiteral("type"), type},
            {QStringLiteral("psfont"), psfont}, {QStringLiteral("path"), path},     {QStringLiteral("embed"), embed}};
}

QVariantMap rule(const QString& attribute, const QString& condition, const QVariant& value)
{
    return {{QStringLiteral("attribute"), attribute},
            {QStringLiteral("attributeKey"), QStringLiteral("name")},
            {QStringLiteral("condition"), condition},
            {QStringLiteral("value"), value}};
}

QVariantMap presetWithFontRules(const QVariantList& rules, const QVariantMap& extra = {})
{
    QVariantMap fonts = extra;
    fonts.insert(QStringLiteral("conditions"), rules);
    return {{QStringLiteral("Fonts"), fonts}};
}

QVariantMap alertsOf(const QVariant& record)
{
    return record.toMap().value(kAlertsKey).toMap();
}

TEST(FontRules, EachConditionByTheRuleTable)
{
    const QVariantList records{font(QStringLiteral("Café Sans Bold"), QStringLiteral("installed")),
                               font(QStringLiteral("Arial Bold"), QStringLiteral("installed"))};
    const QVariantMap preset = presetWithFontRules({
        rule(QStringLiteral("Name"), QStringLiteral("contains"), QStringLiteral("CAFE")),
        rule(QStringLiteral("Name"), QStringLiteral("doesn't contain"), QStringLiteral("arial")),
        rule(QStringLiteral("Name"), QStringLiteral("is"), QStringLiteral("arial*")),
    });
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(records, preset);
    ASSERT_EQ(judged.size(), 2);
    EXPECT_EQ(
        alertsOf(judged[0]).value(QStringLiteral("name")).toStringList(),
        (QStringList{QStringLiteral("Name contains \"CAFE\""), QStringLiteral("Name doesn't contain \"arial\"")}));
    EXPECT_EQ(alertsOf(judged[1]).value(QStringLiteral("name")).toStringList(),
              QStringList{QStringLiteral("Name is \"arial*\"")});
    EXPECT_EQ(judged[1].toMap().value(kAlertNameKey).toString(), QStringLiteral("warning"));
}

TEST(FontRules, EmptyValuesAndEmptyAttributesNeverMatch)
{
    const QVariantMap preset = presetWithFontRules({
        rule(QStringLiteral("Name"), QStringLiteral("contains"), QString()),
        rule(QStringLiteral("Name"), QStringLiteral("doesn't contain"), QString()),
        rule(QStringLiteral("PostScript Name"), QStringLiteral("doesn't contain"), QStringLiteral("Zapf")),
        rule(QStringLiteral("Location"), QStringLiteral("doesn't contain"), QStringLiteral("/Library")),
    });
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(QStringLiteral("Any"), QStringLiteral("installed"), QStringLiteral("TrueType"), QString(), QString())},
        preset);
    EXPECT_TRUE(alertsOf(judged[0]).isEmpty());

    // With a PostScript name the same rule does raise its alert.
    const QVariantList withPs =
        QNFontsOutlineController::applyCurrPresetToArray({font(QStringLiteral("Any"), QStringLiteral("installed"),
                                                               QStringLiteral("TrueType"), QStringLiteral("Any-PS"))},
                                                         preset);
    EXPECT_EQ(alertsOf(withPs[0]).keys(), (QStringList{QStringLiteral("path"), QStringLiteral("psfont")}));
}

TEST(FontRules, OnlyTheAttributeDecidesWhatIsTested)
{
    // "attributeKey" is not read: a "Type" rule whose key still says "name" tests the type.
    const QVariantMap preset =
        presetWithFontRules({rule(QStringLiteral("Type"), QStringLiteral("is"), QStringLiteral("TrueType"))});
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(QStringLiteral("TrueType Lookalike"), QStringLiteral("installed"), QStringLiteral("truetype"))}, preset);
    EXPECT_EQ(alertsOf(judged[0]).keys(), QStringList{QStringLiteral("type")});
}

TEST(FontRules, EmbeddingIsCheckedUnderEmbedNeverUnderEmbedBtn)
{
    const QVariantList records{font(QStringLiteral("A"), QStringLiteral("installed"), QStringLiteral("TrueType"),
                                    QStringLiteral("A"), QStringLiteral("/a"), QStringLiteral("No")),
                               font(QStringLiteral("B"), QStringLiteral("installed"), QStringLiteral("TrueType"),
                                    QStringLiteral("B"), QStringLiteral("/b"), 0),
                               font(QStringLiteral("C"), QStringLiteral("installed"), QStringLiteral("TrueType"),
                                    QStringLiteral("C"), QStringLiteral("/c"), QStringLiteral("Yes"))};
    const QVariantList withBtn = QNFontsOutlineController::applyCurrPresetToArray(
        records, presetWithFontRules({}, {{QStringLiteral("embedBtn"), 1}}));
    for (const QVariant& r : withBtn)
        EXPECT_TRUE(alertsOf(r).isEmpty());

    const QVariantList withEmbed = QNFontsOutlineController::applyCurrPresetToArray(
        records, presetWithFontRules({}, {{QStringLiteral("embed"), true}}));
    EXPECT_EQ(alertsOf(withEmbed[0]).value(QStringLiteral("embed")).toString(),
              QStringLiteral("PDF embedding not allowed"));
    EXPECT_FALSE(alertsOf(withEmbed[1]).isEmpty());
    EXPECT_TRUE(alertsOf(withEmbed[2]).isEmpty());
}

TEST(FontRules, WithoutFontsNothingIsAddedWithoutConditionsOnlyIcons)
{
    const QVariantList records{font(QStringLiteral("Minion Pro RegularRegular"), QStringLiteral("missing"))};
    const QVariantList plain = QNFontsOutlineController::applyCurrPresetToArray(records, {});
    EXPECT_EQ(plain, records);

    const QVariantList iconsOnly =
        QNFontsOutlineController::applyCurrPresetToArray(records, {{QStringLiteral("Fonts"), QVariantMap()}});
    const QVariantMap r = iconsOnly[0].toMap();
    EXPECT_EQ(r.value(kTypeIconKey).toString(), QStringLiteral("fontOpenType"));
    EXPECT_EQ(r.value(QStringLiteral("name")).toString(), QStringLiteral("Minion Pro Regular"));
    EXPECT_TRUE(r.value(kAlertsKey).toMap().isEmpty());
}

TEST(FontRules, NameRulesSeeTheCleanedName)
{
    const QVariantMap preset =
        presetWithFontRules({rule(QStringLiteral("Name"), QStringLiteral("is"), QStringLiteral("Minion Pro Regular"))});
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(
        {font(QStringLiteral("Minion Pro RegularRegular"), QStringLiteral("missing")),
         font(QStringLiteral("Minion Pro RegularRegular"), QStringLiteral("installed"))},
        preset);
    EXPECT_FALSE(alertsOf(judged[0]).isEmpty());
    EXPECT_EQ(judged[1].toMap().value(QStringLiteral("name")).toString(), QStringLiteral("Minion Pro RegularRegular"));
    EXPECT_TRUE(alertsOf(judged[1]).isEmpty());
}

TEST(FontRules, CleanMissingFontNameFirstTestWins)
{
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(QStringLiteral("Minion Pro RegularRegular")),
              QStringLiteral("Minion Pro Regular"));
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(QStringLiteral("X MediumMedium MediumMedium")),
              QStringLiteral("X Medium Medium"));
    // "RegularReg" without the whole doubling ends the tests: the BoldBold stays.
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(QStringLiteral("X RegularRegu BoldBold")),
              QStringLiteral("X RegularRegu BoldBold"));
    EXPECT_EQ(QNFontsOutlineController::cleanMissingFontName(QStringLiteral("Garamond Italic")),
              QStringLiteral("Garamond Italic"));
}

TEST(FontRules, IconsByTypeAndStatus)
{
    EXPECT_EQ(QNFontsOutlineController::iconForFontType(QStringLiteral("type 1")), QStringLiteral("fontPS"));
    EXPECT_EQ(QNFontsOutlineController::iconForFontType(QStringLiteral("Type 1")), QStringLiteral("blank"));
    EXPECT_EQ(QNFontsOutlineController::iconForFontStatus(QStringLiteral("unknown")), QStringLiteral("Missing"));
    EXPECT_EQ(QNFontsOutlineController::iconForFontStatus(QStringLiteral("Missing")), QString());
}

TEST(FontRules, ToolTipJoinsEveryAttributesTexts)
{
    const QVariantMap alerts{
        {QStringLiteral("embed"), QStringLiteral("PDF embedding not allowed")},
        {QStringLiteral("name"), QStringList{QStringLiteral("Name contains \"a\""), QStringLiteral("Name is \"b\"")}},
        {QStringLiteral("type"), QStringList{}}};
    EXPECT_EQ(allAlertsOfItemForToolTip(alerts),
              QStringLiteral("PDF embedding not allowed\nName contains \"a\"\nName is \"b\""));
}

QVariantMap dataFileOf(const QStringList& docPaths, const QVariantList& fonts)
{
    QVariantMap file;
    for (const QString& path : docPaths)
        file.insert(path, QVariantMap{{QStringLiteral("name"), path.section(u'/', -1)},
                                      {QStringLiteral("isDock"), true},
                                      {QStringLiteral("children"), fonts}});
    return file;
}

TEST(FontResults, OneDocumentIsFlatSeveralAreGroups)
{
    const QVariantList fonts{font(QStringLiteral("A"), QStringLiteral("installed")),
                             font(QStringLiteral("B"), QStringLiteral("missing"))};
    QNFontsOutlineController controller;
    controller.startup();
    controller.setItems(dataFileOf({QStringLiteral("/docs/one.indd")}, fonts), presetWithFontRules({}));
    EXPECT_EQ(controller.items().size(), 2);

    controller.setItems(dataFileOf({QStringLiteral("/docs/one.indd"), QStringLiteral("/docs/two.indd")}, fonts),
                        presetWithFontRules({}));
    ASSERT_EQ(controller.items().size(), 2);
    EXPECT_EQ(controller.headerTitle(), QStringLiteral("FONTS \u2022 2"));
    const QVariantMap group = controller.items()[1].toMap();
    EXPECT_EQ(group.value(QStringLiteral("docPath")).toString(), QStringLiteral("/docs/two.indd"));
    EXPECT_TRUE(isGroupRow(group));
    EXPECT_EQ(group.value(QStringLiteral("children")).toList()[0].toMap().value(kTypeIconKey).toString(),
              QStringLiteral("fontOpenType"));
}

TEST(FontResults, ReapplyingAPresetStartsFromTheRecordsAsLoaded)
{
    QNFontsOutlineController controller;
    controller.setItems(
        dataFileOf({QStringLiteral("/d.indd")}, {font(QStringLiteral("A"), QStringLiteral("missing"))}),
        presetWithFontRules({rule(QStringLiteral("Status"), QStringLiteral("is"), QStringLiteral("Missing"))}));
    EXPECT_TRUE(hasAlerts(controller.items()[0].toMap()));
    controller.reapplyPreset({}); // the preset could not be found: no judging at all
    EXPECT_FALSE(controller.items()[0].toMap().contains(kAlertsKey));
}

TEST(FontResults, RowsToActOnAndTheRevealItem)
{
    OutlineSelection selection;
    selection.rows = {font(QStringLiteral("A"), QStringLiteral("installed"), QStringLiteral("TrueType"),
                           QStringLiteral("A"), QStringLiteral("/a.ttf")),
                      font(QStringLiteral("B"), QStringLiteral("missing"), QStringLiteral("TrueType"),
                           QStringLiteral("B"), QStringLiteral("?")),
                      font(QStringLiteral("C"), QStringLiteral("installed"), QStringLiteral("OpenType"),
                           QStringLiteral("C"), QStringLiteral("C (from Adobe Fonts)"))};
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
    EXPECT_EQ(QNFontsOutlineController::pathsToReveal(rows),
              (QStringList{QStringLiteral("/a.ttf"), QStringLiteral("C (from Adobe Fonts)")}));

    selection.selected = {};
    selection.clickedRow = 2;
    const auto adobe = QNFontsOutlineController::revealMenuItem(QNFontsOutlineController::itemsForAction(selection));
    EXPECT_EQ(adobe.title, QStringLiteral("Activated from Adobe Fonts"));
    EXPECT_FALSE(adobe.enabled);
}

TEST(FontRulesEditor, OperationsHaveTheEditorsEffects)
{
    QNFontRulesTableController editor;
    editor.startup();
    editor.loadPresetData({});
    editor.plusBtn();
    EXPECT_EQ(editor.items()[0].toMap(), rule(QStringLiteral("Name"), QStringLiteral("contains"), QString()));

    editor.controlTextDidChange(0, QStringLiteral("Comic"));
    editor.conditionsPopup(0, QStringLiteral("doesn't contain"));
    EXPECT_EQ(editor.items()[0].toMap().value(QStringLiteral("value")).toString(), QStringLiteral("Comic"));

    // Choosing "Type" resets condition and value; "attributeKey" keeps what it had.
    editor.attributePopup(0, QStringLiteral("Type"));
    QVariantMap r = editor.items()[0].toMap();
    EXPECT_EQ(r.value(QStringLiteral("condition")).toString(), QStringLiteral("is"));
    EXPECT_EQ(r.value(QStringLiteral("value")).toString(), QStringLiteral("TrueType"));
    EXPECT_EQ(r.value(QStringLiteral("attributeKey")).toString(), QStringLiteral("name"));
    EXPECT_FALSE(QNFontRulesTableController::conditionIsChoosable(r));
    EXPECT_EQ(QNFontRulesTableController::valueEntryForRule(r), FontRuleValueEntry::TypeMenu);

    editor.attributePopup(0, QStringLiteral("Location"));
    r = editor.items()[0].toMap();
    EXPECT_EQ(r.value(QStringLiteral("condition")).toString(), QStringLiteral("contains"));
    EXPECT_EQ(r.value(QStringLiteral("value")).toString(), QString());

    editor.minusBtn(5); // outside the rows: nothing
    EXPECT_EQ(editor.items().size(), 1);
    editor.minusBtn(0);
    EXPECT_TRUE(editor.emptyTableNoteVisible());
}

TEST(FontRulesEditor, MenuTitlesMatchTheRecordValues)
{
    const QVariantMap records[] = {
        font(QStringLiteral("a"), QStringLiteral("missing"), QStringLiteral("TrueType")),
        font(QStringLiteral("b"), QStringLiteral("installed"), QStringLiteral("OpenType PS")),
        font(QStringLiteral("c"), QStringLiteral("installed"), QStringLiteral("type 1")),
        font(QStringLiteral("d"), QStringLiteral("substituted"), QStringLiteral("bitmap"))};
    QVariantList rules;
    for (const QString& title : QNFontRulesTableController::typeMenuTitles())
        rules.append(rule(QStringLiteral("Type"), QStringLiteral("is"), title));
    for (const QString& title : QNFontRulesTableController::statusMenuTitles())
        rules.append(rule(QStringLiteral("Status"), QStringLiteral("is"), title));
    QVariantList list;
    for (const auto& r : records)
        list.append(r);
    const QVariantList judged = QNFontsOutlineController::applyCurrPresetToArray(list, presetWithFontRules(rules));
    for (const QVariant& r : judged)
        EXPECT_TRUE(alertsOf(r).contains(QStringLiteral("type")))
            << r.toMap().value(QStringLiteral("type")).toString().toStdString();
    EXPECT_TRUE(alertsOf(judged[0]).contains(QStringLiteral("status")));
    EXPECT_TRUE(alertsOf(judged[3]).contains(QStringLiteral("status")));
}

} // namespace
} // namespace quillon::results
