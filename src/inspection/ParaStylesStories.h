#pragma once

#include <QString>
#include <QStringList>

#include <pugixml.hpp>

#include <string_view>

namespace quillon::inspection {

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

    // The walk of one part's text ended: the nodes handed over may be freed after this, so
    // anything keyed by them must be forgotten here.
    virtual void textEnded() {}
};

class PartReader;

// Walks the text of one story part (its document element, or any element holding text ranges).
// Paragraphs end at <Br/>; a style range may hold several and may sit inside XML elements. Table
// cells and footnotes are walked as text flows of their own; anchored page items count as
// characters of their paragraph and are not entered (the frame of a graphic cell makes no
// paragraph); notes and deleted changes are skipped. Any depth of nesting is followed.
void walkStoryText(pugi::xml_node root, StoryTextVisitor& visitor);

// Reads each story part in turn and walks it; a part that cannot be read is skipped with the
// reader's warning. Stops when the reader is cancelled.
void walkStories(const QStringList& storyNames, StoryTextVisitor& visitor, PartReader& reader);

} // namespace quillon::inspection
