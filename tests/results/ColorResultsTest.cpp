#include "results/ColorResults.h"

#include "results/ResultKeys.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace quillon::results {
namespace {

QVariantMap swatch(const QString& name, const QString& model, const QString& space, const QVariantList& values,
                   const QString& used = u"√"_s)
{
    return {
        {u"name"_s, name}, {u"spot"_s, model}, {u"space"_s, space}, {u"colValuesList"_s, values}, {u"used"_s, used}};
}

QVariantMap colorsPreset(const QVariantMap& boxes)
{
    return {{u"Colors"_s, boxes}};
}

QVariantMap find(const QVariantList& rows, const QString& name)
{
    for (const QVariant& r : rows)
        if (r.toMap().value(u"name"_s).toString() == name)
            return r.toMap();
    return {};
}

QVariantMap documentWith(const QVariantList& swatches, const QStringList& unused = {}, int registrationInText = 0)
{
    return {{u"children"_s, swatches},
            {u"namesOfUnusedColors"_s, unused},
            {u"registrationInTextCount"_s, registrationInText}};
}

TEST(ColorResults, SpecialSwatchesAndValues)
{
    const QVariantList prepared = QNColorsOutlineController::prepareColorsArr(
        {swatch(u"None"_s, u"process"_s, u"CMYK"_s, {0, 0, 0, 0}),
         swatch(u"Paper"_s, u"process"_s, u"CMYK"_s, {0, 0, 0, 0}),
         swatch(u"Registration"_s, u"process"_s, u"CMYK"_s, {100, 100, 100, 100}),
         swatch(u"Black"_s, u"process"_s, u"CMYK"_s, {12.34, 0, 0, 100})},
        documentWith({}));
    ASSERT_EQ(prepared.size(), 3);
    const QVariantMap paper = find(prepared, u"Paper"_s);
    EXPECT_EQ(paper.value(u"space"_s).toString(), QString());
    EXPECT_EQ(QNColorsOutlineController::swatchSample(QString(), {}).kind,
              QNColorsOutlineController::SwatchSample::Kind::Hidden);

    const QVariantMap registration = find(prepared, u"Registration"_s);
    EXPECT_EQ(registration.value(u"value"_s).toString(), QString());
    const auto regSample =
        QNColorsOutlineController::swatchSample(u"registration"_s, registration.value(u"colValuesList"_s).toList());
    EXPECT_EQ(regSample.kind, QNColorsOutlineController::SwatchSample::Kind::DeviceCMYK);
    EXPECT_EQ(regSample.components, (QList<double>{1, 1, 1, 1}));

    const QVariantMap black = find(prepared, u"Black"_s);
    EXPECT_EQ(black.value(u"value"_s).toString(), u"12.3  0  0  100"_s);
    EXPECT_DOUBLE_EQ(black.value(u"colValuesList"_s).toList()[0].toDouble(), 0.1234);
}

TEST(ColorResults, NormalisedValuesPerSpace)
{
    using C = QNColorsOutlineController;
    EXPECT_EQ(C::normalizedValuesFromColorValues({255, 0, 51}, u"RGB"_s), (QVariantList{1.0, 0.0, 0.2}));
    const QVariantList hsb = C::normalizedValuesFromColorValues({90, 50, 100}, u"HSB"_s);
    EXPECT_DOUBLE_EQ(hsb[0].toDouble(), 90.0 / 359.0);
    EXPECT_DOUBLE_EQ(hsb[2].toDouble(), 1.0);
    EXPECT_TRUE(C::normalizedValuesFromColorValues({50, 10, -20}, u"LAB"_s).isEmpty());
    EXPECT_EQ(C::swatchSample(u"LAB"_s, {}).kind, C::SwatchSample::Kind::White);
    // Too few values are padded rather than read past the end.
    EXPECT_EQ(C::swatchSample(u"CMYK"_s, {0.5}).components, (QList<double>{0.5, 0, 0, 0}));
}

TEST(ColorRules, ChecksByModelSpaceAndUse)
{
    QNColorsOutlineController controller;
    controller.startup();
    const QVariantMap data{
        {u"/d/doc.indd"_s, documentWith({swatch(u"Orange"_s, u"spot"_s, u"RGB"_s, {255, 128, 0}),
                                         swatch(u"Lab Blue"_s, u"process"_s, u"LAB"_s, {40, 10, -60}),
                                         swatch(u"Old"_s, u"process"_s, u"CMYK"_s, {0, 0, 0, 10}),
                                         swatch(u"Mix"_s, u"mixedinkmodel"_s, u"CMYK"_s, {})},
                                        {u"Old"_s})}};
    controller.setItems(
        data, colorsPreset({{u"spot"_s, 1}, {u"RGB"_s, 1}, {u"LAB"_s, 1}, {u"unused"_s, 1}, {u"mixedinkmodel"_s, 1}}));
    const QVariantMap orange = find(controller.items(), u"Orange"_s);
    EXPECT_EQ(orange.value(kAlertsKey).toMap(),
              (QVariantMap{{u"spot"_s, u"Color model is spot"_s}, {u"space"_s, u"Color space is RGB"_s}}));
    EXPECT_EQ(allAlertsOfItemForToolTip(orange.value(kAlertsKey).toMap()),
              u"Color space is RGB\nColor model is spot"_s);
    EXPECT_EQ(orange.value(kAlertNameKey).toString(), u"warning"_s);
    // "Lab" on flags "LAB" swatches.
    EXPECT_EQ(find(controller.items(), u"Lab Blue"_s).value(kAlertsKey).toMap().keys(), QStringList{u"space"_s});
    const QVariantMap old = find(controller.items(), u"Old"_s);
    EXPECT_EQ(old.value(kAlertsKey).toMap().value(u"used"_s).toString(), u"Unused color"_s);
    // A mixed-ink key is honoured while "spot" is on.
    EXPECT_EQ(find(controller.items(), u"Mix"_s).value(kAlertsKey).toMap().keys(), QStringList{u"spot"_s});

    // With only the mixed-ink key the model check does not run.
    controller.reapplyPreset(colorsPreset({{u"mixedinkmodel"_s, 1}}));
    EXPECT_TRUE(find(controller.items(), u"Mix"_s).value(kAlertsKey).toMap().isEmpty());
}

TEST(ColorRules, RegistrationInTextAlertIsWipedByTheRulePass)
{
    QVariantList prepared = QNColorsOutlineController::prepareColorsArr(
        {swatch(u"Registration"_s, u"process"_s, u"CMYK"_s, {100, 100, 100, 100})}, documentWith({}, {}, 3));
    EXPECT_EQ(prepared[0].toMap().value(kAlertsKey).toMap().value(u"spot"_s).toString(),
              u"[Registration] applied to text: 3 cases"_s);
    QNColorsOutlineController controller;
    const QVariantList judged = controller.applyCurrPresetToArray(prepared, colorsPreset({{u"regAppliedToText"_s, 1}}));
    EXPECT_TRUE(judged[0].toMap().value(kAlertsKey).toMap().isEmpty());
    EXPECT_EQ(controller.registrationInTextFlag(), u"1"_s);
}

TEST(ColorRules, RegistrationFlagHasTwoReaders)
{
    const QVariantMap preset = colorsPreset({{u"regAppliedToText"_s, 1}});
    QNColorsOutlineController controller;
    controller.startup();
    EXPECT_EQ(controller.registrationInTextFlag(), u"0"_s);
    controller.setItems({}, preset);
    EXPECT_EQ(controller.registrationInTextFlag(), u"1"_s);
    // The application's reader looks at the top level and so answers "0" for these presets.
    EXPECT_EQ(registrationInTextFlagOfPreset(preset), u"0"_s);
    EXPECT_EQ(registrationInTextFlagOfPreset({{u"regAppliedToText"_s, 1}}), u"1"_s);
}

TEST(ColorRules, ListOperations)
{
    QVariantList records{swatch(QString(), u"process"_s, u"CMYK"_s, {}), swatch(u"A"_s, u"process"_s, u"CMYK"_s, {})};
    assignUnusedStatusUsingUnusedNames(records, {QString(), u"A"_s});
    EXPECT_EQ(records[0].toMap().value(u"used"_s).toString(), u"√"_s);
    EXPECT_EQ(records[1].toMap().value(u"used"_s).toString(), u"-"_s);
    setRegistrationIssueCount(records, 5, u"rule"_s);
    EXPECT_FALSE(records[1].toMap().contains(kAlertsKey));
}

TEST(ColorRulesEditor, CheckBoxesByTitle)
{
    QNColorRules rules;
    rules.startup();
    rules.loadPresetData({{u"LAB"_s, 1}, {u"spot"_s, 0}});
    EXPECT_EQ(rules.stateForTitle(u"Lab"_s), 1);
    EXPECT_EQ(rules.stateForTitle(u"Unused"_s), 0);
    rules.buttonActions(u"[Registration] applied to text"_s, 1);
    rules.buttonActions(u"Lab"_s, 0);
    EXPECT_EQ(rules.colorRulesDict(), (QVariantMap{{u"LAB"_s, 0}, {u"spot"_s, 0}, {u"regAppliedToText"_s, 1}}));
}

} // namespace
} // namespace quillon::results
