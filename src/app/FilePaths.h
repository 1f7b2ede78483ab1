#pragma once

#include "app/Result.h"

#include <QString>

namespace quillon::app {

class AlertSink;

// A path in `folder` that does not exist yet: the name itself when free, else
// "<base>_<n><.ext>" counting n from 1 ("Report_2.pdf" when Report.pdf and Report_1.pdf exist).
QString finalPathByAppendingNumberToFileName(const QString& fileName, const QString& folder);

// How checkPathForSlashes ended.
enum class SlashCheck {
    Clean = 0,     // no component holds a colon (a "/" typed in a name is stored as a colon)
    Confirmed = 1, // the alert was shown and answered "OK" (or had no Cancel)
    Cancelled = 2, // the alert was answered "Cancel"
};

// Looks for the first path component holding a colon and, when found, shows the critical
// "Error: Unsafe character in file path" alert with `appSpecificError` (or the standard text
// when empty), the component and the path, colons shown as "/". Offers "Cancel" when asked.
SlashCheck checkPathForSlashes(AlertSink& alerts, const QString& path, const QString& appSpecificError, bool canCancel);

// True when the path is clean; false when the alert (without Cancel) was shown.
bool checkPathForSlashes(AlertSink& alerts, const QString& path, const QString& appSpecificError);

// Removes whatever is at `destination`, then copies `source` there (recursively for folders). Refuses a destination
// inside the source, and never removes the destination when the source is missing.
Status copyPathReplacingIt(const QString& source, const QString& destination);

// Names built from user text: "/" and ":" become "_".
QString safeFileName(QString name);

} // namespace quillon::app
