#include "preflight/PageSizes.h"

#include "app/Log.h"
#include "app/Numbers.h"
#include "preflight/IdmlArchive.h"

#include <QDir>
#include <QFile>

#include <pugixml.hpp>

namespace quillon::preflight {

namespace {

bool loadXmlFile(pugi::xml_document& document, const QString& path)
{
    const pugi::xml_parse_result parsed = document.load_file(QFile::encodeName(path).constData());
    if (!parsed)
        app::logFailure(QStringLiteral("read %1: %2").arg(path, QString::fromUtf8(parsed.description())));
    return bool(parsed);
}

} // namespace

QStringList pageSizeKeyFromGeometricBounds(const QString& bounds)
{
    const QStringList parts = bounds.split(u' ');
    if (parts.size() < 4)
        return {};
    double width = 0;
    double height = 0;
    if (parts.at(0) == QLatin1String("0") && parts.at(1) == QLatin1String("0")) {
        width = doubleFromString(parts.at(3));
        height = doubleFromString(parts.at(2));
    } else {
        width = doubleFromString(parts.at(3)) - doubleFromString(parts.at(1));
        height = doubleFromString(parts.at(2)) - doubleFromString(parts.at(0));
    }
    return {app::formatFourDecimals(width), app::formatFourDecimals(height)};
}

PageSizesDict pageSizesInIdmlFolder(const QString& folder)
{
    PageSizesDict sizes;
    const QDir root(folder);
    pugi::xml_document designmap;
    if (!loadXmlFile(designmap, root.filePath(QStringLiteral("designmap.xml"))))
        return sizes;
    for (const pugi::xml_node part : designmap.document_element().children("idPkg:Spread")) {
        // Only parts inside the package are read, whatever designmap.xml says.
        const std::optional<QString> source = safeRelativeEntryPath(QString::fromUtf8(part.attribute("src").value()));
        pugi::xml_document spreadFile;
        if (!source || !loadXmlFile(spreadFile, root.filePath(*source)))
            continue;
        const pugi::xml_node spread = spreadFile.document_element().child("Spread");
        for (const pugi::xml_node page : spread.children("Page")) {
            const QStringList key =
                pageSizeKeyFromGeometricBounds(QString::fromUtf8(page.attribute("GeometricBounds").value()));
            if (!key.isEmpty())
                sizes[key] << QString::fromUtf8(page.attribute("Name").value());
        }
    }
    return sizes;
}

} // namespace quillon::preflight
