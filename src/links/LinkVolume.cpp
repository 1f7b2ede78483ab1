#include "links/LinkVolume.h"

#include "links/LinkPaths.h"
#include "links/LinkRecordKeys.h"

#include <QFileInfo>
#include <QHash>
#include <QStorageInfo>

#include <mutex>

namespace quillon::links {

QString volumeDisplayName(const QString& path)
{
    static std::mutex mutex;
    static QHash<QString, QString> byFolder;
    const QString folder = QFileInfo(path).absolutePath();
    {
        const std::lock_guard lock(mutex);
        if (const auto it = byFolder.constFind(folder); it != byFolder.cend())
            return *it;
    }
    const QStorageInfo storage(folder);
    const QString name = storage.isValid() ? storage.displayName() : QString();
    const std::lock_guard lock(mutex);
    byFolder.insert(folder, name);
    return name;
}

QString volumeForLink(const QString& path, const QString& status)
{
    if (status == kLinkStatusOK || status == kLinkStatusModified)
        return volumeDisplayName(path);
    if (status == kLinkStatusMissing) {
        const QStringList components = pathComponents(path);
        if (components.size() > 1 && components.first() == QLatin1String("Volumes"))
            return components.at(1);
        return kLinkNoVolume;
    }
    return {};
}

} // namespace quillon::links
