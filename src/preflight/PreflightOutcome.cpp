#include "preflight/PreflightOutcome.h"

#include "preflight/StoredData.h"

namespace quillon::preflight {

QVariantMap PreflightOutcome::fontData() const
{
    return fonts ? QVariantMap{{record.posixPath, fontDataEntry(record.posixPath, *fonts)}} : QVariantMap();
}

QVariantMap PreflightOutcome::colorData() const
{
    return colors ? QVariantMap{{record.posixPath, colorDataEntry(record.posixPath, *colors)}} : QVariantMap();
}

} // namespace quillon::preflight
