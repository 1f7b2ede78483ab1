#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QHash>
#include <QString>

namespace quillon::idml {

// Rewrites the IDML archive at `path` with new bytes for some of its entries, keyed by their index
// in the archive (IdmlArchive::Entry::index). Every other entry is copied as stored, its
// compressed bytes unchanged; "mimetype" comes first and is stored uncompressed, as InDesign
// requires. The new archive is written under a temporary name in the same folder and renamed
// into place, so a failure (an unwritable folder, a full disk) leaves the file as it was.
app::Status rewriteArchiveEntries(const QString& path, const QHash<quint64, QByteArray>& replaced);

} // namespace quillon::idml
