#pragma once

#include <QString>

namespace quillon::links {

// Where the page of an anchored graphic (one placed in the text of a story) comes from. A host
// that drives the layout application asks it; the offline analysis answers from the package's
// own text frames (StoryFramePages).
class AnchoredLinkPageSource {
public:
    virtual ~AnchoredLinkPageSource() = default;

    // The name of the page on which the story `storyId` places the link with the decimal id
    // `linkId`; empty when it cannot be told. Called on the analysing thread only.
    virtual QString pageNameForLinkID(const QString& linkId, const QString& storyId) = 0;
};

} // namespace quillon::links
