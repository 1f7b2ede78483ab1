#pragma once

#include <QString>

namespace quillon::results {

// The text tests of the rule engines.

// Whether `text` contains `part`, ignoring case and diacritics ("Café" contains "cafe").
bool containsIgnoringCaseAndDiacritics(const QString& text, const QString& part);

// Whether the whole of `text` matches `pattern`, ignoring case but not diacritics: "*" matches
// any run of characters (none included), "?" exactly one character, everything else itself.
bool matchesPatternIgnoringCase(const QString& text, const QString& pattern);

} // namespace quillon::results
