#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <mutex>

namespace quillon::links {

// An application the desktop offers for opening files, from its desktop file.
struct DesktopApplication {
    QString desktopId; // "org.example.Viewer.desktop"
    QString name;
    QString iconName; // a theme icon name or an absolute path
    QString exec;     // the command with its field codes (%f, %F, %u, %U)
};

// The application the desktop opens a file with by default, by the freedesktop.org MIME
// associations: the [Default Applications] of the mimeapps.list files (desktop-specific lists
// first, user before system), then [Added Associations], then the desktop files that declare the
// type, each tried for the file's MIME type and then for the types it derives from. The answer
// is the application's name from its desktop file.
//
// Thread-safe: the tables are read once and answers are cached per MIME type.
class DefaultApplications {
public:
    // Reads the lists of this session (XDG config and data folders, XDG_CURRENT_DESKTOP).
    static const DefaultApplications& session();

    // Reads the lists of the given folders: mimeapps.list in each config folder and in
    // "applications" of each data folder; desktop files in "applications" of each data folder.
    // `desktops` are the lower-case desktop names whose "<desktop>-mimeapps.list" come first.
    DefaultApplications(const QStringList& configFolders, const QStringList& dataFolders, const QStringList& desktops);

    // The application's name for the file at `path`; "?" when none opens it.
    QString defaultAppForFile(const QString& path) const;

    // The application's name for a MIME type (or one it derives from); empty when none.
    QString defaultAppForMimeType(const QString& mimeType) const;

    // Every application offered for the file's type or a type it derives from (the defaults, the
    // added associations and the desktop files that declare the type, less the removed ones),
    // each once, sorted by name.
    QList<DesktopApplication> applicationsForFile(const QString& path) const;

private:
    struct DesktopEntry {
        QString name; // empty for a hidden entry
        QStringList mimeTypes;
        QString iconName;
        QString exec;
    };
    void readMimeAppsList(const QString& path);
    void readDesktopFiles(const QString& applicationsFolder, const QString& idPrefix);
    QString appForExactType(const QString& mimeType) const;
    QString installedName(const QString& desktopId) const;

    // In the order lists are consulted; each list's entries keep their own order.
    QHash<QString, QStringList> m_defaults;
    QHash<QString, QStringList> m_added;
    QHash<QString, QStringList> m_removed;
    QHash<QString, DesktopEntry> m_entries;   // desktop id -> entry (first folder wins)
    QHash<QString, QStringList> m_declaredBy; // MIME type -> desktop ids, sorted

    mutable std::mutex m_cacheMutex;
    mutable QHash<QString, QString> m_cache; // MIME type -> name ("" when none)
};

} // namespace quillon::links
