#pragma once

#include "app/Result.h"

#include <QString>
#include <QVariantMap>

#include <string>

namespace quillon::cli {

struct ChosenPreset {
    QString name;
    QVariantMap preset; // empty: the results are not judged
};

// The preset of --preset-file, of --preset, or the current one of the user defaults. A preset
// that cannot be found or read is an error: results that nobody judged must not pass as clean.
// A list of presets that cannot be read is reported on standard error under `command`.
app::Result<ChosenPreset> choosePreset(const std::string& presetName, const std::string& presetFile,
                                       const char* command);

} // namespace quillon::cli
