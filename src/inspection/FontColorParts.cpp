#include "inspection/FontColorParts.h"

#include "app/Progress.h"
#include "idml/IdmlDocument.h"

namespace quillon::inspection {

QString withoutIdPrefix(QString name)
{
    static const QString prefix = QStringLiteral("$ID/");
    if (name.startsWith(prefix))
        name.remove(0, prefix.size());
    return name;
}

app::Error inspectionCancelled()
{
    return app::makeError(QStringLiteral("cancelled"));
}

bool PartReader::cancelled() const
{
    return m_cancel && m_cancel->isCancelled();
}

std::shared_ptr<const pugi::xml_document> PartReader::read(const QString& name)
{
    if (name.isEmpty() || cancelled())
        return {};
    app::Result<std::shared_ptr<const idml::XmlPart>> part = m_document.part(name);
    if (!part) {
        m_warnings.append(part.error());
        return {};
    }
    // The document shares the part's lifetime, which holds the text it was parsed in place from.
    return std::shared_ptr<const pugi::xml_document>(*part, &(*part)->document());
}

} // namespace quillon::inspection
