#include "package/PackageSettings.h"

#include "app/Alerts.h"
#include "app/Numbers.h"
#include "host/PdfIdmlController.h"

#include <QFileInfo>
#include <QStorageInfo>

namespace quillon::package {

namespace {

constexpr qint64 kSecondsBetweenDailyAsks = 86400;

bool flag(const app::Settings& settings, const app::SettingKey& key)
{
    return settings.boolForKey(QLatin1String(key.name), key.defaultValue.toBool());
}

QString text(const app::Settings& settings, const app::SettingKey& key)
{
    const QVariant value = settings.value(key);
    return value.typeId() == QMetaType::QString ? value.toString() : key.defaultValue.toString();
}

QString orDefault(const QString& value, const QString& fallback)
{
    return value.isEmpty() ? fallback : value;
}

} // namespace

PackageSettings loadPackageSettings(const app::Settings& settings)
{
    PackageSettings values;
    values.unified = flag(settings, kPackageUnifiedSetting);
    values.selectedPdfPreset = orDefault(text(settings, host::kSelectedPdfPresetSetting),
                                         host::kSelectedPdfPresetSetting.defaultValue.toString());
    values.pdfPresetNames = pdfPresetNamesOrDefault(settings.value(kPdfPresetNamesSetting).toStringList());
    values.packageLocationPath = text(settings, kPackageLocationPathSetting);
    values.askLocationEveryTime = flag(settings, kAskLocationEveryTimeSetting);
    if (const QDateTime asked = settings.value(kDateLastAskedForLocationSetting).toDateTime(); asked.isValid())
        values.dateLastAskedForLocation = asked;
    values.packageFolderNamePart1 = text(settings, kPackageFolderNamePart1Setting);
    values.packPdfReport = flag(settings, kPackPdfReportSetting);
    values.packTextReport = flag(settings, kPackTextReportSetting);
    values.packUpdate = flag(settings, kPackUpdateSetting);
    values.packPlace = flag(settings, kPackPlaceSetting);
    values.packOpenDoc = flag(settings, kPackOpenDocSetting);
    values.openPackagedDocFlag = flag(settings, kOpenPackagedDocFlagSetting);
    values.packSwitchToFinder = flag(settings, kPackSwitchToFinderSetting);
    values.packOpenFolder = flag(settings, kPackOpenFolderSetting);
    values.packViewFlag = flag(settings, kPackViewFlagSetting);
    const QString view = text(settings, kFolderViewOptionSetting);
    values.folderViewOption = kFolderViewOptions.contains(view) ? view : kFolderViewOptions.first();
    values.packToolbar = flag(settings, kPackToolbarSetting);
    values.scanSubfolders = flag(settings, kScanSubfoldersSetting);
    values.enableDelivery = flag(settings, kEnableDeliverySetting);
    return values;
}

void savePackageSettings(app::Settings& settings, const PackageSettings& values)
{
    const auto put = [&](const app::SettingKey& key, const QVariant& value) {
        settings.setValue(QLatin1String(key.name), value);
    };
    put(kPackageUnifiedSetting, values.unified);
    put(host::kSelectedPdfPresetSetting, values.selectedPdfPreset);
    put(kPdfPresetNamesSetting, values.pdfPresetNames);
    put(kPackageLocationPathSetting, values.packageLocationPath);
    put(kAskLocationEveryTimeSetting, values.askLocationEveryTime);
    if (values.dateLastAskedForLocation)
        put(kDateLastAskedForLocationSetting, *values.dateLastAskedForLocation);
    put(kPackageFolderNamePart1Setting, values.packageFolderNamePart1);
    put(kPackPdfReportSetting, values.packPdfReport);
    put(kPackTextReportSetting, values.packTextReport);
    put(kPackUpdateSetting, values.packUpdate);
    put(kPackPlaceSetting, values.packPlace);
    put(kPackOpenDocSetting, values.packOpenDoc);
    put(kOpenPackagedDocFlagSetting, values.openPackagedDocFlag);
    put(kPackSwitchToFinderSetting, values.packSwitchToFinder);
    put(kPackOpenFolderSetting, values.packOpenFolder);
    put(kPackViewFlagSetting, values.packViewFlag);
    put(kFolderViewOptionSetting, values.folderViewOption);
    put(kPackToolbarSetting, values.packToolbar);
    put(kScanSubfoldersSetting, values.scanSubfolders);
    put(kEnableDeliverySetting, values.enableDelivery);
}

QStringList pdfPresetNamesOrDefault(const QStringList& names)
{
    return names.isEmpty() ? kPdfPresetNamesSetting.defaultValue.toStringList() : names;
}

bool checkIfSelectedPDFPresetExists(app::AlertSink& alerts, bool createPdf, const QString& selected,
                                    const QStringList& available)
{
    if (!createPdf || available.contains(selected))
        return true;
    app::runAlert(alerts, QStringLiteral("The selected PDF preset \"%1\" does not exist").arg(selected),
                  QStringLiteral("The preset could have been renamed or deleted.\n\nPlease select an existing PDF "
                                 "export preset."),
                  std::nullopt, true);
    return false;
}

bool checkIfLocationExists(app::AlertSink& alerts, bool askLocation, const QString& locationPath)
{
    if (askLocation)
        return true;
    if (locationPath.isEmpty()) {
        app::runAlert(alerts, QStringLiteral("The location for package folders is not selected"),
                      QStringLiteral("Please use the Choose Location button to select the parent folder for package "
                                     "folders."),
                      std::nullopt, true);
        return false;
    }
    if (QFileInfo(locationPath).isDir())
        return true;
    app::runAlert(alerts, QStringLiteral("The location for package folders could not be found"),
                  QStringLiteral("The selected folder cannot be found:\n\n:%1\n\nPlease select a different folder.")
                      .arg(locationPath),
                  std::nullopt, true);
    return false;
}

bool shouldAskForBaseFolderLocation(bool askEveryTime, const std::optional<QDateTime>& dateLastAsked,
                                    const QDateTime& now)
{
    if (askEveryTime || !dateLastAsked)
        return true;
    return now.secsTo(*dateLastAsked) <= kSecondsBetweenDailyAsks;
}

std::optional<FreeSpace> freeSpaceDict(const QString& locationPath)
{
    const QStorageInfo storage(locationPath);
    if (locationPath.isEmpty() || !storage.isValid() || !storage.isReady() || storage.bytesAvailable() < 0)
        return std::nullopt;
    const qint64 bytes = storage.bytesAvailable();
    return FreeSpace{bytes, app::fileSizeStrFromBytes(static_cast<std::uint64_t>(bytes))};
}

FreeSpaceCheck evaluateFreeSpace(app::AlertSink& alerts, bool fromPackaging, bool askLocation,
                                 const std::optional<FreeSpace>& freeSpace, qint64 bytesToPackage)
{
    FreeSpaceCheck check;
    if ((askLocation && !fromPackaging) || !freeSpace)
        return check;
    check.fieldText = freeSpace->sizeStr;
    check.insufficient = freeSpace->sizeBytes <= bytesToPackage;
    if (check.insufficient && fromPackaging) {
        app::runAlert(alerts, QStringLiteral("Insufficient free disk space in the target location"), QString(),
                      std::nullopt, true);
        check.passes = false;
    }
    return check;
}

} // namespace quillon::package
