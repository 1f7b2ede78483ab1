#pragma once

#include "app/Result.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>

#include <cstdint>
#include <optional>

namespace quillon::app {
class AlertSink;
class Settings;
} // namespace quillon::app

namespace quillon::results {

// The checkup presets: one property-list file per preset in the presets folder, "[Default]"
// always listed first. QNPresetsTable is the presets window without its widgets: the table's
// rows, its selection, and what the editors show and write back.

// "<application support>/Presets".
QString presetsFolderPath();

// The file of the preset with that name in `folder`. A name read from a file may hold anything,
// so "/" and ":" are replaced and the path stays inside the folder.
QString presetFilePath(const QString& folder, const QString& name);

// The preset made when there is no "[Default]": a "Status" "is" "Missing" rule for fonts and for
// links, empty "Colors", "Document" and "Options".
QVariantMap defaultPreset();

// A size limit in bytes: the field's number in single precision times 1024 ("KB"), 1048576
// ("MB") or 1073741824 (any other unit), computed in single precision and truncated
// ("1.5" MB gives 1572864, "0.1" KB gives 102). Negative or unreadable numbers give 0.
std::uint64_t sizeLimitBytes(const QString& fieldText, const QString& unit);

// The value when it is non-empty text, else `defaultValue`.
QString stringForKeyInDict(const QString& key, const QVariantMap& dict, const QString& defaultValue);

// A typed number field (sizes, resolutions): empty or a non-negative decimal number is taken;
// anything else is refused.
bool isNumericFieldText(const QString& text);
// The same for the presets window: a refused text gets the critical alert "Invalid numeric value" and is refused.
bool acceptNumericField(app::AlertSink& alerts, const QString& text);

// Why a name cannot be a preset's: the alert to show. The desktop's rules (empty, ":", "/", "[",
// "]", outside ASCII, a leading ".") and what keeps it a file name in `folder` (no control
// characters, not longer than the file system takes with the extension).
struct PresetNameProblem {
    QString title;
    QString message;
    bool critical = false;
    bool okButton = true;
};
std::optional<PresetNameProblem> presetNameProblem(const QString& name, const QString& folder);

// What the presets window's editors show for a preset, and write back into it.
struct PresetEditorState {
    QVariantList linkRules;
    QString sizeBelowField;
    QString sizeAboveField;
    QString sizeBelowUnits;
    QString sizeAboveUnits;
    QString resBelowField;
    QString resAboveField;
    QString resBWBelowField;
    QString resBWAboveField;
    int fontsEpsBtn = 0;
    int fontsEpsMtrx = 0; // tag of the chosen radio cell; the cells are enabled only while fontsEpsBtn is on
    int scaledNonPropBtn = 0;
    int nonPrintBtn = 0;
    QVariantList fontRules;
    int embedBtn = 0;
    QVariantMap colorRules;
    // The "Document" checks, which the window does not edit: written back only when set, so that a
    // state made without them leaves the preset's as they are.
    std::optional<QVariantMap> documentChecks;
};

// The main window's presets pop-up, as far as the presets table changes it.
struct PresetsPopup {
    QStringList allPresets; // its titles
    QString title;          // the title it shows
};

class QNPresetsTable {
public:
    explicit QNPresetsTable(QString presetsFolder = presetsFolderPath());

    const QString& presetsFolder() const { return m_folder; }
    const QVariantList& items() const { return m_items; }
    QStringList presetNames() const;
    // The row of the preset with that name, or -1.
    qsizetype rowOfPreset(const QString& name) const;
    // The file a preset with that name is kept in.
    QString presetFilePath(const QString& name) const;

    // At launch: loads the presets and selects the row stored under "presetIndexSelectedOnQuit"
    // when there is such a row. Until the first selection change, leaving a row writes nothing.
    app::Status loadStartupSettings(const app::Settings& settings);

    // Reads every "*.qnfp" of the folder (hidden files, refused and empty ones skipped) with
    // "[Default]" moved first, or an in-memory default put first when there is none. An empty
    // folder gets "[Default].qnfp" written. Fails only when that file cannot be written (the
    // default is listed anyway).
    app::Status loadPresets();

    // Why the file of the preset with that name was left out at the last load, if it was.
    std::optional<app::Error> refusalOf(const QString& name) const;
    const QList<app::Error>& refusedFiles() const { return m_refused; }

    qsizetype selectedRow() const { return m_selectedRow; }
    // The selected preset, or nothing.
    std::optional<QVariantMap> curPreset() const;
    // Changes the selection (no write; see selectionShouldChange) and returns what the editors show.
    PresetEditorState selectRow(qsizetype row);
    // What the editors show for the selected preset (empty fields, "MB" units when absent).
    PresetEditorState loadSelectedPreset() const;
    // The minus button works on a selected preset other than "[Default]".
    bool minusButtonEnabled() const;

    // Before the selection changes: writes the shown preset, except the first time at launch.
    app::Status selectionShouldChange(const PresetEditorState& shown);
    // Puts the editors' state into the selected preset and writes its file.
    app::Status writeCurrPreset(const PresetEditorState& shown);

    // Adds a copy of the selected preset (of "[Default]" when none is selected) named
    // "New Preset <i>", smallest free i; writes it, reads it back and appends it. Gives its name.
    app::Result<QString> addRow();

    // Removes the selected preset and its file; "[Default]" is refused with an alert. The pop-up
    // is refilled and shows "[Default]" when it showed the removed preset. True when removed.
    bool removeRow(app::AlertSink& alerts, PresetsPopup* popup = nullptr);

    // Renames the preset of `row`, refusing with an alert a name that is taken, that
    // presetNameProblem refuses, or that has a file already. The new file is written before the
    // old one goes, so a failure leaves the preset as it was. Keeps the pop-up showing it. True
    // when renamed (or unchanged).
    bool renamePreset(qsizetype row, const QString& newName, app::AlertSink& alerts, PresetsPopup* popup = nullptr);

    // Whether a row's name may be edited: decided by an entry "presets" that presets never carry,
    // so every row may. Kept so.
    bool shouldEditRow(qsizetype row) const;

private:
    app::Status writePreset(const QVariantMap& preset) const;

    QString m_folder;
    QVariantList m_items;
    QList<app::Error> m_refused;
    qsizetype m_selectedRow = -1;
    bool m_isLaunching = false;
};

} // namespace quillon::results
