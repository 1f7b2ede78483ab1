#pragma once

#include "preflight/DocInfoTexts.h"

namespace quillon::preflight {

// The page sizes of the ordinary spreads of an unpacked IDML, in the order designmap.xml lists
// them (master pages are not measured). Unreadable parts are skipped.
PageSizesDict pageSizesInIdmlFolder(const QString& folder);

} // namespace quillon::preflight
