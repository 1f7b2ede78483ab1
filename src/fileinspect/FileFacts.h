#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

namespace quillon::fileinspect {

// The kinds of linked file the readers know.
enum class FileKind { Photoshop, EPS, Illustrator, TIFF, JPEG, PNG, PDF, IccProfile, Unknown };

// "Photoshop", "EPS", "Illustrator", "TIFF", "JPEG", "PNG", "PDF", "ICC profile", "?".
QString fileKindName(FileKind kind);

// The kind by the file's first bytes, or by its extension when they say nothing (an
// Illustrator file saved with PDF content is told by its ".ai" extension). Unknown when the
// file cannot be read and its extension is none of the known ones.
FileKind detectFileKind(const QString& path);

// What the readers find in one linked file. Texts are the readers' own, so they match what the
// link analysis records ("-" and "?" keep their meaning: not applicable, not found).
struct FileFacts {
    QString path;
    FileKind kind = FileKind::Unknown;
    // Why the file could not be read; empty when it was. The other facts are then not known.
    QString error;

    // The colour mode: Photoshop mode names, "Duotone" and its kin for duotone files, "CMYK" or
    // "RGB" of Illustrator files, the EPS reader's "CMYK", "RGB", "-" or "?"; empty when not known.
    QString colorMode;
    // The embedded ICC profile's name; empty when none.
    QString profile;
    QStringList duotoneInks;
    // Spot colours and fonts of EPS and Illustrator files, with the count as the EPS reader
    // gives it ("3", "-" for none, "?" for not found, "E2" for two embedded fonts).
    QString spotColorCount;
    QStringList spotColors;
    QString fontCount;
    QStringList fonts;
    // Illustrator files: the colour model ("CMYK", "RGB", "?") and the major version (0 when
    // the file does not say).
    QString illustratorColorModel;
    unsigned long illustratorVersion = 0;
    // TIFF files: the compression code and its name in the link kind ("LZW"; empty for none;
    // nothing for codes outside the table).
    std::optional<int> tiffCompression;
    std::optional<QString> tiffCompressionName;
    // In pixels; 0 when not known.
    int pixelWidth = 0;
    int pixelHeight = 0;
    // Photoshop EPS files: pixels per inch at 100 %, from the pixel width and the width of the
    // high-resolution bounding box ("###0"); empty when not known.
    QString resolution;
    // PDF files: the first page's media box in points.
    std::optional<double> pageWidth;
    std::optional<double> pageHeight;
};

// Reads the facts of one file; `kind` Unknown means detect it. Never fails: a file that cannot
// be read gives facts with `error` set. Thread-safe: calls share nothing.
FileFacts inspectFile(const QString& path, FileKind kind = FileKind::Unknown);

// The facts of many files, in their order, read by up to `threads` threads at once (0: one per
// processor core) as far as the program's thread budget allows.
QList<FileFacts> inspectFiles(const QStringList& paths, int threads = 0);

// The facts as a record with the keys below; facts that are not known are left out.
QVariantMap factsRecord(const FileFacts& facts);

// Keys of the facts record.
namespace factkeys {
inline const QString kPath = QStringLiteral("path");
inline const QString kKind = QStringLiteral("kind");
inline const QString kError = QStringLiteral("error");
inline const QString kColorMode = QStringLiteral("colorMode");
inline const QString kProfile = QStringLiteral("profile");
inline const QString kDuotoneInks = QStringLiteral("duotoneInks");
inline const QString kSpotColorCount = QStringLiteral("spotColorCount");
inline const QString kSpotColors = QStringLiteral("spotColors");
inline const QString kFontCount = QStringLiteral("fontCount");
inline const QString kFonts = QStringLiteral("fonts");
inline const QString kIllustratorColorModel = QStringLiteral("illustratorColorModel");
inline const QString kIllustratorVersion = QStringLiteral("illustratorVersion");
inline const QString kTiffCompression = QStringLiteral("tiffCompression");
inline const QString kTiffCompressionName = QStringLiteral("tiffCompressionName");
inline const QString kPixelWidth = QStringLiteral("pixelWidth");
inline const QString kPixelHeight = QStringLiteral("pixelHeight");
inline const QString kResolution = QStringLiteral("resolution");
inline const QString kPageWidth = QStringLiteral("pageWidth");
inline const QString kPageHeight = QStringLiteral("pageHeight");
} // namespace factkeys

} // namespace quillon::fileinspect
