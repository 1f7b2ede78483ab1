#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QString>

#include <pugixml.hpp>

#include <memory>

namespace quillon::app {

// The options XML parts are read with: whitespace-only text is kept (so `<Content> </Content>`
// keeps its blank) and processing instructions are kept (IDML writes special characters as them).
inline constexpr unsigned kXmlPartParseOptions = pugi::parse_default | pugi::parse_ws_pcdata_single | pugi::parse_pi;

// An XML file on disk is read whole and parsed into nodes that cost a few times its size; larger
// ones are refused, so one part can never take more than about half a gigabyte.
inline constexpr qint64 kMaxXmlFileBytes = 128LL * 1024 * 1024;

// Reads and parses one XML file. A missing or unreadable file, one that is not a regular file or
// is larger than kMaxXmlFileBytes, or XML that is not well formed, gives an Error naming the
// file, the line and the parser's complaint.
Result<std::shared_ptr<pugi::xml_document>> loadXmlFile(const QString& path, unsigned options = kXmlPartParseOptions);

// The same for bytes already in memory; `sourceName` names them in errors.
Result<std::shared_ptr<pugi::xml_document>> parseXml(const QByteArray& bytes, const QString& sourceName,
                                                     unsigned options = kXmlPartParseOptions);

} // namespace quillon::app
