#pragma once

#include <QString>
#include <QStringList>

namespace quillon::links {

// Paths of linked files, as the offline analysis finds them.

// True when the URI names a file ("file:..."); other links are not file links and are skipped.
bool isFileUri(const QString& uri);

// The decoded path of a "file:" URI: "file:/Users/a%20b.tif" gives "/Users/a b.tif",
// "file:C:/x.tif" and "file:///C:/x.tif" give "C:/x.tif", a relative "file:../media/x.jpg"
// resolves against `documentFolder`. An authority ("file://host/share/x") is kept as a network
// path ("//host/share/x"). Empty when the URI has no path.
QString pathFromFileUri(const QString& uri, const QString& documentFolder);

// The "file:" URI of an absolute path as InDesign writes it: "file:" then the path, every byte but
// letters, digits, "-._~" and "/" percent-encoded ("/Jobs/Issue 0/a=b.tif" gives
// "file:/Jobs/Issue%200/a%3Db.tif"); a drive letter keeps its colon ("file:C:/x.tif").
QString fileUriFromPath(const QString& path);

// The components of a path, the root counting as the first ("/Volumes/X/y" gives "/", "Volumes",
// "X", "y").
QStringList pathComponents(const QString& path);

// A link recorded on another computer: the first file of that name in `searchFolders`, in order,
// or empty when none holds one.
QString relocatedLinkPath(const QString& fileName, const QStringList& searchFolders);

// The folders searched for links that are not where the document recorded them: the document's
// folder, its "Links" folder, then the extra folders in the order given.
QStringList linkSearchFolders(const QString& documentPath, const QStringList& extraFolders);

} // namespace quillon::links
