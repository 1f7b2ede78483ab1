#pragma once

#include "links/AnchoredLinkPageSource.h"

#include <QHash>
#include <QString>
#include <QStringList>

namespace quillon::links {

// The offline page of an anchored link: the page of the first text frame of its story, spreads
// taken in the order the package's designmap lists them (spreads it does not list follow in the
// order they were read), frames in document order within a spread.
class StoryFramePages : public AnchoredLinkPageSource {
public:
    // Called while a spread is read: the first frame of `storyId` in that spread lies on `pageName`.
    // `spread` is the part's name ("Spreads/Spread_u1.xml").
    void addFrame(const QString& spread, const QString& storyId, const QString& pageName);

    // Fixes the order in which spreads are searched (without it: the order they were read): the
    // part names in the designmap's order.
    void setSpreadOrder(const QStringList& designmapOrder);

    QString pageNameForLinkID(const QString& linkId, const QString& storyId) override;

private:
    QStringList m_readOrder;                                  // spreads as read
    QHash<QString, QHash<QString, QString>> m_framesBySpread; // spread -> story -> page
    QStringList m_searchOrder;
    // Each story's page in the search order, made once for all questions (asking each spread in
    // turn for each story would cost spreads times stories).
    QHash<QString, QString> m_pageByStory;
    bool m_pagesIndexed = false;
};

} // namespace quillon::links
