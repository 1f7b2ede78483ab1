#pragma once

#include "cli/PreflightJob.h"

#include <QString>

#include <optional>

namespace quillon::cli {

// The summary for a terminal, made for triage: the document information, the status line and the
// warnings under it, then per list (the document checks when the preset has any, fonts, colours,
// links) one line per unique file or item that raised alerts, with its count and pages and each
// alert with the measured value beside the rule. At most `maxItems` lines per list (all when not
// given), the rest counted in "… and K more". Ends with a line break.
QString summaryText(const PreflightedDocument& document, const QString& presetName,
                    std::optional<int> maxItems = std::nullopt);

} // namespace quillon::cli
