#include "preflight/FontColorParts.h"

#include "app/XmlFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace quillon::preflight {

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

void PartReader::warn(const QString& path, const QString& problem)
{
    const QString prefix = m_folder + u'/';
    m_warnings.append({path.startsWith(prefix) ? path.mid(prefix.size()) : path, problem});
}

std::shared_ptr<pugi::xml_document> PartReader::read(const QString& path)
{
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    if (!info.exists()) {
        warn(path, QStringLiteral("missing from the package"));
        return {};
    }
    if (!info.isFile()) {
        warn(path, QStringLiteral("not a regular file"));
        return {};
    }
    if (info.size() > kMaxPartBytes) {
        warn(path, QStringLiteral("too big to read (%1 MB; parts of up to %2 MB are read)")
                       .arg(info.size() / (1024 * 1024))
                       .arg(kMaxPartBytes / (1024 * 1024)));
        return {};
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        warn(path, QStringLiteral("cannot be read (%1)").arg(file.errorString()));
        return {};
    }
    // Read straight into a buffer the document owns and parses in place: one copy of the part.
    const auto size = static_cast<size_t>(info.size());
    void* buffer = pugi::get_memory_allocation_function()(size == 0 ? 1 : size);
    if (!buffer) {
        warn(path, QStringLiteral("too big to read (out of memory)"));
        return {};
    }
    if (file.read(static_cast<char*>(buffer), info.size()) != info.size()) {
        pugi::get_memory_deallocation_function()(buffer);
        warn(path, QStringLiteral("cannot be read (%1)").arg(file.errorString()));
        return {};
    }
    auto doc = std::make_shared<pugi::xml_document>();
    const pugi::xml_parse_result parsed =
        doc->load_buffer_inplace_own(buffer, size, app::kXmlPartParseOptions, pugi::encoding_auto);
    if (!parsed || !doc->document_element()) {
        warn(path, QStringLiteral("not readable XML at byte %1").arg(qMax<ptrdiff_t>(0, parsed.offset)));
        return {};
    }
    return doc;
}

} // namespace quillon::preflight
