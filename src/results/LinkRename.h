#pragma once

#include <QString>
#include <QVariantList>
#include <QVariantMap>

namespace quillon::app {
class AlertSink;
}

namespace quillon::results {

// What renaming a linked file needs of InDesign: relinking one link to the renamed file.
// The host implements it.
class LinkRelinker {
public:
    virtual ~LinkRelinker() = default;
    // Relinks the link with that InDesign id, in the open document of that file name, to
    // `newPath`; true when InDesign did it.
    virtual bool relinkLink(const QString& linkID, const QString& newPath, const QString& docName) = 0;
};

enum class LinkRenameOutcome {
    Unchanged,   // the new name is the old one
    Refused,     // the name was refused with an alert; nothing changed
    NotMoved,    // the file could not be renamed (alert)
    NotRelinked, // the file has its new name but the list was left as it was (alert)
    MovedBack,   // InDesign could not relink: the file has its old name again (alert when that failed)
    Relinked,    // file renamed and every link to it relinked; the rows hold the new name and path
};

struct LinkRenameResult {
    LinkRenameOutcome outcome = LinkRenameOutcome::Unchanged;
    QString newPath; // the renamed file, when it was renamed
};

// Renames the file of `editedRow` (a link row of `items`) to `newName` beside it and relinks
// every top-level row with that path through `relinker`, updating their "name" and "path".
// Refusals and failures are reported through `alerts`. On Relinked the caller sorts, reloads
// and selects the edited row.
LinkRenameResult renameLinkedFile(QVariantList& items, const QVariantMap& editedRow, const QString& newName,
                                  app::AlertSink& alerts, LinkRelinker& relinker);

} // namespace quillon::results
