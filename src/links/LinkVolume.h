#pragma once

#include <QString>

namespace quillon::links {

// The display name of the mounted volume that holds the file at `path` (empty when none).
// Thread-safe; answers are cached per folder, so a run asks the system once per folder.
QString volumeDisplayName(const QString& path);

// The "volume" of a link record: the volume's display name when the file is present; for a
// missing file the name after "Volumes" when the path's first component is "Volumes" (never for
// an absolute path, whose first component is the root: such a link reads "?"); else empty.
QString volumeForLink(const QString& path, const QString& status);

} // namespace quillon::links
