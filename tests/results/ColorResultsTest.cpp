#include "results/ColorResults.h"

#include "results/ResultKeys.h"

#include <gtest/gtest.h>

namespace quillon::results {
namespace {

QVariantMap swatch(const QString& name, const QString& model, const QString& space, const QVariantList& values,
                   const QString& used = QStringLiteral("√"))
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("spot"), model},
            {QStringLiteral("space"), space},
            {QStringLiteral("colValuesList"), values},
            {QStringLiteral("used"), used}};
}

QVariantMap colorsPreset(const QVariantMap& boxes)
{
    return {{QStringLiteral("Colors"), boxes}};
}

QVariantMap find(const QVariantList& rows, const QString& name)
{
    for (const QVariant& r : rows)
        if (r.toMap().value(QStringLiteral("name")).toString() == name)
            return r.toMap();
    return {};
}

QVariantMap documentWith(const QVariantList& swatches, const QStringList& unused = {}, int registrationInText = 0)
{
    return {{QStringLiteral("children"), swatches},
            {QStringLiteral("namesOfUnusedColors"), unused},
            {QStringLiteral("registrationInTextCount"), registrationInText}};
}

TEST(ColorResults, SpecialSwatchesAndValues)
{
    const QVariantList prepared = QNColorsOutlineController::prepareColorsArr(
        {swatch(QStringLiteral("None"), QStringLiteral("process"), QStringLiteral("CMYK"), {0, 0, 0, 0}),
         swatch(QStringLiteral("Paper"), QStringLiteral("process"), QStringLiteral("CMYK"), {0, 0, 0, 0}),
         swatch(QStringLiteral("Registration"), QStringLiteral("process"), QStringLiteral("CMYK"),
                {100, 100, 100, 100}),
         swatch(QStringLiteral("Black"), QStringLiteral("process"), QStringLiteral("CMYK"), {12.34, 0, 0, 100})},
        documentWith({}));
    ASSERT_EQ(prepared.size(), 3);
    const QVariantMap paper = find(prepared, QStringLiteral("Paper"));
    EXPECT_EQ(paper.value(QStringLiteral("space")).toString(), QString());
    EXPECT_EQ(QNColorsOutlineController::swatchSample(QString(), {}).kind,
              QNColorsOutlineController::SwatchSample::Kind::Hidden);

    const QVariantMap registration = find(prepared, QStringLiteral("Registration"));
    EXPECT_EQ(registration.value(QStringLiteral("value")).toString(), QString());
    const auto regSample = QNColorsOutlineController::swatchSample(
        QStringLiteral("registration"), registration.value(QStringLiteral("colValuesList")).toList());
    EXPECT_EQ(regSample.kind, QNColorsOutlineController::SwatchSample::Kind::DeviceCMYK);
    EXPECT_EQ(regSample.components, (QList<double>{1, 1, 1, 1}));

    const QVariantMap black = find(prepared, QStringLiteral("Black"));
    EXPECT_EQ(black.value(QStringLiteral("value")).toString(), QStringLiteral("12.3  0  0  100"));
    EXPECT_DOUBLE_EQ(black.value(QStringLiteral("colValuesList")).toList()[0].toDouble(), 0.1234);
}

TEST(ColorResults, NormalisedValuesPerSpace)
{
    using C = QNColorsOutlineController;
    EXPECT_EQ(C::normalizedValuesFromColorValues({255, 0, 51}, QStringLiteral("RGB")), (QVariantList{1.0, 0.0, 0.2}));
    const QVariantList hsb = C::normalizedValuesFromColorValues({90, 50, 100}, QStringLiteral("HSB"));
    EXPECT_DOUBLE_EQ(hsb[0].toDouble(), 90.0 / 359.0);
    EXPECT_DOUBLE_EQ(hsb[2].toDouble(), 1.0);
    EXPECT_TRUE(C::normalizedValuesFromColorValues({50, 10, -20}, QStringLiteral("LAB")).isEmpty());
    EXPECT_EQ(C::swatchSample(QStringLiteral("LAB"), {}).kind, C::SwatchSample::Kind::White);
    // Too few values are padded rather than read past the end.
    EXPECT_EQ(C::swatchSample(QStringLiteral("CMYK"), {0.5}).components, (QList<double>{0.5, 0, 0, 0}));
}

TEST(ColorRules, ChecksByModelSpaceAndUse)
{
    QNColorsOutlineController controller;
    controller.startup();
    const QVariantMap data{
        {QStringLiteral("/d/doc.indd"),
         documentWith(
             {swatch(QStringLiteral("Orange"), QStringLiteral("spot"), QStringLiteral("RGB"), {255, 128, 0}),
              swatch(QStringLiteral("Lab Blue"), QStringLiteral("process"), QStringLiteral("LAB"), {40, 10, -60}),
              swatch(QStringLiteral("Old"), QStringLiteral("process"), QStringLiteral("CMYK"), {0, 0, 0, 10}),
              swatch(QStringLiteral("Mix"), QStringLiteral("mixedinkmodel"), QStringLiteral("CMYK"), {})},
             {QStringLiteral("Old")})}};
    controller.setItems(data, colorsPreset({{QStringLiteral("spot"), 1},
                                            {QStringLiteral("RGB"), 1},
                                            {QStringLiteral("LAB"), 1},
                                            {QStringLiteral("unused"), 1},
                                            {QStringLiteral("mixedinkmodel"), 1}}));
    const QVariantMap orange = find(controller.items(), QStringLiteral("Orange"));
    EXPECT_EQ(orange.value(kAlertsKey).toMap(),
              (QVariantMap{{QStringLiteral("spot"), QStringLiteral("Color model is spot")},
                           {QStringLiteral("space"), QStringLiteral("Color space is RGB")}}));
    EXPECT_EQ(allAlertsOfItemForToolTip(orange.value(kAlertsKey).toMap()),
              QStringLiteral("Color space is RGB\nColor model is spot"));
    EXPECT_EQ(orange.value(kAlertNameKey).toString(), QStringLiteral("warning"));
    // "Lab" on flags "LAB" swatches.
    EXPECT_EQ(find(controller.items(), QStringLiteral("Lab Blue")).value(kAlertsKey).toMap().keys(),
              QStringList{QStringLiteral("space")});
    const QVariantMap old = find(controller.items(), QStringLiteral("Old"));
    EXPECT_EQ(old.value(kAlertsKey).toMap().value(QStringLiteral("used")).toString(), QStringLiteral("Unused color"));
    // A mixed-ink key is honoured while "spot" is on.
    EXPECT_EQ(find(controller.items(), QStringLiteral("Mix")).value(kAlertsKey).toMap().keys(),
              QStringList{QStringLiteral("spot")});

    // With only the mixed-ink key the model check does not run.
    controller.reapplyPreset(colorsPreset({{QStringLiteral("mixedinkmodel"), 1}}));
    EXPECT_TRUE(find(controller.items(), QStringLiteral("Mix")).value(kAlertsKey).toMap().isEmpty());
}

TEST(ColorRules, RegistrationInTextAlertIsWipedByTheRulePass)
{
    QVariantList prepared =
        QNColorsOutlineController::prepareColorsArr({swatch(QStringLiteral("Registration"), QStringLiteral("process"),
                                                            QStringLiteral("CMYK"), {100, 100, 100, 100})},
                                                    documentWith({}, {}, 3));
    EXPECT_EQ(prepared[0].toMap().value(kAlertsKey).toMap().value(QStringLiteral("spot")).toString(),
              QStringLiteral("[Registration] applied to text: 3 cases"));
    QNColorsOutlineController controller;
    const QVariantList judged =
        controller.applyCurrPresetToArray(prepared, colorsPreset({{QStringLiteral("regAppliedToText"), 1}}));
    EXPECT_TRUE(judged[0].toMap().value(kAlertsKey).toMap().isEmpty());
    EXPECT_EQ(controller.registrationInTextFlag(), QStringLiteral("1"));
}

TEST(ColorRules, RegistrationFlagHasTwoReaders)
{
    const QVariantMap preset = colorsPreset({{QStringLiteral("regAppliedToText"), 1}});
    QNColorsOutlineController controller;
    controller.startup();
    EXPECT_EQ(controller.registrationInTextFlag(), QStringLiteral("0"));
    controller.setItems({}, preset);
    EXPECT_EQ(controller.registrationInTextFlag(), QStringLiteral("1"));
    // The application's reader looks at the top level and so answers "0" for these presets.
    EXPECT_EQ(registrationInTextFlagOfPreset(preset), QStringLiteral("0"));
    EXPECT_EQ(registrationInTextFlagOfPreset({{QStringLiteral("regAppliedToText"), 1}}), QStringLiteral("1"));
}

TEST(ColorRules, ListOperations)
{
    QVariantList records{swatch(QString(), QStringLiteral("process"), QStringLiteral("CMYK"), {}),
                         swatch(QStringLiteral("A"), QStringLiteral("process"), QStringLiteral("CMYK"), {})};
    assignUnusedStatusUsingUnusedNames(records, {QString(), QStringLiteral("A")});
    EXPECT_EQ(records[0].toMap().value(QStringLiteral("used")).toString(), QStringLiteral("√"));
    EXPECT_EQ(records[1].toMap().value(QStringLiteral("used")).toString(), QStringLiteral("-"));
    setRegistrationIssueCount(records, 5, QStringLiteral("rule"));
    EXPECT_FALSE(records[1].toMap().contains(kAlertsKey));
}

TEST(ColorRulesEditor, CheckBoxesByTitle)
{
    QNColorRules rules;
    rules.startup();
    rules.loadPresetData({{QStringLiteral("LAB"), 1}, {QStringLiteral("spot"), 0}});
    EXPECT_EQ(rules.stateForTitle(QStringLiteral("Lab")), 1);
    EXPECT_EQ(rules.stateForTitle(QStringLiteral("Unused")), 0);
    rules.buttonActions(QStringLiteral("[Registration] applied to text"), 1);
    rules.buttonActions(QStringLiteral("Lab"), 0);
    EXPECT_EQ(rules.colorRulesDict(),
              (QVariantMap{
                  {QStringLiteral("LAB"), 0}, {QStringLiteral("spot"), 0}, {QStringLiteral("regAppliedToText"), 1}}));
}

} // namespace
} // namespace quillon::results
