#include "host/InDesignVersion.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "host/HostEnvironment.h"

#include <QFileInfo>

#include <array>
#include <utility>

namespace quillon::host {

namespace {

// Searched in this order; the first substring found names the application.
constexpr std::array<std::pair<const char*, const char*>, 12> kInDesignNames{{
    {"InDesign 2024", "Adobe InDesign 2024"},
    {"InDesign 2023", "Adobe InDesign 2023"},
    {"InDesign 2022", "Adobe InDesign 2022"},
    {"InDesign 2021", "Adobe InDesign 2021"},
    {"InDesign 2020", "Adobe InDesign 2020"},
    {"InDesign CC 2019", "Adobe InDesign CC 2019"},
    {"InDesign CC 2018", "Adobe InDesign CC 2018"},
    {"InDesign CC 2017", "Adobe InDesign CC 2017"},
    {"InDesign CC 2015", "Adobe InDesign CC 2015"},
    {"InDesign CC 2014", "Adobe InDesign CC 2014"},
    {"InDesign CC", "Adobe InDesign CC"},
    {"CS6", "Adobe InDesign CS6"},
}};

} // namespace

QString InDesignVersionForPath(const QString& path)
{
    for (const auto& [substring, name] : kInDesignNames)
        if (path.contains(QLatin1String(substring)))
            return QLatin1String(name);
    return {};
}

QString defaultInDesignVersion()
{
    return QStringLiteral("Adobe InDesign 2023");
}

QStringList launchedInDesignPaths(const HostEnvironment& environment)
{
    QStringList paths;
    for (const QString& path : environment.runningApplicationPaths())
        if (QFileInfo(path).fileName().contains(QLatin1String("Adobe InDesign")))
            paths << path;
    return paths;
}

QString InDesignVersionForStartup(const HostEnvironment& environment, app::AlertSink& alerts)
{
    app::logEntry("InDesignVersionForStartup");
    const QString resourcePath = environment.resourcePath();
    app::logLine(QStringLiteral("resourcePath: %1").arg(resourcePath));
    if (const QString own = InDesignVersionForPath(resourcePath); !own.isEmpty())
        return own;

    app::logLine(QStringLiteral("InDesign not detected: %1").arg(resourcePath));
    const QStringList running = launchedInDesignPaths(environment);
    if (running.isEmpty())
        return defaultInDesignVersion();
    QString chosen = InDesignVersionForPath(running.first());
    if (chosen.isEmpty())
        chosen = defaultInDesignVersion();
    if (running.size() > 1)
        app::runAlert(alerts, QStringLiteral("Multiple InDesign versions are open"),
                      app::withSupportContact(
                          QStringLiteral("Quillon will use %1.\n\nTo avoid errors, please leave only one InDesign "
                                         "version open.")
                              .arg(chosen)),
                      std::nullopt, false);
    return chosen;
}

} // namespace quillon::host
