// TIFF: the first image file directory gives the size, compression, photometric
// interpretation and the embedded profile (tag 34675).
#include "fileinspect/ImageFormats.h"

#include "fileinspect/ReaderLimits.h"

#include <climits>

namespace quillon::fileinspect::formats {

namespace {

enum : quint16 {
    kImageWidth = 256,
    kImageLength = 257,
    kBitsPerSample = 258,
    kCompression = 259,
    kPhotometric = 262,
    kSamplesPerPixel = 277,
    kIccProfile = 34675,
};

enum : quint16 { kTypeByte = 1, kTypeShort = 3, kTypeLong = 4, kTypeUndefined = 7 };

class TiffReader {
public:
    TiffReader(const ByteSource& file, bool littleEndian) : m_file(file), m_little(littleEndian) {}

    quint32 u32(qint64 at) const
    {
        const QByteArray b = m_file.read(at, 4);
        if (b.size() < 4)
            return 0;
        const auto* u = reinterpret_cast<const unsigned char*>(b.constData());
        return m_little ? quint32(u[0]) | quint32(u[1]) << 8 | quint32(u[2]) << 16 | quint32(u[3]) << 24
                        : quint32(u[3]) | quint32(u[2]) << 8 | quint32(u[1]) << 16 | quint32(u[0]) << 24;
    }
    quint16 u16(qint64 at) const
    {
        const QByteArray b = m_file.read(at, 2);
        if (b.size() < 2)
            return 0;
        const auto* u = reinterpret_cast<const unsigned char*>(b.constData());
        return m_little ? quint16(u[0] | u[1] << 8) : quint16(u[1] | u[0] << 8);
    }

    // The first value of an entry whose values are SHORTs or LONGs, inline or at their offset.
    quint32 firstValue(qint64 entry) const
    {
        const quint16 type = u16(entry + 2);
        const quint32 count = u32(entry + 4);
        const int size = type == kTypeShort ? 2 : 4;
        const qint64 at = qint64(count) * size <= 4 ? entry + 8 : u32(entry + 8);
        return type == kTypeShort ? u16(at) : type == kTypeLong ? u32(at) : 0;
    }

    const ByteSource& file() const { return m_file; }

private:
    const ByteSource& m_file;
    bool m_little;
};

QString colorModeOfPhotometric(quint32 photometric, quint32 samples, quint32 bits)
{
    switch (photometric) {
    case 0: // white is zero
    case 1: // black is zero
        return bits == 1 && samples <= 1 ? QStringLiteral("Black and White") : QStringLiteral("Grayscale");
    case 2:
    case 6: // YCbCr, shown as RGB
        return QStringLiteral("RGB");
    case 3:
        return QStringLiteral("Indexed");
    case 5:
        return QStringLiteral("CMYK");
    case 8:
    case 9:
    case 10:
        return QStringLiteral("Lab");
    default:
        return {};
    }
}

int clampedInt(quint32 value)
{
    return static_cast<int>(std::min<quint32>(value, INT_MAX));
}

} // namespace

bool readTiff(const ByteSource& file, ImageProperties& properties)
{
    const QByteArray signature = file.read(0, 4);
    if (signature != QByteArrayView("II*\0", 4) && signature != QByteArrayView("MM\0*", 4))
        return false;
    const TiffReader tiff(file, signature[0] == 'I');
    const qint64 directory = tiff.u32(4);
    const quint16 entries = tiff.u16(directory);
    if (directory < 8 || entries == 0)
        return false;
    properties.format = QStringLiteral("TIFF");
    quint32 photometric = UINT_MAX;
    quint32 samples = 1;
    for (quint16 i = 0; i < entries; ++i) {
        const qint64 entry = directory + 2 + 12 * qint64(i);
        if (entry + 12 > file.size())
            break;
        switch (tiff.u16(entry)) {
        case kImageWidth:
            properties.pixelWidth = clampedInt(tiff.firstValue(entry));
            break;
        case kImageLength:
            properties.pixelHeight = clampedInt(tiff.firstValue(entry));
            break;
        case kBitsPerSample:
            properties.bitsPerComponent = clampedInt(tiff.firstValue(entry));
            break;
        case kCompression:
            properties.tiffCompression = clampedInt(tiff.firstValue(entry));
            break;
        case kPhotometric:
            photometric = tiff.firstValue(entry);
            break;
        case kSamplesPerPixel:
            samples = tiff.firstValue(entry);
            break;
        case kIccProfile: {
            const quint16 type = tiff.u16(entry + 2);
            const quint32 count = tiff.u32(entry + 4);
            if ((type == kTypeUndefined || type == kTypeByte) && count > 4 && count <= kMaxProfileBytes)
                properties.iccProfile = file.read(tiff.u32(entry + 8), count);
            break;
        }
        default:
            break;
        }
    }
    properties.colorMode = colorModeOfPhotometric(photometric, samples, quint32(properties.bitsPerComponent));
    return true;
}

} // namespace quillon::fileinspect::formats
