#pragma once

#include <QString>

namespace quillon::links {

// The link record: one dictionary per placed file, written by the link analysis into
// "qnf_tmpLinkData.plist", judged and shown by the link results, copied by packaging. Values are
// text unless stated. The spelling of every key is part of the file format.

inline const QString kLinkIdKey = QStringLiteral("id");         // decimal text of the Link element's Self id
inline const QString kLinkNameKey = QStringLiteral("name");     // file name (last component of "path")
inline const QString kLinkPathKey = QStringLiteral("path");     // POSIX path, or "?" when the URI has none
inline const QString kLinkVolumeKey = QStringLiteral("volume"); // display name of the volume holding the file
inline const QString kLinkKindKey = QStringLiteral("kind"); // "Photoshop", "TIFF LZW", "EPS DCS", "PDF (.ai)", "?"...
inline const QString kLinkDateKey = QStringLiteral("date"); // date: the link's import modification time
inline const QString kLinkStatusKey =
    QStringLiteral("status"); // "OK", "Modified", "Missing", "Embedded", "<unknown>", ""
inline const QString kLinkSizeBytesKey = QStringLiteral("sizebytes"); // unsigned number: size in bytes (low 32 bits)
inline const QString kLinkSizeKey = QStringLiteral("size");           // human-readable size, decimal units
inline const QString kLinkAppKey = QStringLiteral("app"); // default application's file name; "?" none, "-" no file
inline const QString kLinkDocPathKey = QStringLiteral("docPath");       // the InDesign document's path
inline const QString kLinkIsAnchoredKey = QStringLiteral("isAnchored"); // number true; only for links found in stories
inline const QString kLinkScaleKey = QStringLiteral("scale");           // "62.5", or "50x25" when the two scales differ
inline const QString kLinkHorScaleKey = QStringLiteral("horScale");     // horizontal scale in percent, "###0.#"
inline const QString kLinkVertScaleKey = QStringLiteral("vertScale");   // vertical scale in percent, "###0.#"
inline const QString kLinkEffectiveResKey = QStringLiteral("eres"); // effective resolution (ppi); "-" when not known
inline const QString kLinkActualResKey = QStringLiteral("ares");    // actual resolution (ppi); "-" when not known
inline const QString kLinkColorKey = QStringLiteral("color");       // colour space text; "   -" when not known
inline const QString kLinkPageKey = QStringLiteral("page"); // page name, "?" when not found, "ª" suffix when anchored
inline const QString kLinkSortOrderOfPageInDocKey = QStringLiteral("sortOrderOfPageInDoc"); // number; absent on masters
inline const QString kLinkPrintKey = QStringLiteral("print");       // "√" when it prints, "-" when non-printing
inline const QString kLinkParentIdKey = QStringLiteral("parentID"); // decimal text of the graphic's Self id
inline const QString kLinkProfileKey = QStringLiteral("profile");   // embedded colour profile name
inline const QString kLinkNestedLinksKey = QStringLiteral("links"); // array of nested link entries (keys below)
inline const QString kLinkEpsColsKey = QStringLiteral("epscols");   // count of spot/duotone colours (text or number)
inline const QString kLinkEpsColListKey = QStringLiteral("epscollist");   // those colours, separated by "\r"
inline const QString kLinkEpsFontsKey = QStringLiteral("epsfonts");       // count of fonts in the file (text or number)
inline const QString kLinkEpsFontListKey = QStringLiteral("epsfontlist"); // those fonts, separated by "\r" or "\n"
// Misspelled in the format ("Aquired"); keep it so.
inline const QString kLinkMetadataWasAquiredKey = QStringLiteral("metadataWasAquired"); // number true once read
inline const QString kLinkMetadataKey = QStringLiteral("metadata"); // array of metadata rows; empty when none

// A nested link entry (inside "links") uses "path", "name", "status" ("OK" or "Missing"),
// "sizebytes" (number, 0 when missing) and "size" ("-" when missing or zero).

// Values the readers of the record test for.
inline const QString kLinkStatusOK = QStringLiteral("OK");
inline const QString kLinkStatusModified = QStringLiteral("Modified");
inline const QString kLinkStatusMissing = QStringLiteral("Missing");
inline const QString kLinkStatusEmbedded = QStringLiteral("Embedded");
inline const QString kLinkStatusUnknown = QStringLiteral("<unknown>");
inline const QString kLinkNoPath = QStringLiteral("?");      // "path" when the URI has no path
inline const QString kLinkNotKnown = QStringLiteral("-");    // "eres", "ares", "app" and similar, unknown
inline const QString kLinkPrints = QStringLiteral("√");      // "print" of a printing graphic
inline const QString kLinkNonPrinting = QStringLiteral("-"); // "print" of a non-printing graphic
inline const QString kLinkColorBlackAndWhite = QStringLiteral("Black and White");
inline const QString kLinkColorUnknown = QStringLiteral("   -");  // three blanks and a hyphen
inline const QString kLinkNoPage = QStringLiteral("?");           // "page" when no page matches
inline const QString kLinkAnchoredPageMark = QStringLiteral("ª"); // ends the "page" of an anchored link
inline const QString kLinkNoApp = QStringLiteral("?");            // "app" when no application opens the file
inline const QString kLinkNoVolume = QStringLiteral("?");         // "volume" of a missing file
inline const QString kLinkNoSize = QStringLiteral("-");           // "size" of a missing or empty nested link

// "kind" texts the analysis produces; any other format text of the document stays as it is.
inline const QString kLinkKindPhotoshop = QStringLiteral("Photoshop");
inline const QString kLinkKindTIFF = QStringLiteral("TIFF");
inline const QString kLinkKindJPEG = QStringLiteral("JPEG");
inline const QString kLinkKindEPS = QStringLiteral("EPS");
inline const QString kLinkKindPDF = QStringLiteral("PDF");
inline const QString kLinkKindPDFFromAI = QStringLiteral("PDF (.ai)");
inline const QString kLinkKindPNG = QStringLiteral("PNG");
inline const QString kLinkKindGIF = QStringLiteral("GIF");
inline const QString kLinkKindUnknown = QStringLiteral("?");
inline const QString kLinkKindEPSJPEG = QStringLiteral("EPS JPEG");
inline const QString kLinkKindEPSDCS = QStringLiteral("EPS DCS");
inline const QString kLinkKindEPSDCSJPEG = QStringLiteral("EPS DCS JPEG");

} // namespace quillon::links
