#include "cli/PresetChoice.h"

#include "app/RegularFile.h"
#include "app/Settings.h"
#include "cli/TerminalText.h"
#include "results/PresetKeys.h"
#include "results/PresetSettings.h"
#include "results/Presets.h"
#include "results/PresetsFile.h"

#include <QFileInfo>

#include <iostream>

namespace quillon::cli {

app::Result<ChosenPreset> choosePreset(const std::string& presetName, const std::string& presetFile,
                                       const char* command)
{
    if (!presetFile.empty()) {
        const QString path = QFileInfo(app::pathFromLocalBytes(presetFile)).absoluteFilePath();
        app::Result<QVariantMap> preset = results::readPresetFile(path);
        if (!preset)
            return preset.error();
        const QString name = preset->value(results::kPresetNameKey).toString();
        return ChosenPreset{name.isEmpty() ? QFileInfo(path).completeBaseName() : name, *preset};
    }
    results::QNPresetsTable table;
    if (const app::Status loaded = table.loadPresets(); !loaded)
        std::cerr << "quillon " << command << ": " << printableText(loaded.error().text()) << std::endl;
    const QString name =
        presetName.empty() ? results::selectedPresetName(app::Settings()) : app::pathFromLocalBytes(presetName);
    const qsizetype row = table.rowOfPreset(name);
    if (row >= 0)
        return ChosenPreset{name, table.items().at(row).toMap()};
    if (const std::optional<app::Error> refused = table.refusalOf(name))
        return *refused;
    const QString how = QStringLiteral("choose one with --preset NAME (quillon presets list shows them)");
    if (!presetName.empty())
        return app::makeError(QStringLiteral("No checkup preset is named \"%1\": %2.").arg(name, how));
    return app::makeError(QStringLiteral("The selected checkup preset \"%1\" could not be found: it could be "
                                         "renamed or deleted. Nothing was preflighted; %2.")
                              .arg(name, how));
}

} // namespace quillon::cli
