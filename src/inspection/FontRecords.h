#pragma once

#include <QString>
#include <QVariantList>

namespace quillon::inspection {

// Font records in the order the fonts list starts in: by name, ignoring case.
void sortFontRecordsByName(QVariantList& records);

// A font as lists show it: family and style, "Minion Pro Regular"; the family alone without a style.
QString fontDisplayName(const QString& family, const QString& style);

} // namespace quillon::inspection
