#include "host/AppleEventPermission.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/ToolRunner.h"
#include "host/HostEnvironment.h"
#include "host/ScriptRunner.h"

namespace quillon::host {

namespace {

bool isBetaBuild(const HostEnvironment& environment)
{
    return environment.shortVersionString().contains(u'b');
}

// The error number as text: a number's digits, a string as it is, anything else "".
QString errorNumberText(const QVariant& number)
{
    app::logLine(QStringLiteral("errNumClassName: %1").arg(QString::fromLatin1(number.typeName())));
    switch (number.typeId()) {
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Double:
        return number.toString();
    case QMetaType::QString:
        return number.toString();
    default:
        return {};
    }
}

} // namespace

QString authorizationProbeScript(const QString& target)
{
    QString script;
    if (target.contains(QLatin1String("InDesign"))) {
        script = QStringLiteral("tell application \"%1\" \n name of PDF export presets \n end tell");
    } else if (target == QLatin1String("System Events") || target == QLatin1String("Finder")) {
        script = QStringLiteral("tell application \"%1\" \n name of startup disk \n end tell");
    } else if (target.contains(QLatin1String("Photoshop")) && target.contains(QLatin1String(".app"))) {
        script = QStringLiteral("tell application \"%1\" \n color settings \n end tell");
    } else if (target.contains(QLatin1String("Photoshop"))) {
        return QStringLiteral("tell application id \"com.adobe.photoshop\" \n color settings \n end tell");
    } else if (target.contains(QLatin1String("Glintmark"))) {
        script = QStringLiteral("tell application \"%1\" \n processDocument AEAuthQueryOnly true \n end tell");
    } else if (target.contains(QLatin1String("Illustrator"))) {
        script = QStringLiteral("tell application \"%1\" \n PDF presets \n end tell");
    } else if (target.contains(QLatin1String("Microsoft"))) {
        script = QStringLiteral("tell application \"%1\" \n default save format \n end tell");
    } else {
        app::logLine(QStringLiteral("other app"));
        script = QStringLiteral("tell application \"%1\" \n name of startup disk \n end tell");
    }
    return script.arg(target);
}

bool isMissingPermissionError(const QVariantMap& errorDict)
{
    const QString message = errorDict.value(kScriptErrorMessageKey).toString();
    if (message.contains(QLatin1String("Not authorized to send Apple")))
        return true;
    return errorNumberText(errorDict.value(kScriptErrorNumberKey)).contains(QLatin1String("1743"));
}

void checkAuthorizationToSendAEToApp(const QString& target, const QString& fromApp, const AppleEventServices& services)
{
    app::logLine(QStringLiteral("> checkAuthorizationToSendAEToApp:%1").arg(target));
    const QString source = authorizationProbeScript(target);
    app::logLine(QStringLiteral("scriptSource: %1").arg(source));
    const QVariantMap outcome = services.scripts.runAppleScriptWithSourceString(source);
    const QVariantMap errorDict = scriptErrorDict(outcome);
    app::logLine(QStringLiteral("result: %1").arg(descriptorStringValue(outcome.value(kScriptResultKey))));
    app::logLine(QStringLiteral("AS errDict: %1").arg(errorDict.value(kScriptErrorMessageKey).toString()));
    if (errorDict.isEmpty() || !isMissingPermissionError(errorDict))
        return;

    const bool beta = isBetaBuild(services.environment);
    QString message = QStringLiteral("To restore permissions, please click the button below.\n\nError: %1 [%2]")
                          .arg(errorDict.value(kScriptErrorMessageKey).toString(),
                               errorNumberText(errorDict.value(kScriptErrorNumberKey)));
    if (beta)
        message += QStringLiteral("\n\n%1").arg(services.environment.bundlePath());
    app::runAlert(services.alerts, QStringLiteral("%1 is not yet authorized to control %2").arg(fromApp, target),
                  message, QStringList{QStringLiteral("Reset Permissions")}, false);

    resetAppleEventsPermissions(services.tools);

    QStringList buttons{QStringLiteral("Relaunch")};
    if (beta)
        buttons << QStringLiteral("Quit");
    const int answer =
        app::runAlert(services.alerts, QStringLiteral("Permissions have been reset"),
                      app::withSupportContact(QStringLiteral("Relaunch %1 for changes to take effect.").arg(fromApp)) +
                          QStringLiteral("\n\n"),
                      buttons, false);
    if (answer == app::kAlertSecondButton)
        services.environment.terminate();
    else
        relaunchAfterDelay(3, services.tools, services.environment);
}

void checkAEAuthorizationsForApps(const QStringList& targets, const QString& fromApp,
                                  const AppleEventServices& services)
{
    for (const QString& target : targets)
        checkAuthorizationToSendAEToApp(target, fromApp, services);
}

void resetAppleEventsPermissions(app::ToolRunner& tools)
{
    tools.runTaskWithPath(QStringLiteral("/usr/bin/tccutil"), {QStringLiteral("reset"), QStringLiteral("AppleEvents")},
                          false);
}

void relaunchAfterDelay(double seconds, app::ToolRunner& tools, HostEnvironment& environment)
{
    const QString command =
        QStringLiteral("sleep %1; open \"%2\"").arg(QString::asprintf("%f", seconds), environment.bundlePath());
    tools.runTaskWithPath(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command}, false);
    environment.terminate();
}

} // namespace quillon::host
