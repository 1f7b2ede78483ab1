#include "fileinspect/ImageMetadata.h"

#include "fileinspect/ByteSource.h"
#include "fileinspect/MetadataLibrary.h"

#include <QHash>
#include <QVariantList>

#include <cmath>

namespace quillon::fileinspect {

QVariant PropertyDictionary::value(const QString& key) const
{
    const qsizetype i = indexOf(key);
    return i < 0 ? QVariant() : m_entries[i].second;
}

void PropertyDictionary::insert(const QString& key, const QVariant& value)
{
    if (const qsizetype i = indexOf(key); i >= 0)
        m_entries[i].second = value;
    else
        m_entries.append({key, value});
}

void PropertyDictionary::remove(const QString& key)
{
    if (const qsizetype i = indexOf(key); i >= 0)
        m_entries.removeAt(i);
}

qsizetype PropertyDictionary::indexOf(const QString& key) const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        if (m_entries[i].first == key)
            return i;
    return -1;
}

namespace {

QString text(const std::string& value)
{
    QString result = QString::fromUtf8(value.data(), qsizetype(value.size()));
    return withoutControlCharacters(result).trimmed();
}

// A rational as the platform gives it, a double; a zero denominator cannot be one, so it stays
// a fraction text.
QVariant rationalValue(const Exiv2::Value& value, long i)
{
    const Exiv2::Rational r = value.toRational(i);
    if (r.second == 0)
        return QStringLiteral("%1/0").arg(r.first);
    return double(r.first) / double(r.second);
}

QVariant numberValue(const Exiv2::Value& value, long i)
{
    switch (value.typeId()) {
    case Exiv2::unsignedRational:
    case Exiv2::signedRational:
        return rationalValue(value, i);
    case Exiv2::tiffFloat:
    case Exiv2::tiffDouble:
        return double(value.toFloat(i));
    default:
        return qlonglong(value.toLong(i));
    }
}

QVariant numbers(const Exiv2::Value& value)
{
    const long count = value.count();
    if (count == 1)
        return numberValue(value, 0);
    QVariantList list;
    for (long i = 0; i < count; ++i)
        list << numberValue(value, i);
    return list;
}

QByteArray rawBytes(const Exiv2::Value& value)
{
    QByteArray bytes(value.size(), Qt::Uninitialized);
    if (!bytes.isEmpty())
        value.copy(reinterpret_cast<Exiv2::byte*>(bytes.data()), Exiv2::bigEndian);
    return bytes;
}

// "0221" reads 2, 2, 1 and "0100" reads 1, 0: the major number, the first minor digit, and the
// second one unless it is 0.
QVariant versionValue(const QByteArray& digits)
{
    if (digits.size() != 4)
        return QString::fromLatin1(digits);
    QVariantList parts{digits.left(2).toInt(), digits.mid(2, 1).toInt()};
    if (digits[3] != '0')
        parts << digits.mid(3, 1).toInt();
    return parts;
}

// Tags of type "undefined": versions, single codes and small byte arrays are numbers; anything
// larger is named by its size, since the bytes mean nothing on screen.
QVariant undefinedValue(const QString& key, const Exiv2::Value& value)
{
    const QByteArray bytes = rawBytes(value);
    if (key == u"ExifVersion" || key == u"FlashPixVersion")
        return versionValue(bytes);
    if (bytes.size() == 1)
        return int(static_cast<unsigned char>(bytes[0]));
    if (bytes.size() <= 32) {
        QVariantList list;
        for (char b : bytes)
            list << int(static_cast<unsigned char>(b));
        return list;
    }
    return QStringLiteral("(%1 bytes)").arg(bytes.size());
}

// A user comment: an 8-byte character-set name ("ASCII", "UNICODE", "JIS" or none), then the text.
QVariant commentValue(const Exiv2::Value& value, Exiv2::ByteOrder byteOrder)
{
    const QByteArray bytes = rawBytes(value);
    Exiv2::CommentValue comment;
    comment.read(reinterpret_cast<const Exiv2::byte*>(bytes.constData()), long(bytes.size()), byteOrder);
    return text(comment.comment());
}

QVariant variantOf(const QString& key, const Exiv2::Value& value, Exiv2::ByteOrder byteOrder = Exiv2::littleEndian)
{
    if (key == u"UserComment" && value.typeId() == Exiv2::undefined)
        return commentValue(value, byteOrder);
    switch (value.typeId()) {
    case Exiv2::asciiString:
    case Exiv2::string:
    case Exiv2::date:
    case Exiv2::time:
        return text(value.toString());
    case Exiv2::comment:
        return text(static_cast<const Exiv2::CommentValue&>(value).comment());
    case Exiv2::undefined:
        return undefinedValue(key, value);
    default:
        return value.count() == 0 ? QVariant(QString()) : numbers(value);
    }
}

// Degrees, minutes and seconds as decimal degrees.
QVariant coordinateValue(const Exiv2::Value& value)
{
    double degrees = 0;
    for (long i = 0; i < std::min(value.count(), 3L); ++i) {
        const Exiv2::Rational r = value.toRational(i);
        if (r.second != 0)
            degrees += double(r.first) / double(r.second) / std::pow(60.0, double(i));
    }
    return degrees;
}

// Hours, minutes and seconds as "hh:mm:ss", with the fraction of a second when there is one.
QVariant timeStampValue(const Exiv2::Value& value)
{
    double parts[3] = {0, 0, 0};
    for (long i = 0; i < std::min(value.count(), 3L); ++i) {
        const Exiv2::Rational r = value.toRational(i);
        parts[i] = r.second != 0 ? double(r.first) / double(r.second) : 0;
    }
    const double seconds = parts[2];
    const QString secondsText =
        seconds == std::floor(seconds) ? QString::asprintf("%02d", int(seconds)) : QString::asprintf("%05.2f", seconds);
    return QStringLiteral("%1:%2:%3")
        .arg(int(parts[0]), 2, 10, QChar(u'0'))
        .arg(int(parts[1]), 2, 10, QChar(u'0'))
        .arg(secondsText);
}

// The platform's names where they differ from the metadata library's.
const QHash<QString, QString>& exifNames()
{
    static const QHash<QString, QString> names{
        {QStringLiteral("SubSecTime"), QStringLiteral("SubsecTime")},
        {QStringLiteral("SubSecTimeOriginal"), QStringLiteral("SubsecTimeOriginal")},
        {QStringLiteral("SubSecTimeDigitized"), QStringLiteral("SubsecTimeDigitized")},
        {QStringLiteral("FlashpixVersion"), QStringLiteral("FlashPixVersion")},
        {QStringLiteral("FocalLengthIn35mmFilm"), QStringLiteral("FocalLenIn35mmFilm")},
        {QStringLiteral("SubjectDistanceRange"), QStringLiteral("SubjectDistRange")},
        {QStringLiteral("InteroperabilityIndex"), QStringLiteral("InteropIndex")},
    };
    return names;
}

const QHash<QString, QString>& iptcNames()
{
    static const QHash<QString, QString> names{
        {QStringLiteral("ObjectType"), QStringLiteral("ObjectTypeReference")},
        {QStringLiteral("ObjectAttribute"), QStringLiteral("ObjectAttributeReference")},
        {QStringLiteral("Subject"), QStringLiteral("SubjectReference")},
        {QStringLiteral("SuppCategory"), QStringLiteral("SupplementalCategory")},
        {QStringLiteral("FixtureId"), QStringLiteral("FixtureIdentifier")},
        {QStringLiteral("LocationCode"), QStringLiteral("ContentLocationCode")},
        {QStringLiteral("LocationName"), QStringLiteral("ContentLocationName")},
        {QStringLiteral("DigitizationDate"), QStringLiteral("DigitalCreationDate")},
        {QStringLiteral("DigitizationTime"), QStringLiteral("DigitalCreationTime")},
        {QStringLiteral("Program"), QStringLiteral("OriginatingProgram")},
        {QStringLiteral("ProvinceState"), QStringLiteral("Province/State")},
        {QStringLiteral("CountryCode"), QStringLiteral("Country/PrimaryLocationCode")},
        {QStringLiteral("CountryName"), QStringLiteral("Country/PrimaryLocationName")},
        {QStringLiteral("TransmissionReference"), QStringLiteral("OriginalTransmissionReference")},
        {QStringLiteral("Copyright"), QStringLiteral("CopyrightNotice")},
        {QStringLiteral("Caption"), QStringLiteral("CaptionAbstract")},
        {QStringLiteral("Writer"), QStringLiteral("WriterEditor")},
        {QStringLiteral("Language"), QStringLiteral("LanguageIdentifier")},
        {QStringLiteral("Rating"), QStringLiteral("StarRating")},
    };
    return names;
}

// Tags of the first directory that are structure (offsets, pointers) or whole embedded blocks.
bool isStructuralTiffTag(const QString& name)
{
    static const QStringList structural{
        QStringLiteral("ExifTag"),
        QStringLiteral("GPSTag"),
        QStringLiteral("StripOffsets"),
        QStringLiteral("StripByteCounts"),
        QStringLiteral("TileOffsets"),
        QStringLiteral("TileByteCounts"),
        QStringLiteral("JPEGInterchangeFormat"),
        QStringLiteral("JPEGInterchangeFormatLength"),
        QStringLiteral("XMLPacket"),
        QStringLiteral("IPTCNAA"),
        QStringLiteral("InterColorProfile"),
        QStringLiteral("ImageResources"),
        QStringLiteral("SubIFDs"),
        QStringLiteral("PrintImageMatching"),
    };
    return structural.contains(name);
}

// A repeated dataset (keywords) collects its values in a list.
void addRepeatable(PropertyDictionary& dictionary, const QString& key, const QVariant& value)
{
    if (!dictionary.contains(key)) {
        dictionary.insert(key, value);
        return;
    }
    QVariant existing = dictionary.value(key);
    QVariantList list = existing.typeId() == QMetaType::QVariantList ? existing.toList() : QVariantList{existing};
    list << value;
    dictionary.insert(key, list);
}

void addExifDatum(ImageMetadata& metadata, const Exiv2::Exifdatum& datum, Exiv2::ByteOrder byteOrder)
{
    const QString group = QString::fromStdString(datum.groupName());
    QString name = QString::fromStdString(datum.tagName());
    const Exiv2::Value& value = datum.value();
    if (group == u"Photo" || (group == u"Iop" && name == u"InteroperabilityIndex")) {
        if (name == u"MakerNote" || name == u"InteroperabilityTag")
            return;
        name = exifNames().value(name, name);
        if (!metadata.exif)
            metadata.exif.emplace();
        metadata.exif->insert(name, variantOf(name, value, byteOrder));
    } else if (group == u"Image") {
        if (isStructuralTiffTag(name))
            return;
        if (!metadata.tiff)
            metadata.tiff.emplace();
        metadata.tiff->insert(name, variantOf(name, value));
    } else if (group == u"GPSInfo") {
        if (!metadata.gps)
            metadata.gps.emplace();
        if (name == u"GPSVersionID") {
            metadata.gps->insert(QStringLiteral("GPSVersion"), numbers(value));
            return;
        }
        name = name.mid(3); // "GPSLatitude" is "Latitude"
        QVariant converted;
        if (name == u"Latitude" || name == u"Longitude" || name == u"DestLatitude" || name == u"DestLongitude")
            converted = coordinateValue(value);
        else if (name == u"TimeStamp")
            converted = timeStampValue(value);
        else
            converted = variantOf(name, value);
        metadata.gps->insert(name == u"Differential" ? QStringLiteral("Differental") : name, converted);
    }
}

void addIptcDatum(ImageMetadata& metadata, const Exiv2::Iptcdatum& datum)
{
    if (datum.recordName() != "Application2" || datum.tagName() == "RecordVersion")
        return;
    const QString name = QString::fromStdString(datum.tagName());
    if (!metadata.iptc)
        metadata.iptc.emplace();
    addRepeatable(*metadata.iptc, iptcNames().value(name, name), variantOf(name, datum.value()));
}

// What the opened image holds, by the platform's names.
ImageMetadata metadataOf(Exiv2::Image& image)
{
    ImageMetadata metadata;
    for (const Exiv2::Exifdatum& datum : image.exifData())
        addExifDatum(metadata, datum, image.byteOrder());
    for (const Exiv2::Iptcdatum& datum : image.iptcData())
        addIptcDatum(metadata, datum);
    return metadata;
}

} // namespace

app::Result<ImageMetadata> readImageMetadata(const QString& path)
{
    return metadatalibrary::readFile(path, metadataOf);
}

app::Result<ImageMetadata> readImageMetadataOfBytes(const QByteArray& bytes, const QString& name)
{
    return metadatalibrary::readBytes(bytes, name, metadataOf);
}

} // namespace quillon::fileinspect
