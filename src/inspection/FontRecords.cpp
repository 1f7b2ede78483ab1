#include "inspection/FontRecords.h"

#include "inspection/FontRecordKeys.h"

#include <algorithm>

namespace quillon::inspection {

void sortFontRecordsByName(QVariantList& records)
{
    std::stable_sort(records.begin(), records.end(), [](const QVariant& a, const QVariant& b) {
        return a.toMap()
                   .value(kFontNameKey)
                   .toString()
                   .compare(b.toMap().value(kFontNameKey).toString(), Qt::CaseInsensitive) < 0;
    });
}

QString fontDisplayName(const QString& family, const QString& style)
{
    return style.isEmpty() ? family : family + u' ' + style;
}

} // namespace quillon::inspection
