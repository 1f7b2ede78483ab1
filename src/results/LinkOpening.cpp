#include "results/LinkOpening.h"

namespace quillon::results {

QString defaultAppForType(const app::Settings& settings, const QString& extension)
{
    return settings.value(kDefaultAppsSetting).toMap().value(extension).toString();
}

void setDefaultAppForType(app::Settings& settings, const QString& application, const QString& extension)
{
    QVariantMap apps = settings.value(kDefaultAppsSetting).toMap();
    apps.insert(extension, application);
    settings.setValue(QLatin1String(kDefaultAppsSetting.name), apps);
}

} // namespace quillon::results
