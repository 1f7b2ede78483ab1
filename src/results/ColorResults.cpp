#include "results/ColorResults.h"

#include "app/Numbers.h"
#include "app/NumericText.h"
#include "app/RecordKeys.h"
#include "app/Records.h"
#include "app/Settings.h"
#include "inspection/ColorRecordKeys.h"
#include "results/PresetKeys.h"
#include "results/ResultKeys.h"

#include <QSet>

using namespace quillon::inspection;

namespace quillon::results {

void QNColorsOutlineController::startup()
{
    clear();
    m_presetDict.clear();
}

void QNColorsOutlineController::setItems(const QVariantMap& dataFile, const QVariantMap& preset)
{
    m_presetDict = preset.value(kPresetColorsKey).toMap();
    m_dataFile = dataFile;
    m_items = loadResultRows(dataFile, [this](QVariantMap doc) {
        return judgeColors(prepareColorsArr(doc.value(app::kGroupChildrenKey).toList(), doc), m_presetDict);
    });
}

void QNColorsOutlineController::reapplyPreset(const QVariantMap& preset)
{
    setItems(m_dataFile, preset);
}

QVariantList QNColorsOutlineController::applyCurrPresetToArray(const QVariantList& records, const QVariantMap& preset)
{
    m_presetDict = preset.value(kPresetColorsKey).toMap();
    return judgeColors(records, m_presetDict);
}

QString QNColorsOutlineController::registrationInTextFlag() const
{
    return QString::number(app::intValueOf(m_presetDict.value(kColorsRegAppliedToTextKey)));
}

QString registrationInTextFlagOfPreset(const QVariantMap& preset)
{
    return QString::number(app::intValueOf(preset.value(kColorsRegAppliedToTextKey)));
}

QVariantList QNColorsOutlineController::judgeColors(const QVariantList& records, const QVariantMap& colorRules)
{
    auto isOn = [&colorRules](const QString& key) { return app::variantToBool(colorRules.value(key)); };
    const bool modelCheck = isOn(kColorsSpotKey) || isOn(kColorsProcessKey);
    const bool spaceCheck = isOn(kColorsRGBKey) || isOn(kColorsCMYKKey) || isOn(kColorsLABKey) || isOn(kColorsHSBKey);
    const bool unusedCheck = isOn(kColorsUnusedKey);

    QVariantList judged;
    judged.reserve(records.size());
    for (const QVariant& input : records) {
        QVariantMap record = input.toMap();
        QVariantMap alerts;
        // The model and space texts are looked up among the keys as they stand, so a preset may
        // also flag "mixedinkmodel" or "registration" while one of the boxes is on.
        const QString model = record.value(inspection::kColorModelKey).toString();
        if (modelCheck && isOn(model))
            alerts.insert(inspection::kColorModelKey, QStringLiteral("Color model is %1").arg(model));
        const QString space = record.value(inspection::kColorSpaceKey).toString();
        if (spaceCheck && isOn(space))
            alerts.insert(inspection::kColorSpaceKey, QStringLiteral("Color space is %1").arg(space));
        if (unusedCheck && record.value(inspection::kColorUsedKey).toString() == inspection::kColorUnused)
            alerts.insert(inspection::kColorUsedKey, QStringLiteral("Unused color"));
        record.insert(kAlertsKey, alerts);
        setAlertDecoration(record, kImageBlank); // the alert column draws its own icon
        judged.append(record);
    }
    return judged;
}

QVariantList QNColorsOutlineController::prepareColorsArr(const QVariantList& records, const QVariantMap& documentDict)
{
    QVariantList prepared = records;
    prepareColorValuesAndInsertAlertsDict(prepared);
    processNonePaperRegistration(prepared);
    assignUnusedStatusUsingUnusedNames(prepared,
                                       documentDict.value(inspection::kColorDocUnusedNamesKey).toStringList());
    setRegistrationIssueCount(prepared,
                              documentDict.value(inspection::kColorDocRegistrationInTextCountKey).toLongLong(),
                              QStringLiteral("[Registration] applied to text"));
    return prepared;
}

void QNColorsOutlineController::prepareColorValuesAndInsertAlertsDict(QVariantList& records)
{
    for (QVariant& item : records) {
        QVariantMap record = item.toMap();
        const QVariantList values = record.value(inspection::kColorValuesListKey).toList();
        record.insert(inspection::kColorValueKey, stringFromColorValues(values));
        record.insert(inspection::kColorValuesListKey,
                      normalizedValuesFromColorValues(values, record.value(inspection::kColorSpaceKey).toString()));
        record.insert(kAlertsKey, QVariantMap());
        item = record;
    }
}

void QNColorsOutlineController::processNonePaperRegistration(QVariantList& records)
{
    app::removeObjectForName(records, inspection::kColorSwatchNone);
    for (QVariant& item : records) {
        QVariantMap record = item.toMap();
        const QString name = record.value(inspection::kColorNameKey).toString();
        if (name == inspection::kColorSwatchPaper) {
            record.insert(inspection::kColorModelKey, QString());
            record.insert(inspection::kColorSpaceKey, QString());
        } else if (name == inspection::kColorSwatchRegistration) {
            // Its values stay normalised under the space it came with; its sample is drawn as CMYK.
            record.insert(inspection::kColorSpaceKey, inspection::kColorSpaceRegistration);
            record.insert(inspection::kColorValueKey, QString());
        } else {
            continue;
        }
        item = record;
    }
}

QString QNColorsOutlineController::stringFromColorValues(const QVariantList& values)
{
    QStringList texts;
    texts.reserve(values.size());
    for (const QVariant& v : values)
        texts.append(app::formatOneDecimal(v.toDouble()));
    return texts.join(QLatin1String("  "));
}

QVariantList QNColorsOutlineController::normalizedValuesFromColorValues(const QVariantList& values,
                                                                        const QString& colorSpace)
{
    QVariantList normalized;
    if (colorSpace == inspection::kColorSpaceCMYK || colorSpace == inspection::kColorSpaceRGB) {
        const double scale = colorSpace == inspection::kColorSpaceCMYK ? 100.0 : 255.0;
        for (const QVariant& v : values)
            normalized.append(v.toDouble() / scale);
    } else if (colorSpace == inspection::kColorSpaceHSB) {
        for (qsizetype i = 0; i < values.size(); ++i)
            normalized.append(values.at(i).toDouble() / (i == 0 ? 359.0 : 100.0));
    }
    return normalized;
}

QString QNColorsOutlineController::imageForSpotValue(const QString& model)
{
    if (model == inspection::kColorModelProcess)
        return QStringLiteral("color-process");
    if (model == inspection::kColorModelSpot)
        return QStringLiteral("color-spot");
    if (model == inspection::kColorModelMixedInk)
        return QStringLiteral("color-mixed-ink");
    return kImageBlank;
}

QString QNColorsOutlineController::imageForColorSpace(const QString& space)
{
    if (space == inspection::kColorSpaceCMYK)
        return QStringLiteral("color-cmyk");
    if (space == inspection::kColorSpaceRGB || space == inspection::kColorSpaceHSB)
        return QStringLiteral("color-rgb");
    if (space == inspection::kColorSpaceLAB)
        return QStringLiteral("color-lab");
    if (space == inspection::kColorSpaceRegistration)
        return QStringLiteral("color-registration");
    return kImageBlank;
}

QNColorsOutlineController::SwatchSample QNColorsOutlineController::swatchSample(const QString& space,
                                                                                const QVariantList& normalizedValues)
{
    auto firstValues = [&normalizedValues](qsizetype count) {
        QList<double> components;
        for (qsizetype i = 0; i < count; ++i)
            components.append(i < normalizedValues.size() ? normalizedValues.at(i).toDouble() : 0.0);
        return components;
    };
    using Kind = SwatchSample::Kind;
    if (space == inspection::kColorSpaceCMYK || space == inspection::kColorSpaceRegistration)
        return {Kind::DeviceCMYK, firstValues(4)};
    if (space == inspection::kColorSpaceRGB)
        return {Kind::DeviceRGB, firstValues(3)};
    if (space == inspection::kColorSpaceHSB)
        return {Kind::HSB, firstValues(3)};
    if (space == inspection::kColorSpaceLAB)
        return {Kind::White, {}};
    return {Kind::Hidden, {}};
}

void assignUnusedStatusUsingUnusedNames(QVariantList& records, const QStringList& names)
{
    if (names.isEmpty())
        return;
    // A set, not the list: a document may hold a hundred thousand swatches, most of them unused.
    const QSet<QString> unused(names.cbegin(), names.cend());
    for (QVariant& item : records) {
        QVariantMap record = item.toMap();
        const QString name = record.value(inspection::kColorNameKey).toString();
        if (!name.isEmpty() && unused.contains(name)) {
            record.insert(inspection::kColorUsedKey, inspection::kColorUnused);
            item = record;
        }
    }
}

void setRegistrationIssueCount(QVariantList& records, qint64 count, const QString& rule)
{
    if (count == 0)
        return;
    for (QVariant& item : records) {
        QVariantMap record = item.toMap();
        if (record.value(inspection::kColorNameKey).toString() != inspection::kColorSwatchRegistration)
            continue;
        QVariantMap alerts = record.value(kAlertsKey).toMap();
        alerts.insert(inspection::kColorModelKey, QStringLiteral("%1: %2 cases").arg(rule).arg(count));
        record.insert(kAlertsKey, alerts);
        item = record;
        return;
    }
}

const QList<QNColorRules::CheckBox>& QNColorRules::keysForButtonTitles()
{
    static const QList<CheckBox> boxes{
        {QStringLiteral("Spot"), kColorsSpotKey},
        {QStringLiteral("Process"), kColorsProcessKey},
        {QStringLiteral("RGB"), kColorsRGBKey},
        {QStringLiteral("CMYK"), kColorsCMYKKey},
        {QStringLiteral("Lab"), kColorsLABKey},
        {QStringLiteral("HSB"), kColorsHSBKey},
        {QStringLiteral("Unused"), kColorsUnusedKey},
        {QStringLiteral("[Registration] applied to text"), kColorsRegAppliedToTextKey},
    };
    return boxes;
}

namespace {

QString keyForTitle(const QString& title)
{
    for (const QNColorRules::CheckBox& box : QNColorRules::keysForButtonTitles())
        if (box.title == title)
            return box.key;
    return {};
}

} // namespace

int QNColorRules::stateForTitle(const QString& title) const
{
    const QString key = keyForTitle(title);
    return key.isEmpty() ? 0 : app::intValueOf(m_colorRulesDict.value(key));
}

void QNColorRules::buttonActions(const QString& title, int state)
{
    const QString key = keyForTitle(title);
    if (!key.isEmpty())
        m_colorRulesDict.insert(key, state);
}

} // namespace quillon::results
