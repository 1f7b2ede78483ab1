#pragma once

#include <QStringView>

namespace quillon::app {

// Numbers read from the front of a text the way the platform's text-to-number conversions do:
// leading blanks are skipped, an optional sign and as many digits as form a number are used,
// and anything after is ignored. No number at all reads 0.

// "12.5mm" gives 12.5, " -3e2" gives -300, "abc" gives 0.
double doubleValue(QStringView text);

// The integer part only: "17.9" gives 17, "8." gives 8. Saturates at the int range.
int intValue(QStringView text);

} // namespace quillon::app
