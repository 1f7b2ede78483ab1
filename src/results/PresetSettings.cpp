#include "results/PresetSettings.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PropertyList.h"
#include "results/PresetKeys.h"
#include "results/Presets.h"
#include "results/PresetsFile.h"

#include <QFileInfo>

namespace quillon::results {

QString selectedPresetName(const app::Settings& settings)
{
    const QString name = settings.string(kSelectedPresetSetting);
    return name.isEmpty() ? kDefaultPresetName : name;
}

QString selectPresetOnLaunch(const app::Settings& settings)
{
    return selectedPresetName(settings);
}

void presetsPopup(app::Settings& settings, const QString& title)
{
    app::logUserAction("presetsPopup");
    settings.setValue(QLatin1String(kSelectedPresetSetting.name), title);
}

std::optional<QVariantMap> currPreset(const app::Settings& settings, app::AlertSink& alerts,
                                      const QString& presetsFolder)
{
    app::logEntry("currPreset");
    const QString name = selectedPresetName(settings);
    app::logLine(QStringLiteral("presetName: %1").arg(name));
    const QString path = presetFilePath(presetsFolder, name);
    if (!QFileInfo::exists(path)) {
        app::runAlert(alerts, QStringLiteral("The selected checkup preset could not be found"),
                      app::withSupportContact(
                          QStringLiteral("It could be renamed or deleted. Please select a different checkup preset."
                                         "\n\nPlease report this error to ")),
                      std::nullopt, false);
        return std::nullopt;
    }
    auto preset = readPresetFile(path);
    if (!preset) {
        app::runAlert(alerts, QStringLiteral("The selected checkup preset could not be read"),
                      app::withSupportContact(preset.error().text()), std::nullopt, false);
        return std::nullopt;
    }
    return preset.value();
}

} // namespace quillon::results
