#include "app/XmlFile.h"

#include <QFile>

#include <algorithm>

namespace quillon::app {

Result<std::shared_ptr<pugi::xml_document>> loadXmlFile(const QString& path, unsigned options)
{
    QFile file(path);
    if (!file.exists())
        return makeError(QStringLiteral("the file is missing"), path);
    if (!file.open(QIODevice::ReadOnly))
        return makeError(QStringLiteral("the file cannot be read (%1)").arg(file.errorString()), path);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return makeError(QStringLiteral("the file cannot be read (%1)").arg(file.errorString()), path);
    return parseXml(bytes, path, options);
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
