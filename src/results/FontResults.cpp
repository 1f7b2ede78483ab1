#include "results/FontResults.h"

#include "app/RecordKeys.h"
#include "app/Settings.h"
#include "inspection/FontRecordKeys.h"
#include "results/FontRuleTable.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"
#include "results/TextMatching.h"

#include <array>

using namespace quillon::inspection;

namespace quillon::results {

void QNFontsOutlineController::setItems(const QVariantMap& dataFile, const QVariantMap& preset)
{
    m_dataFile = dataFile;
    m_items = loadResultRows(dataFile, [&preset](QVariantMap doc) {
        return applyCurrPresetToArray(takeList(doc[app::kGroupChildrenKey]), preset);
    });
}

void QNFontsOutlineController::reapplyPreset(const QVariantMap& preset)
{
    setItems(m_dataFile, preset);
}

QVariantList QNFontsOutlineController::applyCurrPresetToArray(QVariantList records, const QVariantMap& preset)
{
    const auto fontsIt = preset.constFind(kPresetFontsKey);
    if (fontsIt == preset.cend())
        return records;
    const QVariantMap fonts = fontsIt->toMap();

    // The rules split by the attribute they test, in the order they are evaluated.
    const QVariantList conditions = fonts.value(kConditionsKey).toList();
    struct AttributeRules {
        const FontAttribute* attribute;
        QVariantList rules;
    };
    std::array<AttributeRules, kFontAttributeEvaluationOrder.size()> byAttribute{};
    for (size_t i = 0; i < byAttribute.size(); ++i) {
        byAttribute[i].attribute = &fontAttribute(kFontAttributeEvaluationOrder[i]);
        for (const QVariant& rule : conditions)
            if (rule.toMap().value(kRuleAttributeKey).toString() == byAttribute[i].attribute->displayName)
                byAttribute[i].rules.append(rule);
    }
    const bool checkEmbedding = app::variantToBool(fonts.value(kFontsEmbedKey));

    QVariantList judged;
    judged.reserve(records.size());
    for (QVariant& input : records) {
        QVariantMap record = takeMap(input);
        const QString status = record.value(inspection::kFontStatusKey).toString();
        record.insert(kTypeIconKey, iconForFontType(record.value(inspection::kFontTypeKey).toString()));
        if (status != inspection::kFontStatusInstalled)
            record.insert(inspection::kFontNameKey,
                          cleanMissingFontName(record.value(inspection::kFontNameKey).toString()));
        record.insert(kStatusIconKey, iconForFontStatus(status));

        QVariantMap alerts;
        for (const AttributeRules& entry : byAttribute) {
            if (entry.rules.isEmpty())
                continue;
            const QString& key = entry.attribute->recordKey;
            if (key == inspection::kFontPsFontKey && record.value(key).toString().isEmpty())
                continue;
            const QStringList texts = alertsForItem(record, key, entry.attribute->displayName, entry.rules);
            if (!texts.isEmpty())
                alerts.insert(key, texts);
        }
        if (checkEmbedding && !app::variantToBool(record.value(inspection::kFontEmbedKey)))
            alerts.insert(inspection::kFontEmbedKey, QStringLiteral("PDF embedding not allowed"));
        record.insert(kAlertsKey, alerts);
        setAlertDecoration(record, kImageWarning);
        judged.append(record);
    }
    return judged;
}

QString QNFontsOutlineController::cleanMissingFontName(const QString& name)
{
    // The test text is shorter than the doubled text on purpose: a name holding the test text but
    // not the doubled style ends the tests unchanged.
    struct Doubling {
        const char16_t* test;
        const char16_t* doubled;
        const char16_t* single;
    };
    static constexpr std::array<Doubling, 7> doublings{{
        {u"RegularReg", u"RegularRegular", u"Regular"},
        {u"LightLig", u"LightLight", u"Light"},
        {u"RomanRo", u"RomanRoman", u"Roman"},
        {u"BoldBo", u"BoldBold", u"Bold"},
        {u"BlackBl", u"BlackBlack", u"Black"},
        {u"ItalicIt", u"ItalicItalic", u"Italic"},
        {u"MediumMed", u"MediumMedium", u"Medium"},
    }};
    for (const Doubling& d : doublings) {
        if (name.contains(QStringView(d.test))) {
            QString cleaned = name;
            return cleaned.replace(QString::fromUtf16(d.doubled), QString::fromUtf16(d.single));
        }
    }
    return name;
}

QStringList QNFontsOutlineController::alertsForItem(const QVariantMap& item, const QString& attribute,
                                                    const QString& attrUIStr, const QVariantList& conditions)
{
    const QString text = item.value(attribute).toString();
    QStringList alerts;
    if (text.isEmpty())
        return alerts;
    for (const QVariant& entry : conditions) {
        const QVariantMap rule = entry.toMap();
        const QString condition = rule.value(kRuleConditionKey).toString();
        const QString value = rule.value(kRuleValueKey).toString();
        if (condition.contains(QLatin1String("contain")) && !value.isEmpty()) {
            const bool found = containsIgnoringCaseAndDiacritics(text, value);
            if (condition == kConditionContains && found)
                alerts.append(QStringLiteral("%1 contains \"%2\"").arg(attrUIStr, value));
            else if (condition.contains(QLatin1String("doesn't")) && !found)
                alerts.append(QStringLiteral("%1 doesn't contain \"%2\"").arg(attrUIStr, value));
        } else if (condition == kConditionIs) {
            if (matchesPatternIgnoringCase(text, value))
                alerts.append(QStringLiteral("%1 is \"%2\"").arg(attrUIStr, value));
        }
    }
    return alerts;
}

QString QNFontsOutlineController::iconForFontType(const QString& type)
{
    if (type.contains(inspection::kFontTypeOpenTypeMarker))
        return QStringLiteral("fontOpenType");
    if (type == inspection::kFontTypeType1)
        return QStringLiteral("fontPS");
    if (type == inspection::kFontTypeTrueType)
        return QStringLiteral("fontTT");
    if (type == inspection::kFontTypeBitmap)
        return QStringLiteral("fontFauxed");
    return kImageBlank;
}

QString QNFontsOutlineController::iconForFontStatus(const QString& status)
{
    if (status == inspection::kFontStatusInstalled)
        return QStringLiteral("OK");
    if (status == inspection::kFontStatusMissing || status == inspection::kFontStatusUnknown)
        return QStringLiteral("Missing");
    if (status == inspection::kFontStatusFauxed)
        return QStringLiteral("fontFauxed");
    if (status == inspection::kFontStatusSubstituted)
        return QStringLiteral("fontSubstituted");
    return {};
}

namespace {

bool hasFontPath(const QVariantMap& record)
{
    const QString path = record.value(inspection::kFontPathKey).toString();
    return !path.isEmpty() && path != inspection::kFontNoPath;
}

} // namespace

QVariantList QNFontsOutlineController::itemsForAction(const OutlineSelection& selection)
{
    return rowsToActOn(selection, selection.rows, hasFontPath);
}

QNFontsOutlineController::RevealMenuItem QNFontsOutlineController::revealMenuItem(const QVariantList& rowsToActOn)
{
    const QStringList paths = pathsToReveal(rowsToActOn);
    if (!paths.isEmpty() && paths.first().contains(inspection::kFontAdobeFontsMarker))
        return {QStringLiteral("Activated from Adobe Fonts"), false};
    return {QStringLiteral("Reveal in Finder..."), !paths.isEmpty()};
}

QStringList QNFontsOutlineController::pathsToReveal(const QVariantList& rowsToActOn)
{
    QStringList paths;
    for (const QVariant& row : rowsToActOn) {
        const QString path = row.toMap().value(inspection::kFontPathKey).toString();
        if (!path.isEmpty())
            paths.append(path);
    }
    return paths;
}

} // namespace quillon::results
