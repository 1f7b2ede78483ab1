#include "package/FileItem.h"

#include "app/Numbers.h"

#include <QDirIterator>
#include <QFileInfo>

namespace quillon::package {

QString TNFileItem::sizeStr() const
{
    return sizeBytes ? app::fileSizeStrFromBytes(*sizeBytes) : QStringLiteral("--");
}

TNFileItem TNFileItem::fileItemWithPath(const QString& path)
{
    const QFileInfo info(path);
    TNFileItem item;
    item.path = path;
    item.name = info.fileName();
    item.isFolder = info.isDir() && !info.isSymLink();
    if (!item.isFolder && info.exists())
        item.sizeBytes = static_cast<std::uint64_t>(info.size());
    item.creationDate = info.birthTime().isValid() ? info.birthTime() : info.metadataChangeTime();
    item.modificationDate = info.lastModified();
    return item;
}

TNFileItem TNFileItem::folderItemWithPath(const QString& path)
{
    TNFileItem item = fileItemWithPath(path);
    item.isFolder = true;
    item.sizeBytes.reset();
    return item;
}

void TNFileItem::calculateFolderSize()
{
    if (!isFolder)
        return;
    std::uint64_t total = 0;
    QDirIterator it(path, QDir::Files | QDir::Hidden | QDir::NoSymLinks | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        total += static_cast<std::uint64_t>(it.fileInfo().size());
    }
    sizeBytes = total;
}

} // namespace quillon::package
