#include "app/Log.h"

#include <QByteArray>

#include <atomic>

namespace quillon::app {

Q_LOGGING_CATEGORY(lcQuillon, "quillon", QtWarningMsg)

namespace {

bool enabledFromEnvironment()
{
    const QByteArray value = qgetenv("QUILLON_DEBUG");
    return !value.isEmpty() && value != "0";
}

std::atomic<bool>& enabledFlag()
{
    static std::atomic<bool> flag{enabledFromEnvironment()};
    return flag;
}

} // namespace

void setDebugLogging(bool enabled)
{
    enabledFlag() = enabled;
}

bool debugLoggingEnabled()
{
    return enabledFlag();
}

void logLine(const QString& line)
{
    // The category's own threshold keeps the lines out of release logs; the flag lets the
    // program and its tests switch them on without touching Qt's filter rules.
    if (enabledFlag())
        qCWarning(lcQuillon).noquote() << line;
}

} // namespace quillon::app
