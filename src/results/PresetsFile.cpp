#include "results/PresetsFile.h"

#include "app/NumericText.h"
#include "app/PropertyList.h"
#include "app/Records.h"
#include "results/PresetKeys.h"

namespace quillon::results {

namespace {

// Check boxes and limits are stored as numbers, or as true and false by property-list writers that
// keep flags as such; both read as numbers.
bool isNumber(const QVariant& value)
{
    return app::isNumberValue(value) || value.typeId() == QMetaType::Bool;
}

bool isText(const QVariant& value)
{
    return value.typeId() == QMetaType::QString;
}

bool isDictionary(const QVariant& value)
{
    return value.typeId() == QMetaType::QVariantMap;
}

// Checks one key path after another, keeping the first problem.
class TypeCheck {
public:
    explicit TypeCheck(const QString& path) : m_path(path) {}

    void require(bool ok, const QString& where, const char* expected)
    {
        if (!ok && !m_error)
            m_error = app::makeError(QStringLiteral("must be %1").arg(QLatin1String(expected)), m_path, where);
    }

    void rules(const QVariantMap& section, const QString& sectionKey)
    {
        if (!section.contains(kConditionsKey))
            return;
        const QVariant conditions = section.value(kConditionsKey);
        const QString where = sectionKey + u'/' + kConditionsKey;
        require(conditions.typeId() == QMetaType::QVariantList, where, "a list of rules");
        const QVariantList list = conditions.toList();
        for (qsizetype i = 0; i < list.size() && !m_error; ++i) {
            const QString ruleWhere = where + u'/' + QString::number(i);
            require(isDictionary(list.at(i)), ruleWhere, "a rule (a dictionary)");
            const QVariantMap rule = list.at(i).toMap();
            for (const QString& key : {kRuleAttributeKey, kRuleConditionKey})
                require(isText(rule.value(key)), ruleWhere + u'/' + key, "text");
            const QVariant value = rule.value(kRuleValueKey);
            require(isText(value) || isNumber(value), ruleWhere + u'/' + kRuleValueKey, "text or a number");
        }
    }

    void numbers(const QVariantMap& section, const QString& sectionKey, std::initializer_list<QString> keys)
    {
        for (const QString& key : keys)
            if (section.contains(key))
                require(isNumber(section.value(key)), sectionKey + u'/' + key, "a number");
    }

    void limitFields(const QVariantMap& links)
    {
        for (const QString& key : {kSizeBelowFieldKey, kSizeAboveFieldKey, kResBelowFieldKey, kResAboveFieldKey,
                                   kResBWBelowFieldKey, kResBWAboveFieldKey}) {
            if (!links.contains(key))
                continue;
            const QVariant value = links.value(key);
            const QString where = kPresetLinksKey + u'/' + key;
            require(isText(value), where, "text");
            require(!value.toString().trimmed().startsWith(u'-') || app::floatValueOfText(value.toString()) >= 0, where,
                    "empty or a number that is not negative");
        }
        for (const QString& key : {kSizeBelowBytesKey, kSizeAboveBytesKey}) {
            if (!links.contains(key))
                continue;
            const QVariant value = links.value(key);
            const bool integer = value.typeId() == QMetaType::ULongLong ||
                                 ((value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int) &&
                                  value.toLongLong() >= 0);
            require(integer, kPresetLinksKey + u'/' + key, "a byte count (an integer that is not negative)");
        }
        for (const QString& key : {kSizeBelowUnitsKey, kSizeAboveUnitsKey})
            if (links.contains(key))
                require(isText(links.value(key)), kPresetLinksKey + u'/' + key, "text");
    }

    app::Status result() const { return m_error ? app::Status(*m_error) : app::Status(); }

private:
    QString m_path;
    std::optional<app::Error> m_error;
};

} // namespace

app::Status checkPresetTypes(const QVariantMap& preset, const QString& path)
{
    TypeCheck check(path);
    if (preset.contains(kPresetNameKey))
        check.require(isText(preset.value(kPresetNameKey)), kPresetNameKey, "text");
    for (const QString& key :
         {kPresetFontsKey, kPresetLinksKey, kPresetColorsKey, kPresetDocumentKey, kPresetOptionsKey})
        if (preset.contains(key))
            check.require(isDictionary(preset.value(key)), key, "a dictionary");
    const QVariantMap fonts = preset.value(kPresetFontsKey).toMap();
    check.rules(fonts, kPresetFontsKey);
    check.numbers(fonts, kPresetFontsKey, {kFontsEmbedKey, kFontsEmbedBtnKey});
    const QVariantMap links = preset.value(kPresetLinksKey).toMap();
    check.rules(links, kPresetLinksKey);
    check.numbers(links, kPresetLinksKey, {kFontsEpsBtnKey, kFontsEpsMtrxKey, kScaledNonPropBtnKey, kNonPrintBtnKey});
    check.limitFields(links);
    const QVariantMap colors = preset.value(kPresetColorsKey).toMap();
    for (auto it = colors.cbegin(); it != colors.cend(); ++it)
        check.require(isNumber(it.value()), kPresetColorsKey + u'/' + it.key(), "a number");
    return check.result();
}

app::Result<QVariantMap> readPresetFile(const QString& path)
{
    // Opened as bytes with a bound: a symlink loop, a FIFO or a device is told as what it is.
    app::Result<QVariantMap> preset = app::readPropertyListDictionary(path, kPresetFileSizeLimit);
    if (!preset)
        return preset;
    if (const app::Status typed = checkPresetTypes(*preset, path); !typed)
        return typed.error();
    return preset;
}

} // namespace quillon::results
