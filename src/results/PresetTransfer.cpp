#include "results/PresetTransfer.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PathComponents.h"
#include "app/PropertyList.h"
#include "results/PresetKeys.h"
#include "results/Presets.h"
#include "results/PresetsFile.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <optional>

namespace quillon::results {

namespace {

const QString kConflictTitle = QStringLiteral("Some items already exist in this location");

// The preset files of a folder, hidden ones left out.
QStringList presetFileNames(const QString& folder)
{
    QStringList names;
    for (const QString& name : QDir(folder).entryList(QDir::Files, QDir::Name))
        if (!name.startsWith(u'.') && app::pathExtension(name) == kPresetExtension)
            names.append(name);
    return names;
}

QString writeErrorText(const QString& target)
{
    // The folder named here is not the presets folder; the text stays as it is.
    return app::withSupportContact(
        QStringLiteral("The preset %1 could not be written. This error could be caused by insufficient permissions "
                       "in the folder ~/Library/Application Support/Tornvale/Pictoscan")
            .arg(app::stringByDeletingPathExtension(app::lastPathComponent(target))));
}

bool writeNamedPreset(QVariantMap preset, const QString& target)
{
    preset.insert(kPresetNameKey, app::stringByDeletingPathExtension(app::lastPathComponent(target)));
    if (target.isEmpty())
        return false;
    const app::Status written = app::writePropertyListFile(preset, target);
    if (!written)
        app::logFailure(QStringLiteral("write preset: %1").arg(written.error().text()));
    return written.ok();
}

} // namespace

QString replacementPathFor(const QString& path)
{
    const QString base = app::stringByDeletingPathExtension(path);
    for (int i = 1; i <= 9999; ++i) {
        const QString candidate = QStringLiteral("%1 copy %2.%3").arg(base).arg(i).arg(kPresetExtension);
        if (!QFileInfo::exists(candidate))
            return candidate;
    }
    return {};
}

namespace {

// The file name a preset file is exported as: "[Default].qnfp" becomes "Default.qnfp".
QString exportedName(const QString& name)
{
    return name == kDefaultPresetName + u'.' + kPresetExtension ? QStringLiteral("Default.") + kPresetExtension : name;
}

} // namespace

TransferOutcome exportAllPresets(const QString& presetsFolder, const QString& targetFolder, app::AlertSink& alerts)
{
    app::logUserAction("exportAllPresets");
    const QStringList names = presetFileNames(presetsFolder);
    bool keepBoth = false;
    // The clash is judged on the names the export writes, so a "Default.qnfp" of the user's is
    // asked about like any other.
    const bool conflict = std::any_of(names.cbegin(), names.cend(), [&targetFolder](const QString& name) {
        return QFileInfo::exists(targetFolder + u'/' + exportedName(name));
    });
    if (conflict) {
        const int answer = app::runAlert(
            alerts, kConflictTitle, QStringLiteral("Do you want to replace them with the ones you create?"),
            QStringList{QStringLiteral("Replace"), QStringLiteral("Cancel"), QStringLiteral("Keep Both")}, true);
        if (answer != app::kAlertFirstButton && answer != app::kAlertThirdButton)
            return TransferOutcome::Cancelled;
        keepBoth = answer == app::kAlertThirdButton;
    }
    QSet<QString> written;
    for (const QString& name : names) {
        QString target = targetFolder + u'/' + exportedName(name);
        // A replaced file is replaced by the write itself, so a failed write leaves it as it was.
        // Two presets of this export never become one file ("[Default]" and "Default").
        if ((keepBoth && QFileInfo::exists(target)) || written.contains(target))
            target = replacementPathFor(target);
        const auto preset = app::readPropertyListDictionary(presetsFolder + u'/' + name);
        if (!preset) {
            app::logFailure(QStringLiteral("read preset to export: %1").arg(preset.error().text()));
            continue;
        }
        if (!writeNamedPreset(preset.value(), target)) {
            app::runAlert(alerts, QStringLiteral("Presets could not be saved"), writeErrorText(target),
                          QStringList{QStringLiteral("Cancel")}, true);
            return TransferOutcome::Failed;
        }
        written.insert(target);
    }
    return TransferOutcome::Done;
}

namespace {

// Why a file cannot be imported: not a preset file, a name the presets refuse, or what it holds.
std::optional<QString> importRefusal(const QString& file, const QString& presetsFolder)
{
    const QString fileName = app::lastPathComponent(file);
    if (app::pathExtension(fileName) != kPresetExtension)
        return QStringLiteral("%1: only preset files (.%2) can be imported").arg(file, kPresetExtension);
    // "[Default]" is the one name outside the rules that a preset file may carry.
    const QString name = app::stringByDeletingPathExtension(fileName);
    if (const auto problem = name == kDefaultPresetName ? std::nullopt : presetNameProblem(name, presetsFolder))
        return QStringLiteral("%1: %2").arg(file, problem->message.isEmpty() ? problem->title : problem->message);
    if (const auto preset = readPresetFile(file); !preset)
        return preset.error().text();
    return std::nullopt;
}

} // namespace

TransferOutcome importPresets(const QString& presetsFolder, const QStringList& files, app::AlertSink& alerts)
{
    app::logUserAction("importPresets");
    enum class Mode { Ask, Replace, KeepBoth } mode = Mode::Ask;
    const QString failureTitle = QStringLiteral("presets could not be imported");
    QDir().mkpath(presetsFolder);
    // Every file is checked before the first is written.
    for (const QString& file : files) {
        if (const std::optional<QString> refusal = importRefusal(file, presetsFolder)) {
            app::runAlert(alerts, failureTitle, app::withSupportContact(*refusal),
                          QStringList{QStringLiteral("Cancel")}, true);
            return TransferOutcome::Failed;
        }
    }
    for (const QString& file : files) {
        const auto preset = readPresetFile(file);
        if (!preset) {
            app::runAlert(alerts, failureTitle, app::withSupportContact(preset.error().text()),
                          QStringList{QStringLiteral("Cancel")}, true);
            return TransferOutcome::Failed;
        }
        QString target = presetsFolder + u'/' + app::lastPathComponent(file);
        if (QFileInfo::exists(target)) {
            bool replaceThis = mode == Mode::Replace;
            if (mode == Mode::Ask) {
                const int answer = app::runAlert(
                    alerts, kConflictTitle, QStringLiteral("Do you want to replace them with the ones you import?"),
                    QStringList{QStringLiteral("Replace")}, true);
                if (answer == kClassicAlertAlternate)
                    return TransferOutcome::Cancelled;
                if (answer == kClassicAlertDefault)
                    mode = Mode::Replace;
                else if (answer == kClassicAlertOther)
                    mode = Mode::KeepBoth;
                replaceThis = answer == kClassicAlertDefault;
            }
            if (!replaceThis)
                target = replacementPathFor(target);
        }
        if (!writeNamedPreset(preset.value(), target)) {
            app::runAlert(alerts, failureTitle, writeErrorText(target), QStringList{QStringLiteral("Cancel")}, true);
            return TransferOutcome::Failed;
        }
    }
    return TransferOutcome::Done;
}

} // namespace quillon::results
