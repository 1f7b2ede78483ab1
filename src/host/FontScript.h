#pragma once

#include "app/Result.h"

#include <QString>
#include <QVariantList>

namespace quillon::host {

// The script that asks InDesign for the fonts of one open document: for each, its name, font
// type, status, PostScript name, location and whether it may be embedded in a PDF.
QString fontsScript(const QString& inDesignName, const QString& documentName);

// The font records (keys in FontRecordKeys.h) from the script's answer, sorted by name: the name's
// tab becomes a blank, "not available" becomes "missing", a font without a location gets "?", one
// kept by Adobe Fonts "Activated from Adobe Fonts", and the embedding answer "Yes" or "No".
QVariantList fontRecordsFromScriptAnswer(const QString& answer);

} // namespace quillon::host
