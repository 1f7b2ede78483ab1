#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

namespace quillon::idml {

// How large one XML part of a package may be. A part is held in memory whole, with its element
// tree; these keep that under about 400 MB however the part is built (a tree node costs some 64
// bytes, an attribute 40), while the largest parts of real documents, a long book's story or a
// catalogue's spread, stay far below them.
struct XmlPartLimits {
    qint64 maxBytes = 64'000'000;
    qint64 maxMarkup = 1'500'000;     // tags, comments and processing instructions
    qint64 maxAttributes = 3'000'000; // attributes (counted as "=" signs, an upper bound)
    qint64 maxAttributeBytes = 2'000'000;
};

// What parts are parsed with: whitespace-only text is kept, so `<Content> </Content>` keeps its blank.
inline constexpr unsigned kPartParseOptions = pugi::parse_default | pugi::parse_ws_pcdata_single;

// One XML part of a package, parsed in place in a buffer of its own. A refused part gives an
// Error whose file is the part's name inside the package ("Spreads/Spread_u1a.xml") and whose
// message says why ("not readable XML at byte 14", "too large to read ..."); the document is then
// empty.
class XmlPart {
public:
    XmlPart() = default;
    XmlPart(const XmlPart&) = delete;
    XmlPart& operator=(const XmlPart&) = delete;

    // Parses `bytes`, which the part keeps.
    app::Status parse(QByteArray bytes, const QString& partName, unsigned options = kPartParseOptions,
                      const XmlPartLimits& limits = {});
    // Reads the part of an unpacked package at `path`, its size checked before it is read.
    app::Status read(const QString& path, const QString& partName, unsigned options = kPartParseOptions,
                     const XmlPartLimits& limits = {});

    const pugi::xml_document& document() const { return m_document; }
    pugi::xml_document& document() { return m_document; }
    pugi::xml_node root() const { return m_document.document_element(); }
    // The part's text as read; its element tree takes some three times as much again.
    qint64 textSize() const { return m_bytes.size(); }

private:
    QByteArray m_bytes; // the document's text lives here, so it goes after the document
    pugi::xml_document m_document;
};

// The text of the part of an unpacked package at `path`, its size checked before it is read.
app::Result<QByteArray> readPartFile(const QString& path, const QString& partName, const XmlPartLimits& limits = {});

// The message of a part larger than `limits` allows, for readers that check the size first.
app::Error partTooLarge(const QString& partName, qint64 size, const XmlPartLimits& limits = {});

} // namespace quillon::idml
