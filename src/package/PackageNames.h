#pragma once

#include <QString>

namespace quillon::package {

// The longest file name the file systems take, in bytes of UTF-8.
inline constexpr qsizetype kMaxFileNameBytes = 255;

// What a run needs to name its package folders.
struct PackageFolderNaming {
    QString basePath;  // the parent folder of package folders
    QString namePart1; // unified name, field 1
    QString namePart2; // both modes, field 2
    bool overwrite = false;
};

// The unified package folder's name: field 1 and field 2, or, when both are empty, the first
// document's name without its extension. A taken name is numbered unless overwriting; the test
// is made on the name before "/" and ":" become "_"; kept on purpose.
QString packageFolderNameForUnified(const PackageFolderNaming& naming, const QString& firstDocumentPath);

// The separate package folder of one document: its name without extension and field 2, with
// "/" and ":" replaced, numbered when taken unless overwriting.
QString separatePackageFolderPath(const PackageFolderNaming& naming, const QString& documentPath);

// A report's file name: the document name without extension and `part`. Longer than 255
// characters, it is the start of the whole document name (extension included), "..." and the
// part, 255 characters in all; it is cut further when its UTF-8 would pass 255 bytes.
QString reportNameForDocName(const QString& docName, const QString& part);

// `name` cut at a character boundary so that its UTF-8 takes at most `maxBytes`.
QString cutToFileNameBytes(const QString& name, qsizetype maxBytes = kMaxFileNameBytes);

} // namespace quillon::package
