#pragma once

#include <QLoggingCategory>
#include <QString>

namespace quillon::app {

// Diagnostic lines go to the "quillon" category, off unless debugging is enabled. They are not an
// interface; their shape follows the house conventions: ">" and the method name on entry ("-*>"
// for user actions), "-->" for exceptions, "-> can't" or "-> ERR" for failures.
Q_DECLARE_LOGGING_CATEGORY(lcQuillon)

// Turns the diagnostic lines on or off for the whole process. The QUILLON_DEBUG environment
// variable (any value but "0") turns them on at start-up.
void setDebugLogging(bool enabled);
bool debugLoggingEnabled();

void logLine(const QString& line);
inline void logEntry(const char* method)
{
    logLine(QStringLiteral("> ") + QLatin1String(method));
}
inline void logUserAction(const char* method)
{
    logLine(QStringLiteral("-*> ") + QLatin1String(method));
}
inline void logException(const QString& what)
{
    logLine(QStringLiteral("--> ") + what);
}
inline void logFailure(const QString& what)
{
    logLine(QStringLiteral("-> can't ") + what);
}
inline void logError(const QString& what)
{
    logLine(QStringLiteral("-> ERR ") + what);
}

} // namespace quillon::app
