#pragma once

#include "app/RecordKeys.h"

#include <QString>

namespace quillon::inspection {

// The colour record: one dictionary per swatch, written by the colour inspection into
// "qnf_tmpColorData.plist" and prepared and judged by the colour results. Document group rows use
// the keys of app/RecordKeys.h.

inline const QString kColorNameKey = QStringLiteral("name");   // swatch name
inline const QString kColorModelKey = QStringLiteral("spot");  // colour model: "process", "spot", "mixedinkmodel"
inline const QString kColorSpaceKey = QStringLiteral("space"); // "CMYK", "RGB", "LAB", "HSB"
inline const QString kColorValuesListKey =
    QStringLiteral("colValuesList");                           // array of numbers: components as InDesign gives them
inline const QString kColorValueKey = QStringLiteral("value"); // text: the components formatted (set by the results)
inline const QString kColorUsedKey = QStringLiteral("used");   // "-" when unused, else as the inspection gives it

// Keys of a document's dictionary in the colour data file, beside "children".
inline const QString kColorDocUnusedNamesKey = QStringLiteral("namesOfUnusedColors"); // array of swatch names
inline const QString kColorDocRegistrationInTextCountKey = QStringLiteral("registrationInTextCount"); // integer

// Values the readers of the record test for.
inline const QString kColorSwatchNone = QStringLiteral("None");
inline const QString kColorSwatchPaper = QStringLiteral("Paper");
inline const QString kColorSwatchRegistration = QStringLiteral("Registration");
inline const QString kColorModelProcess = QStringLiteral("process");
inline const QString kColorModelSpot = QStringLiteral("spot");
inline const QString kColorModelMixedInk = QStringLiteral("mixedinkmodel");
inline const QString kColorModelRegistration = QStringLiteral("registration"); // the model of registration colours
inline const QString kColorModelGradient = QStringLiteral("gradient");         // gradient swatches have no colour model
inline const QString kColorSpaceCMYK = QStringLiteral("CMYK");
inline const QString kColorSpaceRGB = QStringLiteral("RGB");
inline const QString kColorSpaceLAB = QStringLiteral("LAB");
inline const QString kColorSpaceHSB = QStringLiteral("HSB");
inline const QString kColorSpaceRegistration = QStringLiteral("registration"); // set by the results on "Registration"
inline const QString kColorUnused = QStringLiteral("-");                       // "used" of an unused swatch
inline const QString kColorUsed = QStringLiteral("\u221A");                    // "used" of a used swatch: a check mark

} // namespace quillon::inspection
