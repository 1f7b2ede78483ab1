#include "results/LinkRename.h"

#include "app/Alerts.h"
#include "app/Company.h"
#include "app/Log.h"
#include "app/PathComponents.h"
#include "links/LinkRecordKeys.h"
#include "results/LinkResults.h"
#include "results/ResultRows.h"

#include <filesystem>
#include <system_error>

namespace quillon::results {

namespace lk = quillon::links;
namespace fs = std::filesystem;

namespace {

fs::path toPath(const QString& path)
{
    return fs::path(path.toStdString());
}

bool pathExists(const QString& path)
{
    std::error_code ec;
    const fs::file_status status = fs::symlink_status(toPath(path), ec);
    return !ec && status.type() != fs::file_type::not_found;
}

std::error_code movePath(const QString& from, const QString& to)
{
    std::error_code ec;
    fs::rename(toPath(from), toPath(to), ec);
    return ec;
}

void alert(app::AlertSink& alerts, const QString& title, const QString& message, bool critical = false)
{
    app::runAlert(alerts, title, message, std::nullopt, critical);
}

// The refusals of a new name, in their order; true when the name may be used.
bool acceptNewName(app::AlertSink& alerts, const QString& oldName, const QString& newName, const QString& newPath)
{
    if (newName.isEmpty()) {
        alert(alerts, QStringLiteral("Please specify a new file name"), QString());
        return false;
    }
    if (newName.contains(u':') || newName.contains(u'/')) {
        alert(alerts, QStringLiteral("Error"),
              QStringLiteral("File names cannot contain the following characters: : /"));
        return false;
    }
    if (app::pathExtension(newName) != app::pathExtension(oldName)) {
        alert(alerts, QStringLiteral("File extensions don't match"),
              QStringLiteral("Please retain the original file extension."), true);
        return false;
    }
    if (newName.startsWith(u'.')) {
        alert(alerts, QStringLiteral("Error"), QStringLiteral("File name cannot start with a period (.)"));
        return false;
    }
    if (pathExists(newPath)) {
        alert(alerts, QStringLiteral("File already exists"),
              QStringLiteral("The file already exists - please choose a different name:\n\n%1").arg(newName), true);
        return false;
    }
    return true;
}

} // namespace

LinkRenameResult renameLinkedFile(QVariantList& items, const QVariantMap& editedRow, const QString& newName,
                                  app::AlertSink& alerts, LinkRelinker& relinker)
{
    const QString oldName = editedRow.value(lk::kLinkNameKey).toString();
    if (newName == oldName)
        return {};
    const QString oldPath = editedRow.value(lk::kLinkPathKey).toString();
    const QString folder = oldPath.left(oldPath.lastIndexOf(u'/') + 1);
    const QString newPath = folder + newName;
    if (!acceptNewName(alerts, oldName, newName, newPath))
        return {LinkRenameOutcome::Refused, {}};

    if (const std::error_code ec = movePath(oldPath, newPath)) {
        alert(alerts, QStringLiteral("File could not be renamed"),
              app::withSupportContact(
                  QStringLiteral("File could not be renamed.\r\rError: %1").arg(QString::fromStdString(ec.message()))));
        return {LinkRenameOutcome::NotMoved, {}};
    }

    // Relinking works on one document's flat list; the file keeps its new name either way.
    const auto indexes = QNLinksOutline::indexesOfItemsWhosePathIs(items, oldPath);
    if (!items.isEmpty() && isGroupRow(items.first().toMap())) {
        alert(alerts, QStringLiteral("Link renaming for multiple InDesign documents is not supported yet"),
              QStringLiteral("You can rename links if you preflight a single InDesign document."));
        return {LinkRenameOutcome::NotRelinked, newPath};
    }
    if (!indexes) {
        alert(alerts, QStringLiteral("Could not find requested links"),
              app::withSupportContact(QStringLiteral("Links for the selected path could not be found.")));
        return {LinkRenameOutcome::NotRelinked, newPath};
    }

    for (qsizetype index : *indexes) {
        QVariantMap row = items.at(index).toMap();
        const QString docName = app::lastPathComponent(row.value(lk::kLinkDocPathKey).toString());
        if (!relinker.relinkLink(row.value(lk::kLinkIdKey).toString(), newPath, docName)) {
            app::logFailure(QStringLiteral("relink %1 to %2").arg(oldPath, newPath));
            if (const std::error_code ec = movePath(newPath, oldPath))
                alert(alerts, QStringLiteral("File could not be renamed"),
                      app::withSupportContact(QStringLiteral("File could not be renamed back after relinking failed."
                                                             "\r\rError: %1")
                                                  .arg(QString::fromStdString(ec.message()))));
            return {LinkRenameOutcome::MovedBack, {}};
        }
        row.insert(lk::kLinkNameKey, newName);
        row.insert(lk::kLinkPathKey, newPath);
        items[index] = row;
    }
    return {LinkRenameOutcome::Relinked, newPath};
}

} // namespace quillon::results
