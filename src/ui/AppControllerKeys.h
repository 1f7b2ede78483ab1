#pragma once

#include "app/Settings.h"

namespace quillon::ui {

// User defaults the application shell owns ("presetIndexSelectedOnQuit" and "pdfPresetNames"
// are declared by their owners).
inline const app::SettingKey kPrintPageSetupSetting{"printPageSetup", QByteArray()}; // the page layout, as data
inline const app::SettingKey kDebuggingIsEnabledSetting{"debuggingIsEnabled", false};
inline const app::SettingKey kRowSizeSetting{"rowSize", 0}; // 0 normal rows, 1 small rows
// The quiet update check at launch (nothing is shown when current or unreachable); off unless set.
inline const app::SettingKey kCheckForUpdatesAtLaunchSetting{"checkForUpdatesAtLaunch", false};
inline const app::SettingKey kMainWindowGeometrySetting{"mainWindowGeometry", QByteArray()};
inline const app::SettingKey kMainWindowStateSetting{"mainWindowState", QByteArray()};

} // namespace quillon::ui
