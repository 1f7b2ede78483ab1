// Image formats without a header reader of our own: the metadata library's view of them.
#include "fileinspect/ImageFormats.h"

#include "fileinspect/MetadataLibrary.h"
#include "fileinspect/ReaderLimits.h"

#include <climits>

namespace quillon::fileinspect::formats {

namespace {

ImageProperties propertiesOf(Exiv2::Image& image)
{
    ImageProperties properties;
    QString format = QString::fromStdString(image.mimeType()).section(u'/', -1).toUpper();
    properties.format = format.startsWith(u"X-") ? format.mid(2) : format;
    properties.pixelWidth = std::max(image.pixelWidth(), 0);
    properties.pixelHeight = std::max(image.pixelHeight(), 0);
    if (image.iccProfileDefined() && image.iccProfile()->size_ <= kMaxProfileBytes)
        properties.iccProfile =
            QByteArray(reinterpret_cast<const char*>(image.iccProfile()->pData_), qsizetype(image.iccProfile()->size_));
    const Exiv2::ExifData& exif = image.exifData();
    if (const auto compression = exif.findKey(Exiv2::ExifKey("Exif.Image.Compression")); compression != exif.end())
        properties.tiffCompression = int(std::clamp<long>(compression->toLong(), INT_MIN, INT_MAX));
    return properties;
}

} // namespace

bool readWithMetadataLibrary(const ByteSource& file, ImageProperties& properties)
{
    // The library reads some formats whole (EPS and XMP files among them): PostScript and PDF
    // are the PostScript readers' business, and very large files are not handed to it at all.
    static constexpr qint64 kLargestFile = 256 * 1024 * 1024;
    const QByteArray head = file.read(0, 4);
    if (!file.isOpen() || file.size() > kLargestFile || head.startsWith("%!") || head.startsWith("%PDF") ||
        head == "\xC5\xD0\xD3\xC6")
        return false;
    const auto read = file.isFile() ? metadatalibrary::readFile(file.path(), propertiesOf)
                                    : metadatalibrary::readBytes(file.read(0, file.size()), file.path(), propertiesOf);
    if (!read.ok())
        return false;
    properties = read.value();
    return true;
}

} // namespace quillon::fileinspect::formats
