#include "results/Presets.h"

#include "app/Alerts.h"
#include "app/AppPaths.h"
#include "app/FilePaths.h"
#include "app/Log.h"
#include "app/NumericText.h"
#include "app/PathComponents.h"
#include "app/PropertyList.h"
#include "app/RegularFile.h"
#include "app/Settings.h"
#include "app/Strings.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "results/PresetsFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

#include <unistd.h>

namespace quillon::results {

QString presetsFolderPath()
{
    return app::applicationSupportFolder() + u'/' + kPresetsFolderName;
}

QVariantMap defaultPreset()
{
    const QVariantMap missingRule{{kRuleAttributeKey, QStringLiteral("Status")},
                                  {kRuleAttributeKeyKey, QStringLiteral("status")},
                                  {kRuleConditionKey, kConditionIs},
                                  {kRuleValueKey, QStringLiteral("Missing")}};
    return {{kPresetNameKey, kDefaultPresetName},
            {kPresetFontsKey, QVariantMap{{kConditionsKey, QVariantList{missingRule}}}},
            {kPresetLinksKey, QVariantMap{{kConditionsKey, QVariantList{missingRule}}}},
            {kPresetColorsKey, QVariantMap()},
            {kPresetDocumentKey, QVariantMap()},
            {kPresetOptionsKey, QVariantMap()}};
}

std::uint64_t sizeLimitBytes(const QString& fieldText, const QString& unit)
{
    const float number = app::floatValueOfText(fieldText);
    float factor = 1073741824.0f;
    if (unit == kUnitKB)
        factor = 1024.0f;
    else if (unit == kUnitMB)
        factor = 1048576.0f;
    const float bytes = number * factor;
    if (!(bytes > 0.0f))
        return 0;
    if (bytes >= 18446744073709551616.0f)
        return UINT64_MAX;
    return static_cast<std::uint64_t>(bytes);
}

bool isNumericFieldText(const QString& text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([0-9]+\\.?[0-9]*|\\.[0-9]+)?\\s*$"));
    return number.match(text).hasMatch();
}

bool acceptNumericField(app::AlertSink& alerts, const QString& text)
{
    if (isNumericFieldText(text))
        return true;
    app::runAlert(alerts, QStringLiteral("Invalid numeric value"), QString(), QStringList{QStringLiteral("OK")}, true);
    return false;
}

QString stringForKeyInDict(const QString& key, const QVariantMap& dict, const QString& defaultValue)
{
    const QVariant value = dict.value(key);
    if (value.typeId() == QMetaType::QString && !value.toString().isEmpty())
        return value.toString();
    return defaultValue;
}

QNPresetsTable::QNPresetsTable(QString presetsFolder) : m_folder(std::move(presetsFolder)) {}

QStringList QNPresetsTable::presetNames() const
{
    QStringList names;
    for (const QVariant& preset : m_items)
        names.append(preset.toMap().value(kPresetNameKey).toString());
    return names;
}

qsizetype QNPresetsTable::rowOfPreset(const QString& name) const
{
    return presetNames().indexOf(name);
}

QString presetFilePath(const QString& folder, const QString& name)
{
    return folder + u'/' + app::safeFileName(name) + u'.' + kPresetExtension;
}

QString QNPresetsTable::presetFilePath(const QString& name) const
{
    return results::presetFilePath(m_folder, name);
}

app::Status QNPresetsTable::loadStartupSettings(const app::Settings& settings)
{
    m_isLaunching = true;
    m_items.clear();
    const app::Status loaded = loadPresets();
    const qsizetype row = settings.integer(kPresetIndexSelectedOnQuitSetting);
    m_selectedRow = (row >= 0 && row < m_items.size()) ? row : -1;
    return loaded;
}

namespace {

// The presets of the folder in name order (digits by value), each with a "name" (the file's base
// name when the file gives none). Files that cannot be read are left out and told in `refused`.
QVariantList readPresetFiles(const QString& folder, QList<app::Error>& refused)
{
    QStringList names = QDir(folder).entryList(QDir::Files);
    // By preset name, so "Print" comes before "Print copy 1".
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return app::numericCompare(app::stringByDeletingPathExtension(a), app::stringByDeletingPathExtension(b)) < 0;
    });
    QVariantList presets;
    for (const QString& fileName : names) {
        if (fileName.startsWith(u'.') || app::pathExtension(fileName) != kPresetExtension)
            continue;
        auto preset = readPresetFile(folder + u'/' + fileName);
        if (!preset) {
            app::logFailure(QStringLiteral("read preset: %1").arg(preset.error().text()));
            refused.append(preset.error());
            continue;
        }
        if (preset->isEmpty())
            continue;
        if (preset->value(kPresetNameKey).typeId() != QMetaType::QString)
            preset->insert(kPresetNameKey, app::stringByDeletingPathExtension(fileName));
        presets.append(preset.value());
    }
    return presets;
}

} // namespace

app::Status QNPresetsTable::loadPresets()
{
    app::logEntry("loadPresets");
    QDir().mkpath(m_folder);
    m_refused.clear();
    m_items = readPresetFiles(m_folder, m_refused);
    if (!m_items.isEmpty()) {
        const qsizetype row = rowOfPreset(kDefaultPresetName);
        if (row > 0)
            m_items.move(row, 0);
        else if (row < 0)
            m_items.prepend(defaultPreset());
        return {};
    }
    m_items.append(defaultPreset());
    const QString path = presetFilePath(kDefaultPresetName);
    if (QFileInfo::exists(path))
        return app::makeError(QStringLiteral("The default preset could not be read; it was left as it is."), path);
    return writePreset(m_items.first().toMap());
}

std::optional<app::Error> QNPresetsTable::refusalOf(const QString& name) const
{
    const QString path = presetFilePath(name);
    for (const app::Error& error : m_refused)
        if (error.file == path)
            return error;
    return std::nullopt;
}

app::Status QNPresetsTable::writePreset(const QVariantMap& preset) const
{
    return app::writePropertyListFile(preset, presetFilePath(preset.value(kPresetNameKey).toString()));
}

std::optional<QVariantMap> QNPresetsTable::curPreset() const
{
    if (m_selectedRow < 0 || m_selectedRow >= m_items.size())
        return std::nullopt;
    return m_items.at(m_selectedRow).toMap();
}

PresetEditorState QNPresetsTable::selectRow(qsizetype row)
{
    m_selectedRow = (row >= 0 && row < m_items.size()) ? row : -1;
    return loadSelectedPreset();
}

PresetEditorState QNPresetsTable::loadSelectedPreset() const
{
    PresetEditorState state;
    const QVariantMap preset = curPreset().value_or(QVariantMap());
    const QVariantMap links = preset.value(kPresetLinksKey).toMap();
    state.linkRules = links.value(kConditionsKey).toList();
    state.sizeBelowField = stringForKeyInDict(kSizeBelowFieldKey, links, QString());
    state.sizeAboveField = stringForKeyInDict(kSizeAboveFieldKey, links, QString());
    state.resBelowField = stringForKeyInDict(kResBelowFieldKey, links, QString());
    state.resAboveField = stringForKeyInDict(kResAboveFieldKey, links, QString());
    state.resBWBelowField = stringForKeyInDict(kResBWBelowFieldKey, links, QString());
    state.resBWAboveField = stringForKeyInDict(kResBWAboveFieldKey, links, QString());
    state.sizeBelowUnits = stringForKeyInDict(kSizeBelowUnitsKey, links, kUnitMB);
    state.sizeAboveUnits = stringForKeyInDict(kSizeAboveUnitsKey, links, kUnitMB);
    state.fontsEpsBtn = app::intValueOf(links.value(kFontsEpsBtnKey));
    state.fontsEpsMtrx = app::intValueOf(links.value(kFontsEpsMtrxKey));
    state.scaledNonPropBtn = app::intValueOf(links.value(kScaledNonPropBtnKey));
    state.nonPrintBtn = app::intValueOf(links.value(kNonPrintBtnKey));
    const QVariantMap fonts = preset.value(kPresetFontsKey).toMap();
    state.fontRules = fonts.value(kConditionsKey).toList();
    state.embedBtn = app::intValueOf(fonts.value(kFontsEmbedBtnKey));
    state.colorRules = preset.value(kPresetColorsKey).toMap();
    if (preset.contains(kPresetDocumentKey))
        state.documentChecks = preset.value(kPresetDocumentKey).toMap();
    return state;
}

bool QNPresetsTable::minusButtonEnabled() const
{
    const auto preset = curPreset();
    return preset && preset->value(kPresetNameKey).toString() != kDefaultPresetName;
}

app::Status QNPresetsTable::selectionShouldChange(const PresetEditorState& shown)
{
    if (m_isLaunching) {
        m_isLaunching = false;
        return {};
    }
    return writeCurrPreset(shown);
}

app::Status QNPresetsTable::writeCurrPreset(const PresetEditorState& shown)
{
    if (m_selectedRow < 0 || m_selectedRow >= m_items.size())
        return {};
    QVariantMap preset = m_items.at(m_selectedRow).toMap();

    QVariantMap links = preset.value(kPresetLinksKey).toMap();
    links.insert(kConditionsKey, shown.linkRules);
    links.insert(kSizeBelowFieldKey, shown.sizeBelowField);
    links.insert(kSizeAboveFieldKey, shown.sizeAboveField);
    links.insert(kResBelowFieldKey, shown.resBelowField);
    links.insert(kResAboveFieldKey, shown.resAboveField);
    links.insert(kResBWBelowFieldKey, shown.resBWBelowField);
    links.insert(kResBWAboveFieldKey, shown.resBWAboveField);
    links.insert(kSizeBelowUnitsKey, shown.sizeBelowUnits);
    links.insert(kSizeAboveUnitsKey, shown.sizeAboveUnits);
    links.insert(kSizeBelowBytesKey,
                 QVariant::fromValue<quint64>(sizeLimitBytes(shown.sizeBelowField, shown.sizeBelowUnits)));
    links.insert(kSizeAboveBytesKey,
                 QVariant::fromValue<quint64>(sizeLimitBytes(shown.sizeAboveField, shown.sizeAboveUnits)));
    links.insert(kFontsEpsBtnKey, shown.fontsEpsBtn);
    links.insert(kFontsEpsMtrxKey, shown.fontsEpsMtrx);
    links.insert(kScaledNonPropBtnKey, shown.scaledNonPropBtn);
    links.insert(kNonPrintBtnKey, shown.nonPrintBtn);
    preset.insert(kPresetLinksKey, links);

    // Other keys of "Fonts" (the "embed" a preset made elsewhere may hold) stay as they are.
    QVariantMap fonts = preset.value(kPresetFontsKey).toMap();
    fonts.insert(kConditionsKey, shown.fontRules);
    fonts.insert(kFontsEmbedBtnKey, shown.embedBtn);
    preset.insert(kPresetFontsKey, fonts);
    preset.insert(kPresetColorsKey, shown.colorRules);
    if (shown.documentChecks)
        preset.insert(kPresetDocumentKey, *shown.documentChecks);

    m_items[m_selectedRow] = preset;
    return writePreset(preset);
}

app::Result<QString> QNPresetsTable::addRow()
{
    QVariantMap preset = (curPreset() ? *curPreset() : m_items.value(0).toMap());
    if (preset.isEmpty())
        preset = defaultPreset();
    const QStringList names = presetNames();
    QString name;
    for (int i = 1; i < 1000000 && name.isEmpty(); ++i) {
        const QString candidate = QStringLiteral("New Preset %1").arg(i);
        // A file of that name that could not be read is left alone too.
        if (!names.contains(candidate) && !QFileInfo::exists(presetFilePath(candidate)))
            name = candidate;
    }
    if (name.isEmpty())
        return app::makeError(QStringLiteral("No free name for a new preset."), m_folder);
    preset.insert(kPresetNameKey, name);
    if (app::Status written = writePreset(preset); !written)
        return written.error();
    auto readBack = app::readPropertyListDictionary(presetFilePath(name));
    if (!readBack)
        return readBack.error();
    m_items.append(readBack.value());
    return name;
}

namespace {

void refillPopup(PresetsPopup* popup, const QStringList& names, const QString& shownBefore, const QString& showNow)
{
    if (!popup || popup->title != shownBefore)
        return;
    popup->allPresets = names;
    popup->title = showNow;
}

int criticalOK(app::AlertSink& alerts, const QString& title, const QString& message)
{
    return app::runAlert(alerts, title, message, QStringList{QStringLiteral("OK")}, true);
}

} // namespace

bool QNPresetsTable::removeRow(app::AlertSink& alerts, PresetsPopup* popup)
{
    const auto preset = curPreset();
    if (!preset)
        return false;
    const QString name = preset->value(kPresetNameKey).toString();
    if (name == kDefaultPresetName) {
        criticalOK(alerts, QStringLiteral("Default preflight preset cannot be deleted"), QString());
        return false;
    }
    m_items.removeAt(m_selectedRow);
    if (m_selectedRow >= m_items.size())
        m_selectedRow = m_items.size() - 1;
    if (popup)
        popup->allPresets.removeAll(name);
    refillPopup(popup, presetNames(), name, kDefaultPresetName);
    if (!QFile::remove(presetFilePath(name)))
        app::logFailure(QStringLiteral("delete preset file: %1").arg(presetFilePath(name)));
    return true;
}

namespace {

bool isAscii(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar c) { return c.unicode() < 128; });
}

// The longest file name, in bytes, the folder's file system takes.
qsizetype fileNameMaxBytes(const QString& folder)
{
    const long max = ::pathconf(app::localBytesOfPath(folder).constData(), _PC_NAME_MAX);
    return max > 0 ? max : 255;
}

} // namespace

std::optional<PresetNameProblem> presetNameProblem(const QString& name, const QString& folder)
{
    const QString error = QStringLiteral("Error");
    if (name.isEmpty())
        return PresetNameProblem{QStringLiteral("Please assign a name to the preflight preset"), QString(), true, true};
    if (name.contains(u':') || name.contains(u'/') || name.contains(u'[') || name.contains(u']') || !isAscii(name))
        return PresetNameProblem{
            error,
            QStringLiteral("Preset names cannot contain the following characters: : / [ ], as well as some other "
                           "special characters and accented letters."),
            false, false};
    if (name.startsWith(u'.'))
        return PresetNameProblem{error, QStringLiteral("Preset name cannot start with a period (.)"), false, true};
    // The desktop's rules end here; these keep the name a file name on this system.
    if (std::any_of(name.cbegin(), name.cend(), [](QChar c) { return c.unicode() < 0x20 || c.unicode() == 0x7f; }))
        return PresetNameProblem{error, QStringLiteral("Preset names cannot contain control characters."), false, true};
    // Files are written through a temporary one named "<file>.XXXXXX", which must fit too.
    const qsizetype bytes = app::localBytesOfPath(name + u'.' + kPresetExtension).size();
    const qsizetype max = fileNameMaxBytes(folder) - 7;
    if (bytes > max)
        return PresetNameProblem{error,
                                 QStringLiteral("The preset name is too long: its file name takes %1 bytes and the "
                                                "presets folder allows %2.")
                                     .arg(bytes)
                                     .arg(max),
                                 false, true};
    return std::nullopt;
}

bool QNPresetsTable::renamePreset(qsizetype row, const QString& newName, app::AlertSink& alerts, PresetsPopup* popup)
{
    if (row < 0 || row >= m_items.size())
        return false;
    QVariantMap preset = m_items.at(row).toMap();
    const QString oldName = preset.value(kPresetNameKey).toString();
    if (newName == oldName)
        return true;
    if (rowOfPreset(newName) >= 0) {
        criticalOK(alerts, QStringLiteral("Preset with this name already exists"),
                   QStringLiteral("Please choose a different name."));
        return false;
    }
    if (const std::optional<PresetNameProblem> problem = presetNameProblem(newName, m_folder)) {
        app::runAlert(alerts, problem->title, problem->message,
                      problem->okButton ? std::optional<QStringList>(QStringList{QStringLiteral("OK")}) : std::nullopt,
                      problem->critical);
        return false;
    }
    if (QFileInfo::exists(presetFilePath(newName))) {
        criticalOK(alerts, QStringLiteral("File with this name already exists"),
                   QStringLiteral("Please choose a different name."));
        return false;
    }
    // The new file is written whole first; only then does the old one go, so that a failure at
    // any step leaves the preset as it was.
    const QVariantMap renamed = [&] {
        QVariantMap copy = preset;
        copy.insert(kPresetNameKey, newName);
        return copy;
    }();
    if (const app::Status written = writePreset(renamed); !written) {
        QFile::remove(presetFilePath(newName));
        criticalOK(alerts, QStringLiteral("The preset could not be renamed"), written.error().text());
        return false;
    }
    const QString oldFile = presetFilePath(oldName);
    if (QFileInfo::exists(oldFile) && !QFile::remove(oldFile)) {
        QFile::remove(presetFilePath(newName));
        criticalOK(alerts, QStringLiteral("The preset could not be renamed"),
                   QStringLiteral("%1: the old file cannot be removed").arg(oldFile));
        return false;
    }
    m_items[row] = renamed;
    refillPopup(popup, presetNames(), oldName, newName);
    return true;
}

bool QNPresetsTable::shouldEditRow(qsizetype row) const
{
    return m_items.value(row).toMap().value(kPresetPresetsKey).toString() != kDefaultPresetName;
}

} // namespace quillon::results
