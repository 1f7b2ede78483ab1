#pragma once

#include "app/Result.h"
#include "inspection/ColorInspection.h"

#include <QString>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::preflight {

// The preflight data files that the font and colour inspections leave for the result lists:
// "qnf_tmpFontData.plist" and "qnf_tmpColorData.plist" in `dataFolder` (each run of the command
// line has a folder of its own). Each is a dictionary keyed by the document's path whose value is
// the document's group row without "docPath": "name" (the file name), "isDock" (true) and
// "children" (the records); the colour entry also holds "namesOfUnusedColors" and
// "registrationInTextCount". The document's entry is added to what the file already holds (a
// batch keeps one per document) or replaces an earlier entry of the same document; a file that
// cannot be read is replaced.
// The document's entry of each file.
QVariantMap fontDataEntry(const QString& documentPath, const QVariantList& fonts);
QVariantMap colorDataEntry(const QString& documentPath, const inspection::ColorInspection& inspection);
app::Status writeFontDataFile(const QString& dataFolder, const QString& documentPath, const QVariantList& fonts);
app::Status writeColorDataFile(const QString& dataFolder, const QString& documentPath,
                               const inspection::ColorInspection& inspection);

// Stored data in the application-support folder: "font_data.plist", "color_data.plist" and
// "link_data.plist", each one array. Entry points for the inspections; nothing else calls them.

// For each file in that order: reads its array (a missing file is empty), appends the given array
// when it is not empty, and writes the whole back. A file that exists but is not a readable array
// is left untouched and named in the error, so that stored data is never overwritten; the other
// files are still written.
app::Status storeDataForFonts(const QVariantList& fonts, const QVariantList& colors, const QVariantList& links);

// Three arrays (fonts, colours, links); an empty one stands for a file that is missing or
// unreadable.
QVariantList getStoredData();

// Does nothing: stored data stays until the user removes it.
void deleteStoredData();

} // namespace quillon::preflight
