#pragma once

#include <QMap>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace quillon::fileinspect {

// Keys of a decoded EXIF tag.
namespace exifkeys {
inline const QString kTagName = QStringLiteral("tagName");
inline const QString kParsedValue = QStringLiteral("parsedValue");
} // namespace exifkeys

// Readable values of the EXIF and TIFF codes that mean nothing as numbers. Each decoder takes
// the raw value and returns {"tagName", "parsedValue"}; a code outside the standard's table
// reads as its number, and nothing comes back only for a value that is not a code at all.
class PXEXIFData {
public:
    // The keys decoded here, each mapped to "selector" (decoded by the method of its name).
    static const QMap<QString, QString>& EXIFTags();

    // Decodes `value` with the decoder named `key`; nothing when there is none.
    static std::optional<QVariantMap> decode(const QString& key, const QVariant& value);

    static std::optional<QVariantMap> Orientation(const QVariant& value);
    static std::optional<QVariantMap> SensingMethod(const QVariant& value);
    static std::optional<QVariantMap> Flash(const QVariant& value);
    static std::optional<QVariantMap> ComponentsConfiguration(const QVariant& value);
    static std::optional<QVariantMap> InteropIndex(const QVariant& value);
    static std::optional<QVariantMap> SubfileType(const QVariant& value);
    static std::optional<QVariantMap> PhotometricInterpretation(const QVariant& value);
    static std::optional<QVariantMap> Thresholding(const QVariant& value);
};

} // namespace quillon::fileinspect
