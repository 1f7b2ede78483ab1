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
    // The spread files in the designmap's order, as paths relative to the package folder
    // ("Spreads/Spread_u1.xml"); empty when the designmap cannot be read.
    static QStringList spreadOrderFromDesignmap(const QString& packageFolder);

    // Called while a spread is read: the first frame of `storyId` in that spread lies on `pageName`.
    void addFrame(const QString& spreadPath, const QString& storyId, const QString& pageName);

    // Fixes the order in which spreads are searched (without it: the order they were read). `designmapOrder` holds
    // package-relative paths; `packageFolder` turns them into the paths given to addFrame.
    void setSpreadOrder(const QString& packageFolder, const QStringList& designmapOrder);

    QString pageNameForLinkID(const QString& linkId, const QString& storyId) override;

private:
    QStringList m_readOrder;                                  // spread paths as read
    QHash<QString, QHash<QString, QString>> m_framesBySpread; // spread path -> story -> page
    QStringList m_searchOrder;
    // Each story's page in the search order, made once for all questions (asking each spread in
    // turn for each story would cost spreads times stories).
    QHash<QString, QString> m_pageByStory;
    bool m_pagesIndexed = false;
};

} // namespace quillon::links
