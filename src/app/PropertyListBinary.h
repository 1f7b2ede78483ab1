#pragma once

#include "app/Result.h"

#include <QByteArray>
#include <QVariant>

namespace quillon::app {

// Reads a binary property list ("bplist00"). Every offset, count and reference is checked against
// the data before it is used; reference cycles, nesting beyond 512 levels and values that do not
// fit their types are errors that name the byte offset.
Result<QVariant> parseBinaryPropertyList(const QByteArray& bytes, const QString& sourceName);

} // namespace quillon::app
