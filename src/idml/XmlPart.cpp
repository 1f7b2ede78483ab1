#include "idml/XmlPart.h"

#include "app/Numbers.h"
#include "app/RegularFile.h"
#include "idml/XmlPath.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace quillon::idml {

namespace {

using app::makeError;
using app::Status;

QString sizeText(qint64 bytes)
{
    return app::fileSizeStrFromBytes(static_cast<quint64>(std::max<qint64>(bytes, 0)));
}

// Counted before parsing, so that a part built to blow up its element tree is refused cheaply.
Status checkMarkup(const QByteArray& bytes, const QString& partName, const XmlPartLimits& limits)
{
    const qint64 markup = std::count(bytes.cbegin(), bytes.cend(), '<');
    if (markup > limits.maxMarkup)
        return makeError(QStringLiteral("too many elements to read (%1 tags; a part may hold at most %2)")
                             .arg(markup)
                             .arg(limits.maxMarkup),
                         partName);
    const qint64 attributes = std::count(bytes.cbegin(), bytes.cend(), '=');
    if (attributes > limits.maxAttributes)
        return makeError(QStringLiteral("too many attributes to read (%1; a part may hold at most %2)")
                             .arg(attributes)
                             .arg(limits.maxAttributes),
                         partName);
    return {};
}

Status checkAttributes(const pugi::xml_document& document, const QString& partName, const XmlPartLimits& limits)
{
    Status status;
    forEachElement(document, [&](const pugi::xml_node element) {
        if (!status)
            return;
        for (const pugi::xml_attribute attribute : element.attributes()) {
            const auto length = static_cast<qint64>(std::strlen(attribute.value()));
            if (length > limits.maxAttributeBytes) {
                status = makeError(QStringLiteral("the attribute %1 of a %2 element is too long to read (%3; an "
                                                  "attribute may hold at most %4)")
                                       .arg(QString::fromUtf8(attribute.name()), QString::fromUtf8(element.name()),
                                            sizeText(length), sizeText(limits.maxAttributeBytes)),
                                   partName);
                return;
            }
        }
    });
    return status;
}

} // namespace

app::Error partTooLarge(const QString& partName, qint64 size, const XmlPartLimits& limits)
{
    return makeError(QStringLiteral("too large to read (%1; a part may hold at most %2)")
                         .arg(sizeText(size), sizeText(limits.maxBytes)),
                     partName);
}

Status XmlPart::parse(QByteArray bytes, const QString& partName, unsigned options, const XmlPartLimits& limits)
{
    m_document.reset();
    m_bytes = QByteArray();
    if (bytes.size() > limits.maxBytes)
        return partTooLarge(partName, bytes.size(), limits);
    if (Status markup = checkMarkup(bytes, partName, limits); !markup)
        return markup;
    m_bytes = std::move(bytes);
    const pugi::xml_parse_result parsed = m_document.load_buffer_inplace(
        m_bytes.data(), static_cast<size_t>(m_bytes.size()), options, pugi::encoding_auto);
    Status status;
    if (!parsed)
        status = makeError(QStringLiteral("not readable XML at byte %1").arg(parsed.offset), partName);
    else
        status = checkAttributes(m_document, partName, limits);
    if (!status) {
        m_document.reset();
        m_bytes = QByteArray();
    }
    return status;
}

app::Result<QByteArray> readPartFile(const QString& path, const QString& partName, const XmlPartLimits& limits)
{
    // Opened as a regular file only, so a FIFO or a device in an unpacked package cannot stall or
    // flood the read; the size is checked before anything is read.
    app::Result<app::ReadableFile> file = app::openRegularFile(path);
    if (!file)
        return makeError(QFileInfo::exists(path) ? file.error().message : QStringLiteral("missing from the package"),
                         partName);
    if (file->size() > limits.maxBytes)
        return partTooLarge(partName, file->size(), limits);
    app::Result<QByteArray> bytes = app::readOpenedFile(*file, path, limits.maxBytes);
    if (!bytes) // a file that grew past the bound since its size was seen is refused the same way
        return bytes.error().message.startsWith(QLatin1String("is too large"))
                   ? partTooLarge(partName, limits.maxBytes + 1, limits)
                   : makeError(bytes.error().message, partName);
    return bytes;
}

Status XmlPart::read(const QString& path, const QString& partName, unsigned options, const XmlPartLimits& limits)
{
    m_document.reset();
    m_bytes = QByteArray();
    app::Result<QByteArray> bytes = readPartFile(path, partName, limits);
    if (!bytes)
        return bytes.error();
    return parse(std::move(bytes).value(), partName, options, limits);
}

} // namespace quillon::idml
