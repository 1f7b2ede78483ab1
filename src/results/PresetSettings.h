#pragma once

#include "app/Settings.h"

#include <QString>
#include <QVariantMap>

#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::results {

// The user defaults of the checkup presets.
inline const app::SettingKey kSelectedPresetSetting{"selectedPreset", QString()}; // name of the current preset
inline const app::SettingKey kPresetIndexSelectedOnQuitSetting{"presetIndexSelectedOnQuit",
                                                               0}; // presets table row at quit

// The current preset's name: "selectedPreset", or "[Default]" when it is empty.
QString selectedPresetName(const app::Settings& settings);

// The title the presets pop-up shows at launch (the current preset's name).
QString selectPresetOnLaunch(const app::Settings& settings);

// The user chose a preset in the pop-up: it becomes the current preset.
void presetsPopup(app::Settings& settings, const QString& title);

// The current preset read from its file in `presetsFolder`, so a preflight always uses what is on
// disk. A missing file shows "The selected checkup preset could not be found", an unreadable one
// says why, and both give nothing (the lists are then shown without judging).
std::optional<QVariantMap> currPreset(const app::Settings& settings, app::AlertSink& alerts,
                                      const QString& presetsFolder);

} // namespace quillon::results
