#pragma once

#include "app/Result.h"

#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <string_view>

namespace quillon::preflight {

// What a walk through a story's text reports, in text order.
class StoryTextVisitor {
public:
    virtual ~StoryTextVisitor() = default;

    // Characters set in the given ranges (either may be null): a <Content> with text or a special
    // character, a paragraph return, a text variable. Called once per such element.
    virtual void characters(pugi::xml_node paragraphRange, pugi::xml_node characterRange) = 0;

    // A paragraph ended: at a paragraph return, where the paragraph style changes, or at the end of
    // its story, table cell or footnote. `paragraphStyle` is its style's Self as the range names it.
    virtual void paragraphEnded(std::string_view paragraphStyle) = 0;
};

// Walks the text of one story part (its document element, or any element holding text ranges).
// Paragraphs end at <Br/>; a style range may hold several and may sit inside XML elements. Table
// cells and footnotes are walked as text flows of their own; anchored page items count as
// characters of their paragraph and are not entered (the frame of a graphic cell makes no
// paragraph); notes and deleted changes are skipped.
// Fails, naming `sourceName`, on nesting deeper than any document holds.
app::Status walkStoryText(pugi::xml_node root, StoryTextVisitor& visitor, const QString& sourceName);

// Reads each story part in turn and walks it; the first part that cannot be read or walked ends
// the walk with its error.
app::Status walkStories(const QStringList& storyPaths, StoryTextVisitor& visitor);

} // namespace quillon::preflight
