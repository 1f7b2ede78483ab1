#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

#include <cstdint>
#include <optional>

namespace quillon::package {

// One row of the documents or extras to package: a file or a folder, with what the tables show.
struct TNFileItem {
    QString path;
    QString name; // the last path component
    bool isFolder = false;
    // Bytes; a folder's are its files' once counted (calculateFolderSize), none until then.
    std::optional<std::uint64_t> sizeBytes;
    QDateTime creationDate;
    QDateTime modificationDate;
    QList<TNFileItem> children;
    QString targetFolderPath; // where an extra file goes in the package

    // The size as the tables show it: the file system's style, "--" for a folder not yet counted.
    QString sizeStr() const;

    // The item of the file or folder at `path` (its facts read once; a folder's size uncounted).
    static TNFileItem fileItemWithPath(const QString& path);
    static TNFileItem folderItemWithPath(const QString& path);
    // Counts a folder's bytes (symbolic links not followed); a file's size stays as it is.
    void calculateFolderSize();
};

} // namespace quillon::package
