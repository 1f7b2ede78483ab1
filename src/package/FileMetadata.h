#pragma once

#include <QByteArray>
#include <QStringList>

#include <sys/stat.h>

namespace quillon::package {

// Gives the open copy `to` the extended attributes of `from`, then the mode and the access and
// modification times of `source` (the times last, since writing would change them). Returns
// what could not be kept, for the user to see.
QStringList keepFileMetadata(int from, int to, const struct stat& source);

// The same for a symbolic link copied as a link, by path: its times and extended attributes.
QStringList keepLinkMetadata(const QByteArray& from, const QByteArray& to, const struct stat& source);

} // namespace quillon::package
