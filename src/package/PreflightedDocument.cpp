#include "package/PreflightedDocument.h"

#include "app/RecordKeys.h"

namespace quillon::package {

QVariantList PreflightedDocument::links() const
{
    return tmpLinkData.value(docItem.path).toMap().value(app::kGroupChildrenKey).toList();
}

QVariantList PreflightedDocument::fonts() const
{
    return tmpFontData.value(docItem.path).toMap().value(app::kGroupChildrenKey).toList();
}

} // namespace quillon::package
