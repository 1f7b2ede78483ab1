#pragma once

#include <QVariantList>

namespace quillon::preflight {

// Font records in the order the fonts list starts in: by name, ignoring case.
void sortFontRecordsByName(QVariantList& records);

} // namespace quillon::preflight
