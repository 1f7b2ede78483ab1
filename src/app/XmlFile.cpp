#include "app/XmlFile.h"

#include "app/RegularFile.h"

#include <algorithm>

namespace quillon::app {

Result<std::shared_ptr<pugi::xml_document>> loadXmlFile(const QString& path, unsigned options)
{
    Result<QByteArray> bytes = readRegularFile(path, kMaxXmlFileBytes);
    if (!bytes)
        return bytes.error();
    return parseXml(*bytes, path, options);
}

Result<std::shared_ptr<pugi::xml_document>> parseXml(const QByteArray& bytes, const QString& sourceName,
                                                     unsigned options)
{
    auto doc = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result parsed =
        doc->load_buffer(bytes.constData(), static_cast<size_t>(bytes.size()), options, pugi::encoding_auto);
    if (!parsed) {
        const qsizetype end = std::clamp<qsizetype>(static_cast<qsizetype>(parsed.offset), 0, bytes.size());
        const auto line = 1 + std::count(bytes.constData(), bytes.constData() + end, '\n');
        return makeError(QStringLiteral("not well-formed XML (%1)").arg(QLatin1String(parsed.description())),
                         sourceName, QStringLiteral("line %1").arg(line));
    }
    if (!doc->document_element())
        return makeError(QStringLiteral("the file holds no XML element"), sourceName);
    return doc;
}

} // namespace quillon::app
