#include "inspection/PageSizes.h"

#include "idml/IdmlDocument.h"
#include "links/PageGeometry.h"

#include <pugixml.hpp>

namespace quillon::inspection {

PageSizesDict pageSizesInDocument(const idml::IdmlDocument& document, QList<app::Error>* warnings)
{
    PageSizesDict sizes;
    for (const QString& name : document.spreads()) {
        app::Result<std::shared_ptr<const idml::XmlPart>> part = document.part(name);
        if (!part) {
            if (warnings)
                warnings->append(part.error());
            continue;
        }
        const pugi::xml_node spread = (*part)->root().child("Spread");
        for (const pugi::xml_node page : spread.children("Page")) {
            const QStringList key = links::pageSizeKeyFromGeometricBounds(page.attribute("GeometricBounds").value());
            if (!key.isEmpty())
                sizes[key] << QString::fromUtf8(page.attribute("Name").value());
        }
    }
    return sizes;
}

} // namespace quillon::inspection
