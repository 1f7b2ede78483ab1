#pragma once

#include <QString>
#include <QStringList>

namespace quillon::bench {

// The shape of a generated IDML document: spreads of two pages, each with placed graphics
// (an image frame with its file link) and one story of text.
struct IdmlShape {
    int spreads = 1000;
    int linksPerSpread = 4;
    int paragraphsPerStory = 90;
    int masterSpreads = 2;
    unsigned seed = 1; // the same shape and seed give the same bytes
    // A style sheet, font list and swatch list, and text and frames that use them; 0 leaves the
    // part out (the text then has the one paragraph style "Body" and the frames no colour).
    int paragraphStyles = 0;
    int characterStyles = 0;
    int swatches = 0;
    // Fonts listed in the font part besides the families the styles use, each a family of its own
    // with one face; with 0 only those families are listed (a styled document lists them always).
    int extraFonts = 0;
    // When set, a small TIFF file for every link is written into this folder under the link's
    // file name, so that the link analysis finds them (it looks in the "Links" folder beside
    // the document by name).
    QString linkedFilesFolder;
    // The size of each of those files: the TIFF followed by padding that no reader looks at, for a
    // copy of realistic sizes; 0 keeps the bare TIFF.
    qint64 linkedFileBytes = 0;
};

// What was written.
struct GeneratedIdml {
    qint64 archiveBytes = 0;
    qint64 xmlBytes = 0; // uncompressed size of all parts
    int entries = 0;
    int linkedFiles = 0; // files written into the linked-files folder
};

// Writes the IDML package at `path` (replacing it). Coordinates and words vary, so the XML
// compresses about as well as a real document's. Returns nothing on failure.
GeneratedIdml writeGeneratedIdml(const QString& path, const IdmlShape& shape);

// The documents the preflight figures are taken on, written into one folder: a 1,000-spread
// catalogue with ten links a spread ("large/Catalogue.idml", its files in "large/Links") and 100
// small leaflets of four spreads ("small/Leaflet N.idml", their files in "small/Links"), all
// with styles, fonts and swatches. `small` is empty and `largeFacts.entries` 0 when one could
// not be written.
struct PreflightDocuments {
    QString large;
    GeneratedIdml largeFacts;
    QStringList small;
};
PreflightDocuments writePreflightDocuments(const QString& folder);

} // namespace quillon::bench
