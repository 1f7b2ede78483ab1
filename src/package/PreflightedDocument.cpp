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

QVariantMap PreflightedDocument::toRecord() const
{
    return {
        {QStringLiteral("tmpLinkData"), tmpLinkData},       {QStringLiteral("tmpColorData"), tmpColorData},
        {QStringLiteral("tmpFontData"), tmpFontData},       {QStringLiteral("docInfo"), docInfo.toVariantMap()},
        {QStringLiteral("finalLinkItems"), finalLinkItems}, {QStringLiteral("finalColorItems"), finalColorItems},
        {QStringLiteral("finalFontItems"), finalFontItems}, {QStringLiteral("docItem"), docItem.path},
    };
}

} // namespace quillon::package
