#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

#include <optional>
#include <utility>

namespace quillon::fileinspect {

// A dictionary of image properties that keeps the order the file gave its tags in.
class PropertyDictionary {
public:
    using Entry = std::pair<QString, QVariant>;

    bool isEmpty() const { return m_entries.isEmpty(); }
    bool contains(const QString& key) const { return indexOf(key) >= 0; }
    QVariant value(const QString& key) const;
    // Replaces the value of a key already present, in its place; else appends.
    void insert(const QString& key, const QVariant& value);
    void remove(const QString& key);
    const QList<Entry>& entries() const { return m_entries; }

private:
    qsizetype indexOf(const QString& key) const;
    QList<Entry> m_entries;
};

// The metadata sections of a file's first image, keyed by the platform's property names
// ("ExposureTime", "FocalLenIn35mmFilm", "Country/PrimaryLocationName", "Latitude" ...).
// Values: integers, doubles (rationals, GPS coordinates in decimal degrees), texts, or lists
// of these for tags with several values.
struct ImageMetadata {
    std::optional<PropertyDictionary> exif; // the EXIF sub-directory
    std::optional<PropertyDictionary> tiff; // the TIFF tags of the first directory
    std::optional<PropertyDictionary> iptc;
    std::optional<PropertyDictionary> gps;

    bool isEmpty() const { return !exif && !tiff && !iptc && !gps; }
};

// Reads the metadata of an image file (JPEG, TIFF, PNG, Photoshop and the other formats the
// metadata library knows). An Error names the file when it cannot be read or is no image.
// Thread-safe.
app::Result<ImageMetadata> readImageMetadata(const QString& path);
// The same for a file in memory; `name` names it in messages.
app::Result<ImageMetadata> readImageMetadataOfBytes(const QByteArray& bytes, const QString& name);

} // namespace quillon::fileinspect
