#include "ui/DesktopApps.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QHash>
#include <QMimeDatabase>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QTextStream>
#include <QUrl>

#include <algorithm>

namespace quillon::ui {

namespace {

// The keys of one group of a desktop-style file (no locale variants).
using Group = QHash<QString, QString>;

QHash<QString, Group> readGroups(const QString& path)
{
    QHash<QString, Group> groups;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text) || file.size() > 1024 * 1024)
        return groups;
    QString current;
    QTextStream in(&file);
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            current = line.mid(1, line.size() - 2);
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0)
            groups[current].insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return groups;
}

QStringList listValue(const QString& value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

// The file's type, its aliases and every type it derives from.
QSet<QString> typesOfFile(const QString& path)
{
    const QMimeType type = QMimeDatabase().mimeTypeForFile(path);
    QSet<QString> types{type.name()};
    for (const QString& name : type.aliases() + type.allAncestors())
        types.insert(name);
    return types;
}

} // namespace

QStringList applicationFolders()
{
    return QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
}

QList<DesktopApplication> applicationsForFile(const QString& path, const QStringList& folders)
{
    const QSet<QString> types = typesOfFile(path);
    QSet<QString> named;             // desktop ids the caches and associations name for the types
    QSet<QString> removed;           // ids the user took away
    QHash<QString, QString> entries; // desktop id -> its file, the first folder winning
    for (const QString& folder : folders) {
        QDirIterator files(folder, {QStringLiteral("*.desktop")}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString file = files.next();
            const QString id = QDir(folder).relativeFilePath(file).replace(u'/', u'-');
            if (!entries.contains(id))
                entries.insert(id, file);
        }
        const auto cache = readGroups(QDir(folder).filePath(QStringLiteral("mimeinfo.cache")));
        const auto lists = readGroups(QDir(folder).filePath(QStringLiteral("mimeapps.list")));
        for (const QString& type : types) {
            for (const QString& id : listValue(cache.value(QStringLiteral("MIME Cache")).value(type)))
                named.insert(id);
            for (const QString& id : listValue(lists.value(QStringLiteral("Added Associations")).value(type)))
                named.insert(id);
            for (const QString& id : listValue(lists.value(QStringLiteral("Default Applications")).value(type)))
                named.insert(id);
            for (const QString& id : listValue(lists.value(QStringLiteral("Removed Associations")).value(type)))
                removed.insert(id);
        }
    }
    QList<DesktopApplication> applications;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (removed.contains(entry.key()))
            continue;
        const Group desktop = readGroups(entry.value()).value(QStringLiteral("Desktop Entry"));
        if (desktop.value(QStringLiteral("Hidden")) == QLatin1String("true") ||
            desktop.value(QStringLiteral("Type"), QStringLiteral("Application")) != QLatin1String("Application") ||
            desktop.value(QStringLiteral("Exec")).isEmpty())
            continue;
        const QStringList entryTypes = listValue(desktop.value(QStringLiteral("MimeType")));
        const bool offered =
            named.contains(entry.key()) || std::any_of(entryTypes.cbegin(), entryTypes.cend(),
                                                       [&types](const QString& type) { return types.contains(type); });
        if (offered)
            applications.append({entry.key(), desktop.value(QStringLiteral("Name"), entry.key()),
                                 desktop.value(QStringLiteral("Icon")), desktop.value(QStringLiteral("Exec"))});
    }
    std::sort(applications.begin(), applications.end(), [](const DesktopApplication& a, const DesktopApplication& b) {
        return QString::localeAwareCompare(a.name, b.name) < 0;
    });
    return applications;
}

QStringList launchCommand(const DesktopApplication& application, const QStringList& files)
{
    QStringList command;
    bool placed = false;
    for (const QString& word : QProcess::splitCommand(application.exec)) {
        if (word == QLatin1String("%f") || word == QLatin1String("%F")) {
            command += word == QLatin1String("%f") ? files.mid(0, 1) : files;
            placed = true;
        } else if (word == QLatin1String("%u") || word == QLatin1String("%U")) {
            for (const QString& file : word == QLatin1String("%u") ? files.mid(0, 1) : files)
                command.append(QString::fromUtf8(QUrl::fromLocalFile(file).toEncoded()));
            placed = true;
        } else if (!(word.size() == 2 && word.startsWith(u'%'))) {
            command.append(QString(word).replace(QLatin1String("%%"), QLatin1String("%")));
        }
    }
    if (!placed && !command.isEmpty())
        command += files;
    return command;
}

bool openWithApplication(const DesktopApplication& application, const QStringList& files)
{
    QStringList command = launchCommand(application, files);
    if (command.isEmpty())
        return false;
    const QString program = command.takeFirst();
    return QProcess::startDetached(program, command);
}

} // namespace quillon::ui
