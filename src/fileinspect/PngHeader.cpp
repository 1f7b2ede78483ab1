// PNG: IHDR gives the size and colour type; an iCCP chunk carries the profile, deflated.
#include "fileinspect/ImageFormats.h"

#include "fileinspect/ReaderLimits.h"

#include <zlib.h>

#include <climits>

namespace quillon::fileinspect::formats {

namespace {

// The inflated bytes, or nothing when the stream is broken or inflates beyond the profile limit.
QByteArray inflated(QByteArrayView compressed)
{
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return {};
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(compressed.data()));
    stream.avail_in = static_cast<uInt>(compressed.size());
    QByteArray out;
    char buffer[64 * 1024];
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(buffer);
        stream.avail_out = sizeof buffer;
        status = inflate(&stream, Z_NO_FLUSH);
        const qint64 produced = qint64(sizeof buffer) - stream.avail_out;
        if ((status != Z_OK && status != Z_STREAM_END) || out.size() + produced > kMaxProfileBytes) {
            inflateEnd(&stream);
            return {};
        }
        out.append(buffer, produced);
        if (status == Z_OK && produced == 0 && stream.avail_in == 0)
            break; // truncated stream
    }
    inflateEnd(&stream);
    return status == Z_STREAM_END ? out : QByteArray();
}

QString colorModeOfColorType(int colorType, int bits)
{
    switch (colorType) {
    case 0:
    case 4:
        return bits == 1 ? QStringLiteral("Black and White") : QStringLiteral("Grayscale");
    case 2:
    case 6:
        return QStringLiteral("RGB");
    case 3:
        return QStringLiteral("Indexed");
    default:
        return {};
    }
}

} // namespace

bool readPng(const ByteSource& file, ImageProperties& properties)
{
    if (file.read(0, 8) != QByteArrayView("\x89PNG\r\n\x1a\n", 8))
        return false;
    if (file.read(12, 4) != "IHDR" || be32(file, 8) < 13)
        return false;
    properties.format = QStringLiteral("PNG");
    properties.pixelWidth = static_cast<int>(std::min<quint32>(be32(file, 16), INT_MAX));
    properties.pixelHeight = static_cast<int>(std::min<quint32>(be32(file, 20), INT_MAX));
    properties.bitsPerComponent = std::max(file.byteAt(24), 0);
    properties.colorMode = colorModeOfColorType(file.byteAt(25), properties.bitsPerComponent);

    qint64 at = 8;
    for (int chunks = 0; chunks < 4096 && at + 8 <= file.size(); ++chunks) {
        const qint64 length = be32(file, at);
        const QByteArray type = file.read(at + 4, 4);
        if (type == "IDAT" || type == "IEND")
            break;
        if (type == "iCCP" && length <= kMaxProfileBytes) {
            // Profile name, NUL, compression method 0 (deflate), the compressed profile.
            const QByteArray data = file.read(at + 8, length);
            const qsizetype nul = data.indexOf('\0');
            if (nul >= 0 && nul + 1 < data.size() && data[nul + 1] == 0)
                properties.iccProfile = inflated(midView(data, nul + 2));
            break;
        }
        at += 12 + length;
    }
    return true;
}

} // namespace quillon::fileinspect::formats
