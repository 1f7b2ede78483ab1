#pragma once

#include "app/Result.h"
#include "fileinspect/ImageMetadata.h"

#include <QMap>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>

namespace quillon::app {
class Settings;
}

namespace quillon::fileinspect {

// Keys of a metadata row. A section header row has the section name ("EXIF", "TIFF", "IPTC",
// "GPS") as its tag and a single blank as its value.
namespace metadatakeys {
inline const QString kTag = QStringLiteral("tag");
inline const QString kValue = QStringLiteral("value");
} // namespace metadatakeys

// The value of a row as it is shown: lists joined by ", ", numbers in their shortest form.
QString metadataValueText(const QVariant& value);

// True for a section header row.
bool isMetadataHeaderRow(const QVariantMap& row);

// The rows of the metadata table.
class PXMetadataTable {
public:
    void setRows(QVariantList rows) { m_rows = std::move(rows); }
    const QVariantList& rows() const { return m_rows; }
    int rowCount() const { return int(m_rows.size()); }

private:
    QVariantList m_rows;
};

// The image-metadata viewer's extraction: the EXIF, TIFF, IPTC and GPS sections of a file as
// rows of readable names and values, with the value tables and the long-standing quirks of the
// viewer kept (the "Longtitude" row, the light-source list read from index 0, the trailing blank
// of names rebuilt from single capitals). Also the page size of PDF files and print sizes in the
// user's unit. One instance per thread.
class PXMetadataController {
public:
    // `settings` gives the "measurementUnits" default; without it the user's defaults do.
    explicit PXMetadataController(const app::Settings* settings = nullptr);

    // The rows of the file's metadata: EXIF (its own tags, then the decoded ones), TIFF (only with
    // EXIF), IPTC, GPS. Empty when the file has none or cannot be read; no message is shown.
    // `error`, when given, always receives the "file read corrupt" error, as it always has.
    QVariantList readFromURL(const QString& path, const QString& type = {}, app::Error* error = nullptr);
    // The same rows from metadata already read.
    QVariantList rowsFromMetadata(const ImageMetadata& metadata);

    QVariantList exifArr(const PropertyDictionary& exif);
    QVariantList exifArray(const PropertyDictionary& exif);
    QVariantList tiffArr(const PropertyDictionary& tiff);
    QVariantList iptcArr(const PropertyDictionary& iptc);
    QVariantList gpsArr(const PropertyDictionary& gps);

    // "BrightnessValue" -> "Brightness Value"; "ISOSpeedRatings" -> "ISO Speed Ratings " (the
    // rebuilt form keeps its trailing blank).
    QString splitByUppercaseLetters(const QString& key);

    // Shows the rows in the table when there is a path and at least one row; else empties it.
    void setMetadataForFile(const QString& path, const QVariantList& rows);
    const PXMetadataTable& metadataTable() const { return m_table; }

    // [width, height] of the first page's media box in points ("###0.#"); "0" and "0" without a
    // page or when the file is no readable PDF.
    QStringList pdfDimensionsAtPath(const QString& path);
    // [width, height] given in inches, in the current unit: inches and centimetres to 0.01,
    // millimetres whole.
    QStringList printDimensionsFromInchValues(double widthInches, double heightInches);
    // "in", "mm" or "cm" from the "measurementUnits" default; unset, the locale's system decides.
    QString measurementUnits() const;

    // Display names of EXIF and IPTC keys.
    static const QMap<QString, QString>& exifTags();
    static const QMap<QString, QString>& iptcTags();

    // The metadata of the last file read.
    const ImageMetadata& mMetadata() const { return m_metadata; }

    const QRegularExpression& regExCapitals() const { return m_regExCapitals; }
    const QString& regExErr() const { return m_regExErr; }

private:
    const app::Settings* m_settings = nullptr;
    QRegularExpression m_regExCapitals;
    QString m_regExErr;
    ImageMetadata m_metadata;
    PXMetadataTable m_table;
};

} // namespace quillon::fileinspect
