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
