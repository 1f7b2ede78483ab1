#pragma once

#include "app/Result.h"
#include "inspection/DocumentRecord.h"

#include <QList>
#include <QStringList>

#include <optional>

namespace quillon::preflight {

// Warnings about a document as a whole, which every command that reads it shows: the results
// stand, but they may not be the whole truth.

// The archive could not be read as it was and was read from a copy the zip tool repaired.
app::Error repairedArchiveWarning();

// A document record whose page count is 0.
std::optional<app::Error> noPagesWarning(const inspection::DocumentRecord& record);

// Adds the warnings of `more` that `warnings` does not hold yet (several readers meet the same
// broken part), in their order.
void addWarningsOnce(QList<app::Error>& warnings, const QList<app::Error>& more);

// The warnings as the lines a user reads ("Spreads/Spread_u1a.xml: not readable XML at byte 14").
QStringList warningTexts(const QList<app::Error>& warnings);

} // namespace quillon::preflight
