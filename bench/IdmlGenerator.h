#pragma once

#include <QString>

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
};

// What was written.
struct GeneratedIdml {
    qint64 archiveBytes = 0;
    qint64 xmlBytes = 0; // uncompressed size of all parts
    int entries = 0;
};

// Writes the IDML package at `path` (replacing it). Coordinates and words vary, so the XML
// compresses about as well as a real document's. Returns nothing on failure.
GeneratedIdml writeGeneratedIdml(const QString& path, const IdmlShape& shape);

} // namespace quillon::bench
