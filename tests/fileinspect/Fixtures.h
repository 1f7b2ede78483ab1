#pragma once

// Small files built byte by byte for the reader tests.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>

namespace quillon::test {

QByteArray be16(quint16 value);
QByteArray be32(quint32 value);

// An image resource: "8BIM", the id, an empty name, the size and the data, and the padding byte
// after odd-sized data when `padded`.
QByteArray psdResource(quint16 id, const QByteArray& data, bool padded = true);

// A Photoshop file header (mode, 4 x 4 pixels, 8 bits), the colour-mode data and the resources.
QByteArray psdFile(quint16 mode, const QByteArray& colorModeData, const QList<QByteArray>& resources);

// Profile bytes as the Photoshop reader looks at them: a tag table naming "desc", then the
// description tag ("desc", 4 reserved bytes, the count, the text, `after`).
QByteArray descProfile(const QByteArray& name, const QByteArray& after = QByteArray(20, '\0'));

// A 5 x 3 WebP file with an ICC profile chunk (a format without a header reader of our own).
QByteArray webpWithProfile(const QByteArray& profile);

// Files in a private folder that goes away with the object.
class TempFiles {
public:
    QString write(const QString& name, const QByteArray& bytes);
    QString path(const QString& name) const;

private:
    QTemporaryDir m_dir;
};

} // namespace quillon::test
