#include "preflight/PageSizes.h"

#include "app/XmlFile.h"
#include "links/PageGeometry.h"
#include "preflight/IdmlArchive.h"

#include <QDir>
#include <QFile>

#include <pugixml.hpp>

namespace quillon::preflight {

PageSizesDict pageSizesInIdmlFolder(const QString& folder)
{
    PageSizesDict sizes;
    const QDir root(folder);
    const auto designmap = app::loadXmlFile(root.filePath(QStringLiteral("designmap.xml")));
    if (!designmap)
        return sizes;
    for (const pugi::xml_node part : (*designmap)->document_element().children("idPkg:Spread")) {
        // Only parts inside the package are read, whatever designmap.xml says.
        const std::optional<QString> source = safeRelativeEntryPath(QString::fromUtf8(part.attribute("src").value()));
        if (!source)
            continue;
        const auto spreadFile = app::loadXmlFile(root.filePath(*source));
        if (!spreadFile)
            continue;
        const pugi::xml_node spread = (*spreadFile)->document_element().child("Spread");
        for (const pugi::xml_node page : spread.children("Page")) {
            const QStringList key = links::pageSizeKeyFromGeometricBounds(page.attribute("GeometricBounds").value());
            if (!key.isEmpty())
                sizes[key] << QString::fromUtf8(page.attribute("Name").value());
        }
    }
    return sizes;
}

} // namespace quillon::preflight
