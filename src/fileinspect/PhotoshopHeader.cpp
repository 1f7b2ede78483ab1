// Photoshop (PSD and PSB): the file header gives the size, depth and mode; image resource 1039
// holds the profile. Resources are walked as the format defines them, padding included.
#include "fileinspect/ImageFormats.h"

#include "fileinspect/QNPreflightMethods.h"
#include "fileinspect/ReaderLimits.h"

#include <algorithm>
#include <climits>

namespace quillon::fileinspect::formats {

bool readPhotoshop(const ByteSource& file, ImageProperties& properties)
{
    const quint16 version = be16(file, 4);
    if (file.read(0, 4) != "8BPS" || (version != 1 && version != 2) || file.size() < 26)
        return false;
    properties.format = QStringLiteral("Photoshop");
    properties.pixelHeight = static_cast<int>(std::min<quint32>(be32(file, 14), INT_MAX));
    properties.pixelWidth = static_cast<int>(std::min<quint32>(be32(file, 18), INT_MAX));
    properties.bitsPerComponent = be16(file, 22);
    properties.colorMode = QNPreflightMethods::psdColors().value(QString::number(be16(file, 24)));

    const qint64 resources = 26 + 4 + qint64(be32(file, 26));
    qint64 at = resources + 4;
    const qint64 end = std::min(at + qint64(be32(file, resources)), file.size());
    while (at + 12 <= end) {
        static const QByteArrayView signatures[] = {"8BIM", "MeSa", "AgHg", "PHUT", "DCSR"};
        const QByteArray signature = file.read(at, 4);
        if (std::find(std::begin(signatures), std::end(signatures), signature) == std::end(signatures))
            break;
        const quint16 id = be16(file, at + 4);
        const int nameLength = std::max(file.byteAt(at + 6), 0);
        const qint64 sizeAt = at + 6 + ((1 + nameLength + 1) & ~1); // Pascal name padded to even
        const qint64 size = be32(file, sizeAt);
        if (id == 1039 && size <= kMaxProfileBytes) {
            properties.iccProfile = file.read(sizeAt + 4, size);
            break;
        }
        at = sizeAt + 4 + size + (size & 1);
    }
    return true;
}

} // namespace quillon::fileinspect::formats
