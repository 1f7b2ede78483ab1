#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace quillon::app {
class AlertSink;
class ToolRunner;
} // namespace quillon::app

namespace quillon::host {

class HostEnvironment;
class ScriptRunner;

// What the permission probe and its repair use.
struct AppleEventServices {
    ScriptRunner& scripts;
    app::AlertSink& alerts;
    app::ToolRunner& tools;
    HostEnvironment& environment;
};

// The harmless read-only script that asks `target` (a name or an application path) something,
// so the system says whether this program may send it Apple events.
QString authorizationProbeScript(const QString& target);

// True when a failed probe's error means the permission is missing: the message says
// "Not authorized to send Apple", or the error number reads as 1743 whatever the message.
bool isMissingPermissionError(const QVariantMap& errorDict);

// Probes `target`; when permission is missing, offers to reset the Apple-event permissions of
// the whole system and relaunch `fromApp` ("Quillon"). Any other error ends the probe quietly.
void checkAuthorizationToSendAEToApp(const QString& target, const QString& fromApp, const AppleEventServices& services);
void checkAEAuthorizationsForApps(const QStringList& targets, const QString& fromApp,
                                  const AppleEventServices& services);

// Resets the Apple-event permissions of every application (not only this one's); does not wait.
void resetAppleEventsPermissions(app::ToolRunner& tools);

// Has a shell reopen the program after `seconds`, then ends the program.
void relaunchAfterDelay(double seconds, app::ToolRunner& tools, HostEnvironment& environment);

} // namespace quillon::host
