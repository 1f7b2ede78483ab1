#pragma once

#include <QString>
#include <QStringList>

namespace quillon::app {

// Drops trailing ".0" groups: "17.0.0" gives "17", "17.10" stays.
QString versionNumberByRemovingTrailingZeros(QString version);

// 0 when equal, 1 when `version` is newer than `other`, 2 when older. Trailing ".0" groups
// are ignored and groups compare as numbers, so 10.1.0 equals 10.1 and 10.10 is newer than 10.9.
int checkVersion(const QString& version, const QString& other);

// Case-insensitive comparison in which runs of digits compare as numbers ("Page 9" < "page 10").
// Negative, zero or positive, like strcmp.
int numericCompare(const QString& a, const QString& b);

// Where the first string of `candidates` (in their order) that occurs in `text` starts, with its
// length; {-1, 0} when none does.
struct FoundRange {
    qsizetype location = -1;
    qsizetype length = 0;
    bool found() const { return location >= 0; }
};
FoundRange rangeOfFirstFoundStringFromArray(const QString& text, const QStringList& candidates,
                                            Qt::CaseSensitivity cs = Qt::CaseSensitive);

// The path with its extension replaced, or added when it had none.
QString stringByReplacingPathExtensionWith(const QString& path, const QString& extension);

// A backslash before every occurrence of each of the given characters; used to put names and
// paths inside a quoted script string.
QString stringByEscapingCharacters(const QString& text, const QStringList& characters);

} // namespace quillon::app
