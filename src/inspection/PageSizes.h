#pragma once

#include "app/Result.h"
#include "inspection/DocInfoTexts.h"

#include <QList>

namespace quillon::idml {
class IdmlDocument;
}

namespace quillon::inspection {

// The page sizes of the ordinary spreads of an IDML package, in the order designmap.xml lists
// them (master pages are not measured). Parts that cannot be read are skipped and, with
// `warnings`, named there.
PageSizesDict pageSizesInDocument(const idml::IdmlDocument& document, QList<app::Error>* warnings = nullptr);

} // namespace quillon::inspection
