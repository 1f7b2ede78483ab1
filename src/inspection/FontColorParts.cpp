#include "inspection/FontColorParts.h"

#include "app/XmlFile.h"
#include "idml/XmlPart.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace quillon::idml;

namespace quillon::inspection {

QString withoutIdPrefix(QString name)
{
    static const QString prefix = QStringLiteral("$ID/");
    if (name.startsWith(prefix))
        name.remove(0, prefix.size());
    return name;
}

namespace {

// The element's name without its namespace prefix ("idPkg:Story" gives "Story").
std::string_view localName(const pugi::xml_node& node)
{
    const std::string_view name = node.name();
    const auto colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

} // namespace

app::Result<IdmlParts> readIdmlParts(const QString& folder)
{
    const QFileInfo info(folder);
    if (!info.isDir())
        return app::makeError(QStringLiteral("the unpacked IDML folder is missing"), folder);
    IdmlParts parts;
    parts.folder = QDir::cleanPath(info.absoluteFilePath());
    const QString mapPath = parts.folder + QStringLiteral("/designmap.xml");
    auto map = app::loadXmlFile(mapPath);
    if (!map)
        return map.error();
    parts.designMap = std::move(map).value();

    const QString prefix = parts.folder + u'/';
    for (const pugi::xml_node child : parts.designMap->document_element().children()) {
        const pugi::xml_attribute src = child.attribute("src");
        if (!src)
            continue;
        const QString path = QDir::cleanPath(prefix + QString::fromUtf8(src.value()));
        if (!path.startsWith(prefix))
            return app::makeError(
                QStringLiteral("the package names a part outside its folder: %1").arg(QString::fromUtf8(src.value())),
                mapPath);
        const std::string_view kind = localName(child);
        if (kind == "Story")
            parts.stories.append(path);
        else if (kind == "Spread")
            parts.spreads.append(path);
        else if (kind == "MasterSpread")
            parts.masterSpreads.append(path);
        else if (kind == "Graphic")
            parts.graphic = path;
        else if (kind == "Fonts")
            parts.fonts = path;
        else if (kind == "Styles")
            parts.styles = path;
        else if (kind == "Preferences")
            parts.preferences = path;
    }
    return parts;
}

std::shared_ptr<pugi::xml_document> PartReader::read(const QString& path)
{
    if (path.isEmpty())
        return {};
    const QString prefix = m_folder + u'/';
    const QString partName = path.startsWith(prefix) ? path.mid(prefix.size()) : path;
    auto part = std::make_shared<idml::XmlPart>();
    if (const app::Status read = part->read(path, partName); !read) {
        m_warnings.append(read.error());
        return {};
    }
    // The document shares the part's lifetime, which holds the text it was parsed in place from.
    return std::shared_ptr<pugi::xml_document>(part, &part->document());
}

} // namespace quillon::inspection
