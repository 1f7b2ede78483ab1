#pragma once

#include "app/RegularFile.h"
#include "app/Result.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace quillon::app {

// Property-list files, the format of records, presets and data files.
//
// Types: dict <-> QVariantMap, array <-> QVariantList, string <-> QString, integer <-> qint64
// (quint64 above the signed range), real <-> double, true/false <-> bool, date <-> QDateTime (UTC),
// data <-> QByteArray. Binary plists are read only; every file is written as an XML plist that
// macOS and Python's plistlib read.
//
// A malformed file gives an Error naming the file, the place (line, or byte offset in a binary
// plist) and what is wrong: never a partly read value.

// Reads an XML or a binary plist, whichever the bytes are. `sourceName` names the file in errors.
Result<QVariant> parsePropertyList(const QByteArray& bytes, const QString& sourceName);
// A file larger than `maxBytes`, or one that is not a regular file, is refused unread. Presets and
// records keep the default; the data files the preflight writes itself may pass kMaxDataFileBytes.
Result<QVariant> readPropertyListFile(const QString& path, qint64 maxBytes = kMaxPropertyListBytes);

// The same, requiring a dictionary at the top.
Result<QVariantMap> readPropertyListDictionary(const QString& path, qint64 maxBytes = kMaxPropertyListBytes);

// The XML form. Fails on a value a plist cannot hold (a null, an unknown type), naming its key path.
// Control characters other than tab, line feed and carriage return cannot stand in XML and are
// left out of strings and keys.
Result<QByteArray> toXmlPropertyList(const QVariant& root);

// Writes the XML form through a temporary file renamed into place, so a failed write never
// leaves a half-written file where a good one was.
Status writePropertyListFile(const QVariant& root, const QString& path, Durability durability = Durability::Flushed);

} // namespace quillon::app
