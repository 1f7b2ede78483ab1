#pragma once

#include <QString>
#include <QStringList>

namespace quillon::app {
class AlertSink;
}

namespace quillon::host {

class HostEnvironment;

// The InDesign application name for a path or name ("Adobe InDesign 2024"), matched by substring
// in the order of the name table (year-named releases before "InDesign CC", which is a prefix of
// the older names); "" when nothing matches.
QString InDesignVersionForPath(const QString& path);

// "Adobe InDesign 2023", deliberately not the newest name in the table.
QString defaultInDesignVersion();

// The running applications whose file name contains "Adobe InDesign", in the reported order.
QStringList launchedInDesignPaths(const HostEnvironment& environment);

// The InDesign to talk to, chosen once at start-up: the one whose folder holds this program;
// otherwise the first running one (with a notice when several run); otherwise the default.
QString InDesignVersionForStartup(const HostEnvironment& environment, app::AlertSink& alerts);

} // namespace quillon::host
