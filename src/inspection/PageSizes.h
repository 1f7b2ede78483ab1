#pragma once

#include "app/Result.h"
#include "inspection/DocInfoTexts.h"

#include <QList>

namespace quillon::inspection {

// The page sizes of the ordinary spreads of an unpacked IDML, in the order designmap.xml lists
// them (master pages are not measured). Parts that cannot be read are skipped and, with
// `warnings`, named there.
PageSizesDict pageSizesInIdmlFolder(const QString& folder, QList<app::Error>* warnings = nullptr);

} // namespace quillon::inspection
