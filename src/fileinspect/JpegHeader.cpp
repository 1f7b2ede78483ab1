// JPEG: the frame header gives the size and components; APP2 "ICC_PROFILE" segments, numbered
// from 1, carry the profile in pieces.
#include "fileinspect/ImageFormats.h"

#include "fileinspect/ReaderLimits.h"

#include <map>

namespace quillon::fileinspect::formats {

namespace {

// Start-of-frame markers: C0 to CF, except DHT (C4), JPG (C8) and DAC (CC).
bool isStartOfFrame(int marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Markers that stand alone, without a length: TEM, the restart markers and SOI.
bool isStandalone(int marker)
{
    return marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8);
}

QString colorModeOfComponents(int components, int bits)
{
    switch (components) {
    case 1:
        return bits == 1 ? QStringLiteral("Black and White") : QStringLiteral("Grayscale");
    case 3:
        return QStringLiteral("RGB");
    case 4:
        return QStringLiteral("CMYK");
    default:
        return {};
    }
}

} // namespace

bool readJpeg(const ByteSource& file, ImageProperties& properties)
{
    if (file.byteAt(0) != 0xFF || file.byteAt(1) != 0xD8 || file.byteAt(2) != 0xFF)
        return false;
    std::map<int, QByteArray> profilePieces;
    qint64 profileBytes = 0;
    bool frameFound = false;
    qint64 at = 2;
    // Real files have a few dozen segments before the image data; a runaway count is garbage.
    for (int segments = 0; segments < 4096 && at + 4 <= file.size(); ++segments) {
        if (file.byteAt(at) != 0xFF)
            break;
        const int marker = file.byteAt(at + 1);
        if (marker == 0xFF) { // fill byte
            ++at;
            continue;
        }
        if (isStandalone(marker)) {
            at += 2;
            continue;
        }
        if (marker == 0xD9 || marker == 0xDA) // end of image, start of scan
            break;
        const qint64 length = be16(file, at + 2);
        if (length < 2)
            break;
        const qint64 data = at + 4;
        const qint64 dataLength = length - 2;
        if (marker == 0xE2 && dataLength > 14 && file.read(data, 12) == QByteArrayView("ICC_PROFILE\0", 12)) {
            const int sequence = file.byteAt(data + 12);
            if (profileBytes + dataLength <= kMaxProfileBytes && !profilePieces.count(sequence)) {
                profilePieces[sequence] = file.read(data + 14, dataLength - 14);
                profileBytes += dataLength;
            }
        } else if (isStartOfFrame(marker) && !frameFound && dataLength >= 6) {
            frameFound = true;
            properties.bitsPerComponent = file.byteAt(data);
            properties.pixelHeight = be16(file, data + 1);
            properties.pixelWidth = be16(file, data + 3);
            properties.colorMode = colorModeOfComponents(file.byteAt(data + 5), properties.bitsPerComponent);
        }
        at = data + dataLength;
    }
    properties.format = QStringLiteral("JPEG");
    for (const auto& [sequence, piece] : profilePieces)
        properties.iccProfile += piece;
    return true;
}

} // namespace quillon::fileinspect::formats
