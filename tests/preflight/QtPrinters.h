#pragma once

#include <QString>

#include <ostream>

// Readable QStrings in test failures. Every test file of this folder includes it, so the
// printer is the same in all of them.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}
