#pragma once

#include <QString>
#include <QStringList>

namespace quillon::app {
class AlertSink;
}

namespace quillon::results {

// Exporting the presets to a folder and importing preset files into the presets folder.

// The open panels that choose the folder and the files.
inline const QString kExportPanelTitle = QStringLiteral("Export Checkup Presets");
inline const QString kExportPanelMessage =
    QStringLiteral("Choose folder to save presets. A separate file for each preset will be created.");
inline const QString kExportPanelPrompt = QStringLiteral("Export");
inline const QString kImportPanelTitle = QStringLiteral("Import presets");
inline const QString kImportPanelMessage =
    QStringLiteral("Choose presets to import (use Shift or Command for multiple selections).");
inline const QString kImportPanelPrompt = QStringLiteral("Choose");

enum class TransferOutcome {
    Done,
    Cancelled, // the user stopped at the conflict question
    Failed,    // a preset could not be read or written (alert shown); the ones before it stay
};

// Writes every preset of `presetsFolder` into `targetFolder`, "[Default].qnfp" as "Default.qnfp",
// each with "name" set to its new file name. When a name the export writes is already in the
// target folder, the user chooses "Replace", "Cancel" or "Keep Both" (copies named by
// replacementPathFor). Two presets that would be written under one name ("[Default]" and
// "Default") never become one file: the second is numbered.
TransferOutcome exportAllPresets(const QString& presetsFolder, const QString& targetFolder, app::AlertSink& alerts);

// Copies preset files into `presetsFolder` under their own file names, "name" set to match.
// Only ".qnfp" files whose names the presets take (presetNameProblem) and whose values pass the
// preset's type check are imported; every file is checked before the first is written.
// A name already there asks "Replace" and reads the answer in the classic alert codes:
// 1 replaces this and every later conflict, 0 ends the import, -1 keeps both for this and every
// later conflict, and any other answer keeps both for this file and asks again. The alerts of
// the desktop answer 1000 for "Replace", so there an import always keeps both. Kept so; the
// command line answers in the classic codes. Reload the presets afterwards.
TransferOutcome importPresets(const QString& presetsFolder, const QStringList& files, app::AlertSink& alerts);

// The classic alert codes the import reads.
inline constexpr int kClassicAlertDefault = 1;
inline constexpr int kClassicAlertAlternate = 0;
inline constexpr int kClassicAlertOther = -1;

// The first "<path without extension> copy <i>.qnfp" (i from 1 to 9999) that does not exist;
// "" when all do.
QString replacementPathFor(const QString& path);

} // namespace quillon::results
