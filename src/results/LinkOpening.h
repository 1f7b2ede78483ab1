#pragma once

#include "app/Settings.h"

#include <QString>

namespace quillon::results {

// The application remembered for opening files of an extension ("defaultApps", a dictionary from
// extension to application path, in the user defaults); "" when none.
inline const app::SettingKey kDefaultAppsSetting{"defaultApps", QVariantMap()};

QString defaultAppForType(const app::Settings& settings, const QString& extension);
void setDefaultAppForType(app::Settings& settings, const QString& application, const QString& extension);

} // namespace quillon::results
