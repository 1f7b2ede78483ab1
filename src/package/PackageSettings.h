#pragma once

#include "app/Settings.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace quillon::app {
class AlertSink;
}

namespace quillon::package {

// The packaging choices kept in the user defaults, with the value used when a key is absent.
// "selectedPDFPreset" is the export's own key (host/PdfIdmlController.h).
inline const app::SettingKey kPackageUnifiedSetting{"packageUnified", true};
inline const app::SettingKey kPdfPresetNamesSetting{"pdfPresetNames", QStringList{"[Smallest File Size]"}};
inline const app::SettingKey kPackageLocationPathSetting{"packageLocationPath", QString()};
inline const app::SettingKey kAskLocationEveryTimeSetting{"askLocationEveryTime", true};
inline const app::SettingKey kDateLastAskedForLocationSetting{"dateLastAskedForLocation", QVariant()};
inline const app::SettingKey kPackageFolderNamePart1Setting{"packageFolderNamePart1", QString()};
inline const app::SettingKey kPackPdfReportSetting{"packPDFReport", false};
inline const app::SettingKey kPackTextReportSetting{"packTextReport", false};
inline const app::SettingKey kPackUpdateSetting{"packUpdate", true};
inline const app::SettingKey kPackPlaceSetting{"packPlace", false};
inline const app::SettingKey kPackOpenDocSetting{"packOpenDoc", false};
inline const app::SettingKey kOpenPackagedDocFlagSetting{"openPackagedDocFlag", true};
inline const app::SettingKey kPackSwitchToFinderSetting{"packSwitchToFinder", false};
inline const app::SettingKey kPackOpenFolderSetting{"packOpenFolder", true};
inline const app::SettingKey kPackViewFlagSetting{"packViewFlag", true};
inline const app::SettingKey kFolderViewOptionSetting{"folderViewOption", QStringLiteral("List")};
inline const app::SettingKey kPackToolbarSetting{"packToolbar", false};
inline const app::SettingKey kScanSubfoldersSetting{"scanSubfolders", false};
inline const app::SettingKey kEnableDeliverySetting{"enableDelivery", false};

// The titles of the three folder-view choices; a stored title that is none of them reads "List".
inline const QStringList kFolderViewOptions{QStringLiteral("List"), QStringLiteral("Icons"), QStringLiteral("Columns")};

// The user defaults of packaging, read once and checked: a value of the wrong kind reads as its
// default.
struct PackageSettings {
    bool unified = true;
    QString selectedPdfPreset = QStringLiteral("[Smallest File Size]");
    QStringList pdfPresetNames{QStringLiteral("[Smallest File Size]")};
    QString packageLocationPath;
    bool askLocationEveryTime = true;
    std::optional<QDateTime> dateLastAskedForLocation;
    QString packageFolderNamePart1;
    bool packPdfReport = false;
    bool packTextReport = false;
    bool packUpdate = true;
    bool packPlace = false;
    bool packOpenDoc = false;
    bool openPackagedDocFlag = true;
    bool packSwitchToFinder = false;
    bool packOpenFolder = true;
    bool packViewFlag = true;
    QString folderViewOption = QStringLiteral("List");
    bool packToolbar = false;
    bool scanSubfolders = false;
    bool enableDelivery = false;
};

PackageSettings loadPackageSettings(const app::Settings& settings);
void savePackageSettings(app::Settings& settings, const PackageSettings& values);

// The preset names InDesign gave, or the single default name when it gave none.
QStringList pdfPresetNamesOrDefault(const QStringList& names);

// True when no PDF is wanted or `available` lists the selected preset; else the critical
// "does not exist" alert and false.
bool checkIfSelectedPDFPresetExists(app::AlertSink& alerts, bool createPdf, const QString& selected,
                                    const QStringList& available);

// True when the parent folder is asked for on every run, or when the chosen one exists; else the
// alert that says which is wrong and false.
bool checkIfLocationExists(app::AlertSink& alerts, bool askLocation, const QString& locationPath);

// Whether to ask for the parent folder now. The daily choice skips asking only when the last
// answer lies more than a day in the future, so it asks every time as well; users know it so.
bool shouldAskForBaseFolderLocation(bool askEveryTime, const std::optional<QDateTime>& dateLastAsked,
                                    const QDateTime& now);

// The free space of the location, as "sizeBytes" and "sizeStr"; nothing when it cannot be read.
struct FreeSpace {
    qint64 sizeBytes = 0;
    QString sizeStr;
};
std::optional<FreeSpace> freeSpaceDict(const QString& locationPath);

// What the free-space field shows and whether packaging may go on.
struct FreeSpaceCheck {
    bool passes = true;
    QString fieldText = QStringLiteral("?");
    bool insufficient = false; // shown in red
};
// `fromPackaging`: the package run asks (it alerts and may stop); else the panel shows the space.
FreeSpaceCheck evaluateFreeSpace(app::AlertSink& alerts, bool fromPackaging, bool askLocation,
                                 const std::optional<FreeSpace>& freeSpace, qint64 bytesToPackage);

} // namespace quillon::package
