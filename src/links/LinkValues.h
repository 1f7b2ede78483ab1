#pragma once

#include <QDateTime>
#include <QString>

#include <cstdint>
#include <optional>

namespace quillon::links {

// The conversions that turn attribute texts of a Link and its graphic into link-record values.
// Each is a pure function of its texts.

// "LinkResourceSize" ("0~2bf20"): the text after its first two characters read as hexadecimal,
// kept to the low 32 bits as the format's readers do. 0 when there are no hexadecimal digits.
std::uint32_t sizeBytesFromString(const QString& text);

// A `Self` id ("u1a3") as decimal text ("419"): the letter prefix dropped, the rest hexadecimal,
// low 32 bits.
QString idStringFromHexString(const QString& text);

// The kind of a linked file from its format text (with "$ID/" already removed). An empty format
// falls back to the extension of `path` (exact, lower case).
QString fileKindFromString(const QString& format, const QString& path);

// The human-readable size of a link, in decimal units: "1 KB" up to 1000 bytes, whole KB up to
// 1,000,000 bytes, MB with one decimal below a billion bytes, GB with two decimals above.
QString fileSizeFormat(std::uint64_t bytes);

// Scale of a graphic from its `ItemTransform` (a b c d tx ty): the lengths of the two axis
// vectors in percent, so rotation and flips keep their magnitude.
struct ScaleValues {
    QString scale;     // the horizontal text, or "<hor>x<vert>" when the two differ
    QString horScale;  // "###0.#"
    QString vertScale; // "###0.#"
};
ScaleValues scaleValuesFromTransformStr(const QString& transform);

// The colour space of a graphic from its `Space` attribute. `remapped` tells whether the text was
// rewritten (an unusual space) rather than kept (empty, CMYK, RGB, Grayscale, Black and White,
// "... Inks"); only kept colours may be replaced by the colour model read from an Illustrator file.
struct LinkColor {
    QString text;
    bool remapped = false;
};
LinkColor colorFromSpace(const QString& space);

// The status of a present file from its modification time and the link's recorded time, both in
// milliseconds since the epoch: "OK" when the whole seconds between them are 0, or exactly -3600
// (the file one hour older: a daylight-saving shift between machines), else "Modified".
QString statusFromDates(qint64 linkMSecs, qint64 fileMSecs);

// The link's date: the FILETIME (UTC) of a "file FILETIME SIZE" `LinkImportStamp` when there is
// one, else `LinkImportModificationTime` ("2010-08-30T11:15:43") in the local time zone; none
// when neither reads. Given in UTC, which is the same instant and cheap to compare.
std::optional<QDateTime> linkDateFromAttributes(const QString& importModificationTime, const QString& importStamp);

} // namespace quillon::links
