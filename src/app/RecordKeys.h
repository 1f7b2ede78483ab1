#pragma once

#include <QString>

namespace quillon::app {

// Keys shared by the three preflight data files (links, fonts, colours) and by the result lists
// that read them. Each data file is a dictionary keyed by document POSIX path whose value is a
// document group row without "docPath"; a result list shows one group row per document when a
// data file holds several documents.

inline const QString kGroupDocPathKey =
    QStringLiteral("docPath");                               // text: the document's POSIX path (the data file's key)
inline const QString kGroupNameKey = QStringLiteral("name"); // text: the document's file name
inline const QString kGroupIsDockKey = QStringLiteral("isDock"); // number 1 or true; spelled so in the format, keep it
inline const QString kGroupChildrenKey = QStringLiteral("children"); // array: the document's records

// The data files, at the top of the temporary folder; deleted at the start of every preflight.
inline const QString kLinkDataFileName = QStringLiteral("qnf_tmpLinkData.plist");
inline const QString kFontDataFileName = QStringLiteral("qnf_tmpFontData.plist");
inline const QString kColorDataFileName = QStringLiteral("qnf_tmpColorData.plist");

} // namespace quillon::app
