#include "fileinspect/ImageSource.h"

#include "fileinspect/IccProfile.h"
#include "fileinspect/ImageFormats.h"

namespace quillon::fileinspect {

namespace formats {

quint32 be32(const ByteSource& file, qint64 offset)
{
    const QByteArray bytes = file.read(offset, 4);
    if (bytes.size() < 4)
        return 0;
    const auto* b = reinterpret_cast<const unsigned char*>(bytes.constData());
    return (quint32(b[0]) << 24) | (quint32(b[1]) << 16) | (quint32(b[2]) << 8) | quint32(b[3]);
}

quint16 be16(const ByteSource& file, qint64 offset)
{
    const QByteArray bytes = file.read(offset, 2);
    if (bytes.size() < 2)
        return 0;
    return quint16((static_cast<unsigned char>(bytes[0]) << 8) | static_cast<unsigned char>(bytes[1]));
}

} // namespace formats

std::optional<ImageProperties> readImageProperties(const ByteSource& file)
{
    ImageProperties properties;
    // Our own header readers first: they read a few hundred bytes where the library reads all
    // the metadata of a file.
    const bool read = formats::readJpeg(file, properties) || formats::readPng(file, properties) ||
                      formats::readTiff(file, properties) || formats::readPhotoshop(file, properties) ||
                      formats::readWithMetadataLibrary(file, properties);
    if (!read)
        return std::nullopt;
    if (!properties.iccProfile.isEmpty())
        properties.profileName = iccProfileDescription(properties.iccProfile);
    return properties;
}

QVariantMap imagePropertiesDictionary(const ImageProperties& properties)
{
    QVariantMap dictionary{
        {QStringLiteral("PixelWidth"), properties.pixelWidth},
        {QStringLiteral("PixelHeight"), properties.pixelHeight},
    };
    if (properties.bitsPerComponent > 0)
        dictionary.insert(QStringLiteral("Depth"), properties.bitsPerComponent);
    if (!properties.colorMode.isEmpty())
        dictionary.insert(QStringLiteral("ColorModel"), properties.colorMode);
    if (!properties.profileName.isEmpty())
        dictionary.insert(QStringLiteral("ProfileName"), properties.profileName);
    if (properties.tiffCompression)
        dictionary.insert(QStringLiteral("{TIFF}"),
                          QVariantMap{{QStringLiteral("Compression"), *properties.tiffCompression}});
    return dictionary;
}

} // namespace quillon::fileinspect
