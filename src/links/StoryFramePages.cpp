#include "links/StoryFramePages.h"

#include <QSet>

namespace quillon::links {

void StoryFramePages::addFrame(const QString& spreadPath, const QString& storyId, const QString& pageName)
{
    auto spread = m_framesBySpread.find(spreadPath);
    if (spread == m_framesBySpread.end()) {
        m_readOrder << spreadPath;
        spread = m_framesBySpread.insert(spreadPath, {});
    }
    if (!spread->contains(storyId))
        spread->insert(storyId, pageName);
    m_pagesIndexed = false;
}

void StoryFramePages::setSpreadOrder(const QStringList& designmapOrder)
{
    m_searchOrder.clear();
    QSet<QString> ordered;
    for (const QString& path : designmapOrder) {
        if (m_framesBySpread.contains(path) && !ordered.contains(path)) {
            ordered.insert(path);
            m_searchOrder << path;
        }
    }
    for (const QString& path : std::as_const(m_readOrder))
        if (!ordered.contains(path))
            m_searchOrder << path;
    m_pagesIndexed = false;
}

QString StoryFramePages::pageNameForLinkID(const QString& linkId, const QString& storyId)
{
    (void)linkId;
    if (!m_pagesIndexed) {
        m_pageByStory.clear();
        for (const QString& spread : m_searchOrder.isEmpty() ? m_readOrder : m_searchOrder) {
            const auto& frames = m_framesBySpread[spread];
            for (auto it = frames.cbegin(); it != frames.cend(); ++it)
                if (!m_pageByStory.contains(it.key()))
                    m_pageByStory.insert(it.key(), it.value());
        }
        m_pagesIndexed = true;
    }
    return m_pageByStory.value(storyId);
}

} // namespace quillon::links
