#pragma once

#include "app/Result.h"

#include <QString>
#include <QVariantMap>

namespace quillon::results {

// Reading one checkup preset file. A preset is judged by what it holds, so a file whose values
// have the wrong types is refused rather than read as "no rules".

// The largest preset file read; real ones are a few kilobytes.
inline constexpr qint64 kPresetFileSizeLimit = 4 * 1024 * 1024;

// Reads the preset at `path`: a regular file (not a device, a pipe or a folder, also behind a
// symbolic link) of at most kPresetFileSizeLimit bytes holding a property-list dictionary whose
// values pass checkPresetTypes. Errors name the file, and the key when a value is wrong.
app::Result<QVariantMap> readPresetFile(const QString& path);

// The types a preset's readers rely on, wherever the key is present: "name" text; "Fonts",
// "Links", "Colors", "Document", "Options" dictionaries; "conditions" a list of rules, each a
// dictionary with "attribute" and "condition" as text and a "value"; the check-box states numbers;
// the size and resolution fields text holding no negative number; the byte counts non-negative
// integers. The error's `where` is the key path ("Links/conditions/2/value").
app::Status checkPresetTypes(const QVariantMap& preset, const QString& path);

} // namespace quillon::results
