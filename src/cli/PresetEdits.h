#pragma once

#include "app/Result.h"
#include "results/Presets.h"

#include <QStringList>

#include <string>
#include <vector>

namespace quillon::cli {

// The changes `quillon presets set` makes to a preset: thresholds and check boxes by their key
// in the preset file ("resBelowField=150"), and rules added or removed as (attribute, condition,
// value) triples, flattened.
struct PresetEdits {
    std::vector<std::string> assignments;
    std::vector<std::string> addFontRules;
    std::vector<std::string> removeFontRules;
    std::vector<std::string> addLinkRules;
    std::vector<std::string> removeLinkRules;
};

// The keys an assignment may name, in the order of the presets window.
QStringList presetSettingKeys();

// Applies `edits` to what the presets window would show; the first value, key or rule refused
// is the error, and then nothing is applied.
app::Status applyPresetEdits(const PresetEdits& edits, results::PresetEditorState& state);

} // namespace quillon::cli
