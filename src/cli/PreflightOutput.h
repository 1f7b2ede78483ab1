#pragma once

#include "cli/PreflightJob.h"

#include <QString>

#include <iosfwd>

namespace quillon::cli {

// Writes one document of the JSON envelope: "path", "name", "warnings" (always a list), then
// "info", "links", "fonts", "colors", "document", "summary", "counts" and "status", or "error"
// when it could not be preflighted; laid out as QJsonDocument's indented form lays it out `depth` levels
// deep (its first line indented too, no line break at the end). Made and written a record at a
// time, so that a document of many links never has its whole text in memory.
void writeDocumentJson(std::ostream& stream, const PreflightedDocument& document, int depth);

} // namespace quillon::cli
