#pragma once

#include "cli/PreflightJob.h"

#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QVariant>

#include <iosfwd>

namespace quillon::cli {

// A record value in JSON: numbers as numbers, booleans as booleans, dates as ISO-8601 text in
// UTC, data as base64 text, lists and dictionaries as arrays and objects.
QJsonValue jsonValue(const QVariant& value);

// Judged records in JSON with their own keys, the file icon left out (it only stands for the
// desktop's picture of the file); document groups keep their children.
QJsonArray jsonRecords(const QVariantList& records);

// Writes one document of the JSON envelope: "path", "name", "warnings" (always a list), then
// "info", "links", "fonts", "colors", "summary", "status" and "errorCount", or "error" when it
// could not be preflighted; laid out as QJsonDocument's indented form lays it out `depth` levels
// deep (its first line indented too, no line break at the end). Made and written a record at a
// time, so that a document of many links never has its whole text in memory.
void writeDocumentJson(std::ostream& stream, const PreflightedDocument& document, int depth);

} // namespace quillon::cli
