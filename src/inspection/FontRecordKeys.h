#pragma once

#include "app/RecordKeys.h"

#include <QString>

namespace quillon::inspection {

// The font record: one dictionary per font the document uses, written by the font inspection
// into "qnf_tmpFontData.plist" and judged by the font results. Values are text unless stated.
// Document group rows use the keys of app/RecordKeys.h.

inline const QString kFontNameKey = QStringLiteral("name"); // family and style as shown
inline const QString kFontTypeKey =
    QStringLiteral("type"); // "OpenType..." (any text containing it), "type 1", "TrueType", "bitmap", other
inline const QString kFontStatusKey =
    QStringLiteral("status"); // "installed", "missing", "fauxed", "substituted", "unknown"
inline const QString kFontPsFontKey = QStringLiteral("psfont"); // PostScript name; may be empty
inline const QString kFontPathKey =
    QStringLiteral("path"); // font file; "?" or "" when unknown; holds "from Adobe Fonts" for those
inline const QString kFontEmbedKey =
    QStringLiteral("embed"); // text or number: PDF embedding allowed ("Yes"/"1" true, "No"/"0" false)

// Values the readers of the record test for.
inline const QString kFontStatusInstalled = QStringLiteral("installed");
inline const QString kFontStatusMissing = QStringLiteral("missing");
inline const QString kFontStatusFauxed = QStringLiteral("fauxed");
inline const QString kFontStatusSubstituted = QStringLiteral("substituted");
inline const QString kFontStatusUnknown = QStringLiteral("unknown");
inline const QString kFontTypeOpenTypeMarker = QStringLiteral("OpenType"); // contained in every OpenType flavour
inline const QString kFontTypeType1 = QStringLiteral("type 1");
inline const QString kFontTypeTrueType = QStringLiteral("TrueType");
inline const QString kFontTypeBitmap = QStringLiteral("bitmap");
inline const QString kFontNoPath = QStringLiteral("?");
inline const QString kFontAdobeFontsMarker = QStringLiteral("from Adobe Fonts"); // contained in "path"

// Values the font inspection writes.
inline const QString kFontAdobeFontsPath = QStringLiteral("Activated from Adobe Fonts"); // "path" of such a font
inline const QString kFontEmbedYes = QStringLiteral("Yes");
inline const QString kFontEmbedNo = QStringLiteral("No");
inline const QString kFontEmbedUnknown = QStringLiteral("?"); // no file to read the permission from
inline const QString kFontTypeUnknown = QStringLiteral("Unknown");

} // namespace quillon::inspection
