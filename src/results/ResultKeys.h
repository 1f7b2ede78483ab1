#pragma once

#include <QString>

namespace quillon::results {

// Keys the result lists add to the records they judge. Images are kept as image names; whoever
// draws a row turns a name into an image (and sizes it).

inline const QString kAlertsKey = QStringLiteral("alerts"); // dictionary: record key -> alert text, or array of texts
inline const QString kAlertKey = QStringLiteral("alert");   // image name: "warning" or "blank"
inline const QString kAlertNameKey = QStringLiteral("alertName"); // "warning" when there are alerts, else ""

// Fonts.
inline const QString kTypeIconKey = QStringLiteral("typeIcon");     // image name for "type"
inline const QString kStatusIconKey = QStringLiteral("statusIcon"); // image name for "status", "" for none

// Links.
inline const QString kIconKey = QStringLiteral("icon");           // kImageFileIcon, or "blank" when there is no path
inline const QString kStatusImgKey = QStringLiteral("statusImg"); // image named by the status, or "blank"
inline const QString kBadFolderKey = QStringLiteral("badfolder"); // always "blank"; its column is not shown

// Image names.
inline const QString kImageBlank = QStringLiteral("blank");
inline const QString kImageWarning = QStringLiteral("warning");
// Stands for the file's own icon (the desktop's icon for the record's "path").
inline const QString kImageFileIcon = QStringLiteral("fileIcon");

// The bullet of the list headers ("FONTS • 12") and of the status line.
inline const QString kBullet = QStringLiteral("\u2022");

} // namespace quillon::results
