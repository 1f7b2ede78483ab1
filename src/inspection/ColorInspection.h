#pragma once

#include <QStringList>
#include <QVariantList>

namespace quillon::inspection {

// What the colour inspection finds in one document: the entry of the colour data file.
struct ColorInspection {
    QVariantList records;            // one colour record per swatch (ColorRecordKeys.h), in the Swatches panel's order
    QStringList namesOfUnusedColors; // the names of the records whose "used" is "-"
    int registrationInTextCount = 0; // text ranges set in the Registration swatch; 0 unless asked to count
};

// The flag the colour rules hand to the inspection: "1" asks for Registration applied to text to be
// counted, anything else does not.
inline bool countsRegistrationInText(const QString& registrationInTextFlag)
{
    return registrationInTextFlag == QLatin1String("1");
}

} // namespace quillon::inspection
