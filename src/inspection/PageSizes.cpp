#include "inspection/PageSizes.h"

#include "links/PageGeometry.h"
#include "idml/XmlPart.h"
#include "idml/IdmlArchive.h"

#include <QDir>

#include <pugixml.hpp>

using namespace quillon::idml;

namespace quillon::inspection {

PageSizesDict pageSizesInIdmlFolder(const QString& folder, QList<app::Error>* warnings)
{
    PageSizesDict sizes;
    const QDir root(folder);
    idml::XmlPart designmap;
    if (!designmap.read(root.filePath(QStringLiteral("designmap.xml")), QStringLiteral("designmap.xml")))
        return sizes;
    for (const pugi::xml_node part : designmap.root().children("idPkg:Spread")) {
        // Only parts inside the package are read, whatever designmap.xml says.
        const std::optional<QString> source = safeRelativeEntryPath(QString::fromUtf8(part.attribute("src").value()));
        if (!source)
            continue;
        idml::XmlPart spreadFile;
        if (const app::Status read = spreadFile.read(root.filePath(*source), *source); !read) {
            if (warnings)
                warnings->append(read.error());
            continue;
        }
        const pugi::xml_node spread = spreadFile.root().child("Spread");
        for (const pugi::xml_node page : spread.children("Page")) {
            const QStringList key = links::pageSizeKeyFromGeometricBounds(page.attribute("GeometricBounds").value());
            if (!key.isEmpty())
                sizes[key] << QString::fromUtf8(page.attribute("Name").value());
        }
    }
    return sizes;
}

} // namespace quillon::inspection
