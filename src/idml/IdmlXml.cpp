#include "idml/IdmlXml.h"

#include "idml/XmlPart.h"

namespace quillon::idml {

app::Status loadIdmlXml(pugi::xml_document& document, const QByteArray& bytes, const QString& documentPath,
                        const QString& partName, unsigned options)
{
    if (const idml::XmlPartLimits limits; bytes.size() > limits.maxBytes) {
        const app::Error tooLarge = idml::partTooLarge(partName, bytes.size(), limits);
        return app::makeError(QStringLiteral("the part is %1").arg(tooLarge.message), documentPath, partName);
    }
    const pugi::xml_parse_result parsed = document.load_buffer(bytes.constData(), size_t(bytes.size()), options);
    if (!parsed)
        return app::makeError(QStringLiteral("the part is not readable XML: %1 at byte %2")
                                  .arg(QString::fromUtf8(parsed.description()))
                                  .arg(parsed.offset),
                              documentPath, partName);
    return {};
}

} // namespace quillon::idml
