#include "Fixtures.h"

#include "support/TestSupport.h"

namespace quillon::test {

QByteArray be16(quint16 value)
{
    QByteArray bytes(2, '\0');
    bytes[0] = char(value >> 8);
    bytes[1] = char(value & 0xFF);
    return bytes;
}

QByteArray be32(quint32 value)
{
    return be16(quint16(value >> 16)) + be16(quint16(value & 0xFFFF));
}

QByteArray psdResource(quint16 id, const QByteArray& data, bool padded)
{
    QByteArray resource = "8BIM" + be16(id) + QByteArray(2, '\0') + be32(quint32(data.size())) + data;
    if (padded && data.size() % 2 == 1)
        resource += '\0';
    return resource;
}

QByteArray psdFile(quint16 mode, const QByteArray& colorModeData, const QList<QByteArray>& resources)
{
    QByteArray resourceBytes;
    for (const QByteArray& resource : resources)
        resourceBytes += resource;
    QByteArray file = "8BPS" + be16(1) + QByteArray(6, '\0') + be16(3) + be32(4) + be32(4) + be16(8) + be16(mode);
    file += be32(quint32(colorModeData.size())) + colorModeData;
    file += be32(quint32(resourceBytes.size())) + resourceBytes;
    file += be32(0) + be16(0); // empty layer section, raw image data
    return file;
}

QByteArray descProfile(const QByteArray& name, const QByteArray& after)
{
    QByteArray header(128, '\0');
    const QByteArray tagTable = be32(1) + "desc" + be32(144) + be32(quint32(12 + name.size() + after.size()));
    return header + tagTable + "desc" + QByteArray(4, '\0') + be32(quint32(name.size() + 1)) + name + after;
}

namespace {

QByteArray le32(quint32 value)
{
    QByteArray bytes(4, '\0');
    for (int i = 0; i < 4; ++i)
        bytes[i] = char((value >> (8 * i)) & 0xFF);
    return bytes;
}

QByteArray riffChunk(const char* type, const QByteArray& data)
{
    QByteArray chunk = type + le32(quint32(data.size())) + data;
    if (data.size() % 2 == 1)
        chunk += '\0';
    return chunk;
}

} // namespace

QByteArray webpWithProfile(const QByteArray& profile)
{
    // VP8X: the profile flag, then canvas width - 1 and height - 1 in three bytes each.
    const QByteArray extended = QByteArray("\x20\0\0\0\x04\0\0\x02\0\0", 10);
    const QByteArray lossless = QByteArray("\x2f\x04\x80\0\0", 5) + QByteArray(8, '\0');
    const QByteArray body =
        "WEBP" + riffChunk("VP8X", extended) + riffChunk("ICCP", profile) + riffChunk("VP8L", lossless);
    return "RIFF" + le32(quint32(body.size())) + body;
}

QString TempFiles::write(const QString& name, const QByteArray& bytes)
{
    const QString file = path(name);
    writeAll(file, bytes);
    return file;
}

QString TempFiles::path(const QString& name) const
{
    return m_dir.filePath(name);
}

} // namespace quillon::test
