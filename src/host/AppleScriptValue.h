#pragma once

#include <QString>
#include <QVariant>

namespace quillon::host {

// Reads a script value printed in source form (what the script runner prints with "-s s"):
// "text" with its backslash escapes, integers and reals, true and false, lists {a, b} as
// QVariantList and records {name:value} as QVariantMap; missing value is a null QVariant.
// Anything else (object references, dates, raw codes) is kept as its source text, so nothing
// is lost. Empty text gives an empty string.
QVariant parseAppleScriptValue(const QString& sourceText);

} // namespace quillon::host
