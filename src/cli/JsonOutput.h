#pragma once

#include "inspection/DocInfo.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <iosfwd>
#include <string>
#include <vector>

namespace quillon::cli {

// The JSON every command writes: format 1. Keys are only ever added within a format; a change that
// removes or retypes one raises the number. The shape is published in "schema/quillon-1.schema.json".
inline constexpr int kJsonFormat = 1;

// {"format": 1, "quillonVersion": ..., "command": `command`}: the head of every command's JSON.
QJsonObject jsonEnvelope(const QString& command);

// The indented text of a whole envelope, ending with a line break.
QByteArray jsonText(const QJsonObject& envelope);

// {"path", "name", "warnings"}: how every command's entry for a file begins; `error` is added when
// it is not empty (the file could not be read).
QJsonObject jsonFileEntry(const QString& path, const QStringList& warnings, const QString& error = {});

// A record value: numbers as numbers, booleans as booleans, dates as ISO-8601 text in UTC, data as
// base64 text, lists and dictionaries as arrays and objects.
QJsonValue jsonValue(const QVariant& value);

// A record's "alerts" (attribute key -> text or texts) as [{"rule": key, "text": text}, ...].
QJsonArray alertsJson(const QVariant& alerts);

// The document information: the display texts under their keys, and beside them the numbers (page
// count, file size in bytes, ISO-8601 dates, page sizes, bleed and slug in points).
QJsonObject documentInfoJson(const inspection::QNDocInfo& info);

enum class RecordKind { FontOrColor, Link };
// Appends a record, judged or not, as indented JSON text, its lines after the first indented
// `depth` levels further: without the keys that only name pictures, "alerts" always an array, and
// for a link the numbers beside the texts they are shown as ("actualPpi", "effectivePpi",
// "horizontalScale", "verticalScale"; null when not known). Written straight from the record,
// as QJsonDocument would write it: a JSON tree for each of 200,000 links costs more than the rest.
void appendRecordJson(std::string& out, const QVariantMap& record, RecordKind kind, int depth);

// A member of an object that holds records: its key and the records, in order.
struct RecordListMember {
    QString key;
    QVariantList records;
    RecordKind kind = RecordKind::FontOrColor;
};
// Writes an object of `members` and the record `lists` as QJsonDocument's indented form lays it
// out `depth` levels deep (its first line indented too, no line break at the end), its members in
// key order. The records are made and written a batch at a time, the batch side by side on
// several threads: a document of many links never has its whole text in memory.
void writeObjectWithRecords(std::ostream& stream, const QJsonObject& members,
                            const std::vector<RecordListMember>& lists, int depth);

// The head of an envelope with its "documents" array opened, for documents written one at a time
// (each at depth 2, separated by ",\n"); envelopeClosing() ends it.
std::string envelopeOpening(const QJsonObject& head);
std::string envelopeClosing(bool anyDocument);

// Appends `value` as QJsonDocument's indented form writes it, its lines after the first indented
// `depth` levels further, so that it can stand as a member at that depth of a text written in
// pieces.
void appendJson(std::string& out, const QJsonValue& value, int depth);

} // namespace quillon::cli
