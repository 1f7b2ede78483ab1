#include "links/DefaultApplication.h"

#include "links/LinkRecordKeys.h"

#include <QDir>
#include <QFile>
#include <QMimeDatabase>
#include <QSet>
#include <QStandardPaths>
#include <QTextStream>

#include <algorithm>

namespace quillon::links {

namespace {

// The groups of a desktop-entry style file: group -> key -> value. Lines that are not
// "key=value" are ignored; localised keys ("Name[de]") are kept as written.
QHash<QString, QHash<QString, QString>> readKeyFile(const QString& path)
{
    QHash<QString, QHash<QString, QString>> groups;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return groups;
    QTextStream in(&file);
    QString group;
    QString line;
    while (in.readLineInto(&line)) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        if (line.startsWith(u'[') && line.endsWith(u']')) {
            group = line.mid(1, line.size() - 2);
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (equals > 0 && !group.isEmpty())
            groups[group].insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
    }
    return groups;
}

QStringList semicolonList(const QString& value)
{
    return value.split(u';', Qt::SkipEmptyParts);
}

QStringList envFolders(const char* variable, const QString& fallback)
{
    const QString value = qEnvironmentVariable(variable);
    return (value.isEmpty() ? fallback : value).split(u':', Qt::SkipEmptyParts);
}

} // namespace

const DefaultApplications& DefaultApplications::session()
{
    static const DefaultApplications instance = [] {
        QStringList desktops;
        for (const QString& desktop : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':', Qt::SkipEmptyParts))
            desktops << desktop.toLower();
        QStringList config{QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)};
        config << envFolders("XDG_CONFIG_DIRS", QStringLiteral("/etc/xdg"));
        QStringList data{QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)};
        data << envFolders("XDG_DATA_DIRS", QStringLiteral("/usr/local/share:/usr/share"));
        return DefaultApplications(config, data, desktops);
    }();
    return instance;
}

DefaultApplications::DefaultApplications(const QStringList& configFolders, const QStringList& dataFolders,
                                         const QStringList& desktops)
{
    QStringList lists;
    const auto addFolder = [&lists, &desktops](const QString& folder) {
        for (const QString& desktop : desktops)
            lists << folder + u'/' + desktop + QStringLiteral("-mimeapps.list");
        lists << folder + QStringLiteral("/mimeapps.list");
    };
    for (const QString& folder : configFolders)
        addFolder(folder);
    for (const QString& folder : dataFolders)
        addFolder(folder + QStringLiteral("/applications"));
    for (const QString& list : lists)
        readMimeAppsList(list);
    for (const QString& folder : dataFolders)
        readDesktopFiles(folder + QStringLiteral("/applications"), QString());
    for (QStringList& ids : m_declaredBy)
        std::sort(ids.begin(), ids.end());
}

void DefaultApplications::readMimeAppsList(const QString& path)
{
    const auto groups = readKeyFile(path);
    const auto merge = [&groups](const QString& group, QHash<QString, QStringList>& into) {
        const auto entries = groups.value(group);
        for (auto it = entries.cbegin(); it != entries.cend(); ++it)
            into[it.key()] << semicolonList(it.value());
    };
    merge(QStringLiteral("Default Applications"), m_defaults);
    merge(QStringLiteral("Added Associations"), m_added);
    merge(QStringLiteral("Removed Associations"), m_removed);
}

void DefaultApplications::readDesktopFiles(const QString& applicationsFolder, const QString& idPrefix)
{
    const QDir folder(applicationsFolder);
    const auto files = folder.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QFileInfo& info : files) {
        const QString id = idPrefix + info.fileName();
        if (m_entries.contains(id))
            continue;
        const auto entry = readKeyFile(info.filePath()).value(QStringLiteral("Desktop Entry"));
        if (entry.isEmpty())
            continue;
        DesktopEntry desktop;
        if (entry.value(QStringLiteral("Hidden")) != QLatin1String("true")) {
            desktop.name = entry.value(QStringLiteral("Name"), id);
            desktop.mimeTypes = semicolonList(entry.value(QStringLiteral("MimeType")));
            desktop.iconName = entry.value(QStringLiteral("Icon"));
            desktop.exec = entry.value(QStringLiteral("Exec"));
        }
        // A hidden entry still takes its id, so the same id in a later folder stays uninstalled.
        m_entries.insert(id, desktop);
        for (const QString& type : desktop.mimeTypes)
            m_declaredBy[type] << id;
    }
    // Desktop ids of subfolders join the folder names with "-" ("kde4/okular.desktop" is
    // "kde4-okular.desktop").
    for (const QFileInfo& sub : folder.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Readable, QDir::Name))
        if (!sub.isSymLink())
            readDesktopFiles(sub.filePath(), idPrefix + sub.fileName() + u'-');
}

QString DefaultApplications::installedName(const QString& desktopId) const
{
    const auto it = m_entries.constFind(desktopId);
    return it == m_entries.cend() ? QString() : it->name;
}

QString DefaultApplications::appForExactType(const QString& mimeType) const
{
    const QStringList removed = m_removed.value(mimeType);
    for (const auto* source : {&m_defaults, &m_added, &m_declaredBy}) {
        for (const QString& id : source->value(mimeType)) {
            if (source != &m_defaults && removed.contains(id))
                continue;
            if (const QString name = installedName(id); !name.isEmpty())
                return name;
        }
    }
    return {};
}

QString DefaultApplications::defaultAppForMimeType(const QString& mimeType) const
{
    {
        const std::lock_guard lock(m_cacheMutex);
        if (const auto it = m_cache.constFind(mimeType); it != m_cache.cend())
            return *it;
    }
    static const QMimeDatabase database;
    QStringList chain{mimeType};
    const QMimeType type = database.mimeTypeForName(mimeType);
    if (type.isValid())
        chain << type.allAncestors();
    QString name;
    for (const QString& candidate : chain) {
        name = appForExactType(candidate);
        if (!name.isEmpty())
            break;
    }
    const std::lock_guard lock(m_cacheMutex);
    m_cache.insert(mimeType, name);
    return name;
}

QList<DesktopApplication> DefaultApplications::applicationsForFile(const QString& path) const
{
    static const QMimeDatabase database;
    const QMimeType type = database.mimeTypeForFile(path);
    QSet<QString> seen;
    QList<DesktopApplication> applications;
    for (const QString& candidate : QStringList{type.name()} + type.allAncestors()) {
        const QStringList removed = m_removed.value(candidate);
        for (const auto* source : {&m_defaults, &m_added, &m_declaredBy}) {
            for (const QString& id : source->value(candidate)) {
                const auto entry = m_entries.constFind(id);
                if (seen.contains(id) || removed.contains(id) || entry == m_entries.cend() || entry->name.isEmpty() ||
                    entry->exec.isEmpty())
                    continue;
                seen.insert(id);
                applications.append({id, entry->name, entry->iconName, entry->exec});
            }
        }
    }
    std::sort(applications.begin(), applications.end(), [](const DesktopApplication& a, const DesktopApplication& b) {
        return QString::localeAwareCompare(a.name, b.name) < 0;
    });
    return applications;
}

QString DefaultApplications::defaultAppForFile(const QString& path) const
{
    static const QMimeDatabase database;
    // A name that only one type claims needs no look inside the file; the others are sniffed.
    const QList<QMimeType> byName = database.mimeTypesForFileName(path.mid(path.lastIndexOf(u'/') + 1));
    const QMimeType type = byName.size() == 1 ? byName.first() : database.mimeTypeForFile(path);
    const QString name = defaultAppForMimeType(type.name());
    return name.isEmpty() ? kLinkNoApp : name;
}

} // namespace quillon::links
