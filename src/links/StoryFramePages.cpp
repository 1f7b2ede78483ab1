#include "links/StoryFramePages.h"

#include <QDir>
#include <QFile>

#include <pugixml.hpp>

#include <cstring>

namespace quillon::links {

QStringList StoryFramePages::spreadOrderFromDesignmap(const QString& packageFolder)
{
    pugi::xml_document designmap;
    const QByteArray path = QFile::encodeName(packageFolder + QStringLiteral("/designmap.xml"));
    if (!designmap.load_file(path.constData(), pugi::parse_default))
        return {};
    QStringList order;
    for (pugi::xml_node node = designmap.document_element().first_child(); node; node = node.next_sibling())
        if (std::strcmp(node.name(), "idPkg:Spread") == 0)
            order << QString::fromUtf8(node.attribute("src").value());
    return order;
}

void StoryFramePages::addFrame(const QString& spreadPath, const QString& storyId, const QString& pageName)
{
    auto& frames = m_framesBySpread[spreadPath];
    if (frames.isEmpty() && !m_readOrder.contains(spreadPath))
        m_readOrder << spreadPath;
    if (!frames.contains(storyId))
        frames.insert(storyId, pageName);
}

void StoryFramePages::setSpreadOrder(const QString& packageFolder, const QStringList& designmapOrder)
{
    m_searchOrder.clear();
    m_pageByStory.clear();
    for (const QString& relative : designmapOrder) {
        const QString path = QDir::cleanPath(packageFolder + u'/' + relative);
        if (m_framesBySpread.contains(path) && !m_searchOrder.contains(path))
            m_searchOrder << path;
    }
    for (const QString& path : std::as_const(m_readOrder))
        if (!m_searchOrder.contains(path))
            m_searchOrder << path;
}

QString StoryFramePages::pageNameForLinkID(const QString& linkId, const QString& storyId)
{
    (void)linkId;
    if (const auto it = m_pageByStory.constFind(storyId); it != m_pageByStory.cend())
        return *it;
    QString page;
    const QStringList& order = m_searchOrder.isEmpty() ? m_readOrder : m_searchOrder;
    for (const QString& spread : order) {
        const auto& frames = m_framesBySpread[spread];
        if (const auto it = frames.constFind(storyId); it != frames.cend()) {
            page = *it;
            break;
        }
    }
    m_pageByStory.insert(storyId, page);
    return page;
}

} // namespace quillon::links
