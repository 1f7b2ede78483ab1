#pragma once

#include "preflight/DocInfoTexts.h"

namespace quillon::preflight {

// The size key of a page from its GeometricBounds ("top left bottom right"): with a top-left
// corner written "0 0" the bottom and right are the height and width as they stand, otherwise
// the differences; each formatted "###0.####". Empty when the bounds do not hold four numbers.
QStringList pageSizeKeyFromGeometricBounds(const QString& bounds);

// The page sizes of the ordinary spreads of an unpacked IDML, in the order designmap.xml lists
// them (master pages are not measured). Unreadable parts are skipped.
PageSizesDict pageSizesInIdmlFolder(const QString& folder);

} // namespace quillon::preflight
