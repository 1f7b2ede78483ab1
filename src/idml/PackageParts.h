#pragma once

#include <QString>
#include <QStringList>

namespace quillon::idml {

// The files of one part folder of an unpacked package ("MasterSpreads", "Spreads", "Stories"):
// regular files only (unreadable ones too, for the reader to name), hidden ones skipped, in byte
// order of their UTF-8 names (the order a Mac volume lists them in). Empty when the folder is
// missing.
QStringList packagePartFiles(const QString& packageFolder, const QString& partFolder);

} // namespace quillon::idml
