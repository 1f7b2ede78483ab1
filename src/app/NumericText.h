#pragma once

#include <QString>
#include <QStringView>
#include <QVariant>

namespace quillon::app {

// Numbers read from text the way stored records and typed fields are read: the leading number
// of the text counts and the rest is ignored ("300 dpi" is 300, "62.5" is 62 as an integer,
// "abc" and "" are 0). Leading white space and a sign are allowed; "." is the decimal separator.

// The leading integer, saturated at the int range.
int intValueOfText(QStringView text);

// The leading decimal number ("12.5mm" is 12.5, " -3e2" is -300, ".5" is 0.5, "2e" is 2); 0 when
// there is none. Too large reads as infinity, too small as zero, keeping the sign.
double doubleValueOfText(QStringView text);

// The same in single precision, as typed fields are read.
float floatValueOfText(QStringView text);

// An integer from a record value: text as intValueOfText, a boolean as 0 or 1, a real number
// truncated toward zero (saturated), and an integer wider than 32 bits by its low 32 bits as
// a signed value, as a C conversion gives it. Null and other types are 0.
int intValueOf(const QVariant& value);

} // namespace quillon::app
