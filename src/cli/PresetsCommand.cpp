// quillon presets: list, show, choose, change, add, rename, delete, export and import checkup presets.
#include "cli/PresetsCommand.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/NumericText.h"
#include "app/RegularFile.h"
#include "app/Settings.h"
#include "cli/JsonOutput.h"
#include "cli/OutputFile.h"
#include "cli/PresetEdits.h"
#include "cli/TerminalText.h"
#include "results/ColorResults.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "results/PresetTransfer.h"
#include "results/Presets.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <iostream>
#include <memory>
#include <string>

namespace quillon::cli {

namespace {

namespace rs = quillon::results;

enum class ConflictChoice { Ask, Replace, KeepBoth };

// Alerts on a terminal: the text goes to standard error and the answer comes from the flags.
// Conflicts of export and import are settled by --replace or --keep-both; without either the
// command stops. The import's question is answered in the classic codes it reads.
class TerminalAlerts : public app::AlertSink {
public:
    explicit TerminalAlerts(ConflictChoice choice) : m_choice(choice) {}

    int ask(const app::AlertRequest& request) override
    {
        const QStringList buttons = request.buttons.value_or(QStringList{});
        if (buttons.contains(QStringLiteral("Keep Both")))
            return answerExportConflict();
        if (buttons == QStringList{QStringLiteral("Replace")})
            return answerImportConflict();
        QString message = request.message;
        message.remove(app::supportContactLine());
        std::cerr << printableText(request.title);
        if (!message.trimmed().isEmpty())
            std::cerr << "\n" << printableLinesText(message.trimmed());
        std::cerr << std::endl;
        m_reported = true;
        return app::kAlertFirstButton;
    }

    bool reported() const { return m_reported; }
    // The folder where the names clash, named in the conflict message.
    void setTargetFolder(const QString& folder) { m_targetFolder = folder; }

private:
    void reportConflict()
    {
        std::cerr << "Some presets already exist in " << printableText(m_targetFolder)
                  << ". Add --replace to replace them or --keep-both to keep both." << std::endl;
        m_reported = true;
    }

    int answerExportConflict()
    {
        if (m_choice == ConflictChoice::Replace)
            return app::kAlertFirstButton;
        if (m_choice == ConflictChoice::KeepBoth)
            return app::kAlertThirdButton;
        reportConflict();
        return app::kAlertSecondButton;
    }

    int answerImportConflict()
    {
        if (m_choice == ConflictChoice::Replace)
            return rs::kClassicAlertDefault;
        if (m_choice == ConflictChoice::KeepBoth)
            return rs::kClassicAlertOther;
        reportConflict();
        return rs::kClassicAlertAlternate;
    }

    ConflictChoice m_choice;
    QString m_targetFolder;
    bool m_reported = false;
};

struct PresetsOptions {
    std::string name;
    std::string newName;
    std::string from = "[Default]";
    std::string folder;
    std::vector<std::string> files;
    std::string format = "text";
    OutputOptions output;
    PresetEdits edits;
    bool replace = false;
    bool keepBoth = false;

    ConflictChoice conflictChoice() const
    {
        return replace ? ConflictChoice::Replace : (keepBoth ? ConflictChoice::KeepBoth : ConflictChoice::Ask);
    }
};

// Loads the presets; a failure to write the default and the preset files left out (unless `quiet`)
// are reported but do not stop the command.
rs::QNPresetsTable loadTable(bool quiet = false)
{
    rs::QNPresetsTable table;
    if (const app::Status loaded = table.loadPresets(); !loaded)
        std::cerr << printableText(loaded.error().text()) << std::endl;
    for (const app::Error& refused : quiet ? QList<app::Error>() : table.refusedFiles())
        std::cerr << "warning: preset left out: " << printableText(refused.text()) << std::endl;
    return table;
}

qsizetype findPreset(const rs::QNPresetsTable& table, const QString& name)
{
    const qsizetype row = table.rowOfPreset(name);
    if (row < 0 && !table.refusalOf(name))
        std::cerr << "No checkup preset named \"" << printableText(name) << "\"." << std::endl;
    return row;
}

std::string onOff(int state)
{
    return state ? "on" : "off";
}

void printRules(std::ostream& out, const QVariantList& rules)
{
    if (rules.isEmpty())
        out << "  (no rules)\n";
    for (const QVariant& entry : rules) {
        const QVariantMap rule = entry.toMap();
        out << "  " << printableText(rule.value(rs::kRuleAttributeKey).toString()) << " "
            << printableText(rule.value(rs::kRuleConditionKey).toString()) << " \""
            << printableText(rule.value(rs::kRuleValueKey).toString()) << "\"\n";
    }
}

std::string sizeLimit(const QString& field, const QString& unit)
{
    if (field.isEmpty())
        return "off";
    return printableText(field + u' ' + unit) + " (" + std::to_string(rs::sizeLimitBytes(field, unit)) + " bytes)";
}

std::string resolutionRange(const QString& below, const QString& above)
{
    const int low = app::intValueOfText(below);
    const int high = app::intValueOfText(above);
    if (low + static_cast<long long>(high) < 1)
        return "off";
    return "min " + (low > 0 ? std::to_string(low) : std::string("-")) + ", max " +
           (high > 0 ? std::to_string(high) : std::string("-")) + " dpi";
}

// A preset's entry: its name, its file (null until it is written), whether it is the current
// one, and what its file holds.
QJsonObject presetJson(const rs::QNPresetsTable& table, qsizetype row)
{
    const QVariantMap preset = table.items().at(row).toMap();
    const QString name = preset.value(rs::kPresetNameKey).toString();
    const QString file = table.presetFilePath(name);
    return {{QStringLiteral("name"), name},
            {QStringLiteral("file"), QFileInfo::exists(file) ? QJsonValue(file) : QJsonValue()},
            {QStringLiteral("current"), name == rs::selectedPresetName(app::Settings())},
            {QStringLiteral("preset"), jsonValue(preset)}};
}

void printPresetsJson(std::ostream& out, const rs::QNPresetsTable& table, const QList<qsizetype>& rows)
{
    QJsonArray entries;
    for (const qsizetype row : rows)
        entries.append(presetJson(table, row));
    QJsonObject envelope = jsonEnvelope(QStringLiteral("presets"));
    envelope.insert(QStringLiteral("presets"), entries);
    out << jsonText(envelope).toStdString();
}

int listPresets(std::ostream& out, bool json, bool quiet)
{
    const rs::QNPresetsTable table = loadTable(quiet);
    QList<qsizetype> rows;
    for (qsizetype row = 0; row < table.items().size(); ++row)
        rows << row;
    if (json)
        printPresetsJson(out, table, rows);
    else
        for (const QString& name : table.presetNames())
            out << printableText(name) << "\n";
    return table.refusedFiles().isEmpty() ? kExitOk : kExitAlerts;
}

int showPreset(std::ostream& out, const QString& name, bool json, bool quiet)
{
    rs::QNPresetsTable table = loadTable(quiet);
    const qsizetype row = findPreset(table, name);
    if (row < 0)
        return kExitFailure;
    if (json) {
        printPresetsJson(out, table, {row});
        return kExitOk;
    }
    const rs::PresetEditorState p = table.selectRow(row);
    const QString file = table.presetFilePath(name);
    out << "Preset: " << printableText(name) << "\n"
        << "File: " << (QFileInfo::exists(file) ? printableText(file) : std::string("(not written yet)"))
        << "\n\nFonts\n";
    printRules(out, p.fontRules);
    out << "  PDF embedding check box: " << onOff(p.embedBtn) << "\n\nLinks\n";
    printRules(out, p.linkRules);
    out << "  Size below: " << sizeLimit(p.sizeBelowField, p.sizeBelowUnits) << "\n"
        << "  Size above: " << sizeLimit(p.sizeAboveField, p.sizeAboveUnits) << "\n"
        << "  Effective resolution: " << resolutionRange(p.resBelowField, p.resAboveField) << "\n"
        << "  Effective resolution, Black and White: " << resolutionRange(p.resBWBelowField, p.resBWAboveField) << "\n"
        << "  Fonts in EPS and Illustrator files: "
        << (p.fontsEpsBtn ? (p.fontsEpsMtrx == 0 ? "any fonts" : "embedded fonts") : "off") << "\n"
        << "  Non-proportional scale: " << onOff(p.scaledNonPropBtn) << "\n"
        << "  Non-printing: " << onOff(p.nonPrintBtn) << "\n\nColors\n";
    rs::QNColorRules colors;
    colors.loadPresetData(p.colorRules);
    for (const auto& box : rs::QNColorRules::keysForButtonTitles())
        out << "  " << box.title.toStdString() << ": " << onOff(colors.stateForTitle(box.title)) << "\n";
    return kExitOk;
}

// The current preset follows a rename, and falls back to "[Default]" when it is deleted.
void followInSettings(const QString& oldName, const QString& newName)
{
    app::Settings settings;
    if (settings.string(rs::kSelectedPresetSetting) != oldName)
        return;
    if (newName.isEmpty())
        settings.remove(QLatin1String(rs::kSelectedPresetSetting.name));
    else
        settings.setValue(QLatin1String(rs::kSelectedPresetSetting.name), newName);
}

int usageError(const std::string& command, const QString& message)
{
    std::cerr << "quillon presets " << command << ": " << printableText(message) << "; see 'quillon presets " << command
              << " --help'" << std::endl;
    return kExitUsage;
}

// Changes the preset's file the way the presets window would, after every change was found valid.
int setPreset(const QString& name, const PresetEdits& edits)
{
    if (name == rs::kDefaultPresetName)
        return usageError("set", QStringLiteral("\"%1\" cannot be changed; change a copy of it (quillon presets new)")
                                     .arg(rs::kDefaultPresetName));
    if (edits.assignments.empty() && edits.addFontRules.empty() && edits.removeFontRules.empty() &&
        edits.addLinkRules.empty() && edits.removeLinkRules.empty())
        return usageError("set", QStringLiteral("nothing to change: give KEY=VALUE or a rule to add or remove"));
    rs::QNPresetsTable table = loadTable();
    const qsizetype row = findPreset(table, name);
    if (row < 0)
        return kExitFailure;
    rs::PresetEditorState state = table.selectRow(row);
    if (const app::Status applied = applyPresetEdits(edits, state); !applied)
        return usageError("set", applied.error().text());
    if (const app::Status written = table.writeCurrPreset(state); !written) {
        std::cerr << "quillon presets set: " << printableText(written.error().text()) << std::endl;
        return kExitFailure;
    }
    return kExitOk;
}

int transferOutcome(rs::TransferOutcome outcome)
{
    return outcome == rs::TransferOutcome::Done ? kExitOk : kExitFailure;
}

} // namespace

void addPresetsCommand(CLI::App& program, std::vector<Command>& commands)
{
    auto options = std::make_shared<PresetsOptions>();
    CLI::App* presets = program.add_subcommand(
        "presets", "List, show, choose, change, add, rename, delete, export and import checkup presets");
    presets->require_subcommand(1);

    CLI::App* list = presets->add_subcommand("list", "List the presets, \"[Default]\" first");
    CLI::App* show = presets->add_subcommand("show", "Show the rules of a preset");
    show->add_option("NAME", options->name, "Preset name")->required();
    for (CLI::App* sub : {list, show}) {
        sub->add_option("--format", options->format,
                        "text (the default) or json (each preset's name, file, whether it is the current one, and "
                        "its file's keys and values)")
            ->check(CLI::IsMember({"text", "json"}));
        addOutputOptions(*sub, options->output);
    }
    CLI::App* use = presets->add_subcommand("use", "Make a preset the current one, used when no --preset is given");
    use->add_option("NAME", options->name, "Preset name")->required();
    CLI::App* set = presets->add_subcommand(
        "set", "Change a preset's thresholds and check boxes (KEY=VALUE, by the preset file's keys) and add or "
               "remove font and link rules; \"[Default]\" stays as it is");
    set->add_option("NAME", options->name, "Preset name")->required();
    set->add_option(
        "KEY=VALUE", options->edits.assignments,
        "Settings: " + presetSettingKeys().join(u' ').toStdString() +
            ". Sizes and resolutions take a number (empty: off), units KB, MB or GB, check boxes on or off; "
            "the Document lengths a number with its unit (3mm, 0.125in, 8.5pt; empty: off), which the alerts "
            "are shown in");
    const auto ruleOption = [set](const char* name, std::vector<std::string>& rules, const char* what) {
        set->add_option(name, rules, what)->expected(3)->type_name("ATTRIBUTE CONDITION VALUE");
    };
    ruleOption("--add-font-rule", options->edits.addFontRules, "Add a font rule, such as: Status is Missing");
    ruleOption("--remove-font-rule", options->edits.removeFontRules, "Remove a font rule");
    ruleOption("--add-link-rule", options->edits.addLinkRules, "Add a link rule, such as: Kind contains EPS");
    ruleOption("--remove-link-rule", options->edits.removeLinkRules, "Remove a link rule");
    CLI::App* add = presets->add_subcommand("new", "Add a copy of a preset named \"New Preset <n>\"");
    add->add_option("--from", options->from, "The preset to copy (default \"[Default]\")");
    CLI::App* rename = presets->add_subcommand("rename", "Rename a preset");
    rename->add_option("OLD", options->name, "Current name")->required();
    rename->add_option("NEW", options->newName, "New name")->required();
    CLI::App* remove = presets->add_subcommand("delete", "Delete a preset");
    remove->add_option("NAME", options->name, "Preset name")->required();
    CLI::App* exportCmd = presets->add_subcommand("export", "Write every preset into a folder, one file each");
    exportCmd->add_option("DIR", options->folder, "Target folder")->required()->check(CLI::ExistingDirectory);
    CLI::App* importCmd = presets->add_subcommand("import", "Copy preset files into the presets folder");
    importCmd->add_option("FILE", options->files, "Preset files (.qnfp)")->required();
    for (CLI::App* sub : {exportCmd, importCmd}) {
        CLI::Option* replace = sub->add_flag("--replace", options->replace, "Replace presets of the same name");
        CLI::Option* keepBoth =
            sub->add_flag("--keep-both", options->keepBoth, "Keep both, naming the new one \"<name> copy <n>\"");
        replace->excludes(keepBoth);
    }

    commands.push_back(
        {presets, [=]() -> int {
             TerminalAlerts alerts(options->conflictChoice());
             const bool json = options->format == "json";
             if (list->parsed())
                 return runWithOutput(options->output, "presets list", [&](const ResultStream& out) {
                     return listPresets(out.stream, json, out.quiet);
                 });
             if (show->parsed())
                 return runWithOutput(options->output, "presets show", [&](const ResultStream& out) {
                     return showPreset(out.stream, app::pathFromLocalBytes(options->name), json, out.quiet);
                 });
             if (use->parsed()) {
                 rs::QNPresetsTable table = loadTable();
                 if (findPreset(table, app::pathFromLocalBytes(options->name)) < 0)
                     return kExitFailure;
                 app::Settings settings;
                 rs::presetsPopup(settings, app::pathFromLocalBytes(options->name));
                 return kExitOk;
             }
             if (set->parsed())
                 return setPreset(app::pathFromLocalBytes(options->name), options->edits);
             if (add->parsed()) {
                 rs::QNPresetsTable table = loadTable();
                 const qsizetype row = findPreset(table, app::pathFromLocalBytes(options->from));
                 if (row < 0)
                     return kExitFailure;
                 table.selectRow(row);
                 const auto name = table.addRow();
                 if (!name) {
                     std::cerr << printableText(name.error().text()) << std::endl;
                     return kExitFailure;
                 }
                 std::cout << printableText(*name) << "\n";
                 return kExitOk;
             }
             if (rename->parsed()) {
                 rs::QNPresetsTable table = loadTable();
                 const qsizetype row = findPreset(table, app::pathFromLocalBytes(options->name));
                 if (row < 0 || !table.renamePreset(row, app::pathFromLocalBytes(options->newName), alerts))
                     return kExitFailure;
                 followInSettings(app::pathFromLocalBytes(options->name), app::pathFromLocalBytes(options->newName));
                 return kExitOk;
             }
             if (remove->parsed()) {
                 rs::QNPresetsTable table = loadTable();
                 const qsizetype row = findPreset(table, app::pathFromLocalBytes(options->name));
                 if (row < 0)
                     return kExitFailure;
                 table.selectRow(row);
                 if (!table.removeRow(alerts))
                     return kExitFailure;
                 followInSettings(app::pathFromLocalBytes(options->name), QString());
                 return kExitOk;
             }
             if (exportCmd->parsed()) {
                 const rs::QNPresetsTable table = loadTable(); // makes "[Default].qnfp" in an empty folder
                 const QString folder = QDir(app::pathFromLocalBytes(options->folder)).absolutePath();
                 alerts.setTargetFolder(folder);
                 return transferOutcome(rs::exportAllPresets(table.presetsFolder(), folder, alerts));
             }
             QStringList files;
             for (const std::string& file : options->files)
                 files.append(QFileInfo(app::pathFromLocalBytes(file)).absoluteFilePath());
             alerts.setTargetFolder(rs::presetsFolderPath());
             return transferOutcome(rs::importPresets(rs::presetsFolderPath(), files, alerts));
         }});
}

} // namespace quillon::cli
