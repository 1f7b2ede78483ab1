#include "cli/PresetEdits.h"

#include "results/ColorResults.h"
#include "results/DocumentChecks.h"
#include "results/FontRuleTable.h"
#include "results/LinkRuleTable.h"
#include "results/PresetKeys.h"

#include <functional>

namespace quillon::cli {

namespace {

namespace rs = quillon::results;

// Sets one value, or says why the text is not one.
using Setter = std::function<app::Status(rs::PresetEditorState& state, const QString& value)>;

struct SettingKey {
    QString key;
    Setter set;
};

app::Error refused(const QString& key, const QString& value, const QString& expected)
{
    return app::makeError(QStringLiteral("%1=%2: expected %3").arg(key, value, expected));
}

Setter numberField(QString rs::PresetEditorState::*field)
{
    return [field](rs::PresetEditorState& state, const QString& value) -> app::Status {
        if (!rs::isNumericFieldText(value))
            return app::makeError(QStringLiteral("a non-negative number, or nothing to turn the limit off"));
        state.*field = value.trimmed();
        return {};
    };
}

Setter unitField(QString rs::PresetEditorState::*field)
{
    return [field](rs::PresetEditorState& state, const QString& value) -> app::Status {
        if (value != rs::kUnitKB && value != rs::kUnitMB && value != rs::kUnitGB)
            return app::makeError(QStringLiteral("KB, MB or GB"));
        state.*field = value;
        return {};
    };
}

app::Result<int> onOff(const QString& value)
{
    if (value == QLatin1String("1") || value == QLatin1String("on"))
        return 1;
    if (value == QLatin1String("0") || value == QLatin1String("off"))
        return 0;
    return app::makeError(QStringLiteral("on or off (1 or 0)"));
}

Setter checkBox(int rs::PresetEditorState::*field)
{
    return [field](rs::PresetEditorState& state, const QString& value) -> app::Status {
        const app::Result<int> checked = onOff(value);
        if (!checked)
            return checked.error();
        state.*field = *checked;
        return {};
    };
}

Setter colorBox(const QString& key)
{
    return [key](rs::PresetEditorState& state, const QString& value) -> app::Status {
        const app::Result<int> checked = onOff(value);
        if (!checked)
            return checked.error();
        state.colorRules.insert(key, *checked);
        return {};
    };
}

// A document check, "Document.<key>": `parse` gives what the value stores in the preset's "Document"
// dictionary; an empty value removes the key, which turns the check off.
Setter documentCheck(const QString& key, const std::function<app::Result<QVariantMap>(const QString&)>& parse)
{
    return [key, parse](rs::PresetEditorState& state, const QString& value) -> app::Status {
        QVariantMap checks = state.documentChecks.value_or(QVariantMap());
        if (value.isEmpty()) {
            checks.remove(key);
        } else {
            const app::Result<QVariantMap> stored = parse(value);
            if (!stored)
                return stored.error();
            checks.insert(*stored);
        }
        state.documentChecks = checks;
        return {};
    };
}

Setter documentLength(const QString& key)
{
    return documentCheck(key, [key](const QString& value) -> app::Result<QVariantMap> {
        const std::optional<rs::DocumentLength> length = rs::documentLengthOfText(value);
        if (!length)
            return app::makeError(
                QStringLiteral("a length with its unit (%1), such as 3mm; nothing turns the check off")
                    .arg(rs::documentUnitNames().join(QStringLiteral(", "))));
        return QVariantMap{{key, length->points}, {rs::kDocUnitKey, length->unit}};
    });
}

Setter documentPageCount(const QString& key)
{
    return documentCheck(key, [key](const QString& value) -> app::Result<QVariantMap> {
        bool ok = false;
        const qint64 pages = value.trimmed().toLongLong(&ok);
        if (!ok || pages < 0 || pages > 1000000000)
            return app::makeError(QStringLiteral("a page count (0 or more); nothing turns the check off"));
        return QVariantMap{{key, pages}};
    });
}

Setter documentState(const QString& key)
{
    return documentCheck(key, [key](const QString& value) -> app::Result<QVariantMap> {
        const app::Result<int> checked = onOff(value);
        if (!checked)
            return checked.error();
        return QVariantMap{{key, *checked}};
    });
}

Setter documentUnit()
{
    return documentCheck(rs::kDocUnitKey, [](const QString& value) -> app::Result<QVariantMap> {
        if (!rs::documentUnitNames().contains(value))
            return app::makeError(rs::documentUnitNames().join(QStringLiteral(", ")));
        return QVariantMap{{rs::kDocUnitKey, value}};
    });
}

QString documentKey(const QString& key)
{
    return rs::kPresetDocumentKey + u'.' + key;
}

const QList<SettingKey>& settingKeys()
{
    using S = rs::PresetEditorState;
    static const QList<SettingKey> keys = [] {
        QList<SettingKey> list{
            {rs::kFontsEmbedBtnKey, checkBox(&S::embedBtn)},
            {rs::kSizeBelowFieldKey, numberField(&S::sizeBelowField)},
            {rs::kSizeBelowUnitsKey, unitField(&S::sizeBelowUnits)},
            {rs::kSizeAboveFieldKey, numberField(&S::sizeAboveField)},
            {rs::kSizeAboveUnitsKey, unitField(&S::sizeAboveUnits)},
            {rs::kResBelowFieldKey, numberField(&S::resBelowField)},
            {rs::kResAboveFieldKey, numberField(&S::resAboveField)},
            {rs::kResBWBelowFieldKey, numberField(&S::resBWBelowField)},
            {rs::kResBWAboveFieldKey, numberField(&S::resBWAboveField)},
            {rs::kFontsEpsBtnKey, checkBox(&S::fontsEpsBtn)},
            // The radio cells: 0 any fonts, 1 embedded fonts only.
            {rs::kFontsEpsMtrxKey, checkBox(&S::fontsEpsMtrx)},
            {rs::kScaledNonPropBtnKey, checkBox(&S::scaledNonPropBtn)},
            {rs::kNonPrintBtnKey, checkBox(&S::nonPrintBtn)},
        };
        for (const rs::QNColorRules::CheckBox& box : rs::QNColorRules::keysForButtonTitles())
            list.append({box.key, colorBox(box.key)});
        for (const QString& key : {rs::kDocMinBleedKey, rs::kDocMinSlugKey, rs::kDocPageWidthKey, rs::kDocPageHeightKey,
                                   rs::kDocPageSizeToleranceKey})
            list.append({documentKey(key), documentLength(key)});
        for (const QString& key : {rs::kDocMinPagesKey, rs::kDocMaxPagesKey})
            list.append({documentKey(key), documentPageCount(key)});
        list.append({documentKey(rs::kDocSamePageSizeKey), documentState(rs::kDocSamePageSizeKey)});
        list.append({documentKey(rs::kDocUnitKey), documentUnit()});
        return list;
    }();
    return keys;
}

app::Status assign(const QString& assignment, rs::PresetEditorState& state)
{
    const qsizetype equals = assignment.indexOf(u'=');
    if (equals <= 0)
        return app::makeError(QStringLiteral("\"%1\": KEY=VALUE expected").arg(assignment));
    const QString key = assignment.left(equals);
    const QString value = assignment.mid(equals + 1);
    for (const SettingKey& setting : settingKeys()) {
        if (setting.key != key)
            continue;
        if (const app::Status set = setting.set(state, value); !set)
            return refused(key, value, set.error().text());
        return {};
    }
    return app::makeError(
        QStringLiteral("no preset setting is named \"%1\"; the settings: %2").arg(key, presetSettingKeys().join(u' ')));
}

struct RuleKind {
    const char* option;
    QStringList attributes;
    // The record key of an attribute, and the conditions and values its editor offers (no
    // values: any text).
    std::function<QString(const QString&)> recordKey;
    std::function<QStringList(const QString&)> conditions;
    std::function<QStringList(const QString&)> values;
};

RuleKind fontRules()
{
    using Table = rs::QNFontRulesTableController;
    const auto entry = [](const QString& attribute) { return rs::fontAttributeNamed(attribute)->entry; };
    return {"font rule", Table::attributeMenuTitles(),
            [](const QString& attribute) { return rs::fontAttributeNamed(attribute)->recordKey; },
            [entry](const QString& attribute) {
                return entry(attribute) == rs::FontRuleValueEntry::TextField ? Table::conditionMenuTitles()
                                                                             : QStringList{rs::kConditionIs};
            },
            [entry](const QString& attribute) {
                switch (entry(attribute)) {
                case rs::FontRuleValueEntry::TypeMenu:
                    return Table::typeMenuTitles();
                case rs::FontRuleValueEntry::StatusMenu:
                    return Table::statusMenuTitles();
                default:
                    return QStringList{};
                }
            }};
}

RuleKind linkRules()
{
    using Table = rs::QNLinkRulesTable;
    const auto isStatus = [](const QString& attribute) { return attribute == QLatin1String("Status"); };
    return {"link rule", Table::attributeMenuTitles(),
            [](const QString& attribute) { return rs::linkAttributeKey(attribute); },
            [isStatus](const QString& attribute) {
                return isStatus(attribute) ? QStringList{rs::kConditionIs} : Table::conditionMenuTitles();
            },
            [isStatus](const QString& attribute) {
                return isStatus(attribute) ? Table::statusMenuTitles() : QStringList{};
            }};
}

app::Result<QVariantMap> ruleOf(const RuleKind& kind, const std::vector<std::string>& triples, size_t at)
{
    const QString attribute = QString::fromStdString(triples.at(at));
    const QString condition = QString::fromStdString(triples.at(at + 1));
    const QString value = QString::fromStdString(triples.at(at + 2));
    const auto choose = [&](const char* what, const QString& given, const QStringList& allowed) -> app::Status {
        if (allowed.contains(given))
            return {};
        return app::makeError(QStringLiteral("%1 \"%2\" \"%3\" \"%4\": the %5 is one of \"%6\"")
                                  .arg(QLatin1String(kind.option), attribute, condition, value, QLatin1String(what),
                                       allowed.join(QStringLiteral("\", \""))));
    };
    if (app::Status ok = choose("attribute", attribute, kind.attributes); !ok)
        return ok.error();
    if (app::Status ok = choose("condition", condition, kind.conditions(attribute)); !ok)
        return ok.error();
    if (const QStringList values = kind.values(attribute); !values.isEmpty())
        if (app::Status ok = choose("value", value, values); !ok)
            return ok.error();
    return QVariantMap{{rs::kRuleAttributeKey, attribute},
                       {rs::kRuleAttributeKeyKey, kind.recordKey(attribute)},
                       {rs::kRuleConditionKey, condition},
                       {rs::kRuleValueKey, value}};
}

bool sameRule(const QVariantMap& a, const QVariantMap& b)
{
    return a.value(rs::kRuleAttributeKey) == b.value(rs::kRuleAttributeKey) &&
           a.value(rs::kRuleConditionKey) == b.value(rs::kRuleConditionKey) &&
           a.value(rs::kRuleValueKey).toString() == b.value(rs::kRuleValueKey).toString();
}

// Removals first, so that a rule may be replaced in one command; an added rule already there is
// not doubled.
app::Status editRules(const RuleKind& kind, const std::vector<std::string>& add, const std::vector<std::string>& remove,
                      QVariantList& rules)
{
    for (size_t at = 0; at + 2 < remove.size(); at += 3) {
        const app::Result<QVariantMap> rule = ruleOf(kind, remove, at);
        if (!rule)
            return rule.error();
        const qsizetype before = rules.size();
        rules.removeIf([&](const QVariant& existing) { return sameRule(existing.toMap(), *rule); });
        if (rules.size() == before)
            return app::makeError(QStringLiteral("the preset has no %1 \"%2\" \"%3\" \"%4\"")
                                      .arg(QLatin1String(kind.option), rule->value(rs::kRuleAttributeKey).toString(),
                                           rule->value(rs::kRuleConditionKey).toString(),
                                           rule->value(rs::kRuleValueKey).toString()));
    }
    for (size_t at = 0; at + 2 < add.size(); at += 3) {
        const app::Result<QVariantMap> rule = ruleOf(kind, add, at);
        if (!rule)
            return rule.error();
        if (std::none_of(rules.cbegin(), rules.cend(),
                         [&](const QVariant& existing) { return sameRule(existing.toMap(), *rule); }))
            rules.append(*rule);
    }
    return {};
}

} // namespace

QStringList presetSettingKeys()
{
    QStringList keys;
    for (const SettingKey& setting : settingKeys())
        keys << setting.key;
    return keys;
}

app::Status applyPresetEdits(const PresetEdits& edits, results::PresetEditorState& state)
{
    results::PresetEditorState edited = state;
    for (const std::string& assignment : edits.assignments)
        if (const app::Status set = assign(QString::fromStdString(assignment), edited); !set)
            return set;
    if (const app::Status fonts = editRules(fontRules(), edits.addFontRules, edits.removeFontRules, edited.fontRules);
        !fonts)
        return fonts;
    if (const app::Status links = editRules(linkRules(), edits.addLinkRules, edits.removeLinkRules, edited.linkRules);
        !links)
        return links;
    state = edited;
    return {};
}

} // namespace quillon::cli
