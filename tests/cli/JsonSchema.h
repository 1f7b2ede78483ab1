#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QString>

namespace quillon::test {

// Where `json` breaks schema/quillon-1.schema.json, one line a fault; empty when it follows it.
QString schemaViolations(const QByteArray& json);

// The "documents" (or "files") of a command's JSON output, after checking the whole output against
// the schema: a violation fails the calling test.
QJsonArray jsonEntries(const QByteArray& json);

} // namespace quillon::test
