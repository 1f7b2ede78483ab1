#pragma once

#include "inspection/ColorInspection.h"

#include <QString>

namespace quillon::host {

// The script that asks InDesign for the swatches of one open document (name, kind, model, space,
// component values), the names of its unused swatches and, with `registrationInTextFlag` "1", how
// many text ranges have the Registration swatch as fill or stroke (found with InDesign's own
// search, whose find preferences it clears before and after).
QString colorsScript(const QString& inDesignName, const QString& documentName, const QString& registrationInTextFlag);

// The colour inspection from the script's answer: one record per swatch in InDesign's order (keys
// in ColorRecordKeys.h; a gradient gets the model "gradient"), "used" "-" for the swatches
// InDesign calls unused and a check mark for the others.
inspection::ColorInspection colorInspectionFromScriptAnswer(const QString& answer);

} // namespace quillon::host
