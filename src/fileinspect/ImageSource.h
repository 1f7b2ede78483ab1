#pragma once

#include "fileinspect/ByteSource.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace quillon::fileinspect {

// What the image-properties reading finds in the first image of a JPEG, PNG, TIFF or
// Photoshop file: read from its headers only (markers, chunks, the first directory, image
// resources), so a file costs a few small reads however large it is.
struct ImageProperties {
    QString format;     // "JPEG", "PNG", "TIFF" or "Photoshop"
    int pixelWidth = 0; // 0 when not known
    int pixelHeight = 0;
    int bitsPerComponent = 0;
    // "RGB", "CMYK", "Grayscale", "Black and White", "Indexed", "Lab", or for Photoshop files the
    // Photoshop mode name; empty when not known.
    QString colorMode;
    QByteArray iccProfile; // the embedded profile, empty when none
    QString profileName;   // its description, empty when none or unreadable
    std::optional<int> tiffCompression;
};

// The properties of the file's first image, or nothing when it is none of the four formats or
// its header is broken before the image size.
std::optional<ImageProperties> readImageProperties(const ByteSource& file);

// The properties as a dictionary with the platform's key names: "PixelWidth", "PixelHeight",
// "Depth", "ColorModel", "ProfileName" and, for TIFF, "{TIFF}" holding "Compression".
QVariantMap imagePropertiesDictionary(const ImageProperties& properties);

} // namespace quillon::fileinspect
