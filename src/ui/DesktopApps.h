#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace quillon::ui {

// An application the desktop offers for opening files, from its `.desktop` entry.
struct DesktopApplication {
    QString desktopId; // "org.example.Viewer.desktop"
    QString name;
    QString iconName; // a theme icon name or an absolute path
    QString exec;     // the command with its field codes (%f, %F, %u, %U)
};

// The folders holding `.desktop` entries: the user's first, then the system's.
QStringList applicationFolders();

// Every application the desktop offers for the file's type or one of its parent types: those
// whose entries name the type, those the desktop's caches (mimeinfo.cache) and the user's
// associations (mimeapps.list, added and removed) name; sorted by name, each once. Reads files
// only: meant for a worker thread.
QList<DesktopApplication> applicationsForFile(const QString& path, const QStringList& folders = applicationFolders());

// The program and arguments that open `files` with `application`; empty when its command is empty.
QStringList launchCommand(const DesktopApplication& application, const QStringList& files);

// Starts the application on the files, detached; false when it could not be started.
bool openWithApplication(const DesktopApplication& application, const QStringList& files);

} // namespace quillon::ui
